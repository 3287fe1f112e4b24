#pragma once

#include "Classes/Browsing/Content/Content.h"
#include "Classes/Browsing/Search/SearchContext.h"

class LibraryIndex;

// Puts what a search by likeness found in the order of its nearness. On the thread of the context.
class NearnessOrder
{
public:
    // `index` may be null. Without an answer of either, rows stay as they are.
    NearnessOrder(ZQManagedObjectContext &context, LibraryIndex *index) : m_context(context), m_index(index) {}

    // The picture itself, where the text has its bundleID, and the nearest to it come first in each group; the others
    // keep their order.
    void apply(Content &content, const QString &searchText, const SearchContext &search) const;

private:
    QHash<ZQObjectID, int> distances(const QList<ZQPictureHash> &pictures) const;

    ZQManagedObjectContext &m_context;
    LibraryIndex *m_index;
};
