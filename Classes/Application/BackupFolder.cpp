#include "Classes/Application/BackupFolder.h"

#include "Classes/Application/LibraryLocation.h"
#include "Classes/Application/LibraryLock.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

const QString unfinishedEnding = QStringLiteral(".unfinished");

bool isNameOfBackup(const QString &name, bool isUnfinished)
{
    static const QRegularExpression form(QStringLiteral("^\\d{4}-\\d{2}-\\d{2}T\\d{6}Z(-\\d{1,3})?\\.ztlibrary$"));
    const QString whole = isUnfinished ? name.chopped(std::min(name.size(), unfinishedEnding.size())) : name;
    return name.endsWith(unfinishedEnding) == isUnfinished && form.match(whole).hasMatch();
}

QString pathOf(const QString &directory, const QString &library)
{
    return QDir(directory).absoluteFilePath(library);
}

QList<BackupFolder::Backup> wholeAt(const QString &path, const QUuid &store)
{
    QList<BackupFolder::Backup> found;
    for (const QString &name : QDir(path).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QString bundle = path + u'/' + name;
        const auto record = isNameOfBackup(name, false) ? BackupRecord::of(bundle) : std::nullopt;
        if (record && record->isWhole() && record->store == store) {
            found.append({bundle, *record});
        }
    }
    return found;
}

// One that has no record yet is empty, but for the file that was to become it.
void removeUnbegun(const QString &path)
{
    const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    const QStringList names = QDir(path).entryList(all);
    static const QRegularExpression halfWritten(QStringLiteral("\\A\\.zelto-[0-9a-z]+\\z"));
    if (names.size() == 1 && halfWritten.match(names.first()).hasMatch()) {
        const QString file = path + u'/' + names.first();
        const QFileInfo info(file);
        if (info.isFile() && !info.isSymLink()) {
            QFile::remove(file);
        }
    }
    ::rmdir(QFile::encodeName(path).constData());
}

} // namespace

std::unique_ptr<BackupFolder> BackupFolder::open(const QString &directory, const QString &library, const QUuid &store,
                                                 ZQError *error)
{
    const auto refuse = [error](int code, const QString &what, const QString &path, const QString &advice) {
        zqSetError(error, ZQError::with(LibraryLocation::errorDomain, code, zqFormat(what, {path}), advice));
        return nullptr;
    };
    std::unique_ptr<BackupFolder> folder(new BackupFolder);
    folder->m_path = pathOf(directory, library);
    folder->m_store = store;
    if (!QFileInfo(directory).isDir()) {
        return refuse(ENOENT, zqLocalized("There is no folder “%@” for backups."), directory,
                      zqLocalized("Connect its disk, or choose another folder."));
    }
    ZQError cause;
    if (::mkdir(QFile::encodeName(folder->m_path).constData(), S_IRWXU) != 0 && errno != EEXIST) {
        return refuse(errno, zqLocalized("Nothing can be written into the folder “%@”."), directory,
                      zqLocalized("Check its permissions, or choose another folder."));
    }
    folder->m_lock =
        zqOpenRegularFile(folder->m_path + QStringLiteral("/.lock"), O_RDWR | O_CREAT | O_NOFOLLOW, &cause);
    if (!folder->m_lock.isOpen()) {
        return refuse(cause.code, zqLocalized("Nothing can be written into the folder “%@”."), folder->m_path,
                      zqLocalized("Check its permissions, or choose another folder."));
    }
    if (::flock(folder->m_lock.get(), LOCK_EX | LOCK_NB) != 0) {
        return refuse(errno, zqLocalized("Another backup into the folder “%@” is under way."), folder->m_path,
                      zqLocalized("Wait until it is done, then try again."));
    }
    return folder;
}

QList<BackupFolder::Backup> BackupFolder::backupsIn(const QString &directory, const QString &library,
                                                    const QUuid &store)
{
    return directory.isEmpty() ? QList<Backup>() : backupsAt(pathOf(directory, library), store);
}

QList<BackupFolder::Backup> BackupFolder::backupsAt(const QString &path, const QUuid &store)
{
    QList<Backup> found = wholeAt(path, store);
    found.removeIf([](const Backup &backup) { return backup.record.isLibrary(); });
    // Names and dates are of clocks, which may have been ahead, and one folder may be used by several.
    std::stable_sort(found.begin(), found.end(), [](const Backup &one, const Backup &other) {
        return std::pair(one.record.number, one.record.began) < std::pair(other.record.number, other.record.began);
    });
    return found;
}

QStringList BackupFolder::libraries() const
{
    QStringList paths;
    for (const Backup &backup : wholeAt(m_path, m_store)) {
        if (backup.record.isLibrary()) {
            paths.append(backup.path);
        }
    }
    return paths;
}

bool BackupFolder::isOurs(const QString &unfinished) const
{
    const QFileInfo info(unfinished);
    const auto record = BackupRecord::of(unfinished);
    return info.path() == m_path && isNameOfBackup(info.fileName(), true) && record && record->store == m_store &&
           !record->isLibrary();
}

void BackupFolder::removeOurs(const QString &unfinished) const
{
    if (!isOurs(unfinished)) {
        return;
    }
    const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    for (const QString &name : QDir(unfinished).entryList(all)) {
        if (name != BackupRecord::fileName) {
            zqRemoveTree(QFile::encodeName(unfinished + u'/' + name));
        }
    }
    // Without its record nobody would know whose the rest is.
    if (QDir(unfinished).entryList(all).size() == 1) {
        QFile::remove(unfinished + u'/' + BackupRecord::fileName);
        ::rmdir(QFile::encodeName(unfinished).constData());
    }
}

void BackupFolder::removeUnfinished() const
{
    for (const QString &name : QDir(m_path).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString path = m_path + u'/' + name;
        if (!isNameOfBackup(name, true) || QFileInfo(path).isSymLink() || LibraryLock::isInUse(path)) {
            continue;
        }
        qCInfo(zqLogApplication) << "Removing what an interrupted backup left:" << path;
        removeOurs(path);
        removeUnbegun(path);
    }
}

QString BackupFolder::begin(const BackupRecord &record, ZQError *error) const
{
    const QString stamp = record.began.toUTC().toString(QStringLiteral("yyyy-MM-dd'T'HHmmss'Z'"));
    constexpr int mostInASecond = 999;
    for (int number = 0; number <= mostInASecond; ++number) {
        const QString name = number == 0 ? stamp : stamp + u'-' + QString::number(number);
        const QString whole = m_path + u'/' + name + LibraryLocation::suffix;
        const QByteArray unfinished = QFile::encodeName(whole + unfinishedEnding);
        if (QFileInfo::exists(whole)) {
            continue;
        }
        if (::mkdir(unfinished.constData(), S_IRWXU) == 0) {
            const QString path = QFile::decodeName(unfinished);
            if (record.write(path, error)) {
                return path;
            }
            ::rmdir(unfinished.constData());
            return {};
        }
        if (errno != EEXIST) {
            zqFailWithErrno(error, unfinished);
            return {};
        }
    }
    errno = EEXIST;
    zqFailWithErrno(error, QFile::encodeName(m_path));
    return {};
}

QString BackupFolder::finish(const QString &unfinished, ZQError *error) const
{
    const QString whole = unfinished.chopped(unfinishedEnding.size());
    if (!zqMoveNoReplace(unfinished, whole, error)) {
        return {};
    }
    zqSyncFolder(m_path);
    return whole;
}

void BackupFolder::discard(const QString &unfinished) const
{
    removeOurs(unfinished);
}

QStringList BackupFolder::keepNewest(int count, const QString &newest) const
{
    const auto ours = BackupRecord::of(newest);
    QList<Backup> others = backups();
    others.removeIf(
        [&](const Backup &backup) { return backup.path == newest || !ours || !backup.record.isOf(ours->place); });
    QStringList removed;
    const qsizetype kept = std::max(count, 1) - 1; // besides the newest
    for (qsizetype i = 0; i < others.size() - kept; ++i) {
        const QString path = others[i].path;
        const QString doomed = path + unfinishedEnding;
        // Nobody can open it from here on, and who did so before has left a note.
        const auto lock = LibraryLock::lockBundle(path, nullptr);
        const auto record = BackupRecord::of(path);
        if (!lock || !record || record->isLibrary()) {
            continue;
        }
        // Its name says from now on that it is not whole, should the removing be cut off.
        if (zqMoveNoReplace(path, doomed)) {
            removeOurs(doomed);
            removed.append(path);
        }
    }
    return removed;
}
