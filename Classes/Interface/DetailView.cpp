#include "Classes/Interface/DetailView.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQPreviewService.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QToolButton>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {
constexpr int largestSide = 8192;
constexpr int margin = 24;
constexpr double largestScale = 16;
constexpr double smallestScale = 0.02;
} // namespace

DetailView::DetailView(QWidget *parent)
    : QWidget(parent), m_queue(std::make_unique<ZQOperationQueue>(QStringLiteral("detail"), 1)),
      m_title(new QLabel(this)), m_position(new QLabel(this))
{
    setFocusPolicy(Qt::StrongFocus);
    m_title->setObjectName(QStringLiteral("Title"));
    m_position->setObjectName(QStringLiteral("Muted"));
    const auto button = [this](const QString &icon, const QString &name, int step) {
        auto *made = new QToolButton(this);
        made->setIcon(ZQIcon::icon(icon));
        made->setFixedSize(30, 28);
        made->setAccessibleName(name);
        made->setToolTip(name);
        made->setFocusPolicy(Qt::TabFocus);
        connect(made, &QToolButton::clicked, this, [this, step] {
            if (step == 0) {
                Q_EMIT closed();
            } else {
                Q_EMIT stepRequested(step);
            }
        });
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
    m_actual = textButton(zqLocalized("100 %"));
    connect(m_fit, &QToolButton::clicked, this, &DetailView::zoomToFit);
    connect(m_actual, &QToolButton::clicked, this, &DetailView::zoomToActualSize);
    auto *head = new QHBoxLayout;
    head->setContentsMargins(12, 0, 14, 0);
    head->setSpacing(8);
    head->addWidget(button(QStringLiteral("close"), zqLocalized("Back to the items (Esc)"), 0));
    head->addWidget(m_title);
    head->addWidget(m_position);
    head->addStretch(1);
    head->addWidget(m_fit);
    head->addWidget(m_actual);
    head->addWidget(button(QStringLiteral("arrow-left"), zqLocalized("Previous"), -1));
    head->addWidget(button(QStringLiteral("arrow-right"), zqLocalized("Next"), 1));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *row = new QWidget(this);
    row->setFixedHeight(ZQMeasure::headHeight);
    row->setLayout(head);
    layout->addWidget(row);
    layout->addStretch(1);
}

DetailView::~DetailView() = default;

void DetailView::showItem(const QString &title, const QString &path, QSize pixelSize, const QImage &standIn,
                          const QString &position)
{
    m_title->setText(title);
    m_position->setText(position);
    setAccessibleName(title);
    m_path = path;
    m_pixelSize = pixelSize;
    m_image = standIn;
    m_isLoading = true;
    m_isFailed = false;
    m_scale = 0;
    const quint64 generation = ++m_generation;
    m_queue->cancelAllOperations();
    const QPointer<DetailView> self(this);
    const int wanted = std::min(largestSide, std::max({pixelSize.width(), pixelSize.height(),
                                                       int(std::max(width(), height()) * devicePixelRatioF())}));
    m_queue->addOperationWithBlock([self, generation, path, wanted] {
        const QImage image = ZQPreviewService::previewOfFile(path, QSize(wanted, wanted)).image();
        zqOnMainThread([self, generation, image] {
            if (!self || self->m_generation != generation) {
                return;
            }
            self->m_isLoading = false;
            self->m_isFailed = image.isNull();
            if (!image.isNull()) {
                self->m_image = image;
            }
            self->update();
        });
    });
    updateButtons();
    update();
}

QRect DetailView::canvas() const
{
    return rect().adjusted(0, ZQMeasure::headHeight, 0, 0);
}

QSizeF DetailView::naturalSize() const
{
    return m_pixelSize.isEmpty() ? QSizeF(m_image.size()) : QSizeF(m_pixelSize);
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
    m_scale = std::clamp(newScale, smallestScale, largestScale);
    m_center = inPicture + (QRectF(canvas()).center() - anchor) * devicePixelRatioF() / m_scale;
    updateButtons();
    update();
}

void DetailView::zoomToFit()
{
    m_scale = 0;
    updateButtons();
    update();
}

void DetailView::zoomToActualSize()
{
    zoomAt(1, QRectF(canvas()).center());
}

void DetailView::updateButtons()
{
    m_fit->setChecked(m_scale <= 0);
    m_actual->setChecked(m_scale > 0 && std::abs(m_scale - 1) < 0.001);
}

void DetailView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.fillRect(canvas(), zqColor(ZQColorRole::Ground));
    if (m_image.isNull()) {
        painter.setPen(zqColor(ZQColorRole::TextMuted));
        painter.drawText(canvas(), Qt::AlignCenter,
                         m_isFailed ? zqLocalized("This file cannot be shown.") : zqLocalized("Loading…"));
        return;
    }
    painter.setClipRect(canvas());
    const QRectF target = pictureRect();
    if (m_image.hasAlphaChannel()) {
        constexpr int square = 10;
        painter.fillRect(target, zqColor(ZQColorRole::Cell));
        painter.save();
        painter.setClipRect(target, Qt::IntersectClip);
        const QRect seen = target.toAlignedRect().intersected(canvas());
        for (int y = seen.top() / square; y <= seen.bottom() / square; ++y) {
            for (int x = seen.left() / square + (seen.left() / square + y) % 2; x <= seen.right() / square; x += 2) {
                painter.fillRect(QRect(x * square, y * square, square, square), zqColor(ZQColorRole::Raised2));
            }
        }
        painter.restore();
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, scale() < 4);
    if (target.width() * devicePixelRatioF() < m_image.width() / 2.0) {
        const QSize pixels = (target.size() * devicePixelRatioF()).toSize().expandedTo(QSize(1, 1));
        painter.drawImage(target, m_image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    } else {
        painter.drawImage(target, m_image);
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
    case Qt::Key_0:
        zoomToFit();
        return;
    case Qt::Key_1:
        zoomToActualSize();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void DetailView::wheelEvent(QWheelEvent *event)
{
    zoomAt(scale() * std::pow(1.2, event->angleDelta().y() / 120.0), event->position());
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
