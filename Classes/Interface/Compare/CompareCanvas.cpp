#include "Classes/Interface/Compare/CompareCanvas.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr int margin = 8;
constexpr double actionPan = 0.15; // of the room

using Action = QAccessibleActionInterface;

// The part of the picture that can be in the middle while no room is left beside what is larger than it.
double heldInside(double center, double shown, double room)
{
    if (shown <= room) {
        return 0.5;
    }
    const double half = room / 2 / shown;
    return std::clamp(center, half, 1 - half);
}

} // namespace

CompareCanvas::CompareCanvas(QWidget *parent) : QWidget(parent), m_document(new DetailDocument(this))
{
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(60, 60);
    connect(m_document, &DetailDocument::changed, this, [this] {
        m_tone = zqArtworkTone(m_document->image());
        update();
        Q_EMIT documentChanged();
    });
}

void CompareCanvas::open(const DetailDocument::Source &source)
{
    m_isPlain = false;
    m_document->open(source, int(std::max(width(), height()) * devicePixelRatioF()));
}

void CompareCanvas::showImage(const QImage &image, const QString &message)
{
    m_isPlain = true;
    m_image = image;
    m_message = message;
    m_tone = {};
    update();
}

const QImage &CompareCanvas::shownImage() const
{
    return m_isPlain ? m_image : m_document->image();
}

QSizeF CompareCanvas::naturalSize() const
{
    return m_isPlain ? QSizeF(m_image.size()) : m_document->naturalSize();
}

double CompareCanvas::roomScale() const
{
    const QSizeF natural = naturalSize();
    const QSizeF room = (QSizeF(size()) - QSizeF(2 * margin, 2 * margin)) * devicePixelRatioF();
    if (natural.isEmpty() || room.isEmpty()) {
        return 1;
    }
    return std::min(room.width() / natural.width(), room.height() / natural.height());
}

double CompareCanvas::fitScale() const
{
    const double room = roomScale();
    return m_largestFit > 0 ? std::min(room, m_largestFit) : room;
}

double CompareCanvas::scale() const
{
    return fitScale() * m_view.zoom;
}

void CompareCanvas::setLargestFit(double scale)
{
    if (m_largestFit != scale) {
        m_largestFit = scale;
        updateWantedSide();
        update();
        Q_EMIT scaleChanged();
    }
}

void CompareCanvas::setView(const CompareZoom &view)
{
    if (m_view != view) {
        m_view = view;
        updateWantedSide();
        update();
        Q_EMIT scaleChanged();
    }
}

QSizeF CompareCanvas::shownSize(double zoom) const
{
    return naturalSize() * (fitScale() * zoom / devicePixelRatioF());
}

QRectF CompareCanvas::pictureRect() const
{
    const QSizeF shown = shownSize(m_view.zoom);
    const QPointF center(heldInside(m_view.center.x(), shown.width(), width()),
                         heldInside(m_view.center.y(), shown.height(), height()));
    return {QRectF(rect()).center() - QPointF(center.x() * shown.width(), center.y() * shown.height()), shown};
}

void CompareCanvas::change(double zoom, const QPointF &center)
{
    const QSizeF shown = shownSize(zoom);
    setView({zoom, QPointF(heldInside(center.x(), shown.width(), width()),
                           heldInside(center.y(), shown.height(), height()))});
    Q_EMIT viewChanged(m_view);
}

void CompareCanvas::zoomBy(double factor, std::optional<QPointF> anchor)
{
    const QRectF before = pictureRect();
    if (before.isEmpty()) {
        return;
    }
    // A picture that is shown larger than it is, to be compared with larger ones, can be seen as it is, too.
    const double least = std::min(1.0, 1 / fitScale());
    const double most = std::max(1.0, DetailPainting::largestScale / fitScale());
    const double zoom = std::clamp(m_view.zoom * factor, least, most);
    const QPointF middle = QRectF(rect()).center();
    const QPointF fixed = anchor.value_or(middle);
    const QSizeF shown = shownSize(zoom);
    const QPointF inPicture((fixed.x() - before.x()) / before.width(), (fixed.y() - before.y()) / before.height());
    change(zoom,
           inPicture + QPointF((middle.x() - fixed.x()) / shown.width(), (middle.y() - fixed.y()) / shown.height()));
}

void CompareCanvas::zoomTo(double scale)
{
    zoomBy(scale / this->scale());
}

void CompareCanvas::panBy(const QPointF &distance)
{
    const QSizeF shown = shownSize(m_view.zoom);
    if (!shown.isEmpty()) {
        change(m_view.zoom, m_view.center + QPointF(distance.x() * width() / shown.width(),
                                                    distance.y() * height() / shown.height()));
    }
}

QString CompareCanvas::zoomText() const
{
    return naturalSize().isEmpty()
               ? QString()
               : zqFormat(zqLocalized("%@ %%"), {QLocale().toString(int(std::lround(scale() * 100)))});
}

void CompareCanvas::setCurrent(bool isCurrent)
{
    if (m_current != isCurrent) {
        m_current = isCurrent;
        QAccessible::State changed;
        changed.selected = true;
        accessibleStateDidChange(this, changed);
    }
}

void CompareCanvas::completeAccessibleState(QAccessible::State &state) const
{
    state.selectable = m_current.has_value();
    state.selected = m_current.value_or(false);
    state.busy = !m_isPlain && m_document->state() == DetailDocument::State::Loading;
}

QMap<QString, QString> CompareCanvas::accessibleActions() const
{
    QMap<QString, QString> actions{{Action::increaseAction(), zqLocalized("Zoom In")},
                                   {Action::decreaseAction(), zqLocalized("Zoom Out")},
                                   {Action::scrollLeftAction(), {}},
                                   {Action::scrollRightAction(), {}},
                                   {Action::scrollUpAction(), {}},
                                   {Action::scrollDownAction(), {}}};
    if (!m_isPlain && m_document->pageCount() > 1) {
        actions.insert({{Action::previousPageAction(), {}}, {Action::nextPageAction(), {}}});
    }
    return actions;
}

void CompareCanvas::doAccessibleAction(const QString &name)
{
    if (name == Action::increaseAction() || name == Action::decreaseAction()) {
        zoomBy(name == Action::increaseAction() ? DetailPainting::keyZoom : 1 / DetailPainting::keyZoom);
    } else if (name == Action::previousPageAction() || name == Action::nextPageAction()) {
        m_document->setPage(m_document->page() + (name == Action::nextPageAction() ? 1 : -1));
    } else {
        const int x = int(name == Action::scrollRightAction()) - int(name == Action::scrollLeftAction());
        const int y = int(name == Action::scrollDownAction()) - int(name == Action::scrollUpAction());
        panBy(QPointF(x, y) * actionPan);
    }
}

void CompareCanvas::updateWantedSide()
{
    if (!m_isPlain) {
        const QSizeF natural = naturalSize();
        m_document->setWantedSide(int(std::ceil(std::max(natural.width(), natural.height()) * scale())));
    }
}

void CompareCanvas::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), zqColor(ZQColorRole::Ground));
    const QImage &image = shownImage();
    if (!image.isNull()) {
        const bool isMissing = !m_isPlain && m_document->state() == DetailDocument::State::Missing;
        painter.setOpacity(isMissing ? 0.4 : 1);
        DetailPainting::paintPicture(painter, image, m_tone, pictureRect(), rect(), scale(), m_reductions);
        painter.setOpacity(1);
    }
    if (const QString text = m_isPlain ? m_message : DetailPainting::messageOf(*m_document); !text.isEmpty()) {
        DetailPainting::paintMessage(painter, text, rect(), !image.isNull());
    }
    if (hasFocus() && m_showsFocus) {
        painter.setPen(QPen(zqColor(ZQColorRole::Accent), 1));
        painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    }
}

void CompareCanvas::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    updateWantedSide();
    Q_EMIT roomChanged();
}

void CompareCanvas::focusInEvent(QFocusEvent *event)
{
    const Qt::FocusReason reason = event->reason();
    if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason) { // it comes back as it was
        m_showsFocus = reason != Qt::MouseFocusReason;
    }
    QWidget::focusInEvent(event);
    update();
    Q_EMIT chosen();
}

void CompareCanvas::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    update();
}

void CompareCanvas::wheelEvent(QWheelEvent *event)
{
    zoomBy(DetailPainting::wheelZoom(event->angleDelta().y()), event->position());
    event->accept();
}

void CompareCanvas::mousePressEvent(QMouseEvent *event)
{
    m_pressed = event->position();
}

void CompareCanvas::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton) {
        const QPointF moved = event->position() - m_pressed;
        m_pressed = event->position();
        panBy({-moved.x() / std::max(1, width()), -moved.y() / std::max(1, height())});
    }
}

void CompareCanvas::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (m_view == CompareZoom()) {
        zoomBy(1 / scale(), event->position());
    } else {
        change(1, {0.5, 0.5});
    }
}
