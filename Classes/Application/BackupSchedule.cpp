#include "Classes/Application/BackupSchedule.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {
constexpr std::chrono::minutes between(1);
constexpr qint64 untilTriedAgain = 3600; // seconds
} // namespace

BackupSchedule::BackupSchedule(tamberin_AppDelegate &delegate) : m_delegate(delegate), m_work(delegate)
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

std::optional<BackupRecord> BackupSchedule::last() const
{
    const auto store = m_delegate.persistentStoreCoordinator();
    if (!store) {
        return std::nullopt;
    }
    const QString bundle = m_delegate.libraryBundleDirectory();
    auto backups = BackupFolder::backupsIn(directory(), LibraryBackup::libraryName(bundle), store->storeUUID());
    backups.removeIf([place = BackupRecord::placeOf(bundle)](const auto &backup) {
        return !backup.record.isOf(place); // another computer may keep its copy's there
    });
    return backups.isEmpty() ? std::nullopt : std::optional(backups.last().record);
}

ZQError BackupSchedule::backUpNow()
{
    const ZQError refusal = LibraryBackup::refusal(m_delegate.libraryBundleDirectory(), directory());
    if (!refusal.isNull()) {
        return refusal;
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

ZQError BackupSchedule::refusalByItself(const QString &directory, const QString &library)
{
    const QString folder = QDir(directory).absoluteFilePath(library);
    const bool isAbsent =
        ZQUserDefaults::standardUserDefaults().stringForKey(madeInKey) == folder && !QFileInfo(folder).isDir();
    return isAbsent ? ZQError::with(LibraryBackup::errorDomain, LibraryBackup::NoFolder,
                                    zqFormat(zqLocalized("There is no folder “%@” for backups."), {folder}),
                                    zqLocalized("Connect its disk, or choose another folder."))
                    : ZQError();
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

void BackupSchedule::look()
{
    const qint64 days = ZQUserDefaults::standardUserDefaults().integerForKey(intervalKey);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const bool isWaiting = m_notBefore.isValid() && now < m_notBefore && m_notBefore <= now.addSecs(untilTriedAgain);
    if (days <= 0 || directory().isEmpty() || isWaiting || m_work.isRunning() || m_delegate.isTerminating() ||
        !m_delegate.persistentStoreCoordinator() || !isIdle()) {
        return;
    }
    if (!isDue(m_lastEnded, now, days)) {
        return;
    }
    const auto before = last();
    m_lastEnded = before ? before->ended : QDateTime();
    if (!isDue(m_lastEnded, now, days)) {
        return;
    }
    m_isByItself = true;
    const QString library = LibraryBackup::libraryName(m_delegate.libraryBundleDirectory());
    const ZQError absence = refusalByItself(directory(), library);
    if (const ZQError refusal = absence.isNull() ? backUpNow() : absence; !refusal.isNull()) {
        m_isByItself = false;
        m_notBefore = now.addSecs(untilTriedAgain);
        m_delegate.userInteraction().showNotificationWithText(
            zqFormat(zqLocalized("No backup was made. %@"), {refusal.localizedDescription()}),
            NotificationPlace::Window, 2 * usualNotificationTime);
    }
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
    if (isTold && (result.path.isEmpty() || !result.problems.isEmpty())) {
        const QString text =
            result.path.isEmpty()
                ? zqFormat(zqLocalized("No backup was made. %@"), {result.error.localizedDescription()})
                : zqFormat(zqLocalized("The backup lacks something: %@"), {result.problems.first()});
        m_delegate.userInteraction().showNotificationWithText(text, NotificationPlace::Window,
                                                              2 * usualNotificationTime);
    }
}
