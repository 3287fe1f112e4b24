#include "Tests/Power/SimulatedDisk.h"

#include <QFile>

#include <atomic>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::atomic<SimulatedDisk *> listening = nullptr;

void hold(const DiskImage &image, DiskImage::Inode inode, const QByteArray &path, QSet<DiskImage::Inode> &seen,
          QList<int> &held)
{
    const DiskImage::Node node = image.nodes.value(inode);
    if (!seen.contains(inode)) {
        seen.insert(inode);
        held.append(open(path.constData(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    }
    for (auto entry = node.entries.cbegin(); entry != node.entries.cend(); ++entry) {
        hold(image, entry.value(), path + '/' + entry.key(), seen, held);
    }
}

} // namespace

SimulatedDisk *SimulatedDisk::current()
{
    return listening;
}

SimulatedDisk::SimulatedDisk(const QByteArray &folder, quint32 seed) : m_folder(folder), m_random(seed)
{
    m_flushed = look();
    m_lastFlush = QStringLiteral("the beginning");
    listening = this;
}

SimulatedDisk::~SimulatedDisk()
{
    listening = nullptr;
    const std::lock_guard lock(m_mutex);
    for (const int file : std::as_const(m_held)) {
        close(file);
    }
}

void SimulatedDisk::report()
{
    const std::lock_guard lock(m_mutex);
    noteFlushed(m_lastFlush + QStringLiteral(", before report %1").arg(m_reports + 1));
    ++m_reports;
}

QList<SimulatedDisk::Cut> SimulatedDisk::cuts(int chances)
{
    listening = nullptr;
    const std::lock_guard lock(m_mutex);
    noteFlushed(m_lastFlush);
    QList<Cut> all = m_certain;
    const qsizetype step = std::max<qsizetype>(1, (m_byChance.size() + chances - 1) / chances);
    for (qsizetype i = 0; i < m_byChance.size(); i += step) {
        all.append(m_byChance.at(i));
    }
    return all;
}

void SimulatedDisk::setOwnFileSystem(const QByteArray &folder)
{
    const std::lock_guard lock(m_mutex);
    m_ownFileSystem = folder + '/';
}

void SimulatedDisk::setHasLinks(bool hasLinks)
{
    m_hasLinks = hasLinks;
}

bool SimulatedDisk::isBetweenFileSystems(const QByteArray &from, const QByteArray &to) const
{
    return !m_ownFileSystem.isEmpty() && from.startsWith(m_ownFileSystem) != to.startsWith(m_ownFileSystem);
}

DiskImage SimulatedDisk::look()
{
    m_live = DiskImage::ofFolder(m_folder, m_live);
    hold(m_live, m_live.root, m_folder, m_seen, m_held);
    return m_live;
}

void SimulatedDisk::noteFlushed(const QString &moment)
{
    const DiskImage image = m_flushed.reachable();
    if (m_certain.isEmpty() || m_certain.last().reports != m_reports || !m_certain.last().image.isSameAs(image)) {
        m_certain.append({QStringLiteral("with nothing more than was flushed, after ") + moment, m_reports, image});
    }
}

void SimulatedDisk::willChange(const char *call)
{
    const std::lock_guard lock(m_mutex);
    ++m_moments;
    const DiskImage image = m_flushed.withSomeOf(look(), m_random).reachable();
    if (m_byChance.isEmpty() || m_byChance.last().reports != m_reports || !m_byChance.last().image.isSameAs(image)) {
        m_byChance.append({QStringLiteral("with what chance let arrive, before call %1, %2, after %3")
                               .arg(m_moments)
                               .arg(QLatin1String(call), m_lastFlush),
                           m_reports, image});
    }
}

bool SimulatedDisk::isOurs(int file) const
{
    const QByteArray path = QFile::encodeName(QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(file)));
    return path == m_folder || path.startsWith(m_folder + '/');
}

bool SimulatedDisk::didFlush(int file, bool withAttributes)
{
    struct stat status = {};
    if (!isOurs(file) || fstat(file, &status) != 0) {
        return false;
    }
    const std::lock_guard lock(m_mutex);
    const DiskImage live = look();
    noteFlushed(m_lastFlush);
    m_lastFlush = QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(file)).mid(m_folder.size()) +
                  QStringLiteral(" was flushed");
    if (S_ISDIR(status.st_mode)) {
        m_flushed.bringNames(status.st_ino, live);
    } else if (withAttributes || !m_flushed.nodes.contains(status.st_ino)) {
        m_flushed.bringContent(status.st_ino, live);
    } else {
        const QMap<QByteArray, QByteArray> attributes = m_flushed.nodes.value(status.st_ino).attributes;
        m_flushed.bringContent(status.st_ino, live);
        m_flushed.nodes[status.st_ino].attributes = attributes;
    }
    return true;
}

bool SimulatedDisk::didFlushAll(int file)
{
    if (!isOurs(file)) {
        return false;
    }
    const std::lock_guard lock(m_mutex);
    noteFlushed(m_lastFlush);
    m_lastFlush = QStringLiteral("all was flushed");
    m_flushed = look();
    return true;
}
