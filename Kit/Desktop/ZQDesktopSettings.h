#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <QVariantMap>

// What a person has asked of the whole desktop for the sake of eyes and ears, as its portal of settings tells it, and
// as it is changed. Asked without waiting: a desktop that says nothing asks for nothing. Main thread.
class ZQDesktopSettings : public QObject
{
    Q_OBJECT
public:
    struct Wishes
    {
        bool reducesMotion = false;
        bool hasHighContrast = false;
        friend bool operator==(const Wishes &, const Wishes &) = default;
    };
    using Spaces = QMap<QString, QVariantMap>; // settings by their name space and key

    explicit ZQDesktopSettings(QObject *parent = nullptr, QDBusConnection bus = QDBusConnection::sessionBus());
    const Wishes &wishes() const { return m_wishes; }

    static Wishes wishesIn(const Spaces &spaces); // what has another type than it should asks for nothing

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void settingDidChange(const QString &space, const QString &key, const QDBusVariant &value);

private:
    void ask();
    void show();

    QDBusConnection m_bus;
    Spaces m_spaces;
    Wishes m_wishes;
};
