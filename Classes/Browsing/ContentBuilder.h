#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQListRows.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class ZQSidebarBaseItem;
struct SearchContext;

// What a tab is to show.
struct ContentQuery
{
    QList<ZQObjectID> sidebarItems;
    QString filter; // a search text; all rows when there is nothing in it to search for
    ZQSortValue sortValue = ZQSortValue::Manual;
    bool isAscending = false;
};

// The rows of a tab by section, and the title of each; empty for one without a head. Sections without rows are left
// out. After an error there are none, which is not an empty tab.
struct Content
{
    QStringList titles;
    QList<ZQRelatedIDs> rows;
    ZQError error;
};

// Builds what a tab shows out of the sidebar items that are selected: their sections, filter and order. On the thread
// of its context; a few sidebar items are read, and identifiers of the rows.
class ContentBuilder
{
public:
    using IsWanted = std::function<bool()>;

    ContentBuilder(ContentQuery query, ZQManagedObjectContext &context);

    // Nothing when it was given up meanwhile.
    std::optional<Content> content(const IsWanted &isWanted) const;
    // The rows whose items' titles begin with `text`, in no order. Nothing after an error or when given up.
    std::optional<QList<ZQObjectID>> rowsWithTitleBeginning(const QString &text, const IsWanted &isWanted) const;
    // The condition of the search text on the rows of the first section, for a person; nothing after an error.
    std::optional<QString> predicateString(ZQError *error) const;

private:
    struct Section
    {
        QString title;
        ZQFetchRequest request;
    };
    // Nothing when the sidebar items cannot be read.
    std::optional<QList<Section>> sections(ZQError *error) const;
    std::optional<QList<Section>> sectionsWithoutSearch(ZQError *error) const;
    static void addSections(const ZQRef<ZQSidebarBaseItem> &item, QList<Section> &into);
    static void restrictToTitlesBeginning(ZQFetchRequest &request, const QString &text);
    void prepare(ZQFetchRequest &request) const;
    void addSearch(QList<Section> &sections) const;
    SearchContext searchContext(ZQListRows rows, const QList<Section> &sections) const;

    ContentQuery m_query;
    ZQManagedObjectContext &m_context;
};
