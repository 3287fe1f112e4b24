#include "Kit/Desktop/ZQDesktopSettings.h"

#include "Kit/Desktop/ZQPortal.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

namespace {

const QString interface = QStringLiteral("org.freedesktop.portal.Settings");

using Wishes = ZQDesktopSettings::Wishes;

// The common names, and those of desktops that have only their own.
struct Place
{
    const char *space;
    const char *key;
    bool Wishes::*wish;
    bool (*isWished)(const QVariant &value);
};

bool isOne(const QVariant &value)
{
    return value.typeId() == QMetaType::UInt && value.toUInt() == 1;
}

bool isTrue(const QVariant &value)
{
    return value.typeId() == QMetaType::Bool && value.toBool();
}

bool isFalse(const QVariant &value)
{
    return value.typeId() == QMetaType::Bool && !value.toBool();
}

// How much longer movements take than usual.
bool isZero(const QVariant &value)
{
    bool isNumber = false;
    const double factor = value.toDouble(&isNumber);
    return isNumber && factor == 0;
}

constexpr Place places[] = {
    {"org.freedesktop.appearance", "contrast", &Wishes::hasHighContrast, &isOne},
    {"org.freedesktop.appearance", "reduced-motion", &Wishes::reducesMotion, &isOne},
    {"org.gnome.desktop.a11y.interface", "high-contrast", &Wishes::hasHighContrast, &isTrue},
    {"org.gnome.desktop.interface", "enable-animations", &Wishes::reducesMotion, &isFalse},
    {"org.kde.kdeglobals.KDE", "AnimationDurationFactor", &Wishes::reducesMotion, &isZero},
};

} // namespace

ZQDesktopSettings::ZQDesktopSettings(QObject *parent, QDBusConnection bus) : QObject(parent), m_bus(std::move(bus))
{
    if (!m_bus.isConnected()) {
        return;
    }
    qDBusRegisterMetaType<Spaces>();
    // Before it is asked, so that nothing falls between.
    m_bus.connect(ZQPortal::service, ZQPortal::path, interface, QStringLiteral("SettingChanged"), this,
                  SLOT(settingDidChange(QString, QString, QDBusVariant)));
    ask();
}

ZQDesktopSettings::Wishes ZQDesktopSettings::wishesIn(const Spaces &spaces)
{
    Wishes wishes;
    for (const Place &place : places) {
        const QVariant value = spaces.value(QLatin1StringView(place.space)).value(QLatin1StringView(place.key));
        wishes.*place.wish = wishes.*place.wish || place.isWished(value);
    }
    return wishes;
}

void ZQDesktopSettings::ask()
{
    QStringList spaces;
    for (const Place &place : places) {
        spaces.append(QLatin1StringView(place.space));
    }
    spaces.removeDuplicates();
    QDBusMessage call =
        QDBusMessage::createMethodCall(ZQPortal::service, ZQPortal::path, interface, QStringLiteral("ReadAll"));
    call.setArguments({spaces});
    auto *const called = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(called, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *watcher) {
        const QDBusPendingReply<Spaces> reply = *watcher;
        watcher->deleteLater();
        if (reply.isValid()) {
            const Spaces told = std::exchange(m_spaces, reply.value());
            for (auto space = told.begin(); space != told.end(); ++space) { // later than what was asked
                m_spaces[space.key()].insert(space.value());
            }
            show();
        }
    });
}

void ZQDesktopSettings::settingDidChange(const QString &space, const QString &key, const QDBusVariant &value)
{
    for (const Place &place : places) {
        if (space == QLatin1StringView(place.space) && key == QLatin1StringView(place.key)) {
            m_spaces[space].insert(key, value.variant());
            show();
        }
    }
}

void ZQDesktopSettings::show()
{
    const Wishes now = wishesIn(m_spaces);
    if (now != std::exchange(m_wishes, now)) {
        Q_EMIT changed();
    }
}
