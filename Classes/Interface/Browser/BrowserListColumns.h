#pragma once

#include "Classes/Interface/Browser/BrowserRowValues.h"
#include "Kit/Widgets/ZQGridView.h"
#include "Models/DataModel/ZQListRows.h"

#include <optional>

class ZQLibraryBaseItem;

// The columns of the browser's list style. Main thread.
namespace BrowserListColumns {

ZQViewColumns all(); // as they are until a person chooses others
struct Sort
{
    ZQSortValue value;
    bool isAscendingFirst; // until its column is chosen once more
};
std::optional<Sort> sortOf(const QString &identifier);
QString columnOf(ZQSortValue value); // empty for an order that no column shows
// `read` is null while it is not known.
ZQListValue value(const QString &identifier, const ZQLibraryBaseItem &item, const BrowserRowValues::Values *read);

} // namespace BrowserListColumns
