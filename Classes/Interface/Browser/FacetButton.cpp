#include "Classes/Interface/Browser/FacetButton.h"

#include "Classes/Browsing/Index/ItemCount.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQSwatch.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QStyle>

namespace {

constexpr int buttonHeight = 22;
constexpr int padding = 8;
constexpr int gap = 5;
constexpr int dotSize = 12;
constexpr double dimmed = 0.45;        // while it cannot be chosen
constexpr qsizetype longestTitle = 24; // characters

QFont titleFont()
{
    return ZQTheme::current().font(ZQMeasure::smallTextSize, QFont::Medium);
}

QFont countFont()
{
    return ZQTheme::current().font(ZQMeasure::smallTextSize);
}

} // namespace

FacetButton::FacetButton(QWidget *parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::NoFocus); // the bar gives it to one of them
    setAttribute(Qt::WA_Hover);
}

QString FacetButton::spoken(const FacetValue &value)
{
    const QString state = value.isChosen ? zqLocalized("chosen") : zqLocalized("not chosen");
    return QStringList{value.title, zqItemCount(value.count), state}.join(QStringLiteral(", "));
}

void FacetButton::showValue(FacetKind kind, const FacetValue &value)
{
    m_kind = kind;
    m_value = value;
    m_more = 0;
    setCheckable(true);
    setChecked(value.isChosen);
    setAccessibleName(spoken(value));
    setToolTip(zqFormat(zqLocalized("%@: %@"), {Facet::title(kind), value.title}) + QStringLiteral("  ") + value.token);
    updateGeometry();
    update();
}

void FacetButton::showMore(FacetKind kind, int count)
{
    m_kind = kind;
    m_value = {};
    m_more = count;
    setChecked(false);
    setCheckable(false);
    setAccessibleName(zqFormat(zqLocalized("%@: %@ more"), {Facet::title(kind), QLocale().toString(count)}));
    setToolTip(accessibleName());
    updateGeometry();
    update();
}

QString FacetButton::shownTitle() const
{
    if (m_value.color != 0 || isMore()) {
        return {};
    }
    const QString title = m_value.stars > 0 ? QString(m_value.stars, u'★') : m_value.title;
    return title.size() > longestTitle ? title.left(longestTitle - 1) + u'…' : title;
}

QString FacetButton::shownCount() const
{
    return isMore() ? zqFormat(zqLocalized("%@ more"), {QLocale().toString(m_more)})
                    : QLocale().toString(m_value.count);
}

QSize FacetButton::sizeHint() const
{
    const QString title = shownTitle();
    int width = 2 * padding + QFontMetrics(countFont()).horizontalAdvance(shownCount());
    width += m_value.color != 0 ? dotSize + gap : 0;
    width += title.isEmpty() ? 0 : QFontMetrics(titleFont()).horizontalAdvance(title) + gap;
    return {width, buttonHeight};
}

void FacetButton::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1 : dimmed);
    painter.setLayoutDirection(layoutDirection());
    const auto mirrored = [this](const QRect &place) { return QStyle::visualRect(layoutDirection(), rect(), place); };
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const ZQColorRole ground = isChecked()                ? ZQColorRole::Select
                               : isDown() || underMouse() ? ZQColorRole::Raised2
                                                          : ZQColorRole::Raised;
    painter.setPen(hasFocus() ? QPen(zqColor(ZQColorRole::Accent), 1) : QPen(Qt::NoPen));
    painter.setBrush(zqColor(ground));
    painter.drawRoundedRect(box, box.height() / 2, box.height() / 2);
    int x = padding;
    if (m_value.color != 0) {
        painter.setPen(QPen(zqSwatchRing(m_value.color, zqColor(ground)), 1));
        painter.setBrush(ZQTheme::swatch(m_value.color));
        const QRect dot(x, (height() - dotSize) / 2, dotSize, dotSize);
        painter.drawEllipse(QRectF(mirrored(dot)).adjusted(0.5, 0.5, -0.5, -0.5));
        x += dotSize + gap;
    }
    const QColor accent = ZQTheme::withContrast(zqColor(ZQColorRole::Accent), zqColor(ZQColorRole::Select), 4.5);
    if (const QString title = shownTitle(); !title.isEmpty()) {
        painter.setFont(titleFont());
        painter.setPen(isChecked() ? accent : zqColor(ZQColorRole::Text));
        painter.drawText(mirrored({x, 0, width() - x, height()}), Qt::AlignVCenter, title);
        x += painter.fontMetrics().horizontalAdvance(title) + gap;
    }
    painter.setFont(countFont());
    painter.setPen(isChecked() ? accent : zqColor(ZQColorRole::TextMuted));
    painter.drawText(mirrored({x, 0, width() - x, height()}), Qt::AlignVCenter, shownCount());
}

void FacetButton::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
        Q_EMIT moveRequested(event->key());
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        click();
        break;
    default:
        QAbstractButton::keyPressEvent(event);
    }
}

void FacetButton::focusInEvent(QFocusEvent *event)
{
    QAbstractButton::focusInEvent(event);
    Q_EMIT focused();
}
