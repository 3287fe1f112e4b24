#pragma once

#include "Classes/Browsing/Search/SearchContext.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QHash>

#include <functional>
#include <optional>

class LibraryIndex;
class ZQSidebarBaseItem;

// What the entries of the sidebar show at the moment. A smart folder is a text until it is looked at, since "today" and
// what occurs twice change without it: the window, its badges and the command line all ask here. On the thread of the
// context.
class SidebarContents
{
public:
    // Answers come from `index` where that is ready. It outlives this.
    explicit SidebarContents(ZQManagedObjectContext &context, LibraryIndex *index = nullptr)
        : m_context(context), m_index(index)
    {
    }

    // `contentRequest` of the item; of a smart folder what its text finds in the whole library.
    ZQFetchRequest request(const ZQSidebarBaseItem &item) const;
    // What a saved text finds: nothing when there is nothing in it to search for.
    ZQFetchRequest requestForSearchText(const QString &text) const;
    static ZQFetchRequest wholeLibrary(); // newest first

    // Of a search in a content that consists of `requests`.
    SearchContext searchContext(ZQListRows rows, const QList<ZQFetchRequest> &requests) const;

    // An entry whose items are counted, as its own thread says it.
    struct Entry
    {
        ZQObjectID item;
        ZQFetchRequest request;
        bool isSmart = false;
        QString searchText; // of a smart folder
    };
    static Entry entryFor(const ZQSidebarBaseItem &item);
    // Nothing after an error, which was logged, or when it was given up.
    using Counts = QHash<ZQObjectID, qint64>;
    std::optional<Counts> counts(const QList<Entry> &entries, const std::function<bool()> &isWanted) const;
    // Of live folders, with all that is below them.
    std::optional<Counts> countsWithBelow(const QList<ZQObjectID> &liveFolders,
                                          const std::function<bool()> &isWanted) const;

private:
    bool isIndexCurrent() const;
    Counts countsOfIndex(const QList<Entry> &entries) const; // those it knows
    // Those that are counted together, a statement for all tags, projects or live folders. Nothing after an error.
    std::optional<Counts> countsOfStore(const QList<Entry> &entries, const std::function<bool()> &isWanted,
                                        ZQError *error) const;

    ZQManagedObjectContext &m_context;
    LibraryIndex *m_index;
};
