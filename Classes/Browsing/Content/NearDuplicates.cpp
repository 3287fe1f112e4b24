#include "Classes/Browsing/Content/NearDuplicates.h"

#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Browsing/Index/NearGroups.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQRowStream.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QSet>

#include <algorithm>

namespace {

using Worth = NearDuplicates::Worth;

// What a format keeps of a picture. Others, as JPEG, lose some of it.
struct Format
{
    const char *extensions;
    int kept;
};
constexpr int sharpInAnySize = 3;
constexpr int layers = 2;
constexpr Format formats[] = {
    {" svg ai eps pdf sketch ", sharpInAnySize},
    {" psd psb xcf kra clip afdesign afphoto acorn procreate ora dng cr2 cr3 nef arw raf orf rw2 ", layers},
    {" png tif tiff bmp tga exr hdr pnm ppm qoi icns ", 1},
};

int kept(const Worth &item)
{
    const QString extension = u' ' + item.extension.toLower() + u' ';
    for (const Format &format : formats) {
        if (extension.size() > 2 && QLatin1StringView(format.extensions).contains(extension)) {
            return format.kept;
        }
    }
    return 0;
}

bool isSharp(const Worth &item)
{
    return kept(item) == sharpInAnySize;
}

qint64 pixels(const Worth &item)
{
    return isSharp(item) ? 0 : item.width * item.height;
}

// Of what is hardly smaller than the largest, as that: a border that was added makes a picture larger and no better.
qint64 sizeAmong(const Worth &item, qint64 largest)
{
    return pixels(item) * 100 >= largest * 85 ? largest : pixels(item);
}

// What one is worth more by, in a group whose largest has so many pixels; each with why.
struct Measure
{
    qint64 (*of)(const Worth &item, qint64 largest);
    QString (*reason)(const Worth &item);
};
const Measure measures[] = {
    {[](const Worth &item, qint64) { return qint64(isSharp(item)); },
     [](const Worth &item) {
         return zqFormat(zqLocalized("As %@ it is sharp in any size"), {item.extension.toUpper()});
     }},
    {sizeAmong,
     [](const Worth &item) {
         return zqFormat(zqLocalized("The largest: %ld × %ld pixels"), {item.width, item.height});
     }},
    {[](const Worth &item, qint64) { return qint64(kept(item)); },
     [](const Worth &item) {
         return zqFormat(zqLocalized("As large as the others, and %@ keeps more of a picture"),
                         {item.extension.toUpper()});
     }},
    {[](const Worth &item, qint64) { return item.rating; },
     [](const Worth &) { return zqLocalized("As good as the others, and rated highest"); }},
    {[](const Worth &item, qint64) { return -item.imported; },
     [](const Worth &) { return zqLocalized("As good as the others, and in the library for longest"); }},
};

PictureSet fromIndex(LibraryIndex::Reading &reading, const std::optional<QList<ZQObjectID>> &items)
{
    return reading.pictures(items ? reading.rowsOf(*items) : reading.active());
}

std::optional<PictureSet> pictures(ZQManagedObjectContext &context, LibraryIndex *index,
                                   const std::optional<QList<ZQObjectID>> &items, ZQError *error)
{
    if (index && index->isReady() && index->waitUntilCurrent()) {
        if (auto reading = index->read()) {
            return fromIndex(*reading, items);
        }
    }
    auto all = PictureSet::ofStore(context, error);
    if (!all || !items) {
        return all;
    }
    const QSet<ZQObjectID> wanted(items->begin(), items->end());
    PictureSet chosen;
    for (size_t i = 0; i < all->items.size(); ++i) {
        if (wanted.contains(all->items[i])) {
            chosen.add(all->items[i], all->hashes[i]);
        }
    }
    return chosen;
}

// Of all items of the groups, by key; in one look at the store.
std::optional<QHash<qint64, Worth>> worths(ZQManagedObjectContext &context, const QList<qint64> &keys, ZQError *error)
{
    enum Property { Extension, Width, Height, Rating, Imported };
    QHash<qint64, Worth> result;
    result.reserve(keys.size());
    ZQRowStream stream(context);
    const auto take = [&result](const ZQRowStream::Row &row) {
        const std::string_view extension = row.text(Extension);
        result.insert(row.key, {.item = {row.entity, row.key},
                                .extension = QString::fromUtf8(extension.data(), qsizetype(extension.size())),
                                .width = row.number(Width),
                                .height = row.number(Height),
                                .rating = row.number(Rating),
                                .imported = row.number(Imported)});
    };
    const bool isRead =
        stream.rows(ZQLibraryBaseItem::entityName(),
                    {QStringLiteral("extension"), QStringLiteral("pixelWidth"), QStringLiteral("pixelHeight"),
                     QStringLiteral("rating"), QStringLiteral("import_date")},
                    {.list = keys}, take, error);
    return isRead ? std::optional(std::move(result)) : std::nullopt;
}

} // namespace

NearDuplicateGroup NearDuplicates::groupOf(QList<Worth> items)
{
    qint64 largest = 0;
    for (const Worth &item : std::as_const(items)) {
        largest = std::max(largest, pixels(item));
    }
    std::stable_sort(items.begin(), items.end(), [largest](const Worth &a, const Worth &b) {
        for (const Measure &measure : measures) {
            if (measure.of(a, largest) != measure.of(b, largest)) {
                return measure.of(a, largest) > measure.of(b, largest);
            }
        }
        return a.item.key < b.item.key;
    });
    NearDuplicateGroup group;
    for (const Worth &item : std::as_const(items)) {
        group.items.append(item.item);
    }
    for (const Measure &measure : measures) {
        const bool isLast = &measure == std::end(measures) - 1;
        if (isLast || measure.of(items[0], largest) != measure.of(items[1], largest)) {
            group.reason = measure.reason(items[0]);
            break;
        }
    }
    return group;
}

std::optional<QList<NearDuplicateGroup>> NearDuplicates::find(ZQManagedObjectContext &context, LibraryIndex *index,
                                                              const std::optional<QList<ZQObjectID>> &items,
                                                              const Progress &progress, ZQError *error)
{
    const auto set = pictures(context, index, items, error);
    const int farthest = set ? ZQPictureHash::alikeDistanceAmong(qint64(set->hashes.size())) : 0;
    const auto found = set ? NearGroups::of(set->hashes, farthest, progress) : std::nullopt;
    if (!found) {
        return std::nullopt;
    }
    QList<qint64> keys;
    for (const std::vector<quint32> &group : *found) {
        for (const quint32 place : group) {
            keys.append(set->items[place].key);
        }
    }
    const auto worth = worths(context, keys, error);
    if (!worth) {
        return std::nullopt;
    }
    QList<NearDuplicateGroup> groups;
    for (const std::vector<quint32> &group : *found) {
        QList<Worth> members;
        for (const quint32 place : group) {
            if (const auto member = worth->constFind(set->items[place].key); member != worth->cend()) {
                members.append(*member);
            }
        }
        if (members.size() > 1) {
            groups.append(groupOf(std::move(members)));
        }
    }
    std::stable_sort(groups.begin(), groups.end(), [](const NearDuplicateGroup &a, const NearDuplicateGroup &b) {
        return a.items.size() > b.items.size();
    });
    return groups;
}
