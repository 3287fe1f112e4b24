#include "Kit/Desktop/ZQPortal.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QUuid>

#include <utility>

namespace {

const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");

ZQError portalError(ZQPortal::ErrorCode code, const QString &reason = {})
{
    const QString text =
        code == ZQPortal::NoBus
            ? zqLocalized("The desktop can't be asked, since there is no session bus. Start Zelto within a desktop "
                          "session.")
        : code == ZQPortal::NoPortal
            ? zqLocalized("This desktop offers no such service. Install xdg-desktop-portal and the part of it for your "
                          "desktop, as xdg-desktop-portal-gnome, -kde or -wlr, and log in again.")
        : code == ZQPortal::Ended ? zqLocalized("The desktop's portal ended before it answered. Try again.")
                                  : zqLocalized("The desktop refused.");
    return ZQError::with(ZQPortal::errorDomain, code, text, reason);
}

ZQError errorOfCall(const QDBusError &error)
{
    switch (error.type()) {
    case QDBusError::ServiceUnknown:
    case QDBusError::UnknownInterface:
    case QDBusError::UnknownMethod:
    case QDBusError::UnknownObject:
        return portalError(ZQPortal::NoPortal);
    case QDBusError::Disconnected:
        return portalError(ZQPortal::NoBus);
    default:
        return portalError(ZQPortal::Refused, error.message());
    }
}

} // namespace

QString ZQPortal::newToken()
{
    return QStringLiteral("zelto_") + QUuid::createUuid().toString(QUuid::Id128);
}

ZQPortalRequest::ZQPortalRequest(const QString &interface, const QString &method, const QVariantList &arguments,
                                 QVariantMap options, Answer answer, QDBusConnection bus)
    : m_bus(std::move(bus)), m_answer(std::move(answer))
{
    if (!m_bus.isConnected()) {
        QMetaObject::invokeMethod(
            this, [this] { end(false, {}, portalError(ZQPortal::NoBus)); }, Qt::QueuedConnection);
        return;
    }
    const QString token = ZQPortal::newToken();
    options.insert(QStringLiteral("handle_token"), token);
    // The answer may come before that of the call, so it is listened for at the place where it is going to be.
    const QString sender = m_bus.baseService().mid(1).replace(u'.', u'_');
    listenAt(ZQPortal::path + QStringLiteral("/request/") + sender + u'/' + token);

    auto *const owner =
        new QDBusServiceWatcher(ZQPortal::service, m_bus, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(owner, &QDBusServiceWatcher::serviceUnregistered, this,
            [this] { end(false, {}, portalError(ZQPortal::Ended)); });
    QDBusMessage call = QDBusMessage::createMethodCall(ZQPortal::service, ZQPortal::path, interface, method);
    call.setArguments(arguments + QVariantList{options});
    auto *const called = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(called, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *watcher) {
        const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
        watcher->deleteLater();
        if (reply.isError()) {
            end(false, {}, errorOfCall(reply.error()));
        } else if (reply.value().path() != m_path) { // an old portal names it its own way
            listenAt(reply.value().path());
        }
    });
}

void ZQPortalRequest::withdraw()
{
    if (std::exchange(m_answer, nullptr) && m_bus.isConnected()) {
        m_bus.send(
            QDBusMessage::createMethodCall(ZQPortal::service, m_path, requestInterface, QStringLiteral("Close")));
    }
}

void ZQPortalRequest::listenAt(const QString &path)
{
    const QString signal = QStringLiteral("Response");
    if (!m_path.isEmpty()) {
        m_bus.disconnect(ZQPortal::service, m_path, requestInterface, signal, this, SLOT(didAnswer(uint, QVariantMap)));
    }
    m_path = path;
    m_bus.connect(ZQPortal::service, m_path, requestInterface, signal, this, SLOT(didAnswer(uint, QVariantMap)));
}

void ZQPortalRequest::didAnswer(uint response, const QVariantMap &results)
{
    constexpr uint granted = 0;
    constexpr uint cancelled = 1;
    end(response == granted, results,
        response == granted || response == cancelled ? ZQError() : portalError(ZQPortal::Refused));
}

void ZQPortalRequest::end(bool isGranted, const QVariantMap &results, const ZQError &error)
{
    if (const Answer answer = std::exchange(m_answer, nullptr)) {
        answer(isGranted, results, error);
    }
}
