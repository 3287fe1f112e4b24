#pragma once

#include "Classes/Browsing/ContentRows.h"

#include <functional>
#include <optional>

// Builds what a tab shows out of the sidebar items that are selected: their filter, order and groups. On the thread of
// its context; a few sidebar items are read, and identifiers of the rows.
class ContentBuilder
{
public:
    using IsWanted = std::function<bool()>;

    ContentBuilder(ContentQuery query, ZQManagedObjectContext &context);

    // Nothing when it was given up meanwhile.
    std::optional<Content> content(const IsWanted &isWanted) const;
    // The rows whose items' titles begin with `text`, in no order. Nothing after an error or when given up.
    std::optional<QList<ZQObjectID>> rowsWithTitleBeginning(const QString &text, const IsWanted &isWanted) const;

private:
    std::optional<ContentParts> parts(ZQError *error) const; // nothing when the sidebar items cannot be read
    ContentRows rows(ContentParts parts) const;
    static void restrictToTitles(ZQFetchRequest &request, const char *comparison, const QString &text);
    void prepare(ZQFetchRequest &request) const;

    ContentQuery m_query;
    ZQManagedObjectContext &m_context;
};
