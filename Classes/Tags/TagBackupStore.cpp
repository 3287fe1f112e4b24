#include "Classes/Tags/TagBackupStore.h"

#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Foundation/ZQLog.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <utility>

namespace {

constexpr int listCount = 64;
constexpr qint64 halfAYear = qint64(182) * 24 * 3600 * 1000;
constexpr int lockMilliseconds = 1000;
constexpr qint64 digestedAtEachEnd = 16384;
constexpr qint64 largestList = 512 << 20;

const QString filesKey = QStringLiteral("files");
const QString identitiesKey = QStringLiteral("identities");

QVariantMap encoded(const TagBackup &backup)
{
    QVariantMap map{{QStringLiteral("identity"), backup.identity},
                    {QStringLiteral("inode"), qlonglong(backup.inode)},
                    {QStringLiteral("saved"), qlonglong(backup.saved)}};
    if (!backup.tags.isEmpty()) {
        map.insert(QStringLiteral("tags"), backup.tags);
    }
    if (!backup.comment.isEmpty()) {
        map.insert(QStringLiteral("comment"), backup.comment);
    }
    if (backup.rating > 0) {
        map.insert(QStringLiteral("rating"), backup.rating);
    }
    map.insert(QStringLiteral("seen"), backup.seen.value_or(QByteArray()));
    if (!backup.contents.digest.isEmpty()) {
        map.insert(QStringLiteral("size"), qlonglong(backup.contents.size));
        map.insert(QStringLiteral("digest"), backup.contents.digest);
    }
    if (backup.isFolder) {
        map.insert(QStringLiteral("folder"), true);
    }
    return map;
}

TagBackup decoded(const QVariantMap &map)
{
    TagBackup backup;
    backup.tags = map.value(QStringLiteral("tags")).toStringList();
    backup.comment = map.value(QStringLiteral("comment")).toString();
    backup.rating = map.value(QStringLiteral("rating")).toDouble();
    backup.identity = map.value(QStringLiteral("identity")).toByteArray();
    backup.inode = quint64(map.value(QStringLiteral("inode")).toLongLong());
    backup.isFolder = map.value(QStringLiteral("folder")).toBool();
    backup.saved = map.value(QStringLiteral("saved")).toLongLong();
    backup.contents = {map.value(QStringLiteral("size")).toLongLong(),
                       map.value(QStringLiteral("digest")).toByteArray()};
    if (map.contains(QStringLiteral("seen"))) {
        backup.seen = map.value(QStringLiteral("seen")).toByteArray();
    }
    return backup;
}

QByteArray stampOf(const QString &path)
{
    struct stat status = {}; // of a list that is not there it stays like this
    stat(QFile::encodeName(path).constData(), &status);
    return QByteArray::number(qulonglong(status.st_ino)) + '-' + QByteArray::number(qlonglong(status.st_size)) + '-' +
           QByteArray::number(qlonglong(status.st_mtim.tv_sec)) + '-' +
           QByteArray::number(qlonglong(status.st_mtim.tv_nsec));
}

} // namespace

TagFileIdentity TagFileIdentity::ofFile(const QString &path)
{
    struct statx status = {};
    if (statx(AT_FDCWD, QFile::encodeName(path).constData(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT,
              STATX_BASIC_STATS | STATX_BTIME, &status) != 0) {
        return {};
    }
    const bool hasBirth = (status.stx_mask & STATX_BTIME) != 0;
    const QByteArray second =
        hasBirth ? QByteArray::number(qlonglong(status.stx_btime.tv_sec)) + '.' +
                       QByteArray::number(status.stx_btime.tv_nsec)
                 : 'd' + QByteArray::number(status.stx_dev_major) + ':' + QByteArray::number(status.stx_dev_minor);
    return {QByteArray::number(qulonglong(status.stx_ino)) + '-' + second, status.stx_ino, S_ISDIR(status.stx_mode)};
}

TagFileContents TagFileContents::ofFile(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly) || file.size() == 0) {
        return {};
    }
    TagFileContents contents;
    contents.size = file.size();
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(file.read(digestedAtEachEnd));
    if (file.size() > digestedAtEachEnd && file.seek(std::max(digestedAtEachEnd, file.size() - digestedAtEachEnd))) {
        hash.addData(file.read(digestedAtEachEnd));
    }
    if (file.error() == QFile::NoError) {
        contents.digest = hash.result();
    }
    return contents;
}

TagBackupStore::TagBackupStore(const QString &folder, qsizetype longestList)
    : m_folder(folder), m_longestList(longestList)
{
}

TagBackupStore::~TagBackupStore()
{
    if (m_notes.isOpen() && QFileInfo(m_notesPath).size() == 0) {
        QFile::remove(m_notesPath);
    }
}

int TagBackupStore::numberOf(const QByteArray &key)
{
    return static_cast<uchar>(QCryptographicHash::hash(key, QCryptographicHash::Md5).at(0)) % listCount;
}

QString TagBackupStore::pathOf(int number) const
{
    return m_folder + QStringLiteral("/%1.plist").arg(number, 2, 10, QLatin1Char('0'));
}

TagBackupStore::List &TagBackupStore::list(int number)
{
    List &found = m_lists[number];
    if (!found.isRead || (!found.isBeingWritten && stampOf(pathOf(number)) != found.stamp)) {
        read(number, found);
    }
    return found;
}

void TagBackupStore::read(int number, List &list) const
{
    list = {};
    list.isRead = true;
    list.stamp = stampOf(pathOf(number));
    const auto data = zqReadRegularFile(pathOf(number), largestList);
    if (!data) {
        return;
    }
    ZQError error;
    const auto value = ZQPropertyList::fromData(*data, &error);
    if (!value) {
        qCWarning(zqLogTags).noquote() << "The tag backups in" << pathOf(number)
                                       << "can't be read and begin anew:" << error.localizedDescription();
        return;
    }
    const QVariantMap files = value->toMap().value(filesKey).toMap();
    for (auto it = files.cbegin(); it != files.cend(); ++it) {
        list.files.insert(it.key(), decoded(it.value().toMap()));
    }
    const QVariantMap identities = value->toMap().value(identitiesKey).toMap();
    for (auto it = identities.cbegin(); it != identities.cend(); ++it) {
        list.identities.insert(it.key().toLatin1(), it.value().toString());
    }
}

bool TagBackupStore::write(int number, List &list) const
{
    QVariantMap files;
    for (auto it = list.files.cbegin(); it != list.files.cend(); ++it) {
        files.insert(it.key(), encoded(it.value()));
    }
    QVariantMap identities;
    for (auto it = list.identities.cbegin(); it != list.identities.cend(); ++it) {
        identities.insert(QString::fromLatin1(it.key()), it.value());
    }
    ZQError error;
    const auto data = ZQPropertyList::toBinary(QVariantMap{{filesKey, files}, {identitiesKey, identities}}, &error);
    QSaveFile file(pathOf(number));
    if (!data || !file.open(QIODevice::WriteOnly) || !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) ||
        file.write(*data) != data->size() || !file.commit()) {
        qCWarning(zqLogTags).noquote() << "The tag backups in" << pathOf(number) << "were not written:"
                                       << (data ? file.errorString() : error.localizedDescription());
        return false;
    }
    list.stamp = stampOf(pathOf(number));
    return true;
}

void TagBackupStore::prune(List &list) const
{
    if (list.pruneAt > 0 && list.files.size() <= list.pruneAt && list.identities.size() <= 2 * list.pruneAt) {
        return;
    }
    const qint64 oldest = QDateTime::currentMSecsSinceEpoch() - halfAYear;
    QList<std::pair<qint64, QString>> gone;
    for (auto it = list.files.cbegin(); it != list.files.cend(); ++it) {
        const bool matters = list.files.size() > m_longestList || it->saved < oldest;
        if (matters && !QFileInfo::exists(it.key())) {
            gone.append({it->saved, it.key()});
        }
    }
    std::sort(gone.begin(), gone.end());
    for (const auto &[saved, path] : std::as_const(gone)) {
        if (saved < oldest || list.files.size() > m_longestList) {
            list.files.remove(path);
        }
    }
    // Paths of identities lie in other lists; a pointer to nothing is harmless and goes when there are too many.
    if (list.identities.size() > 2 * m_longestList) {
        list.identities.removeIf(
            [](QHash<QByteArray, QString>::iterator entry) { return !QFileInfo::exists(entry.value()); });
    }
    list.pruneAt = std::max({m_longestList, list.files.size() * 5 / 4, list.identities.size() * 5 / 8});
}

bool TagBackupStore::contains(const QString &path)
{
    const ZQLockGuard lock(m_mutex);
    return list(numberOf(path.toUtf8())).files.contains(path);
}

std::optional<TagBackup> TagBackupStore::find(const QString &path)
{
    const ZQLockGuard lock(m_mutex);
    const List &found = list(numberOf(path.toUtf8()));
    const auto entry = found.files.constFind(path);
    return entry == found.files.cend() ? std::nullopt : std::optional(*entry);
}

QString TagBackupStore::pathOfIdentity(const QByteArray &identity)
{
    const ZQLockGuard lock(m_mutex);
    return list(numberOf(identity)).identities.value(identity);
}

bool TagBackupStore::hasFolder() const
{
    // A data folder that is gone was a guest's or a test's; it is not made again.
    const QString dataFolder = QFileInfo(QFileInfo(m_folder).path()).path();
    return QFileInfo(dataFolder).isDir() && QDir().mkpath(m_folder);
}

bool TagBackupStore::store(const QHash<QString, std::optional<TagBackup>> &backups)
{
    if (backups.isEmpty() || !hasFolder()) {
        return true;
    }
    const ZQLockGuard lock(m_storeMutex);
    const QFileInfo place(m_folder + QStringLiteral("/lock"));
    if (place.exists() && !place.isFile()) { // the lock would look who holds it, and a pipe keeps whoever reads it
        qCWarning(zqLogTags).noquote() << place.filePath() << "is no file; no tag backups are made until it is removed";
        return false;
    }
    QLockFile processes(place.filePath());
    if (!processes.tryLock(lockMilliseconds)) {
        qCInfo(zqLogTags).noquote() << "The tag backups in" << m_folder << "are held by another process";
        return false;
    }
    std::map<int, List> changed = takeIn(backups);
    // Whoever looks for a backup meanwhile finds the new one here.
    bool isWritten = true;
    for (auto &[number, list] : changed) {
        prune(list);
        isWritten = write(number, list) && isWritten;
        list.isBeingWritten = false;
        const ZQLockGuard guard(m_mutex);
        m_lists[number] = std::move(list);
    }
    return isWritten;
}

// Answers the lists that changed, as they are to be written.
std::map<int, TagBackupStore::List> TagBackupStore::takeIn(const Backups &backups)
{
    const ZQLockGuard lock(m_mutex);
    std::set<int> changed;
    const auto take = [&](const QByteArray &key) ZQ_REQUIRES(m_mutex) -> List & {
        const int number = numberOf(key);
        changed.insert(number);
        return list(number);
    };
    for (auto it = backups.cbegin(); it != backups.cend(); ++it) {
        const QString &path = it.key();
        if (!it.value()) {
            take(path.toUtf8()).files.remove(path);
            continue;
        }
        const QByteArray &identity = it.value()->identity;
        const QString before = std::exchange(take(identity).identities[identity], path);
        if (!before.isEmpty() && before != path && TagFileIdentity::ofFile(before).text != identity) {
            take(before.toUtf8()).files.remove(before);
        }
        take(path.toUtf8()).files.insert(path, *it.value());
    }
    std::map<int, List> copies;
    for (const int number : changed) {
        m_lists[number].isBeingWritten = true;
        copies.emplace(number, m_lists[number]);
    }
    return copies;
}

void TagBackupStore::noteLocked(const QString &path)
{
    if (!m_notes.isOpen() && hasFolder()) {
        QByteArray name = QFile::encodeName(m_folder + QStringLiteral("/noted-XXXXXX"));
        m_notes = ZQFileDescriptor(mkostemp(name.data(), O_APPEND | O_CLOEXEC));
        m_notesPath = QFile::decodeName(name);
        flock(m_notes.get(), LOCK_EX | LOCK_NB); // whose lock is free, is gone
    }
    const QByteArray entry = path.toUtf8() + '\0';
    if (m_notes.isOpen() && !zqWriteAll(m_notes.get(), entry.constData(), entry.size())) {
        qCWarning(zqLogTags).noquote() << "Not noted for a tag backup:" << path;
    }
}

void TagBackupStore::note(const QString &path)
{
    const ZQLockGuard lock(m_notesMutex);
    noteLocked(path);
}

void TagBackupStore::setNotes(const QSet<QString> &paths)
{
    const ZQLockGuard lock(m_notesMutex);
    if (ftruncate(m_notes.get(), 0) != 0) { // or there are none
        return;
    }
    for (const QString &path : paths) {
        noteLocked(path);
    }
}

QStringList TagBackupStore::takeOverNotes()
{
    QStringList paths;
    const ZQLockGuard lock(m_notesMutex);
    const QStringList names = QDir(m_folder).entryList({QStringLiteral("noted-*")}, QDir::Files);
    for (const QString &name : names) {
        const QString notes = m_folder + u'/' + name;
        QFile file(notes);
        if (notes == m_notesPath || !file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) ||
            flock(file.handle(), LOCK_EX | LOCK_NB) != 0) {
            continue;
        }
        for (const QByteArray &entry : file.readAll().split('\0')) {
            if (!entry.isEmpty()) {
                paths.append(QString::fromUtf8(entry));
                noteLocked(paths.last());
            }
        }
        file.remove();
    }
    return paths;
}
