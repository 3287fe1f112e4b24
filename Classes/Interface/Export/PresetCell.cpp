#include "Classes/Interface/Export/PresetCell.h"

#include "Classes/Interface/Export/ExportPresets.h"
#include "Classes/Interface/Export/PresetIcon.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int gap = 8; // between icon and title
constexpr int titleHeight = 18;
constexpr double disabledOpacity = 0.4;

} // namespace

PresetCell::PresetCell(const ExportItem &preset, QWidget *parent) : QAbstractButton(parent), m_preset(preset)
{
    setFixedSize(cellSize);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setAccessibleName(ExportPresets::description(preset));
    setEditing(false);
}

void PresetCell::setEditing(bool isEditing)
{
    m_isEditing = isEditing;
    const QString help =
        isEditing ? zqLocalized("Drag it to another place, or press Delete to remove it.")
                  : zqLocalized("Click to export what is selected, or drag it to where the files are to go.");
    setAccessibleDescription(help);
    setToolTip(accessibleName() + u'\n' + help);
}

const QImage &PresetCell::icon()
{
    const qreal scale = devicePixelRatioF() * PresetIcon::shownSize.width() / PresetIcon::size.width();
    if (m_icon.isNull() || !qFuzzyCompare(m_icon.devicePixelRatio(), scale)) {
        m_icon = PresetIcon::dragImage(m_preset, scale);
    }
    return m_icon;
}

void PresetCell::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const bool isHovered = isEnabled() && underMouse();
    const QRectF frame = QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75);
    painter.setPen(hasFocus() ? QPen(zqColor(ZQColorRole::Accent), 1.5) : QPen(Qt::NoPen));
    painter.setBrush(isDown()    ? zqColor(ZQColorRole::Raised2)
                     : isHovered ? zqColor(ZQColorRole::Raised)
                                 : QColor(Qt::transparent));
    painter.drawRoundedRect(frame, 8, 8);
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    const int top = (height() - PresetIcon::shownSize.height() - gap - titleHeight) / 2;
    const QRect place(QPoint((width() - PresetIcon::shownSize.width()) / 2, top), PresetIcon::shownSize);
    painter.drawImage(place, icon());
    painter.setFont(ZQTheme::current().font(ZQMeasure::smallTextSize));
    painter.setPen(zqColor(ZQColorRole::TextMuted));
    const QRect titlePlace(gap / 2, place.bottom() + 1 + gap, width() - gap, titleHeight);
    painter.drawText(titlePlace, Qt::AlignCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(m_preset.title, Qt::ElideRight, titlePlace.width()));
}

bool PresetCell::event(QEvent *event)
{
    // The window's Del would take the items that are selected, with a preset in the focus.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto *const key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Delete && key->modifiers() == Qt::NoModifier) {
            event->accept();
            return true;
        }
    }
    return QAbstractButton::event(event);
}

void PresetCell::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        click();
        return;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        if (m_isEditing) {
            Q_EMIT deleteRequested();
            return;
        }
        break;
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
        Q_EMIT moveRequested(Qt::Key(event->key()));
        return;
    default:
        break;
    }
    QAbstractButton::keyPressEvent(event);
}

void PresetCell::mousePressEvent(QMouseEvent *event)
{
    m_pressPoint = event->pos();
    m_mayDrag = event->button() == Qt::LeftButton;
    QAbstractButton::mousePressEvent(event);
}

void PresetCell::mouseMoveEvent(QMouseEvent *event)
{
    if (m_mayDrag && (event->buttons() & Qt::LeftButton) &&
        (event->pos() - m_pressPoint).manhattanLength() >= QApplication::startDragDistance()) {
        m_mayDrag = false; // a press gives one drag
        setDown(false);    // and no click
        Q_EMIT dragRequested();
        return;
    }
    QAbstractButton::mouseMoveEvent(event);
}
