#include "Classes/Services/PortalHotKeys.h"

#include "Classes/Application/HotKeyCommand.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQNotificationCenter.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QSet>

namespace {

const QString interface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");

QString meaningOf(const QString &command)
{
    const HotKeyCommand *const known = HotKeyCommand::find(command);
    return known ? zqLocalized(known->meaning) : command;
}

} // namespace

// As the portal has it: a name and what belongs to it.
struct PortalShortcut
{
    QString id;
    QVariantMap properties;
};
Q_DECLARE_METATYPE(PortalShortcut)

static QDBusArgument &operator<<(QDBusArgument &argument, const PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

static const QDBusArgument &operator>>(const QDBusArgument &argument, PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

PortalHotKeys::PortalHotKeys(QDBusConnection bus) : m_bus(std::move(bus))
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    m_soon.setSingleShot(true);
    connect(&m_soon, &QTimer::timeout, this, &PortalHotKeys::createSession);
    if (m_bus.isConnected()) {
        // Some desktops give keys only to programs that they know by name; older ones lack this, and need it not.
        QDBusMessage call = QDBusMessage::createMethodCall(ZQPortal::service, ZQPortal::path,
                                                           QStringLiteral("org.freedesktop.host.portal.Registry"),
                                                           QStringLiteral("Register"));
        call.setArguments({QStringLiteral("org.zelto.Zelto"), QVariantMap()});
        m_bus.send(call);
        m_bus.connect(ZQPortal::service, ZQPortal::path, interface, QStringLiteral("Activated"), this,
                      SLOT(wasActivated(QDBusObjectPath, QString)));
    }
}

PortalHotKeys::~PortalHotKeys()
{
    closeSession();
}

QString PortalHotKeys::registerHotKey(const QString &command, const QVariantMap &setting, std::function<void()> run)
{
    m_soon.start();
    if (setting.isEmpty()) {
        m_entries.remove(command);
        return {};
    }
    const auto key = HotKey::fromSetting(setting);
    Entry entry{key.value_or(HotKey()), std::move(run)};
    if (!key) {
        entry.isWanted = false;
        entry.problem = zqLocalized("These keys can't be taken from other programs. Choose keys with Ctrl, Alt or "
                                    "Super, or a function key.");
    }
    m_entries.insert(command, entry);
    return entry.problem;
}

QString PortalHotKeys::problemOfHotKey(const QString &command) const
{
    return m_entries.value(command).problem;
}

void PortalHotKeys::closeSession()
{
    m_request.reset();
    if (!m_session.path().isEmpty()) {
        m_bus.send(QDBusMessage::createMethodCall(ZQPortal::service, m_session.path(),
                                                  QStringLiteral("org.freedesktop.portal.Session"),
                                                  QStringLiteral("Close")));
    }
    m_session = {};
}

void PortalHotKeys::setProblems(const std::function<QString(const QString &command)> &problemOf)
{
    for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry) {
        if (entry->isWanted) {
            entry->problem = problemOf(entry.key());
        }
    }
    ZQNotificationCenter::defaultCenter().postNotification(stateDidChange);
}

void PortalHotKeys::createSession()
{
    closeSession();
    if (m_entries.isEmpty()) {
        return;
    }
    m_request.reset(new ZQPortalRequest(
        interface, QStringLiteral("CreateSession"), {},
        {{QStringLiteral("session_handle_token"), ZQPortal::newToken()}},
        [this](bool isGranted, const QVariantMap &results, const ZQError &error) {
            const QVariant handle = results.value(QStringLiteral("session_handle"));
            const QString path =
                handle.canConvert<QDBusObjectPath>() ? handle.value<QDBusObjectPath>().path() : handle.toString();
            m_request.reset();
            if (isGranted && path.startsWith(u'/')) {
                m_session = QDBusObjectPath(path);
                bind();
                return;
            }
            const QString why =
                error.isNull() ? zqLocalized("The desktop gives no keys.") : error.localizedDescription();
            setProblems([&why](const QString & /*command*/) { return why + u' ' + HotKey::instead(); });
        },
        m_bus));
}

void PortalHotKeys::bind()
{
    QList<PortalShortcut> shortcuts;
    for (auto entry = m_entries.cbegin(); entry != m_entries.cend(); ++entry) {
        if (entry->isWanted) {
            shortcuts.append({entry.key(),
                              {{QStringLiteral("description"), meaningOf(entry.key())},
                               {QStringLiteral("preferred_trigger"), entry->key.portalTrigger()}}});
        }
    }
    m_request.reset(new ZQPortalRequest(
        interface, QStringLiteral("BindShortcuts"),
        {QVariant::fromValue(m_session), QVariant::fromValue(shortcuts), QString()}, {},
        [this](bool isGranted, const QVariantMap &results, const ZQError &error) {
            QSet<QString> given;
            for (const auto &shortcut : qdbus_cast<QList<PortalShortcut>>(results.value(QStringLiteral("shortcuts")))) {
                given.insert(shortcut.id);
            }
            m_request.reset();
            const QString refused = error.isNull() ? zqLocalized("The desktop did not give these keys. Choose them in "
                                                                 "the desktop's keyboard settings.")
                                                   : error.localizedDescription() + u' ' + HotKey::instead();
            setProblems(
                [&](const QString &command) { return isGranted && given.contains(command) ? QString() : refused; });
        },
        m_bus));
}

void PortalHotKeys::wasActivated(const QDBusObjectPath &session, const QString &command)
{
    const auto entry = m_entries.constFind(command);
    if (session == m_session && entry != m_entries.constEnd() && entry->run) {
        const auto run = entry->run; // it may register anew
        run();
    }
}
