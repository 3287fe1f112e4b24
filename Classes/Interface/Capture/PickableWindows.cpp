#include "Classes/Interface/Capture/PickableWindows.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQPredicate.h"

PickableWindows::PickableWindows(const ScreenSource &source, QObject *parent) : QObject(parent)
{
    const ZQPredicate canBePicked =
        ZQPredicate::predicateWithFormat(QStringLiteral("(kCGWindowLayer >= 0 && kCGWindowLayer < 20)"));
    for (const ScreenInfo &screen : source.screens()) {
        m_screens.append(screen.pixelFrame);
    }
    for (const QVariantMap &window : source.onScreenWindows()) {
        if (canBePicked.evaluateWithObject(QVariant(window))) {
            m_windows.append(window);
        }
    }
}

QRect PickableWindows::screenOfHighlighted() const
{
    QRect most;
    qint64 mostPixels = 0;
    for (const QRect &screen : m_screens) {
        const QRect part = screen.intersected(highlightedBounds());
        const qint64 pixels = part.isEmpty() ? 0 : qint64(part.width()) * part.height();
        if (pixels > mostPixels) {
            most = screen;
            mostPixels = pixels;
        }
    }
    return most;
}

std::optional<quint32> PickableWindows::highlighted() const
{
    return m_index < 0 ? std::nullopt
                       : std::optional(m_windows[m_index].value(QStringLiteral("kCGWindowNumber")).value<quint32>());
}

QRect PickableWindows::highlightedBounds() const
{
    return m_index < 0 ? QRect() : m_windows[m_index].value(QStringLiteral("kCGWindowBounds")).toRect();
}

QString PickableWindows::highlightedName() const
{
    if (m_index < 0) {
        return {};
    }
    const QString program = m_windows[m_index].value(QStringLiteral("kCGWindowOwnerName")).toString();
    const QString title = m_windows[m_index].value(QStringLiteral("kCGWindowName")).toString();
    if (program.isEmpty() || title.isEmpty() || title == program) {
        return title.isEmpty() ? program : title;
    }
    return zqFormat(zqLocalized("%@ · %@"), {program, title});
}

void PickableWindows::highlightAt(const QPoint &pixel)
{
    qsizetype found = -1;
    for (qsizetype i = 0; i < m_windows.size() && found < 0; ++i) {
        if (m_windows[i].value(QStringLiteral("kCGWindowBounds")).toRect().contains(pixel)) {
            found = i;
        }
    }
    highlight(found);
}

void PickableWindows::highlightNext(int step)
{
    const qsizetype count = m_windows.size();
    if (count > 0) {
        const qsizetype from = m_index < 0 && step < 0 ? 0 : m_index;
        highlight((from + step + count) % count);
    }
}

void PickableWindows::highlight(qsizetype index)
{
    if (index != m_index) {
        m_index = index;
        Q_EMIT changed();
    }
}
