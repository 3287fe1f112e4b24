#include "Classes/Services/DesktopActivation.h"

#include "Classes/Application/ControllerInterfaces.h"

#include <QUrl>

namespace {

// With what the desktop gives to show that a person asked, the window may come to the front; toolkits look for it here.
void takeOver(const QVariantMap &platformData)
{
    const auto take = [&platformData](const char *key, const char *variable) {
        const QByteArray value = platformData.value(QLatin1String(key)).toString().toUtf8();
        if (!value.isEmpty()) {
            qputenv(variable, value);
        }
    };
    take("activation-token", "XDG_ACTIVATION_TOKEN");
    take("desktop-startup-id", "DESKTOP_STARTUP_ID");
}

} // namespace

void DesktopActivation::Activate(const QVariantMap &platformData)
{
    takeOver(platformData);
    m_uses.open({});
}

void DesktopActivation::Open(const QStringList &uris, const QVariantMap &platformData)
{
    takeOver(platformData);
    QStringList paths;
    for (const QString &uri : uris) {
        const QUrl url(uri);
        if (ProtocolHandling::isProtocolURL(uri)) {
            paths.append(uri); // it knows more spellings than addresses have
        } else if (url.isLocalFile()) {
            paths.append(url.toLocalFile());
        }
    }
    m_uses.open(paths);
}

void DesktopActivation::ActivateAction(const QString &name, const QVariantList & /*parameters*/,
                                       const QVariantMap &platformData)
{
    takeOver(platformData);
    m_uses.doAction ? m_uses.doAction(name) : m_uses.open({});
}
