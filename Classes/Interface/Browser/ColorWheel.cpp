#include "Classes/Interface/Browser/ColorWheel.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace {
constexpr int side = 176;
constexpr double radius = side / 2.0 - 6; // room for the mark and the line of the focus
constexpr int wholeTurn = 360;
constexpr int full = 255;
constexpr int hueStep = 5;
constexpr int fullnessStep = 12;
} // namespace

ColorWheel::ColorWheel(QWidget *parent) : QWidget(parent)
{
    setFixedSize(side, side);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::CrossCursor);
    setAccessibleName(zqLocalized("Color"));
    setAccessibleDescription(zqLocalized("Left and Right change the hue, Up and Down how full the color is"));
    setToolTip(accessibleDescription());
}

QColor ColorWheel::color() const
{
    return QColor::fromHsv(m_hue, m_fullness, m_value);
}

void ColorWheel::setColor(const QColor &color)
{
    m_hue = std::max(0, color.hsvHue()); // greys have none
    m_fullness = color.hsvSaturation();
    m_value = color.value();
    m_disk = {};
    accessibleNumberDidChange(this, m_hue);
    update();
}

void ColorWheel::setValue(int value)
{
    if (value != m_value) {
        m_value = std::clamp(value, 0, full);
        m_disk = {};
        update();
        Q_EMIT changed();
    }
}

void ColorWheel::choose(int hue, int fullness)
{
    const int turned = ((hue % wholeTurn) + wholeTurn) % wholeTurn;
    const int held = std::clamp(fullness, 0, full);
    if (turned != m_hue || held != m_fullness) {
        m_hue = turned;
        m_fullness = held;
        accessibleNumberDidChange(this, m_hue);
        update();
        Q_EMIT changed();
    }
}

void ColorWheel::chooseAt(const QPointF &point)
{
    const QPointF from = point - QRectF(rect()).center();
    const double angle = qRadiansToDegrees(std::atan2(-from.y(), from.x()));
    choose(int(std::lround(angle)), int(std::lround(std::hypot(from.x(), from.y()) / radius * full)));
}

void ColorWheel::draw()
{
    const double ratio = devicePixelRatioF();
    const int pixels = int(std::ceil(side * ratio));
    m_disk = QImage(pixels, pixels, QImage::Format_RGB32);
    m_disk.setDevicePixelRatio(ratio);
    const double middle = pixels / 2.0;
    for (int y = 0; y < pixels; ++y) {
        auto *line = reinterpret_cast<QRgb *>(m_disk.scanLine(y));
        for (int x = 0; x < pixels; ++x) {
            const double dx = (x + 0.5 - middle) / ratio;
            const double dy = (middle - y - 0.5) / ratio;
            const int hue = (int(std::lround(qRadiansToDegrees(std::atan2(dy, dx)))) + wholeTurn) % wholeTurn;
            const int fullness = std::min(full, int(std::hypot(dx, dy) / radius * full));
            line[x] = QColor::fromHsv(hue, fullness, m_value).rgb();
        }
    }
}

void ColorWheel::paintEvent(QPaintEvent * /*event*/)
{
    if (m_disk.isNull() || m_disk.devicePixelRatio() != devicePixelRatioF()) {
        draw();
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF middle = QRectF(rect()).center();
    QPainterPath disk;
    disk.addEllipse(middle, radius, radius);
    painter.save();
    painter.setClipPath(disk);
    painter.drawImage(QPointF(0, 0), m_disk);
    painter.restore();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(zqColor(hasFocus() ? ZQColorRole::Accent : ZQColorRole::ControlBorder), hasFocus() ? 2 : 1));
    painter.drawEllipse(middle, radius + 2, radius + 2);
    const double angle = qDegreesToRadians(double(m_hue));
    const QPointF mark = middle + QPointF(std::cos(angle), -std::sin(angle)) * (radius * m_fullness / full);
    painter.setPen(QPen(ZQTheme::withContrast(zqColor(ZQColorRole::Ground), color(), 3), 2));
    painter.setBrush(color());
    painter.drawEllipse(mark, 5, 5);
}

void ColorWheel::mousePressEvent(QMouseEvent *event)
{
    chooseAt(event->position());
}

void ColorWheel::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton) {
        chooseAt(event->position());
    }
}

void ColorWheel::keyPressEvent(QKeyEvent *event)
{
    const bool isFine = event->modifiers() & Qt::ShiftModifier;
    const int turn = isFine ? 1 : hueStep;
    const int fill = isFine ? 1 : fullnessStep;
    switch (event->key()) {
    case Qt::Key_Left:
        return choose(m_hue + turn, m_fullness);
    case Qt::Key_Right:
        return choose(m_hue - turn, m_fullness);
    case Qt::Key_Up:
        return choose(m_hue, m_fullness + fill);
    case Qt::Key_Down:
        return choose(m_hue, m_fullness - fill);
    default:
        QWidget::keyPressEvent(event);
    }
}

void ColorWheel::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    update();
}

void ColorWheel::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    update();
}
