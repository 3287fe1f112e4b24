#include "Classes/Interface/Preferences/HotKeyField.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQAccessible.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QAccessible>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

constexpr int ring = 2; // of what is recording, around the field
constexpr int fieldHeight = 30;
constexpr int fieldWidth = 170;
constexpr int margin = 10;
constexpr int capMargin = 6;
constexpr int capHeight = 19;
constexpr int capDistance = 6;

constexpr Qt::KeyboardModifiers recordedModifiers =
    Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier | Qt::ShiftModifier;

bool isModifier(int key)
{
    return key == Qt::Key_Control || key == Qt::Key_Shift || key == Qt::Key_Alt || key == Qt::Key_Meta ||
           key == Qt::Key_AltGr || key == Qt::Key_Super_L || key == Qt::Key_Super_R || key == Qt::Key_CapsLock ||
           key == Qt::Key_NumLock || key == Qt::Key_ScrollLock;
}

} // namespace

HotKeyField::HotKeyField(const QString &name, QWidget *parent) : QWidget(parent)
{
    zqSetAccessibleRole(this, QAccessible::HotkeyField);
    setAccessibleName(name);
    setFocusPolicy(Qt::StrongFocus);
    setFixedHeight(fieldHeight + 2 * ring);
    setMinimumWidth(fieldWidth + 2 * ring);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setToolTip(zqLocalized("Click, then press the keys. Backspace clears."));
    updateSpokenText();
    constexpr std::chrono::milliseconds interval(120);
    m_heldWatch.setInterval(interval);
    connect(&m_heldWatch, &QTimer::timeout, this, [this] {
        if (!(QGuiApplication::queryKeyboardModifiers() & recordedModifiers)) {
            didRelease();
        }
    });
}

QSize HotKeyField::sizeHint() const
{
    int width = 2 * (margin + ring) - capDistance;
    const QFontMetrics metrics(ZQTheme::current().font(ZQMeasure::smallTextSize));
    for (const QString &text : texts()) {
        width += metrics.horizontalAdvance(text) + 2 * capMargin + capDistance;
    }
    return {std::max(width, fieldWidth + 2 * ring), fieldHeight + 2 * ring};
}

QStringList HotKeyField::texts() const
{
    if (!m_isRecording) {
        return m_hotKey ? m_hotKey->caps() : QStringList();
    }
    QStringList held;
    for (const auto &[modifier, text] :
         {std::pair(Qt::ControlModifier, zqKey("Ctrl")), std::pair(Qt::AltModifier, zqKey("Alt")),
          std::pair(Qt::MetaModifier, zqKey("Super")), std::pair(Qt::ShiftModifier, zqKey("Shift"))}) {
        if (m_held.testFlag(modifier)) {
            held.append(zqLocalized(text));
        }
    }
    return held.isEmpty() ? QStringList{zqLocalized("Press keys…")} : held;
}

void HotKeyField::updateSpokenText()
{
    setAccessibleDescription(m_isRecording ? zqLocalized("Press keys…")
                             : m_hotKey    ? m_hotKey->text()
                                           : zqLocalized("No keys"));
    QAccessibleEvent event(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
    updateGeometry();
    update();
}

void HotKeyField::setHotKey(const std::optional<HotKey> &hotKey)
{
    m_hotKey = hotKey;
    updateSpokenText();
}

void HotKeyField::beginRecording()
{
    if (!std::exchange(m_isRecording, true)) {
        m_held = {};
        updateSpokenText();
        Q_EMIT recordingChanged(true);
    }
}

void HotKeyField::endRecording()
{
    m_heldWatch.stop();
    if (std::exchange(m_isRecording, false)) {
        updateSpokenText();
        Q_EMIT recordingChanged(false);
    }
}

void HotKeyField::choose(const std::optional<HotKey> &hotKey)
{
    endRecording();
    Q_EMIT chosen(hotKey);
}

// The window's own keys are none while others are recorded.
bool HotKeyField::event(QEvent *event)
{
    if (m_isRecording && event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void HotKeyField::record(const QKeyEvent &event)
{
    m_hasSeenKey = true;
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const std::optional<HotKey> keys = HotKey::fromQt(event.key(), modifiers, event.nativeScanCode());
    if (keys) {
        choose(keys);
    } else if (!(modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))) {
        Q_EMIT refused(zqLocalized("Hold Ctrl, Alt or Super with it: alone, other programs need this key."));
    } else {
        Q_EMIT refused(zqLocalized("This key can't be used. Take a letter, a digit or a function key."));
    }
}

void HotKeyField::keyPressEvent(QKeyEvent *event)
{
    const bool isPlain = !(event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier));
    const bool isErasing = event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete;
    const bool isPress =
        event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
    if (isPlain && isErasing) {
        choose(std::nullopt);
    } else if (!m_isRecording && isPlain && isPress) {
        beginRecording();
    } else if (!m_isRecording) {
        QWidget::keyPressEvent(event);
    } else if (isPlain && event->key() == Qt::Key_Escape) {
        endRecording();
    } else if (isModifier(event->key())) {
        keyReleaseEvent(event);
    } else if (!event->isAutoRepeat()) {
        record(*event);
    }
}

// Modifiers of an event are those before it.
void HotKeyField::keyReleaseEvent(QKeyEvent *event)
{
    const bool isDown = event->type() == QEvent::KeyPress;
    const Qt::KeyboardModifiers before = m_held;
    m_held = event->modifiers() & recordedModifiers;
    switch (event->key()) {
    case Qt::Key_Control:
        m_held.setFlag(Qt::ControlModifier, isDown);
        break;
    case Qt::Key_Shift:
        m_held.setFlag(Qt::ShiftModifier, isDown);
        break;
    case Qt::Key_Alt:
        m_held.setFlag(Qt::AltModifier, isDown);
        break;
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
        m_held.setFlag(Qt::MetaModifier, isDown);
        break;
    default:
        break;
    }
    if (m_isRecording && !before && m_held) {
        m_hasSeenKey = false;
        if (QGuiApplication::platformName() == QStringLiteral("xcb")) {
            m_heldWatch.start();
        }
    } else if (m_isRecording && before && !m_held) {
        didRelease();
    }
    updateGeometry();
    update();
}

void HotKeyField::didRelease()
{
    m_heldWatch.stop();
    m_held = {};
    updateGeometry();
    update();
    if (!std::exchange(m_hasSeenKey, true)) {
        Q_EMIT refused(zqLocalized("No key came with it: the desktop keeps such keys for itself. Take another one."));
    }
}

void HotKeyField::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        beginRecording();
    }
}

void HotKeyField::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    update();
}

void HotKeyField::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    endRecording();
    update();
}

void HotKeyField::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF field = QRectF(rect()).adjusted(ring + 0.5, ring + 0.5, -ring - 0.5, -ring - 0.5);
    if (m_isRecording) {
        painter.setPen(QPen(zqColor(ZQColorRole::Select), ring));
        painter.drawRoundedRect(field.adjusted(-1.5, -1.5, 1.5, 1.5), 8, 8);
    }
    painter.setPen(QPen(zqColor(m_isRecording || hasFocus() ? ZQColorRole::Accent : ZQColorRole::ControlBorder), 1));
    painter.setBrush(zqColor(ZQColorRole::Raised));
    painter.drawRoundedRect(field, 7, 7);
    const QFont font = ZQTheme::current().font(ZQMeasure::smallTextSize);
    painter.setFont(font);
    const bool isEmpty = texts().isEmpty();
    double left = field.left() + margin;
    for (const QString &text : isEmpty ? QStringList{zqLocalized("None")} : texts()) {
        const int width = QFontMetrics(font).horizontalAdvance(text) + 2 * capMargin;
        const QRectF cap(left, (height() - capHeight) / 2.0, width, capHeight);
        painter.setPen(Qt::NoPen);
        painter.setBrush(isEmpty ? Qt::NoBrush : QBrush(zqColor(ZQColorRole::Raised2)));
        painter.drawRoundedRect(cap, 4, 4);
        const bool isMuted = isEmpty || (m_isRecording && !m_held);
        painter.setPen(zqColor(isMuted ? ZQColorRole::TextMuted : ZQColorRole::Text));
        painter.drawText(isEmpty ? cap.translated(-capMargin, 0) : cap, Qt::AlignCenter, text);
        left += width + capDistance;
    }
}
