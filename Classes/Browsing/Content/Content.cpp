#include "Classes/Browsing/Content/Content.h"

#include <algorithm>

bool ContentQuery::settleOrder()
{
    const bool hasNone = sortValue == ZQSortValue::Manual || sortValue == ZQSortValue::None;
    if (displayStyle == BrowserDisplayStyle::BySidebarItem || !hasNone) {
        return false;
    }
    sortValue = ZQSortValue::ModificationDate;
    isAscending = true;
    return true;
}

QList<ContentGroup> Content::filteredGroups(const QList<bool> &matches) const
{
    QList<ContentGroup> result;
    qint64 first = 0;
    for (const ContentGroup &group : groups) {
        const auto begin = matches.begin() + std::min<qsizetype>(group.first, matches.size());
        const auto end = matches.begin() + std::min<qsizetype>(group.first + group.count, matches.size());
        if (const qint64 count = std::count(begin, end, true); count > 0) {
            result.append(group);
            result.last().first = first;
            result.last().count = count;
            first += count;
        }
    }
    return result;
}
