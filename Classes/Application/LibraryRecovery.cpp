#include "Classes/Application/LibraryRecovery.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QLocale>

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

QString LibraryRecovery::lossText() const
{
    struct Part
    {
        qint64 count;
        ZQCountedKey text;
    };
    QStringList parts;
    for (const Part &part :
         {Part{unreadableItems, ZQCountedKey{"1 item", "%@ items"}},
          Part{unreadableEntries, ZQCountedKey{"1 sidebar entry or tag", "%@ sidebar entries or tags"}},
          Part{unreadableMemberships, ZQCountedKey{"1 membership", "%@ memberships"}}}) {
        if (part.count > 0) {
            parts.append(zqCounted(part.text, part.count));
        }
    }
    return parts.isEmpty()
               ? zqLocalized("Nothing is known to be lost.")
               : zqFormat(zqLocalized("Could not be read, at least: %@."), {parts.join(QStringLiteral(", "))});
}

QString LibraryRecovery::text() const
{
    if (items + sidebarEntries + tags + memberships == 0) {
        return zqFormat(
            zqLocalized("Nothing could be read from the damaged library, which is kept as %@\nThe files in it "
                        "come back into the project “Recovered” when it is opened."),
            {keptPath});
    }
    const QLocale locale;
    QStringList lines = {zqFormat(zqLocalized("Recovered: %@ items, %@ sidebar entries, %@ tags, %@ memberships."),
                                  {locale.toString(items), locale.toString(sidebarEntries), locale.toString(tags),
                                   locale.toString(memberships)}),
                         lossText()};
    if (unreadableItems > 0) {
        lines.append(zqLocalized("Their files come back into the project “Recovered”."));
    }
    lines.append(zqFormat(zqLocalized("The damaged store is kept as %@"), {keptPath}));
    return lines.join(u'\n');
}
