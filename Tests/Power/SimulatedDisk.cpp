#include "Tests/Power/SimulatedDisk.h"

#include <QFile>

#include <atomic>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::atomic<SimulatedDisk *> listening = nullptr;

constexpr DiskImage::Habit habits[] = {
    {"that writes what is new at once", true, false, false, true},
    {"that writes names at once", true, true, true, false},
    {"that renames at once", false, true, false, true},
    {"that removes at once", false, false, true, false},
};
constexpr int chancesAtFlush = 3;

// At most `count`, evenly spread.
QList<SimulatedDisk::Cut> someOf(const QList<SimulatedDisk::Cut> &cuts, qsizetype count)
{
    QList<SimulatedDisk::Cut> some;
    const qsizetype number = std::min(count, cuts.size());
    for (qsizetype i = 0; i < number; ++i) {
        some.append(cuts.at(i * cuts.size() / number));
    }
    return some;
}

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
    for (const DiskImage::Habit &habit : habits) {
        m_withHabits.push_back({habit, m_flushed});
    }
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
    noteArrived(look(), QStringLiteral("after report %1").arg(m_reports));
}

QList<SimulatedDisk::Cut> SimulatedDisk::cuts(int chances)
{
    listening = nullptr;
    const std::lock_guard lock(m_mutex);
    noteFlushed(m_lastFlush);
    QList<Cut> all = m_certain;
    for (const Cut &cut : someOf(m_atFlushes, chances * 2 / 3) + someOf(m_byChance, chances / 3)) {
        const bool isKnown = std::any_of(all.cbegin(), all.cend(), [&cut](const Cut &other) {
            return other.reports == cut.reports && other.image.isSameAs(cut.image);
        });
        if (!isKnown) {
            all.append(cut);
        }
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
    m_live.renamed = m_renamed;
    hold(m_live, m_live.root, m_folder, m_seen, m_held);
    return m_live;
}

void SimulatedDisk::add(QList<Cut> &cuts, const Cut &cut)
{
    if (cuts.isEmpty() || cuts.last().reports != cut.reports || !cuts.last().image.isSameAs(cut.image)) {
        cuts.append(cut);
    }
}

void SimulatedDisk::noteFlushed(const QString &moment)
{
    add(m_certain,
        {QStringLiteral("with nothing more than was flushed, after ") + moment, m_reports, m_flushed.reachable()});
}

void SimulatedDisk::letArrive(const DiskImage &live)
{
    for (Disk &disk : m_withHabits) {
        disk.image.bringBy(disk.habit, live);
    }
}

void SimulatedDisk::noteArrived(const DiskImage &live, const QString &moment)
{
    letArrive(live);
    for (const Disk &disk : m_withHabits) {
        add(m_atFlushes,
            {QStringLiteral("on a disk %1, %2, after %3").arg(QLatin1String(disk.habit.name), moment, m_lastFlush),
             m_reports, disk.image.reachable()});
    }
    for (int i = 0; i < chancesAtFlush; ++i) {
        add(m_atFlushes, {QStringLiteral("with what chance let arrive, %1, after %2").arg(moment, m_lastFlush),
                          m_reports, m_flushed.withSomeOf(live, m_random).reachable()});
    }
}

void SimulatedDisk::willChange(const char *call)
{
    const std::lock_guard lock(m_mutex);
    ++m_moments;
    const DiskImage live = look();
    letArrive(live);
    add(m_byChance, {QStringLiteral("with what chance let arrive, before call %1, %2, after %3")
                         .arg(m_moments)
                         .arg(QLatin1String(call), m_lastFlush),
                     m_reports, m_flushed.withSomeOf(live, m_random).reachable()});
}

void SimulatedDisk::willRename(DiskImage::Inode file)
{
    const std::lock_guard lock(m_mutex);
    m_renamed.insert(file);
}

bool SimulatedDisk::isOurs(int file) const
{
    const QByteArray path = QFile::encodeName(QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(file)));
    return path == m_folder || path.startsWith(m_folder + '/');
}

void SimulatedDisk::flush(int file, bool withAttributes)
{
    struct stat status = {};
    if (!isOurs(file) || fstat(file, &status) != 0) {
        return;
    }
    const std::lock_guard lock(m_mutex);
    ++m_moments;
    const DiskImage live = look();
    const QString name = QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(file)).mid(m_folder.size());
    noteFlushed(m_lastFlush);
    noteArrived(live, QStringLiteral("before %1 was flushed").arg(name));
    m_lastFlush = name + QStringLiteral(" was flushed");
    const auto bring = [&](DiskImage &image) {
        if (S_ISDIR(status.st_mode)) {
            image.bringNames(status.st_ino, live);
        } else {
            image.bringContent(status.st_ino, live, withAttributes);
        }
    };
    bring(m_flushed);
    for (Disk &disk : m_withHabits) {
        bring(disk.image);
    }
}

void SimulatedDisk::flushAll(int file)
{
    if (!isOurs(file)) {
        return;
    }
    const std::lock_guard lock(m_mutex);
    ++m_moments;
    noteFlushed(m_lastFlush);
    noteArrived(look(), QStringLiteral("before all was flushed"));
    m_lastFlush = QStringLiteral("all was flushed");
    m_flushed = m_live;
    for (Disk &disk : m_withHabits) {
        disk.image = m_live;
    }
}
