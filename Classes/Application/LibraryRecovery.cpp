#include "Classes/Application/LibraryRecovery.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarTag.h"

LibraryRecovery LibraryRecovery::of(const ZQStoreRecovery &report, const ZQManagedObjectModel &model)
{
    LibraryRecovery recovery;
    recovery.keptPath = report.keptPath;
    const auto isKindOf = [&](const QString &name, const QString &other) {
        const ZQEntityDescription *entity = model.entity(name);
        return entity && entity->isKindOf(model.entity(other));
    };
    for (auto row = report.rows.cbegin(); row != report.rows.cend(); ++row) {
        qint64 &place = isKindOf(row.key(), ZQLibraryBaseItem::entityName())   ? recovery.items
                        : isKindOf(row.key(), ZQSidebarTag::entityName())      ? recovery.tags
                        : isKindOf(row.key(), ZQSidebarBaseItem::entityName()) ? recovery.sidebarEntries
                                                                               : recovery.memberships;
        place += row.value();
    }
    recovery.unreadableItems = report.unreadable.value(ZQLibraryBaseItem::entityName());
    recovery.unreadableEntries = report.unreadable.value(ZQSidebarBaseItem::entityName());
    recovery.unreadableMemberships = report.unreadable.value(ZQProjectItem::entityName());
    return recovery;
}

QString LibraryRecovery::text() const
{
    QStringList lines;
    lines.append(zqFormat(zqLocalized("Recovered: %d items, %d sidebar entries, %d tags, %d memberships."),
                          {items, sidebarEntries, tags, memberships}));
    const qint64 lost = unreadableItems + unreadableEntries + unreadableMemberships;
    if (items + sidebarEntries + tags + memberships == 0) {
        return zqFormat(
            zqLocalized("Nothing could be read from the damaged library, which is kept as %@\nThe files in it "
                        "come back into the project “Recovered” when it is opened."),
            {keptPath});
    }
    lines.append(lost == 0 ? zqLocalized("Nothing is known to be lost.")
                           : zqFormat(zqLocalized("Could not be read, at least: %d items, %d sidebar entries or tags, "
                                                  "%d memberships."),
                                      {unreadableItems, unreadableEntries, unreadableMemberships}));
    lines.append(zqFormat(zqLocalized("The damaged store is kept as %@"), {keptPath}));
    return lines.join(u'\n');
}
