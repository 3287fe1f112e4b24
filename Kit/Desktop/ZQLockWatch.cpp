#include "Kit/Desktop/ZQLockWatch.h"

ZQLockWatch::ZQLockWatch(QDBusConnection systemBus, QDBusConnection sessionBus, QObject *parent) : QObject(parent)
{
    // Of whichever session: to ask which one is this process's may take long just when the machine is to sleep.
    const QString logind = QStringLiteral("org.freedesktop.login1");
    systemBus.connect(logind, {}, QStringLiteral("org.freedesktop.login1.Session"), QStringLiteral("Lock"), this,
                      SIGNAL(willLock()));
    systemBus.connect(logind, {}, QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"),
                      this, SLOT(didChange(bool)));
    for (const char *name : {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver"}) {
        const QString saver = QString::fromLatin1(name); // of the service and of its interface
        sessionBus.connect(saver, {}, saver, QStringLiteral("ActiveChanged"), this, SLOT(didChange(bool)));
    }
}

void ZQLockWatch::didChange(bool isLocking)
{
    if (isLocking) {
        Q_EMIT willLock();
    }
}
