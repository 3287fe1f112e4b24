#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQListRows.h"

#include <functional>
#include <optional>

// The orders of a list: those of ZQSortValue, and those by which a column of a list can be ordered besides. What the
// store has no column for, or none in that order, has a sort key of its own: the index has columns for it, and where
// the store must answer, the items themselves are looked at. Both give the same order. How many bytes a file has is
// known to its disk alone, which would have to be asked for all of them: nothing is ordered by that.
namespace ListOrder {

// The numbers are those of the store and of the open tabs' file.
inline constexpr auto byKind = ZQSortValue::ListKind; // extensions, upper and lower case alike
inline constexpr auto byRating = ZQSortValue::ListRating;
inline constexpr auto byTags = ZQSortValue::ListTags; // a person's, by the titles that are shown first; none come last
inline constexpr auto byHue = ZQSortValue::ListHue;   // of the palette: as a rainbow, then greys, then no picture

bool isKnown(int value); // the number of an order

// Descriptors of rows; `request` may hold them wherever the answer comes from `rows` or from the index.
QList<ZQSortDescriptor> descriptors(ZQSortValue value, bool isAscending, ZQListRows rows);

inline const QString kindKey = QStringLiteral("lowercaseExtension");
inline const QString hueKey = QStringLiteral("hue");
inline const QString tagsKey = QStringLiteral("tagTitles");

// Titles are compared by their letters, upper and lower case alike, and so many of an item.
inline constexpr int tagsCompared = 4;

// Whether the store cannot order by them.
bool needsItems(const QList<ZQSortDescriptor> &descriptors);
// The answer to a request that needs the items, out of `fetch`, which gets one that does not. On the context's thread;
// reads all items it finds, some at a time. Nothing when `fetch` gave nothing, or it was cancelled.
using Fetch = std::function<std::optional<ZQRelatedIDs>(const ZQFetchRequest &)>;
std::optional<ZQRelatedIDs> rows(const ZQFetchRequest &request, ZQManagedObjectContext &context, const Fetch &fetch);

} // namespace ListOrder
