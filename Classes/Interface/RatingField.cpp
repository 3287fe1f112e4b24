#include "Classes/Interface/RatingField.h"

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

constexpr int stars = 5;
constexpr int starWidth = 20;
constexpr int starHeight = 20;
constexpr double radius = 7.5;
constexpr double margin = 0.5;
constexpr double innerRadius = 3.4;
constexpr int textMargin = 4;

QPainterPath starPath(const QPointF &centre)
{
    QPainterPath path;
    for (int i = 0; i < 2 * stars; ++i) {
        const double angle = -M_PI / 2 + i * M_PI / stars;
        const double length = i % 2 == 0 ? radius : innerRadius;
        const QPointF point = centre + QPointF(std::cos(angle), std::sin(angle)) * length;
        i == 0 ? path.moveTo(point) : path.lineTo(point);
    }
    path.closeSubpath();
    return path;
}

QString multipleValues()
{
    return zqLocalized("Multiple values");
}

} // namespace

RatingField::RatingField(QWidget *parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setRating(0, false);
}

QSize RatingField::sizeHint() const
{
    const int textWidth = fontMetrics().horizontalAdvance(multipleValues()) + 2 * textMargin;
    return {std::max(stars * starWidth, textWidth), starHeight + 4};
}

QString RatingField::text() const
{
    return m_differs && m_hovered == 0 ? multipleValues() : QString();
}

void RatingField::setRating(double rating, bool differs)
{
    m_rating = std::clamp(rating, 0.0, double(stars));
    m_differs = differs;
    setAccessibleName(differs ? zqLocalized("Rating: Multiple values")
                              : zqFormat(zqLocalized("Rating: %@ of 5"), {QString::number(m_rating)}));
    setToolTip(differs ? multipleValues() : QString());
    accessibleNumberDidChange(this, m_rating);
    update();
}

double RatingField::accessibleLimit() const
{
    return stars;
}

QString RatingField::accessibleNumberText() const
{
    return m_differs ? multipleValues() : QString::number(m_rating);
}

int RatingField::starAt(const QPointF &position) const
{
    const double fromFirst = isRightToLeft() ? width() - position.x() : position.x();
    return std::clamp(int((fromFirst + starWidth / 2.0 - radius - margin) / starWidth) + 1, 1, stars);
}

void RatingField::edit(double rating)
{
    const double wanted = std::clamp(rating, 0.0, double(stars));
    if (m_differs || std::abs(wanted - m_rating) > 0.01) {
        setRating(wanted, false);
        Q_EMIT edited(wanted);
    }
}

void RatingField::paintStars(QPainter &painter) const
{
    const double lit = m_hovered > 0 ? m_hovered : rating();
    for (int i = 0; i < stars; ++i) {
        const QPointF centre(margin + radius + i * starWidth, height() / 2.0);
        const QPainterPath path = starPath(centre);
        painter.setPen(QPen(zqColor(lit > i ? ZQColorRole::Accent : ZQColorRole::TextFaint), 1.2));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(path);
        const double part = std::clamp(lit - i, 0.0, 1.0);
        if (part > 0) {
            painter.save();
            painter.setClipRect(QRectF(centre.x() - radius, 0, 2 * radius * part, height()));
            painter.fillPath(path, zqColor(ZQColorRole::Accent));
            painter.restore();
        }
    }
}

void RatingField::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setLayoutDirection(layoutDirection());
    if (const QString shown = text(); !shown.isEmpty()) {
        painter.setPen(zqColor(ZQColorRole::TextMuted));
        painter.drawText(rect().adjusted(textMargin, 0, -textMargin, 0), Qt::AlignLeft | Qt::AlignVCenter, shown);
    } else {
        painter.save();
        if (isRightToLeft()) {
            painter.translate(width(), 0);
            painter.scale(-1, 1);
        }
        paintStars(painter);
        painter.restore();
    }
    if (hasFocus()) {
        painter.setPen(QPen(zqColor(ZQColorRole::Accent), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 5, 5);
    }
}

void RatingField::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const int star = starAt(event->position());
    m_hovered = 0;
    edit(!m_differs && std::abs(star - m_rating) < 0.01 ? 0 : star);
}

void RatingField::mouseMoveEvent(QMouseEvent *event)
{
    m_hovered = starAt(event->position());
    update();
}

void RatingField::leaveEvent(QEvent * /*event*/)
{
    m_hovered = 0;
    update();
}

void RatingField::keyPressEvent(QKeyEvent *event)
{
    const int digit = event->key() - Qt::Key_0;
    if (event->modifiers() == Qt::NoModifier && digit >= 0 && digit <= stars) {
        edit(digit);
    } else if (event->key() == (isRightToLeft() ? Qt::Key_Left : Qt::Key_Right)) {
        edit(std::floor(rating()) + 1);
    } else if (event->key() == (isRightToLeft() ? Qt::Key_Right : Qt::Key_Left)) {
        edit(std::ceil(rating()) - 1);
    } else {
        QWidget::keyPressEvent(event);
    }
}

void RatingField::focusInEvent(QFocusEvent * /*event*/)
{
    update();
}

void RatingField::focusOutEvent(QFocusEvent * /*event*/)
{
    update();
}
