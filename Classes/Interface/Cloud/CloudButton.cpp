#include "Classes/Interface/Cloud/CloudButton.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {
constexpr double ringRadius = 11;
constexpr double ringWidth = 2;
constexpr double leastFraction = 0.02; // so that a ring is seen at once
} // namespace

CloudButton::CloudButton(QWidget *parent) : QToolButton(parent)
{
    setObjectName(QStringLiteral("Cloud"));
    setIconSize({ZQMeasure::iconSize, ZQMeasure::iconSize});
    setFixedSize(30, 28);
    setFocusPolicy(Qt::TabFocus);
    setAcceptDrops(true);
    connect(&m_ring, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
    connect(&ZQTheme::current(), &ZQTheme::changed, this, qOverload<>(&QWidget::update));
    showState();
}

void CloudButton::showCloudMenu()
{
    if (m_menu && isVisible()) {
        const QPoint place(width() - m_menu->sizeHint().width(), height() + 2);
        m_menu->popup(mapToGlobal(place));
    }
}

void CloudButton::setHasSelection(bool hasSelection)
{
    if (hasSelection != m_hasSelection) {
        m_hasSelection = hasSelection;
        showState();
    }
}

// What goes up.

QString CloudButton::progressText() const
{
    if (!isUploading()) {
        return {};
    }
    if (m_isWaiting) {
        return zqLocalized("Waiting for the keyring…");
    }
    if (m_total == 1) {
        return zqLocalized("Sharing…");
    }
    const qint64 current = std::clamp(qint64(std::floor(m_done)) + 1, qint64(1), m_total);
    return zqFormat(zqLocalized("Sharing %@ of %@…"), {current, m_total});
}

void CloudButton::uploadDidStart(qint64 files)
{
    m_total = std::max<qint64>(1, files);
    m_done = 0;
    m_ring.stop();
    m_ring.setStartValue(0.0);
    m_ring.setEndValue(0.0);
    showState();
    Q_EMIT uploadingChanged();
    Q_EMIT progressChanged();
}

void CloudButton::uploadDidUpdate(double filesDone)
{
    if (!isUploading() || !std::isfinite(filesDone)) {
        return;
    }
    const QString said = progressText();
    m_done = std::clamp(filesDone, 0.0, double(m_total));
    moveRingTo(m_done / double(m_total));
    if (progressText() != said) {
        showState();
    }
    Q_EMIT progressChanged();
}

void CloudButton::uploadDidFinish()
{
    if (isUploading()) {
        m_total = 0;
        m_done = 0;
        m_ring.stop();
        showState();
        Q_EMIT uploadingChanged();
        Q_EMIT progressChanged();
    }
}

void CloudButton::setIsWaiting(bool isWaiting)
{
    m_isWaiting = isWaiting;
    if (isUploading()) {
        showState();
        Q_EMIT progressChanged();
    }
}

void CloudButton::moveRingTo(double fraction)
{
    const double from = m_ring.currentValue().toDouble();
    m_ring.stop();
    m_ring.setStartValue(from);
    m_ring.setEndValue(fraction);
    m_ring.setDuration(ZQTheme::current().animationMilliseconds());
    m_ring.start();
}

void CloudButton::showState()
{
    setIcon(ZQIcon::icon(isUploading() && underMouse() ? QStringLiteral("close") : QStringLiteral("cloud")));
    const QString state = progressText();
    setAccessibleName(isUploading() ? state : zqLocalized("Share (Ctrl+Shift+C)"));
    const QString meaning = isUploading() ? zqLocalized("Click to cancel.")
                            : m_hasSelection
                                ? zqLocalized("Uploads what is selected and copies the link. A preset dropped "
                                              "here exports it first. A right click shows the latest uploads.")
                                : zqLocalized("Select items to share them. A right click shows the latest "
                                              "uploads.");
    setAccessibleDescription(meaning);
    setToolTip(accessibleName() + u'\n' + meaning);
    update();
    QAccessibleEvent event(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}

void CloudButton::paintEvent(QPaintEvent *event)
{
    QToolButton::paintEvent(event);
    if (!isUploading()) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF center = QRectF(rect()).center();
    const QRectF ring(center.x() - ringRadius, center.y() - ringRadius, 2 * ringRadius, 2 * ringRadius);
    painter.setPen(QPen(zqColor(ZQColorRole::Border), ringWidth));
    painter.drawEllipse(ring);
    painter.setPen(QPen(zqColor(ZQColorRole::Accent), ringWidth, Qt::SolidLine, Qt::RoundCap));
    constexpr int wholeCircle = 360 * 16;
    const double fraction = std::max(leastFraction, m_ring.currentValue().toDouble());
    painter.drawArc(ring, wholeCircle / 4, -int(std::lround(fraction * wholeCircle)));
}

void CloudButton::enterEvent(QEnterEvent *event)
{
    QToolButton::enterEvent(event);
    showState();
}

void CloudButton::leaveEvent(QEvent *event)
{
    QToolButton::leaveEvent(event);
    showState();
}

void CloudButton::changeEvent(QEvent *event)
{
    QToolButton::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        showState();
    }
}

// The menu, and what is dropped.

void CloudButton::contextMenuEvent(QContextMenuEvent *event)
{
    showCloudMenu();
    event->accept();
}

void CloudButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Down) {
        showCloudMenu();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
    } else {
        QToolButton::keyPressEvent(event);
    }
}

void CloudButton::setFileToUploadAfterExport(const QStringList &paths)
{
    setDown(false);
    if (!paths.isEmpty()) {
        Q_EMIT presetDropped(paths);
    }
}

void CloudButton::dragEnterEvent(QDragEnterEvent *event)
{
    setDown(true);
    event->setDropAction(Qt::CopyAction); // nothing of what is dragged leaves its place
    event->accept();
}

void CloudButton::dragLeaveEvent(QDragLeaveEvent *event)
{
    setDown(false);
    event->accept();
}

void CloudButton::dropEvent(QDropEvent *event)
{
    setDown(false);
    event->setDropAction(Qt::CopyAction);
    event->accept();
    // Later: whoever drags waits for the answer, and sharing may ask something.
    QMetaObject::invokeMethod(this, &QAbstractButton::click, Qt::QueuedConnection);
}
