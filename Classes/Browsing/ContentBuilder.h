#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQListRows.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class ZQSidebarBaseItem;

// What a tab is to show.
struct ContentQuery
{
    QList<ZQObjectID> sidebarItems;
    QString filter; // titles that contain it; empty: all
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

private:
    struct Section
    {
        QString title;
        ZQFetchRequest request;
    };
    std::optional<QList<Section>> sections(ZQError *error) const; // nothing when the sidebar items cannot be read
    static void addSections(const ZQRef<ZQSidebarBaseItem> &item, QList<Section> &into);
    static void restrictToTitles(ZQFetchRequest &request, const char *comparison, const QString &text);
    void prepare(ZQFetchRequest &request) const;

    ContentQuery m_query;
    ZQManagedObjectContext &m_context;
};
