#pragma once

#include <QDBusConnection>
#include <QObject>

// Tells when the desktop is to be locked or the machine sleeps: who holds the keyboard lets go of it then, since a lock
// that cannot have it does not lock. Where none of the services is there, nothing is told. Main thread.
class ZQLockWatch : public QObject
{
    Q_OBJECT
public:
    explicit ZQLockWatch(QDBusConnection systemBus = QDBusConnection::systemBus(),
                         QDBusConnection sessionBus = QDBusConnection::sessionBus(), QObject *parent = nullptr);

Q_SIGNALS:
    void willLock();

private Q_SLOTS:
    void didChange(bool isLocking);
};
