#include "Classes/Interface/Compare/CompareFacts.h"

#include "Classes/Browsing/Index/KindNames.h"
#include "Classes/Browsing/Search/ShortDate.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QLocale>

#include <algorithm>

namespace {

const QString dot = QStringLiteral(" · ");
const QString comma = QStringLiteral(", ");

QStringList sizeOf(const ZQLibraryBaseItem &item)
{
    const QString size = item.pixelSizeString();
    return size.isEmpty() ? QStringList() : QStringList(size);
}

QStringList fileOf(const ZQLibraryBaseItem &item)
{
    const qint64 bytes = item.byteSize();
    return {KindNames::nameOfExtension(item.extension()),
            bytes > 0 ? QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat)
                      : zqLocalized("the file is missing")};
}

QStringList ratingOf(const ZQLibraryBaseItem &item)
{
    return {item.rating() > 0 ? zqFormat(zqLocalized("%d of 5"), {item.rating()}) : zqLocalized("No rating")};
}

QStringList tagsOf(const ZQLibraryBaseItem &item)
{
    return item.userTagTitles();
}

QStringList placesOf(const ZQLibraryBaseItem &item)
{
    QStringList titles;
    for (const auto &project : item.projects()) {
        if (project->active()) {
            titles.append(project->title());
        }
    }
    titles.sort(Qt::CaseInsensitive);
    if (const auto folder = item.watchingFolder()) {
        titles.append(folder->title());
    }
    return titles;
}

QStringList dateOf(const QDateTime &date)
{
    return {date.isValid() ? zqShortDate(date) : zqLocalized("Unknown")};
}

QStringList importedOf(const ZQLibraryBaseItem &item)
{
    return dateOf(item.import_date());
}

QStringList modifiedOf(const ZQLibraryBaseItem &item)
{
    return dateOf(item.modification_date());
}

struct Kind
{
    const char *name;
    const QString &separator;
    QStringList (*partsOf)(const ZQLibraryBaseItem &item);
    bool isNamed = false;
};

const Kind kinds[] = {
    {zqKey("Size"), dot, sizeOf},
    {zqKey("File"), dot, fileOf},
    {zqKey("Rating"), dot, ratingOf},
    {zqKey("Tags"), comma, tagsOf},
    {zqKey("Projects"), comma, placesOf},
    {zqKey("Imported"), dot, importedOf, true},
    {zqKey("Modified"), dot, modifiedOf, true},
};

} // namespace

bool CompareFact::differs(const QString &part) const
{
    return std::any_of(parts.begin(), parts.end(), [&](const QStringList &each) { return !each.contains(part); });
}

bool CompareFact::differs() const
{
    return std::any_of(parts.begin(), parts.end(), [this](const QStringList &each) { return each != parts.first(); });
}

QList<CompareFact> zqCompareFacts(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    QList<CompareFact> facts;
    for (const Kind &kind : kinds) {
        CompareFact fact{zqLocalized(kind.name), kind.separator, kind.isNamed, {}};
        for (const auto &item : items) {
            fact.parts.append(kind.partsOf(*item));
        }
        facts.append(fact);
    }
    return facts;
}
