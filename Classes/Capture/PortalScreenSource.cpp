#include "Classes/Capture/PortalScreenSource.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QScreen>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace {

ZQError unreadable(const QString &reason)
{
    return ZQError::with(QStringLiteral("ScreenCapture"), 1,
                         zqLocalized("The desktop took a picture, and it can't be read. Try again."), reason);
}

// Only what the portal left in a place for passing files. A picture in a person's own folder was put there for them.
bool isPassedOn(const QString &path)
{
    const QString real = QFileInfo(path).canonicalFilePath();
    const QStringList places{QDir::tempPath(), qEnvironmentVariable("XDG_RUNTIME_DIR"),
                             QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)};
    return !real.isEmpty() && !QFileInfo(path).isSymLink() &&
           std::any_of(places.begin(), places.end(), [&real](const QString &place) {
               const QString folder = QFileInfo(place).canonicalFilePath();
               return !folder.isEmpty() && folder != QDir::rootPath() && folder != QDir::homePath() &&
                      real.startsWith(folder + u'/');
           });
}

QImage read(const QString &path, ZQError *error)
{
    constexpr int mostMegabytes = 1024;
    QImageReader reader(path);
    QImageReader::setAllocationLimit(mostMegabytes);
    const QImage image = reader.read();
    if (image.isNull()) {
        zqSetError(error, unreadable(reader.errorString()));
    } else if (isPassedOn(path)) {
        QFile::remove(path);
    }
    return image;
}

} // namespace

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

void PortalScreenSource::captureRect(const QRect &rect, Taken taken)
{
    captureAllScreens([rect, taken = std::move(taken)](const QImage &image, const ZQError &error) {
        taken(image.isNull() ? image : image.copy(rect), error);
    });
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
            const QUrl url(results.value(QStringLiteral("uri")).toString());
            ZQError problem = url.isLocalFile() ? ZQError() : unreadable({});
            QImage image = url.isLocalFile() ? read(url.toLocalFile(), &problem) : QImage();
            if (!image.isNull() && qGuiApp) {
                image.setDevicePixelRatio(qGuiApp->devicePixelRatio());
            }
            end(image, problem);
        },
        m_bus));
}

void PortalScreenSource::end(const QImage &image, const ZQError &error)
{
    m_request.reset();
    if (const Taken taken = std::exchange(m_taken, nullptr)) {
        taken(image, error);
    }
}
