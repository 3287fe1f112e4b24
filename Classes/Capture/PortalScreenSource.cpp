#include "Classes/Capture/PortalScreenSource.h"

#include "Classes/Capture/PortalPicture.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QGuiApplication>
#include <QScreen>
#include <QUrl>

#include <utility>

QList<ScreenInfo> PortalScreenSource::screens() const
{
    QList<ScreenInfo> infos;
    for (const QScreen *const screen : qGuiApp ? QGuiApplication::screens() : QList<QScreen *>()) {
        const double scale = screen->devicePixelRatio();
        const QRect frame = screen->geometry();
        infos.append({screen->name(), frame, QRect(frame.topLeft() * scale, frame.size() * scale), scale});
    }
    return infos;
}

void PortalScreenSource::captureRect(const QRect & /*rect*/, Taken taken)
{
    taken({}, ZQError::with(QStringLiteral("ScreenCapture"), 2,
                            zqLocalized("This desktop lets no program choose a part of its screen. Choose it in the "
                                        "desktop's own dialog, which Capture Area opens.")));
}

void PortalScreenSource::ask(bool isInteractive, Taken taken)
{
    end({}, {});
    m_taken = std::move(taken);
    m_request.reset(new ZQPortalRequest(
        QStringLiteral("org.freedesktop.portal.Screenshot"), QStringLiteral("Screenshot"), {QString()},
        {{QStringLiteral("interactive"), isInteractive}, {QStringLiteral("modal"), true}},
        [this](bool isGranted, const QVariantMap &results, const ZQError &error) {
            if (!isGranted) {
                end({}, error);
                return;
            }
            if (const QUrl url(results.value(QStringLiteral("uri")).toString()); url.isLocalFile()) {
                m_request.reset();
                read(url.toLocalFile());
            } else {
                end({}, PortalPicture::unreadable());
            }
        },
        m_bus));
}

void PortalScreenSource::read(const QString &path)
{
    m_reading.addOperationWithBlock([this, path, number = m_number] {
        ZQError error;
        const QImage image = PortalPicture::take(path, &error);
        QMetaObject::invokeMethod(&m_context, [this, image, error, number] { didRead(image, error, number); });
    });
}

void PortalScreenSource::didRead(QImage image, const ZQError &error, int number)
{
    if (number != m_number) {
        return; // called off meanwhile
    }
    if (!image.isNull() && qGuiApp) {
        image.setDevicePixelRatio(qGuiApp->devicePixelRatio());
    }
    end(image, error);
}

void PortalScreenSource::end(const QImage &image, const ZQError &error)
{
    ++m_number;
    m_request.reset();
    if (const Taken taken = std::exchange(m_taken, nullptr)) {
        taken(image, error);
    }
}
