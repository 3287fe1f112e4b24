#pragma once

#include "Classes/Application/BackupLook.h"
#include "Classes/Application/BackupWork.h"

#include <QTimer>

// The backups of the open library as the preferences want them: where to, how many stay, and how often one is made by
// itself: `BackupDirectory`, `BackupKeep` (0: all) and `BackupInterval` (days; 0: never). One that is due is made while
// nothing else is imported, changed or exported; when it fails, the person is told and it is tried again an hour later.
// Main thread, on which nothing here reads the folder of the backups.
class BackupSchedule : public QObject
{
    Q_OBJECT
public:
    explicit BackupSchedule(tamberin_AppDelegate &delegate, BackupLook::Read read = &BackupLook::read);

    BackupWork &work() { return m_work; }
    static QString directory(); // empty: none was chosen
    static int keptCount();     // 0: all
    static constexpr int mostKept = 10000;
    // Why nothing began, localized; null when it did. What is wrong with the folder is in the result of `work`.
    ZQError backUpNow();
    // What lies in the folder for backups, on the main thread later; never when no library is open.
    void findLast(BackupLook::Then then);
    // Whether one is due that long after `ended`; an invalid date is that of no backup.
    static bool isDue(const QDateTime &ended, const QDateTime &now, qint64 intervalInDays);

    static inline const QString directoryKey = QStringLiteral("BackupDirectory");
    static inline const QString keepKey = QStringLiteral("BackupKeep");
    static inline const QString intervalKey = QStringLiteral("BackupInterval");
    static inline const QString madeInKey = QStringLiteral("BackupMadeIn"); // the folder of the last one

private:
    void look();
    void beginByItself(const BackupLook::Found &found);
    void tellFailure(const ZQError &error);
    void didEnd();
    bool mayBeginByItself() const;
    bool isIdle() const;

    tamberin_AppDelegate &m_delegate;
    BackupWork m_work;
    BackupLook m_look;
    QTimer m_timer;
    QDateTime m_notBefore; // after a failure
    QDateTime m_lastEnded; // so that a disk is not woken up every minute; invalid: not looked yet
    bool m_isByItself = false;
    QString m_lookingAt; // a folder that does not answer must not keep from another
};
