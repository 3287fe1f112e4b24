#include "Kit/Persistence/ZQStoreReplacement.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString recoveredSuffix = QStringLiteral(".recovered-");
const QString damagedSuffix = QStringLiteral(".damaged-");
const QString log = QStringLiteral("-wal");
const QString index = QStringLiteral("-shm");

QString folderOf(const QString &path)
{
    return QFileInfo(path).absolutePath();
}

bool moved(const QString &from, const QString &to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

bool areOneFile(const QString &a, const QString &b)
{
    struct stat first = {};
    struct stat second = {};
    return ::stat(QFile::encodeName(a).constData(), &first) == 0 &&
           ::stat(QFile::encodeName(b).constData(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

// `file` under a second name as well, which is there whole or not at all.
bool keep(const QString &file, const QString &kept)
{
    if (areOneFile(file, kept)) {
        return true; // an earlier attempt got this far
    }
    if (::link(QFile::encodeName(file).constData(), QFile::encodeName(kept).constData()) == 0) {
        return true;
    }
    const QString partial = kept + QStringLiteral(".partial"); // a file system without second names
    QFile::remove(partial);
    return QFile::copy(file, partial) && zqSyncToDisk(partial) && moved(partial, kept);
}

bool isTaken(const QString &kept, const QString &file)
{
    return QFile::exists(kept) && !areOneFile(file, kept);
}

// Where the file at `path` can be kept with its log: what is there already is either this file or somebody's only copy
// of another.
QString placeFor(const QString &path, const QString &stamp)
{
    const bool hasLog = QFileInfo(path + log).size() > 0;
    const QString first = path + damagedSuffix + stamp;
    QString kept = first;
    for (int attempt = 2; isTaken(kept, path) || (hasLog && isTaken(kept + log, path + log)); ++attempt) {
        kept = first + u'-' + QString::number(attempt);
    }
    return kept;
}

bool isGone(const QString &file)
{
    return ::unlink(QFile::encodeName(file).constData()) == 0 || errno == ENOENT;
}

void removeDatabase(const QString &file)
{
    for (const QString &name : {file, file + log, file + index, file + QStringLiteral("-journal")}) {
        QFile::remove(name);
    }
}

// Each step may have been done before. Nothing when one failed; then the damaged store is still at its place.
std::optional<QString> finish(const QString &path, const QString &recovered, const QString &stamp)
{
    const QString kept = placeFor(path, stamp);
    const bool isKept = (!QFile::exists(path) || keep(path, kept)) &&
                        (QFileInfo(path + log).size() == 0 || keep(path + log, kept + log)) &&
                        zqSyncToDisk(folderOf(path));
    if (isKept && isGone(path + log) && isGone(path + index) && zqSyncToDisk(folderOf(path)) &&
        moved(recovered, path)) {
        zqSyncToDisk(folderOf(path));
        return kept;
    }
    // What was begun and cannot be ended must not wait for a later launch, which would put it over a newer state.
    if (isKept && !QFile::exists(path + log) && QFile::exists(kept + log)) {
        keep(kept + log, path + log);
    }
    isGone(recovered);
    if (areOneFile(path, kept)) {
        isGone(kept);
        isGone(kept + log);
    }
    return std::nullopt;
}

} // namespace

QString zqUnfinishedStore(const QString &path)
{
    return path + QStringLiteral(".recovering");
}

QString zqUnfinishedSource(const QString &path)
{
    return path + QStringLiteral(".recovering-source");
}

void zqRemoveUnfinishedRecovery(const QString &path)
{
    removeDatabase(zqUnfinishedStore(path));
    removeDatabase(zqUnfinishedSource(path));
}

bool zqSyncToDisk(const QString &path)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    const bool isSynced = ::fsync(file) == 0;
    ::close(file);
    return isSynced;
}

std::optional<QString> zqReplaceStore(const QString &path, const QString &recovered, ZQError *error)
{
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString whole = path + recoveredSuffix + stamp;
    if (zqSyncToDisk(recovered) && moved(recovered, whole)) { // the name is flushed with those of what is kept
        if (const auto kept = finish(path, whole, stamp)) {
            return kept;
        }
    }
    isGone(whole);
    zqSetError(error, ZQError::with(ZQStoreErrorDomain, int(ZQStoreError::CannotOpen),
                                    zqLocalized("The recovered library could not be put in place."),
                                    zqLocalized("Check the permissions of its folder and the room on its disk; the "
                                                "damaged file is unchanged.")));
    return std::nullopt;
}

void zqFinishReplacingStore(const QString &path)
{
    static const QRegularExpression form(QStringLiteral("^\\d{8}-\\d{6}$"));
    const QDir folder(folderOf(path));
    const QString prefix = QFileInfo(path).fileName() + recoveredSuffix;
    for (const QString &name : folder.entryList({prefix + u'*'}, QDir::Files, QDir::Name)) {
        const QString stamp = name.mid(prefix.size());
        if (form.match(stamp).hasMatch()) {
            const bool isDone = finish(path, folder.filePath(name), stamp).has_value();
            qCInfo(zqLogStore, "%s the recovery that was interrupted", isDone ? "finished" : "could not finish");
        }
    }
}
