#include "Kit/Widgets/ZQViewColumns.h"

#include <QStringList>

#include <algorithm>

namespace {

const QString shownKey = QStringLiteral("shown");
const QString widthsKey = QStringLiteral("widths");
constexpr int widest = 1200;

} // namespace

bool ZQViewColumns::isShown(const QString &identifier) const
{
    return std::any_of(m_all.begin(), m_all.end(), [&identifier](const ZQViewColumn &column) {
        return column.isShown && column.identifier == identifier;
    });
}

bool ZQViewColumns::setShown(const QString &identifier, bool isShown)
{
    for (qsizetype i = 1; i < m_all.size(); ++i) {
        if (m_all[i].identifier == identifier && m_all[i].isShown != isShown) {
            m_all[i].isShown = isShown;
            return true;
        }
    }
    return false;
}

QList<ZQViewColumns::Place> ZQViewColumns::places(int width) const
{
    if (m_all.isEmpty()) {
        return {};
    }
    const int titleLeft = pictureWidth + pictureGap;
    int room = std::max(1, width - titleLeft);
    QList<Place> result = {{0, titleLeft, room}};
    room -= leastTitleWidth;
    int wanted = 0; // beyond the least widths
    for (qsizetype i = 1; i < m_all.size(); ++i) {
        if (m_all[i].isShown && room >= m_all[i].minimumWidth + gap) {
            result.append({i, 0, m_all[i].width});
            room -= m_all[i].minimumWidth + gap;
            wanted += m_all[i].width - m_all[i].minimumWidth;
        } else if (m_all[i].isShown) {
            break;
        }
    }
    for (qsizetype i = 1; i < result.size() && wanted > room; ++i) {
        const ZQViewColumn &column = m_all[result[i].column];
        result[i].width = column.minimumWidth + (column.width - column.minimumWidth) * room / wanted;
    }
    int right = width;
    for (qsizetype i = result.size() - 1; i > 0; --i) {
        result[i].left = right - result[i].width;
        right = result[i].left - gap;
    }
    result.first().width = std::max(1, right - titleLeft);
    return result;
}

bool ZQViewColumns::moveBoundary(qsizetype place, int by, int width)
{
    const QList<Place> shown = places(width);
    if (place < 0 || place + 1 >= shown.size() || by == 0) {
        return false;
    }
    const int leastBefore = place == 0 ? leastTitleWidth : m_all[shown[place].column].minimumWidth;
    const int leastAfter = m_all[shown[place + 1].column].minimumWidth;
    const int back = std::min(0, leastBefore - shown[place].width);
    const int on = std::max(0, shown[place + 1].width - leastAfter);
    const int moved = std::clamp(by, back, on);
    if (moved == 0) {
        return false;
    }
    for (qsizetype i = 1; i < shown.size(); ++i) { // as they look, so that only the two change
        m_all[shown[i].column].width = shown[i].width;
    }
    if (place > 0) {
        m_all[shown[place].column].width += moved;
    }
    m_all[shown[place + 1].column].width -= moved;
    return true;
}

QVariantMap ZQViewColumns::state() const
{
    QStringList shown;
    QVariantMap widths;
    for (qsizetype i = 1; i < m_all.size(); ++i) {
        widths.insert(m_all[i].identifier, m_all[i].width);
        if (m_all[i].isShown) {
            shown.append(m_all[i].identifier);
        }
    }
    return {{shownKey, shown}, {widthsKey, widths}};
}

void ZQViewColumns::restore(const QVariantMap &state)
{
    const QVariant shown = state.value(shownKey);
    const bool saysWhichAreShown = shown.canConvert<QStringList>();
    const QStringList identifiers = shown.toStringList();
    const QVariantMap widths = state.value(widthsKey).toMap();
    for (qsizetype i = 1; i < m_all.size(); ++i) {
        ZQViewColumn &column = m_all[i];
        if (saysWhichAreShown) {
            column.isShown = identifiers.contains(column.identifier);
        }
        bool isNumber = false;
        if (const int width = widths.value(column.identifier).toInt(&isNumber); isNumber) {
            column.width = std::clamp(width, column.minimumWidth, widest);
        }
    }
}
