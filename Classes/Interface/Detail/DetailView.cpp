#include "Classes/Interface/Detail/DetailView.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQAccessible.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QToolButton>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {
constexpr int margin = 24;
constexpr double smallestScale = 0.02;
} // namespace

DetailView::DetailView(QWidget *parent)
    : QWidget(parent), m_document(new DetailDocument(this)), m_title(new QLabel(this)), m_position(new QLabel(this)),
      m_pages(new QWidget(this)), m_pageNumber(new QLabel(m_pages))
{
    zqSetAccessibleRole(this, QAccessible::Graphic);
    setAccessibleName(zqLocalized("Full view"));
    setFocusPolicy(Qt::StrongFocus);
    connect(m_document, &DetailDocument::changed, this, &DetailView::documentDidChange);
    makeHead();
}

void DetailView::makeHead()
{
    m_title->setObjectName(QStringLiteral("Title"));
    m_position->setObjectName(QStringLiteral("Muted"));
    m_pageNumber->setObjectName(QStringLiteral("Muted"));
    const auto button = [this](const QString &icon, const QString &name, std::function<void()> run) {
        auto *made = new QToolButton(this);
        made->setIcon(ZQIcon::icon(icon));
        made->setFixedSize(30, 28);
        made->setAccessibleName(name);
        made->setToolTip(name);
        made->setFocusPolicy(Qt::TabFocus);
        connect(made, &QToolButton::clicked, this, std::move(run));
        return made;
    };
    const auto textButton = [this](const QString &text) {
        auto *made = new QToolButton(this);
        made->setObjectName(QStringLiteral("Pop"));
        made->setText(text);
        made->setCheckable(true);
        made->setFocusPolicy(Qt::TabFocus);
        return made;
    };
    m_fit = textButton(zqLocalized("Fit"));
    m_fit->setToolTip(zqLocalized("Fit (Ctrl+0)"));
    m_actual = textButton(zqLocalized("100 %"));
    m_actual->setToolTip(zqLocalized("Actual size (Z)"));
    m_zoom = new QLabel(this);
    m_zoom->setObjectName(QStringLiteral("Muted"));
    m_zoom->setAccessibleName(zqLocalized("Zoom"));
    m_zoom->setToolTip(zqLocalized("Zoom (+ and −)"));
    connect(m_fit, &QToolButton::clicked, this, &DetailView::zoomToFit);
    connect(m_actual, &QToolButton::clicked, this, &DetailView::zoomToActualSize);
    m_previousPage = button(QStringLiteral("arrow-up"), zqLocalized("Previous page (Page Up)"),
                            [this] { m_document->setPage(m_document->page() - 1); });
    m_nextPage = button(QStringLiteral("arrow-down"), zqLocalized("Next page (Page Down)"),
                        [this] { m_document->setPage(m_document->page() + 1); });
    m_play = button(QStringLiteral("pause"), zqLocalized("Pause (P)"),
                    [this] { m_document->setPlaying(!m_document->isPlaying()); });
    auto *pages = new QHBoxLayout(m_pages);
    pages->setContentsMargins(0, 0, 16, 0);
    pages->setSpacing(4);
    pages->addWidget(m_play);
    pages->addWidget(m_previousPage);
    pages->addWidget(m_pageNumber);
    pages->addWidget(m_nextPage);
    m_pages->hide();
    auto *head = new QHBoxLayout;
    head->setContentsMargins(12, 0, 14, 0);
    head->setSpacing(8);
    head->addWidget(
        button(QStringLiteral("close"), zqLocalized("Back to the items (Esc)"), [this] { Q_EMIT closed(); }));
    head->addWidget(m_title);
    head->addWidget(m_position);
    head->addStretch(1);
    head->addWidget(m_pages);
    head->addWidget(m_zoom);
    head->addWidget(m_fit);
    head->addWidget(m_actual);
    head->addWidget(
        button(QStringLiteral("arrow-left"), zqLocalized("Previous"), [this] { Q_EMIT stepRequested(-1); }));
    head->addWidget(button(QStringLiteral("arrow-right"), zqLocalized("Next"), [this] { Q_EMIT stepRequested(1); }));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *row = new QWidget(this);
    row->setFixedHeight(ZQMeasure::headHeight);
    row->setLayout(head);
    layout->addWidget(row);
    layout->addStretch(1);
}

void DetailView::setPosition(const QString &position)
{
    m_position->setText(position);
}

void DetailView::showItem(const QString &title, const DetailDocument::Source &source, const QString &position)
{
    m_title->setText(title);
    setPosition(position);
    setAccessibleName(title);
    m_scale = 0;
    m_document->open(source, int(std::max(width(), height()) * devicePixelRatioF()));
}

void DetailView::documentDidChange()
{
    m_tone = zqArtworkTone(m_document->image());
    const int count = m_document->pageCount();
    const bool isAnimation = m_document->isAnimation();
    m_pages->setVisible(count > 1);
    m_pageNumber->setText(zqFormat(isAnimation ? zqLocalized("Frame %d of %d") : zqLocalized("Page %d of %d"),
                                   {m_document->page() + 1, count}));
    m_play->setVisible(isAnimation);
    m_previousPage->setVisible(!m_document->isPlaying());
    m_nextPage->setVisible(!m_document->isPlaying());
    m_previousPage->setEnabled(m_document->page() > 0);
    m_nextPage->setEnabled(m_document->page() + 1 < count);
    const bool isPlaying = m_document->isPlaying();
    m_play->setIcon(ZQIcon::icon(isPlaying ? QStringLiteral("pause") : QStringLiteral("play")));
    m_play->setToolTip(isPlaying ? zqLocalized("Pause (P)") : zqLocalized("Play (P)"));
    m_play->setAccessibleName(m_play->toolTip());
    updateButtons();
    update();
}

// What plays or waits unseen costs nothing.
void DetailView::hideEvent(QHideEvent *event)
{
    m_document->setPlaying(false);
    QWidget::hideEvent(event);
}

void DetailView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    updateWantedSide();
    updateButtons();
}

void DetailView::updateWantedSide()
{
    const QSizeF natural = m_document->naturalSize();
    m_document->setWantedSide(int(std::ceil(std::max(natural.width(), natural.height()) * scale())));
}

QRect DetailView::canvas() const
{
    return rect().adjusted(0, ZQMeasure::headHeight, 0, 0);
}

QSizeF DetailView::naturalSize() const
{
    return m_document->naturalSize();
}

double DetailView::scale() const
{
    if (m_scale > 0) {
        return m_scale;
    }
    const QSizeF natural = naturalSize();
    const QSizeF room = (QSizeF(canvas().size()) - QSizeF(2 * margin, 2 * margin)) * devicePixelRatioF();
    if (natural.isEmpty() || room.isEmpty()) {
        return 1;
    }
    return std::min({1.0 * devicePixelRatioF(), room.width() / natural.width(), room.height() / natural.height()});
}

QRectF DetailView::pictureRect() const
{
    const double perPixel = scale() / devicePixelRatioF();
    const QSizeF size = naturalSize() * perPixel;
    const QPointF middle = QRectF(canvas()).center();
    if (m_scale <= 0) {
        return {middle - QPointF(size.width() / 2, size.height() / 2), size};
    }
    return {middle - m_center * perPixel, size};
}

void DetailView::zoomAt(double newScale, const QPointF &anchor)
{
    const QRectF before = pictureRect();
    const QPointF inPicture((anchor.x() - before.x()) / before.width() * naturalSize().width(),
                            (anchor.y() - before.y()) / before.height() * naturalSize().height());
    const double sharpest = m_document->sharpestScale();
    m_scale =
        std::clamp(newScale, smallestScale, sharpest > 0 ? std::max(1.0, sharpest) : DetailPainting::largestScale);
    m_center = inPicture + (QRectF(canvas()).center() - anchor) * devicePixelRatioF() / m_scale;
    updateWantedSide();
    updateButtons();
    update();
}

void DetailView::zoomToFit()
{
    m_scale = 0;
    updateWantedSide();
    updateButtons();
    update();
}

void DetailView::setView(double newScale, const QPointF &center)
{
    m_scale = newScale > 0 ? std::clamp(newScale, smallestScale, DetailPainting::largestScale) : 0;
    m_center = center;
    updateWantedSide();
    updateButtons();
    update();
}

void DetailView::zoomToActualSize()
{
    zoomAt(1, QRectF(canvas()).center());
}

void DetailView::zoomIn()
{
    zoomAt(scale() * DetailPainting::keyZoom, QRectF(canvas()).center());
}

void DetailView::zoomOut()
{
    zoomAt(scale() / DetailPainting::keyZoom, QRectF(canvas()).center());
}

void DetailView::updateButtons()
{
    m_zoom->setText(naturalSize().isEmpty()
                        ? QString()
                        : zqFormat(zqLocalized("%@ %%"), {QLocale().toString(int(std::lround(scale() * 100)))}));
    m_fit->setChecked(m_scale <= 0);
    m_actual->setChecked(m_scale > 0 && std::abs(m_scale - 1) < 0.001);
}

void DetailView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.fillRect(canvas(), zqColor(ZQColorRole::Ground));
    painter.setClipRect(canvas());
    const QImage &image = m_document->image();
    if (!image.isNull()) {
        painter.setOpacity(m_document->state() == DetailDocument::State::Missing ? 0.4 : 1);
        DetailPainting::paintPicture(painter, image, m_tone, pictureRect(), canvas(), scale(), m_reductions);
        painter.setOpacity(1);
    }
    if (const QString message = DetailPainting::messageOf(*m_document); !message.isEmpty()) {
        DetailPainting::paintMessage(painter, message, canvas(), !image.isNull());
    }
    if (hasFocus() && m_showsFocus) {
        painter.setClipping(false);
        painter.setPen(QPen(zqColor(ZQColorRole::Accent), 1));
        painter.drawRect(QRectF(canvas()).adjusted(0.5, 0.5, -0.5, -0.5));
    }
}

void DetailView::focusInEvent(QFocusEvent *event)
{
    m_showsFocus = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    QWidget::focusInEvent(event);
    update();
}

void DetailView::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Q_EMIT closed();
        return;
    case Qt::Key_Space:
        if (m_isQuickLook) {
            Q_EMIT closed();
        } else {
            Q_EMIT stepRequested(1);
        }
        return;
    case Qt::Key_Left:
    case Qt::Key_Up:
        Q_EMIT stepRequested(-1);
        return;
    case Qt::Key_Right:
    case Qt::Key_Down:
        Q_EMIT stepRequested(1);
        return;
    case Qt::Key_PageUp:
        m_document->setPage(m_document->page() - 1);
        return;
    case Qt::Key_PageDown:
        m_document->setPage(m_document->page() + 1);
        return;
    case Qt::Key_P:
        m_document->setPlaying(!m_document->isPlaying());
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void DetailView::wheelEvent(QWheelEvent *event)
{
    zoomAt(scale() * DetailPainting::wheelZoom(event->angleDelta().y()), event->position());
    event->accept();
}

void DetailView::mousePressEvent(QMouseEvent *event)
{
    m_pressed = event->pos();
}

void DetailView::mouseMoveEvent(QMouseEvent *event)
{
    if ((event->buttons() & Qt::LeftButton) && m_scale > 0) {
        m_center -= QPointF(event->pos() - m_pressed) * devicePixelRatioF() / m_scale;
        m_pressed = event->pos();
        update();
    }
}

void DetailView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (m_scale > 0) {
        zoomToFit();
    } else {
        zoomAt(1, event->position());
    }
}
