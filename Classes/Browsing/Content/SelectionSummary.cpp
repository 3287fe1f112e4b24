#include "Classes/Browsing/Content/SelectionSummary.h"

#include "Classes/Browsing/Index/KindNames.h"
#include "Classes/Browsing/Search/ShortDate.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace {

constexpr qsizetype batchSize = 500;

QString dateText(const QDateTime &date)
{
    return date.isValid() ? zqShortDate(date) : zqLocalized("Unknown");
}

QString sizeText(const ZQLibraryBaseItem &item)
{
    return item.pixelWidth() > 0 ? QStringLiteral("%1 × %2").arg(item.pixelWidth()).arg(item.pixelHeight())
                                 : zqLocalized("Unknown");
}

void addTags(SelectionSummary &summary, const QStringList &titles, QSet<QString> &all)
{
    if (summary.count == 0) {
        summary.tags = titles;
    } else {
        summary.tags.removeIf([&titles](const QString &title) { return !titles.contains(title); });
    }
    all.unite(QSet<QString>(titles.begin(), titles.end()));
}

void addItem(SelectionSummary &summary, const ZQLibraryBaseItem &item, QSet<QString> &allTags)
{
    const bool isFirst = summary.count == 0;
    const qint64 bytes = item.byteSize();
    summary.bytes += bytes;
    summary.missing += bytes == 0 && !QFileInfo::exists(item.itemURL()) ? 1 : 0;
    summary.title.add(item.title(), isFirst);
    summary.kind.add(KindNames::nameOfExtension(item.extension()), isFirst);
    summary.notes.add(item.notes(), isFirst);
    summary.size.add(sizeText(item), isFirst);
    summary.imported.add(dateText(item.import_date()), isFirst);
    summary.modified.add(dateText(item.modification_date()), isFirst);
    summary.source.add(item.webPageURL().isEmpty() ? item.webURL() : item.webPageURL(), isFirst);
    summary.license.add(item.license(), isFirst);
    const auto folder = item.watchingFolder();
    summary.liveFolder.add(folder ? folder->folderPath() : QString(), isFirst);
    summary.ratingDiffers = summary.ratingDiffers || (!isFirst && item.rating() != summary.rating);
    summary.rating = isFirst ? item.rating() : summary.rating;
    addTags(summary, item.userTagTitles(), allTags);
    ++summary.count;
}

} // namespace

void CommonText::add(const QString &next, bool isFirst)
{
    if (isFirst) {
        text = next;
    } else if (!differs && text != next) {
        differs = true;
    }
}

QString CommonText::shown() const
{
    return differs ? zqLocalized("Multiple values") : text;
}

std::optional<SelectionSummary> SelectionSummary::of(const QList<ZQObjectID> &items, ZQManagedObjectContext &context,
                                                     const std::function<bool()> &isWanted)
{
    SelectionSummary summary;
    QSet<QString> allTags;
    for (qsizetype first = 0; first < items.size(); first += batchSize) {
        const QList<ZQObjectID> batch = items.mid(first, batchSize);
        const QList<ZQRef<ZQLibraryBaseItem>> read = ZQLibraryBaseItem::itemsWithIDs(batch, context);
        const auto kept = zqPrefetch(read, QStringLiteral("tags"));
        const auto keptFolders = zqPrefetch(read, QStringLiteral("watchingFolder"));
        for (const ZQRef<ZQLibraryBaseItem> &item : read) {
            if (!isWanted()) {
                return std::nullopt;
            }
            addItem(summary, *item, allTags);
        }
    }
    summary.hasOtherTags = allTags.size() > summary.tags.size();
    return summary;
}
