#include "Kit/Files/ZQWatchedRoot.h"

#include "Kit/Files/ZQMountTable.h"

#include <QFile>

#include <climits>
#include <cstdlib>
#include <set>

QByteArray ZQWatchedRoot::resolved(const QByteArray &path)
{
    char buffer[PATH_MAX];
    return ::realpath(path.constData(), buffer) ? QByteArray(buffer) : QByteArray();
}

QByteArray ZQWatchedRoot::reported(const QByteArray &systemPath) const
{
    const QByteArray inside = m_systemPath == "/" ? systemPath : systemPath.mid(m_systemPath.size());
    return m_path == "/" ? inside : m_path + inside;
}

bool ZQWatchedRoot::start(ZQWatchTable &table, const ZQMountTable &mounts, const ZQFolderTree::Pulse &pulse)
{
    stop();
    m_systemPath = resolved(m_path);
    if (m_systemPath.isEmpty()) {
        return false;
    }
    m_guard = std::make_unique<ZQRootGuard>(table, m_path, m_systemPath);
    m_identity = ZQFolderIdentity::read(QFile::decodeName(m_path));
    m_tree = std::make_unique<ZQFolderTree>(table, m_systemPath, m_path);
    leaveOutSilentPlaces(mounts);
    if (!m_identity || !m_tree->look(m_tree->root(), pulse)) {
        stop();
        return false;
    }
    return true;
}

void ZQWatchedRoot::stop()
{
    m_tree.reset();
    m_guard.reset();
    m_identity.reset();
}

bool ZQWatchedRoot::isInPlace() const
{
    if (resolved(m_path) != m_systemPath) {
        return false;
    }
    const std::optional<ZQFolderIdentity> now = ZQFolderIdentity::read(QFile::decodeName(m_path));
    return now && m_identity && now->device == m_identity->device && now->isSamePlace(*m_identity);
}

void ZQWatchedRoot::leaveOutSilentPlaces(const ZQMountTable &mounts)
{
    std::set<QByteArray> silent;
    for (const ZQMountTable::Mount &mount : mounts.mountsBelow(m_systemPath)) {
        if (mount.isSilent()) {
            silent.insert(mount.point);
        }
    }
    m_tree->leaveOut(std::move(silent));
}
