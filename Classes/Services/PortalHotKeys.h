#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Services/HotKey.h"
#include "Kit/Desktop/ZQPortal.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QMap>
#include <QObject>
#include <QTimer>

#include <functional>

// Keys that the desktop gives through its portal for global shortcuts, where it asks the person, who may give others.
// What is registered is asked for together, in one session; what changes, in a new one. Main thread.
class PortalHotKeys : public QObject, public HotKeyRegistering
{
    Q_OBJECT
public:
    explicit PortalHotKeys(QDBusConnection bus = QDBusConnection::sessionBus());
    ~PortalHotKeys() override;

    QString registerHotKey(const QString &command, const QVariantMap &setting, std::function<void()> run) override;
    QString problemOfHotKey(const QString &command) const override;

private Q_SLOTS:
    void wasActivated(const QDBusObjectPath &session, const QString &command);

private:
    struct Entry
    {
        HotKey key;
        std::function<void()> run;
        QString problem = {};
        bool isWanted = true; // false: these keys are none
    };
    void closeSession();
    void createSession();
    void bind();
    void setProblems(const std::function<QString(const QString &command)> &problemOf);

    QDBusConnection m_bus;
    QTimer m_soon;
    QMap<QString, Entry> m_entries;
    ZQPortalRequestRef m_request;
    QDBusObjectPath m_session;
};
