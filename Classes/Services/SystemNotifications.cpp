#include "Classes/Services/SystemNotifications.h"

#include "Classes/Services/InstalledBy.h"
#include "Kit/Desktop/ZQPortal.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <algorithm>
#include <utility>

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");
const QString portalInterface = QStringLiteral("org.freedesktop.portal.Notification");
const QString openKey = QStringLiteral("default");
constexpr std::size_t mostRemembered = 16;

// Calls `then` with the reply, unless `owner` is gone.
void call(QDBusConnection bus, const QDBusMessage &message, QObject *owner,
          std::function<void(const QDBusMessage &reply)> then)
{
    auto *const watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), owner);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, owner, [watcher, then = std::move(then)] {
        watcher->deleteLater();
        then(watcher->reply());
    });
}

QDBusMessage method(const QString &interface, const char *name, const QVariantList &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, QLatin1StringView(name));
    message.setArguments(arguments);
    return message;
}

QString keyOf(qsizetype action)
{
    return QString::number(action);
}

} // namespace

SystemNotifications::Way SystemNotifications::usualWay()
{
    return InstalledBy::isInSandbox() ? Way::Portal : Way::Service;
}

SystemNotifications::SystemNotifications(QDBusConnection bus, Way way) : m_bus(std::move(bus)), m_way(way)
{
    if (m_way == Way::Portal) {
        qDBusRegisterMetaType<QList<QVariantMap>>();
        m_bus.connect(ZQPortal::service, ZQPortal::path, portalInterface, QStringLiteral("ActionInvoked"), this,
                      SLOT(didInvokeInPortal(QString, QString, QVariantList)));
        return;
    }
    // Another service counts from one again: what it says of a number is of somebody else's notification.
    auto *const watcher = new QDBusServiceWatcher(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { m_shown.clear(); });
    m_bus.connect(service, path, service, QStringLiteral("ActionInvoked"), this, SLOT(didInvoke(uint, QString)));
    m_bus.connect(service, path, service, QStringLiteral("NotificationClosed"), this, SLOT(didClose(uint, uint)));
    m_bus.connect(service, path, service, QStringLiteral("ActivationToken"), this, SLOT(didGetToken(uint, QString)));
}

void SystemNotifications::show(const Notice &notice)
{
    if (!m_bus.isConnected()) {
        if (notice.notShown) {
            notice.notShown();
        }
    } else if (m_way == Way::Portal) {
        sendToPortal(notice);
    } else {
        call(m_bus, method(service, "GetCapabilities"), this, [this, notice](const QDBusMessage &reply) {
            if (reply.type() == QDBusMessage::ReplyMessage) {
                askWhetherQuiet(notice, reply.arguments().value(0).toStringList());
            } else if (notice.notShown) {
                notice.notShown();
            }
        });
    }
}

// Not all services say so; those that do not decide for themselves.
void SystemNotifications::askWhetherQuiet(const Notice &notice, const QStringList &capabilities)
{
    const QDBusMessage question =
        method(QStringLiteral("org.freedesktop.DBus.Properties"), "Get", {service, QStringLiteral("Inhibited")});
    call(m_bus, question, this, [this, notice, capabilities](const QDBusMessage &reply) {
        const bool isKnown = reply.type() == QDBusMessage::ReplyMessage;
        if (!isKnown || !reply.arguments().value(0).value<QDBusVariant>().variant().toBool()) {
            send(notice, capabilities);
        }
    });
}

void SystemNotifications::send(const Notice &notice, const QStringList &capabilities)
{
    QStringList actions;
    if (capabilities.contains(QStringLiteral("actions"))) {
        if (notice.open) {
            actions << openKey << QString();
        }
        for (qsizetype i = 0; i < notice.actions.size(); ++i) {
            actions << keyOf(i) << notice.actions[i].title;
        }
    }
    const bool takesMarkup = capabilities.contains(QStringLiteral("body-markup"));
    const QVariantMap hints{{QStringLiteral("desktop-entry"), QStringLiteral("org.zelto.Zelto")}};
    constexpr int usualTime = -1;
    const QDBusMessage message =
        method(service, "Notify",
               {QStringLiteral("Zelto"), 0U, QStringLiteral("org.zelto.Zelto"), notice.title,
                takesMarkup ? notice.text.toHtmlEscaped() : notice.text, actions, hints, usualTime});
    call(m_bus, message, this, [this, notice](const QDBusMessage &reply) {
        if (reply.type() == QDBusMessage::ReplyMessage) {
            remember(QString::number(reply.arguments().value(0).toUInt()), notice);
        } else if (notice.notShown) {
            notice.notShown();
        }
    });
}

void SystemNotifications::sendToPortal(const Notice &notice)
{
    QList<QVariantMap> buttons;
    for (qsizetype i = 0; i < notice.actions.size(); ++i) {
        buttons.append({{QStringLiteral("label"), notice.actions[i].title}, {QStringLiteral("action"), keyOf(i)}});
    }
    QVariantMap said{{QStringLiteral("title"), notice.title}, {QStringLiteral("body"), notice.text}};
    if (notice.open) {
        said.insert(QStringLiteral("default-action"), openKey);
    }
    if (!buttons.isEmpty()) {
        said.insert(QStringLiteral("buttons"), QVariant::fromValue(buttons));
    }
    const QString identifier = ZQPortal::newToken();
    QDBusMessage message = QDBusMessage::createMethodCall(ZQPortal::service, ZQPortal::path, portalInterface,
                                                          QStringLiteral("AddNotification"));
    message.setArguments({identifier, said});
    remember(identifier, notice);
    call(m_bus, message, this, [notice](const QDBusMessage &reply) {
        if (reply.type() != QDBusMessage::ReplyMessage && notice.notShown) {
            notice.notShown();
        }
    });
}

void SystemNotifications::remember(const QString &identifier, const Notice &notice)
{
    if (m_shown.size() == mostRemembered) {
        m_shown.erase(m_shown.begin());
    }
    m_shown.push_back({identifier, notice});
}

void SystemNotifications::run(const QString &identifier, const QString &key)
{
    const auto shown = std::find_if(m_shown.begin(), m_shown.end(),
                                    [&identifier](const Shown &each) { return each.identifier == identifier; });
    if (shown == m_shown.end()) {
        return;
    }
    const Notice notice = std::exchange(shown->notice, {});
    m_shown.erase(shown);
    bool isNumber = false;
    const int index = key.toInt(&isNumber);
    if (key == openKey && notice.open) {
        notice.open();
    } else if (isNumber && index >= 0 && index < notice.actions.size()) {
        notice.actions[index].run();
    }
}

void SystemNotifications::didInvoke(uint identifier, const QString &key)
{
    run(QString::number(identifier), key);
}

void SystemNotifications::didInvokeInPortal(const QString &identifier, const QString &key,
                                            const QVariantList & /*parameter*/)
{
    run(identifier, key);
}

void SystemNotifications::didClose(uint identifier, uint /*reason*/)
{
    std::erase_if(m_shown, [name = QString::number(identifier)](const Shown &each) { return each.identifier == name; });
}

// Without it some desktops let no window come forward. It is for the next one that asks.
void SystemNotifications::didGetToken(uint identifier, const QString &token)
{
    const QString name = QString::number(identifier);
    if (std::any_of(m_shown.begin(), m_shown.end(), [&name](const Shown &each) { return each.identifier == name; })) {
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
    }
}
