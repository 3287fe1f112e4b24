#include "Tests/Classes/Capture/MockPortal.h"

#include "Kit/Desktop/ZQPortal.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>

namespace {
const QString busName = QStringLiteral("mock portal");
} // namespace

MockPortal::MockPortal()
    : m_bus(QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), busName))
{
    m_bus.registerVirtualObject(ZQPortal::path, this, QDBusConnection::SubPath);
    m_bus.registerService(ZQPortal::service);
}

MockPortal::~MockPortal()
{
    leave();
    m_bus.unregisterObject(ZQPortal::path, QDBusConnection::UnregisterTree);
    QDBusConnection::disconnectFromBus(busName);
}

void MockPortal::leave()
{
    m_bus.unregisterService(ZQPortal::service);
}

void MockPortal::emitSignal(const QString &interface, const QString &name, const QVariantList &arguments)
{
    QDBusMessage signal = QDBusMessage::createSignal(ZQPortal::path, interface, name);
    signal.setArguments(arguments);
    m_bus.send(signal);
}

bool MockPortal::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    calls.append(message.member());
    QVariantMap options;
    if (!message.arguments().isEmpty()) {
        options = qdbus_cast<QVariantMap>(message.arguments().constLast());
    }
    const QString token = options.value(QStringLiteral("handle_token")).toString();
    if (token.isEmpty()) {
        return connection.send(message.createReply());
    }
    const QString sender = message.service().mid(1).replace(u'.', u'_');
    const QString path = ZQPortal::path + QStringLiteral("/request/") + sender + u'/' + token;
    if (answersRequests) {
        const Answer given = answer(message.member(), message.arguments());
        QDBusMessage response = QDBusMessage::createSignal(path, QStringLiteral("org.freedesktop.portal.Request"),
                                                           QStringLiteral("Response"));
        response.setArguments({given.response, given.results});
        connection.send(response);
    }
    return connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
}
