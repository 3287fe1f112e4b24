#include "Classes/Tags/TagFileJournal.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Foundation/ZQLog.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

constexpr mode_t ownerOnly = 0600;
constexpr qint64 largest = 1 << 30; // a line for each of twenty million items

} // namespace

TagFileJournal::TagFileJournal(const QString &path)
{
    // A library may come from elsewhere: what is no plain file of it is not read and not written.
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    const bool isNew = ::lstat(name.constData(), &status) != 0;
    if (!isNew && !S_ISREG(status.st_mode)) {
        qCWarning(zqLogTags).noquote() << "The journal" << path << "is no file and is not used";
        return;
    }
    const auto lines = isNew ? std::nullopt : zqReadRegularFile(path, largest, nullptr, O_NOFOLLOW);
    if (lines) {
        QSet<QString> seen;
        for (const QByteArray &line : lines->split('\n')) {
            const QString item = QString::fromUtf8(line);
            if (!item.isEmpty() && !seen.contains(item)) {
                seen.insert(item);
                m_interrupted.append(item);
            }
        }
        m_isEmpty = lines->isEmpty();
    }
    m_file = open(name.constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, ownerOnly);
    if (m_file >= 0 && isNew) {
        zqSyncFolder(QFileInfo(path).path());
    }
    if (m_file < 0) {
        // Tags are written all the same; only what a crash interrupts is not repaired.
        qCWarning(zqLogTags).noquote() << "The journal" << path << "can't be written:" << std::strerror(errno);
    }
}

TagFileJournal::~TagFileJournal()
{
    if (m_file >= 0) {
        close(m_file);
    }
}

qint64 TagFileJournal::willWrite(const QString &item, bool isSaved)
{
    const ZQLockGuard lock(m_mutex);
    ++m_outstanding;
    m_isAllSaved = m_isAllSaved && isSaved;
    if (m_file < 0) {
        return 0;
    }
    if (const auto known = m_noted.constFind(item); known != m_noted.constEnd()) {
        return *known;
    }
    const QByteArray line = item.toUtf8() + '\n';
    m_isEmpty = false;
    if (zqWriteAll(m_file, line.constData(), line.size())) {
        m_noted.insert(item, ++m_lines);
    }
    return m_lines;
}

void TagFileJournal::bringToDisk(qint64 line)
{
    const ZQLockGuard flush(m_flushMutex);
    if (m_file < 0 || m_flushedLines >= line) {
        return;
    }
    qint64 written = 0;
    {
        const ZQLockGuard lock(m_mutex);
        written = m_lines;
    }
    if (fdatasync(m_file) == 0) {
        m_flushedLines = written;
    } else {
        qCWarning(zqLogTags) << "The journal of tag writes was not brought to the disk:" << std::strerror(errno);
    }
}

void TagFileJournal::bringToDisk()
{
    qint64 lines = 0;
    {
        const ZQLockGuard lock(m_mutex);
        lines = m_lines;
    }
    bringToDisk(lines);
}

void TagFileJournal::didWrite(const QString &path)
{
    struct stat status = {};
    const QString folder = path.isEmpty() ? QString() : QFileInfo(path).path();
    const bool isKnown = !folder.isEmpty() && ::stat(QFile::encodeName(folder).constData(), &status) == 0;
    {
        const ZQLockGuard lock(m_mutex);
        --m_outstanding;
        if (isKnown) {
            m_touched.insert(status.st_dev, folder);
        }
    }
    emptyIfSettled();
}

void TagFileJournal::didSave()
{
    const ZQLockGuard lock(m_mutex);
    m_isAllSaved = true;
}

bool TagFileJournal::isSettled() const
{
    return !m_isEmpty && m_file >= 0 && m_outstanding == 0 && m_isAllSaved;
}

void TagFileJournal::emptyIfSettled()
{
    qint64 lines = 0;
    QStringList folders;
    {
        const ZQLockGuard lock(m_mutex);
        if (!isSettled()) {
            return;
        }
        lines = m_lines;
        folders = m_touched.values();
    }
    // Attributes wait in memory for a while; a line that is gone before they arrive would not have them written again.
    if (!flush(folders)) {
        return;
    }
    const ZQLockGuard lock(m_mutex);
    if (isSettled() && m_lines == lines && ftruncate(m_file, 0) == 0) {
        m_isEmpty = true;
        m_noted.clear();
        m_touched.clear();
    }
}

// Files outside the library may lie on other disks than the journal. A folder that is gone has nothing to be flushed.
bool TagFileJournal::flush(const QStringList &folders)
{
    return std::all_of(folders.begin(), folders.end(), [](const QString &folder) {
        const ZQFileDescriptor opened(
            ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        return opened.isOpen() ? ::syncfs(opened.get()) == 0 : errno == ENOENT || errno == ENOTDIR;
    });
}
