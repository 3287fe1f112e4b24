#pragma once

#include "Classes/Capture/ScreenSource.h"
#include "Kit/Desktop/ZQPortal.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QDBusConnection>
#include <QObject>

// A desktop that shows no program what is on it, as on Wayland: pictures come from its screenshot portal, which may ask
// the person first and lets them choose area or window itself. One at a time: a new one withdraws that before it, which
// then counts as called off. Main thread.
class PortalScreenSource : public ScreenSource
{
public:
    explicit PortalScreenSource(QDBusConnection bus = QDBusConnection::sessionBus()) : m_bus(std::move(bus)) {}

    bool canSeeScreen() const override { return false; }
    QList<ScreenInfo> screens() const override;
    QList<QVariantMap> onScreenWindows() const override { return {}; }
    std::optional<QVariantMap> windowDescription(quint32 /*number*/) const override { return std::nullopt; }
    void captureRect(const QRect &rect, Taken taken) override;
    void captureWindow(quint32 /*number*/, Taken taken) override { captureInteractively(std::move(taken)); }
    void captureAllScreens(Taken taken) override { ask(false, std::move(taken)); }
    void captureInteractively(Taken taken) override { ask(true, std::move(taken)); }

private:
    void ask(bool isInteractive, Taken taken);
    void read(const QString &path); // beside the main thread
    void didRead(QImage image, const ZQError &error, int number);
    void end(const QImage &image, const ZQError &error);

    QDBusConnection m_bus;
    ZQPortalRequestRef m_request;
    Taken m_taken;
    int m_number = 0;  // of the capture
    QObject m_context; // what was read comes through its events
    ZQOperationQueue m_reading{QStringLiteral("portal pictures"), 1};
};
