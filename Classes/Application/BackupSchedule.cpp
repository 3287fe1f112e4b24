#include "Classes/Application/BackupSchedule.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"

#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {
constexpr std::chrono::minutes between(1);
constexpr qint64 untilTriedAgain = 3600; // seconds
} // namespace

BackupSchedule::BackupSchedule(tamberin_AppDelegate &delegate, BackupLook::Read read)
    : m_delegate(delegate), m_work(delegate), m_look(std::move(read))
{
    connect(&m_timer, &QTimer::timeout, this, &BackupSchedule::look);
    connect(&m_work, &BackupWork::ended, this, &BackupSchedule::didEnd);
    m_timer.start(between);
}

QString BackupSchedule::directory()
{
    return ZQUserDefaults::standardUserDefaults().stringForKey(directoryKey);
}

int BackupSchedule::keptCount()
{
    const qint64 keep = ZQUserDefaults::standardUserDefaults().integerForKey(keepKey);
    return int(std::clamp<qint64>(keep, 0, mostKept));
}

void BackupSchedule::findLast(BackupLook::Then then)
{
    if (const auto store = m_delegate.persistentStoreCoordinator()) {
        m_look.find({.directory = directory(),
                     .bundle = m_delegate.libraryBundleDirectory(),
                     .store = store->storeUUID(),
                     .madeIn = ZQUserDefaults::standardUserDefaults().stringForKey(madeInKey)},
                    std::move(then));
    }
}

ZQError BackupSchedule::backUpNow()
{
    if (directory().isEmpty()) {
        return LibraryBackup::refusal(m_delegate.libraryBundleDirectory(), {});
    }
    if (m_work.isRunning()) {
        return ZQError::with(LibraryBackup::errorDomain, EBUSY,
                             zqFormat(zqLocalized("Another backup into the folder “%@” is under way."), {directory()}),
                             zqLocalized("Wait until it is done, then try again."));
    }
    const bool hasBegun = m_work.start({.directory = directory(), .keep = keptCount()});
    return hasBegun ? ZQError()
                    : ZQError::with(LibraryBackup::errorDomain, LibraryBackup::LibraryGone,
                                    zqLocalized("The library is not open."));
}

bool BackupSchedule::isDue(const QDateTime &ended, const QDateTime &now, qint64 intervalInDays)
{
    // A clock that was set back makes none of them wait until it is there again.
    return intervalInDays > 0 && (!ended.isValid() || ended > now || ended.addDays(intervalInDays) <= now);
}

bool BackupSchedule::isIdle() const
{
    return m_delegate.backgroundOperationQueue().operationCount() == 0 && m_delegate.editQueue().operationCount() == 0;
}

bool BackupSchedule::mayBeginByItself() const
{
    const qint64 days = ZQUserDefaults::standardUserDefaults().integerForKey(intervalKey);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const bool isWaiting = m_notBefore.isValid() && now < m_notBefore && m_notBefore <= now.addSecs(untilTriedAgain);
    return isDue(m_lastEnded, now, days) && !directory().isEmpty() && !isWaiting && !m_work.isRunning() &&
           !m_delegate.isTerminating() && m_delegate.persistentStoreCoordinator() && isIdle();
}

void BackupSchedule::look()
{
    if (m_lookingAt == directory() || !mayBeginByItself()) {
        return;
    }
    m_lookingAt = directory();
    findLast([this, chosen = m_lookingAt, before = m_lastEnded](const BackupLook::Found &found) {
        if (m_lookingAt == chosen) {
            m_lookingAt.clear();
        }
        const bool isOutdated = m_work.isRunning() || m_lastEnded != before; // the person made one meanwhile
        if (chosen == directory() && !isOutdated) {
            beginByItself(found);
        }
    });
}

void BackupSchedule::beginByItself(const BackupLook::Found &found)
{
    m_lastEnded = found.last ? found.last->ended : QDateTime();
    if (!mayBeginByItself()) {
        return;
    }
    const ZQError absence =
        found.isAbsent ? ZQError::with(LibraryBackup::errorDomain, LibraryBackup::NoFolder,
                                       zqFormat(zqLocalized("There is no folder “%@” for backups."), {found.folder}),
                                       zqLocalized("Connect its disk, or choose another folder."))
                       : ZQError();
    m_isByItself = true;
    if (const ZQError refusal = absence.isNull() ? backUpNow() : absence; !refusal.isNull()) {
        m_isByItself = false;
        m_notBefore = QDateTime::currentDateTimeUtc().addSecs(untilTriedAgain);
        tellFailure(refusal);
    }
}

void BackupSchedule::tellFailure(const ZQError &error)
{
    m_delegate.userInteraction().showNotificationWithText(
        zqFormat(zqLocalized("No backup was made. %@"), {error.localizedDescription()}), NotificationPlace::Window,
        2 * usualNotificationTime);
}

void BackupSchedule::didEnd()
{
    const BackupResult &result = m_work.result();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    if (!result.path.isEmpty()) {
        m_lastEnded = now;
        ZQUserDefaults::standardUserDefaults().setObjectForKey(QFileInfo(result.path).path(), madeInKey);
    }
    // One that the person stopped is not begun again at once.
    m_notBefore = result.path.isEmpty() ? now.addSecs(untilTriedAgain) : QDateTime();
    const bool isTold = std::exchange(m_isByItself, false) && !result.isCancelled;
    if (isTold && result.path.isEmpty()) {
        tellFailure(result.error);
    } else if (isTold && !result.problems.isEmpty()) {
        m_delegate.userInteraction().showNotificationWithText(
            zqFormat(zqLocalized("The backup lacks something: %@"), {result.problems.first()}),
            NotificationPlace::Window, 2 * usualNotificationTime);
    }
}
