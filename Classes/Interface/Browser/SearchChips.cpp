#include "Classes/Interface/Browser/SearchChips.h"

#include "Classes/Browsing/SearchExpression.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr int sideMargin = 20;
constexpr int chipHeight = 22;
constexpr int chipPadding = 8;
constexpr int chipGap = 6;
constexpr qsizetype mostChips = 30; // no window is wide enough for more

QString shownText(const SearchPart &part)
{
    constexpr qsizetype longest = 40;
    const QString text = part.text.simplified();
    return text.size() > longest ? text.left(longest - 1) + u'…' : text;
}

} // namespace

SearchChips::SearchChips(QWidget *parent) : QWidget(parent)
{
    setFixedHeight(ZQMeasure::groupHeadHeight);
    setObjectName(QStringLiteral("SearchChips"));
    hide();
    connect(&ZQTheme::current(), &ZQTheme::changed, this, [this] {
        layOut();
        update();
    });
}

void SearchChips::setText(const QString &searchText)
{
    m_chips.clear();
    bool needsExplanation = false;
    QStringList said;
    if (!searchText.trimmed().isEmpty()) {
        const SearchExpression expression = SearchExpression::read(searchText, SearchContext());
        for (const SearchPart &part : expression.parts) {
            const bool isWrong = part.kind == SearchPart::Kind::Problem;
            needsExplanation = needsExplanation || isWrong || part.kind != SearchPart::Kind::Word;
            if ((isWrong || part.isClause()) && m_chips.size() < mostChips) {
                m_chips.append({shownText(part), isWrong ? part.meaning : QString(), part.meaning, {}});
                said.append(part.text + QStringLiteral(": ") + part.meaning);
            }
        }
    }
    setAccessibleName(said.isEmpty() ? QString() : zqLocalized("Search") + QStringLiteral(": ") + said.join(u'\n'));
    layOut();
    setVisible(needsExplanation && !m_chips.isEmpty());
    update();
}

void SearchChips::layOut()
{
    const QFontMetrics metrics(ZQTheme::current().font(ZQMeasure::smallTextSize));
    int x = sideMargin;
    for (Chip &chip : m_chips) {
        const QString text = chip.reason.isEmpty() ? chip.text : chip.text + QStringLiteral("  ") + chip.reason;
        const int width = metrics.horizontalAdvance(text) + 2 * chipPadding;
        chip.place = QRect(x, (height() - chipHeight) / 2, width, chipHeight);
        x += width + chipGap;
    }
    updateGeometry();
}

QSize SearchChips::sizeHint() const
{
    return {2 * sideMargin, ZQMeasure::groupHeadHeight}; // as wide as there is room
}

bool SearchChips::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    const auto *help = static_cast<QHelpEvent *>(event);
    const auto chip = std::find_if(m_chips.begin(), m_chips.end(),
                                   [help](const Chip &each) { return each.place.contains(help->pos()); });
    if (chip == m_chips.end()) {
        QToolTip::hideText();
    } else {
        QToolTip::showText(help->globalPos(), chip->meaning, this, chip->place);
    }
    return true;
}

void SearchChips::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(ZQTheme::current().font(ZQMeasure::smallTextSize));
    for (const Chip &chip : std::as_const(m_chips)) {
        const bool isWrong = !chip.reason.isEmpty();
        const QRectF box = QRectF(chip.place).adjusted(0.5, 0.5, -0.5, -0.5);
        painter.setPen(isWrong ? QPen(zqColor(ZQColorRole::Danger), 1) : QPen(Qt::NoPen));
        painter.setBrush(isWrong ? QBrush(Qt::NoBrush) : QBrush(zqColor(ZQColorRole::Select)));
        painter.drawRoundedRect(box, 5, 5);
        const QRect text = chip.place.adjusted(chipPadding, 0, -chipPadding, 0);
        painter.setPen(zqColor(isWrong ? ZQColorRole::Danger : ZQColorRole::Text));
        painter.drawText(text, Qt::AlignVCenter, chip.text);
        if (isWrong) {
            painter.setPen(zqColor(ZQColorRole::TextMuted));
            painter.drawText(
                text.adjusted(painter.fontMetrics().horizontalAdvance(chip.text + QStringLiteral("  ")), 0, 0, 0),
                Qt::AlignVCenter, chip.reason);
        }
    }
}
