#pragma once

#include "Classes/Browsing/Content/ContentRows.h"
#include "Classes/Browsing/Content/SidebarContents.h"
#include "Classes/Browsing/Search/SearchContext.h"

#include <functional>
#include <optional>

// Builds what a tab shows out of the sidebar items that are selected: their filter, order and groups. On the thread of
// its context; a few sidebar items are read, and identifiers of the rows.
class ContentBuilder
{
public:
    using IsWanted = std::function<bool()>;

    // The sidebar items that bring the rows of a selection, each once: of a folder what is in it, of a live folder all
    // below it, too.
    struct Sources
    {
        QList<ZQRef<ZQSidebarBaseItem>> items;
        bool showsItems = false; // rows are library items, also of those that hold memberships
    };
    // `isSingle`: of no more than one, of those that are gone neither.
    static Sources sourcesOf(const QList<ZQRef<ZQSidebarBaseItem>> &selection, bool isSingle);

    // Rows come from `index` where that is ready and has what is asked for. It outlives the builder.
    ContentBuilder(ContentQuery query, ZQManagedObjectContext &context, LibraryIndex *index = nullptr);

    // Nothing when it was given up meanwhile.
    std::optional<Content> content(const IsWanted &isWanted) const;
    // The rows whose items' titles begin with `text`, in no order. Nothing after an error or when given up.
    std::optional<QList<ZQObjectID>> rowsWithTitleBeginning(const QString &text, const IsWanted &isWanted) const;
    // What the tab shows without its search text, a request a sidebar item, and what texts are searched in there, by
    // their items. Used on the builder's thread, while it lives.
    struct Scope
    {
        QList<ZQFetchRequest> requests;
        SearchContext search;
    };
    std::optional<Scope> scope(ZQError *error = nullptr) const; // nothing after an error
    // The condition of the search text on the rows of the first sidebar item, for a person; nothing after an error.
    std::optional<QString> predicateString(ZQError *error) const;

private:
    std::optional<ContentParts> parts(ZQError *error) const; // nothing when the sidebar items cannot be read
    ContentRows rows(ContentParts parts) const;
    static QList<ZQFetchRequest> requestsOf(const ContentParts &parts);
    ZQFetchRequest requestOf(const ZQSidebarBaseItem &item) const;
    static void restrictToTitlesBeginning(ZQFetchRequest &request, const QString &text);
    void prepare(ZQFetchRequest &request) const;

    ContentQuery m_query;
    ZQManagedObjectContext &m_context;
    LibraryIndex *m_index;
    SidebarContents m_contents;
};
