// What the simple kinds of sidebar items contain and are called.

#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarLibrary.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarRecent.h"
#include "Models/DataModel/ZQSidebarScreenshot.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"

namespace {

bool restoreItem(ZQLibraryBaseItem *item)
{
    if (!item || item->active()) {
        return false;
    }
    item->restoreSelf();
    return true;
}

QList<ZQSortDescriptor> newestFirst()
{
    return {{QStringLiteral("import_date"), false},
            {QStringLiteral("title"), false, ZQSortDescriptor::Comparison::LocalizedStandard}};
}

void appendProjects(const ZQRef<ZQSidebarBaseItem> &item, QSet<qint64> &seen, QList<ZQRef<ZQSidebarBaseItem>> &projects)
{
    if (!item || seen.contains(item->objectID().key)) {
        return;
    }
    seen.insert(item->objectID().key);
    if (!item->isFolder()) {
        projects.append(item);
        return;
    }
    for (const ZQRef<ZQSidebarBaseItem> &child : item->orderedChildren()) {
        appendProjects(child, seen, projects);
    }
}

} // namespace

QString ZQSidebarLibrary::typeString() const
{
    return zqLocalized("Library");
}

ZQFetchRequest ZQSidebarLibrary::contentRequest() const
{
    return {.entityName = ZQLibraryBaseItem::entityName(),
            .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("active == YES")),
            .sortDescriptors = newestFirst()};
}

bool ZQSidebarLibrary::addItem(ZQLibraryBaseItem *item, quint32, bool, bool)
{
    return restoreItem(item);
}

bool ZQSidebarLibrary::addItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &, ZQError *)
{
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        restoreItem(item.get());
    }
    return true;
}

bool ZQSidebarLibrary::containsItem(const ZQLibraryBaseItem *item) const
{
    return item && item->active();
}

QList<ZQSidebarRecent::Group> ZQSidebarRecent::groups()
{
    struct Span
    {
        const char *title;
        QDateTime from;
    };
    const QDateTime now = zqNow();
    const QDate today = QDate::currentDate();
    const QList<Span> spans = {{zqKey("Last Hour"), now.addSecs(-3600)},
                               {zqKey("Today"), today.startOfDay().toUTC()},
                               {zqKey("Yesterday"), today.addDays(-1).startOfDay().toUTC()},
                               {zqKey("Last Week"), now.addDays(-days)}};
    QList<Group> groups;
    QList<ZQPredicate> earlierGroups;
    for (const Span &span : spans) {
        const ZQPredicate since = ZQLibraryBaseItem::predicateFromDate(span.from, now);
        QList<ZQPredicate> parts = {since};
        for (const ZQPredicate &earlier : earlierGroups) {
            parts.append(ZQPredicate::notPredicate(earlier));
        }
        groups.append({zqLocalized(span.title), ZQPredicate::andPredicate(parts)});
        earlierGroups.append(since);
    }
    return groups;
}

QString ZQSidebarRecent::typeString() const
{
    return zqLocalized("Recent");
}

ZQFetchRequest ZQSidebarRecent::contentRequest() const
{
    const QDateTime now = zqNow();
    return {.entityName = ZQLibraryBaseItem::entityName(),
            .predicate = ZQLibraryBaseItem::predicateFromDate(now.addDays(-days), now),
            .sortDescriptors = newestFirst()};
}

bool ZQSidebarRecent::addItem(ZQLibraryBaseItem *item, quint32, bool, bool)
{
    return restoreItem(item);
}

bool ZQSidebarRecent::addItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &, ZQError *)
{
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        restoreItem(item.get());
    }
    return true;
}

bool ZQSidebarRecent::containsItem(const ZQLibraryBaseItem *item) const
{
    const QDateTime now = zqNow();
    return item && ZQLibraryBaseItem::predicateFromDate(now.addDays(-days), now).evaluateWithObject(item);
}

QString ZQSidebarScreenshot::typeString() const
{
    return zqLocalized("Screenshots");
}

QString ZQSidebarProject::typeString() const
{
    return zqLocalized("Project");
}

QString ZQSidebarSmartFolder::typeString() const
{
    return zqLocalized("Smart Folder");
}

ZQFetchRequest ZQSidebarSmartFolder::contentRequest() const
{
    return {.entityName = ZQLibraryBaseItem::entityName(),
            .predicate = ZQPredicate::notPredicate({}),
            .sortDescriptors = newestFirst()};
}

bool ZQSidebarSmartFolder::addItem(ZQLibraryBaseItem *, quint32, bool, bool)
{
    return false;
}

bool ZQSidebarSmartFolder::addItems(const QList<ZQRef<ZQLibraryBaseItem>> &, const QList<quint32> &, ZQError *)
{
    return false;
}

void ZQSidebarSmartFolder::removeItems(const QList<ZQRef<ZQLibraryBaseItem>> &) {}

bool ZQSidebarSmartFolder::containsItem(const ZQLibraryBaseItem *) const
{
    return false;
}

void ZQSidebarSmartFolder::awakeFromInsert()
{
    ZQSidebarBaseItem::awakeFromInsert();
    setSortKeys(qint16(ZQSortValue::ImportDate));
    setSortDirection(false);
}

QString ZQSidebarFolder::typeString() const
{
    return is_Label() ? ZQSidebarBaseItem::typeString() : zqLocalized("Folder");
}

QList<ZQRef<ZQSidebarBaseItem>> ZQSidebarFolder::expandedProjects(const QList<ZQRef<ZQSidebarBaseItem>> &items)
{
    QSet<qint64> seen;
    QList<ZQRef<ZQSidebarBaseItem>> projects;
    for (const ZQRef<ZQSidebarBaseItem> &item : items) {
        appendProjects(item, seen, projects);
    }
    return projects;
}

std::optional<ZQSidebarFolder::SubprojectItems>
ZQSidebarFolder::subprojectsChildsItemsWithSortDescriptors(const QList<ZQSortDescriptor> &sortDescriptors,
                                                           const QList<ZQRef<ZQSidebarBaseItem>> &subProjects,
                                                           ZQManagedObjectContext &context)
{
    SubprojectItems result;
    for (const ZQRef<ZQSidebarBaseItem> &project : expandedProjects(subProjects)) {
        ZQFetchRequest request = project->contentRequest();
        if (request.entityName != ZQProjectItem::entityName()) {
            continue;
        }
        if (!sortDescriptors.isEmpty()) {
            request.sortDescriptors = sortDescriptors;
        }
        const auto memberships = zqFetch<ZQProjectItem>(context, request);
        if (!memberships) {
            return std::nullopt;
        }
        result.sortedResults += *memberships;
        result.subprojects.append(project);
        result.projectsCounts.append(memberships->size());
    }
    return result;
}
