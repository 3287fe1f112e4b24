#pragma once

#include "Kit/Desktop/ZQPortal.h"
#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QString>

#include <functional>

// Whether the desktop starts Zelto when the person logs in: a file in its autostart folder, which the person and other
// programs may change as well, so that the file is asked each time. In a sandbox, which has another folder, the
// desktop's portal is asked, and what it answered last is all there is to know. Main thread.
class LaunchAtLogin
{
public:
    struct Uses
    {
        QString autostartFolder; // of the person
        QString desktopFile;     // of the installed program; may be missing
        QString executable;      // that runs
        bool isInSandbox = false;
    };
    LaunchAtLogin();
    explicit LaunchAtLogin(Uses uses);

    bool isOn() const;
    // `done` is called once, now or when the person has answered the desktop: null, or why it stays as it is.
    void set(bool isOn, std::function<void(const ZQError &error)> done);

    static inline const QString grantedKey = QStringLiteral("LaunchAtLoginGranted"); // by the portal, at last

    // An entry's command without what stands for files, which there are none of.
    static QString withoutFields(const QString &exec);
    // A program's path as an entry's Exec says it.
    static QString quoted(const QString &path);

private:
    QString path() const;
    QString exec() const;
    QByteArray turned(const QByteArray &entry, bool isOn) const;
    QByteArray newEntry() const;
    bool write(bool isOn, ZQError *error) const;

    Uses m_uses;
    ZQPortalRequestRef m_request;
};
