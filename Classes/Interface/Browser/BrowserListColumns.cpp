#include "Classes/Interface/Browser/BrowserListColumns.h"

#include "Classes/Browsing/Index/ListOrder.h"
#include "Classes/Browsing/Search/ShortDate.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QLocale>

namespace {

using Item = ZQLibraryBaseItem;
using Read = BrowserRowValues::Values;

struct Column
{
    const char *identifier;
    const char *title;
    int width;
    int minimumWidth;
    bool isShown;
    ZQSortValue sort;      // None: it orders nothing
    bool isAscendingFirst; // when it is chosen: from A, or from 1; else the newest and the largest come first
    ZQListValue (*value)(const Item &item, const Read *read);
};

ZQListValue text(const QString &text)
{
    return {.text = text, .chips = {}};
}

constexpr Column columns[] = {
    {"title", zqKey("Title"), 0, 0, true, ZQSortValue::Title, true,
     [](const Item &, const Read *) { return ZQListValue(); }},
    {"kind", zqKey("Kind"), 54, 36, true, ListOrder::byKind, true,
     [](const Item &item, const Read *) { return text(item.extension().toLower()); }},
    {"size", zqKey("Size"), 100, 62, true, ZQSortValue::Size, false,
     [](const Item &item, const Read *) { return text(item.pixelSizeString()); }},
    {"bytes", zqKey("Bytes"), 70, 44, true, ZQSortValue::None, false,
     [](const Item &, const Read *read) {
         return text(!read              ? QString()
                     : read->bytes <= 0 ? zqLocalized("missing")
                                        : QLocale().formattedDataSize(read->bytes, 1, QLocale::DataSizeSIFormat));
     }},
    {"rating", zqKey("Rating"), 84, 62, true, ListOrder::byRating, false,
     [](const Item &item, const Read *) { return ZQListValue{.text = {}, .stars = item.rating(), .chips = {}}; }},
    {"tags", zqKey("Tags"), 150, 44, true, ListOrder::byTags, true,
     [](const Item &, const Read *read) {
         return ZQListValue{.text = {}, .chips = read ? read->tags : QStringList()};
     }},
    {"imported", zqKey("Imported"), 110, 56, true, ZQSortValue::ImportDate, false,
     [](const Item &item, const Read *) { return text(zqShortDate(item.import_date())); }},
    {"modified", zqKey("Modified"), 110, 56, false, ZQSortValue::ModificationDate, false,
     [](const Item &item, const Read *) { return text(zqShortDate(item.modification_date())); }},
    {"created", zqKey("Created"), 110, 56, false, ZQSortValue::CreationDate, false,
     [](const Item &item, const Read *) { return text(zqShortDate(item.creation_date())); }},
    {"color", zqKey("Color"), 70, 50, false, ZQSortValue::Color, true,
     [](const Item &item, const Read *) { return text(ZQSidebarTag::colorNameForValue(item.mainColor())); }},
};

} // namespace

ZQViewColumns BrowserListColumns::all()
{
    QList<ZQViewColumn> result;
    for (const Column &column : columns) {
        result.append({QString::fromLatin1(column.identifier), zqLocalized(column.title), column.width,
                       column.minimumWidth, column.sort != ZQSortValue::None, column.isShown});
    }
    return ZQViewColumns(result);
}

std::optional<BrowserListColumns::Sort> BrowserListColumns::sortOf(const QString &identifier)
{
    for (const Column &column : columns) {
        if (identifier == QLatin1StringView(column.identifier) && column.sort != ZQSortValue::None) {
            return Sort{column.sort, column.isAscendingFirst};
        }
    }
    return std::nullopt;
}

QString BrowserListColumns::columnOf(ZQSortValue value)
{
    for (const Column &column : columns) {
        if (column.sort == value && value != ZQSortValue::None) {
            return QString::fromLatin1(column.identifier);
        }
    }
    return {};
}

ZQListValue BrowserListColumns::value(const QString &identifier, const ZQLibraryBaseItem &item,
                                      const BrowserRowValues::Values *read)
{
    for (const Column &column : columns) {
        if (identifier == QLatin1StringView(column.identifier)) {
            return column.value(item, read);
        }
    }
    return {};
}
