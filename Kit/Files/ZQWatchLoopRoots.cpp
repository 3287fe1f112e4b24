// What a loop does with its roots, and what it tells of them.

#include "Kit/Files/ZQWatchLoop.h"

#include <algorithm>
#include <utility>

using Kind = ZQWatchNews::Kind;

void ZQWatchLoop::startRoot(ZQWatchedRoot &root)
{
    if (isElsewhere(root)) {
        tell(Kind::Elsewhere, root.path());
        removeRoot(root.path());
        return;
    }
    if (root.start(m_table, m_mounts, m_pulse)) {
        root.setToldMissing(false);
        m_outbox->setSwept(root.path(), m_isForSilent || root.tree().unwatched() > 0);
        tell(Kind::Started, root.path());
        tellSilentPlaces(root);
        tellWatches();
        return;
    }
    if (!root.wasToldMissing()) {
        root.setToldMissing(true);
        tell(Kind::Vanished, root.path());
    }
    if (!m_returnDue) {
        m_returnDue = m_now + returnInterval();
    }
}

// Looks at the name first: following it may already wait for a server.
bool ZQWatchLoop::isElsewhere(const ZQWatchedRoot &root) const
{
    const bool isSilent = m_mounts.isSilent(root.path()) || m_mounts.isSilent(ZQWatchedRoot::resolved(root.path()));
    return isSilent != m_isForSilent;
}

void ZQWatchLoop::tellSilentPlaces(ZQWatchedRoot &root)
{
    for (const ZQMountTable::Mount &mount : m_mounts.mountsBelow(root.systemPath())) {
        if (mount.isSilent()) {
            tell(Kind::SilentPlace, root.reported(mount.point));
        }
    }
}

void ZQWatchLoop::vanish(ZQWatchedRoot &root)
{
    root.stop();
    root.setToldMissing(true);
    forgetNewsOf(root.path());
    tell(Kind::Vanished, root.path());
    m_returnDue = m_now + returnInterval();
    m_checkDue = m_now; // what was inside may be gone as well
}

void ZQWatchLoop::removeRoot(QByteArray path)
{
    const auto found =
        std::find_if(m_roots.begin(), m_roots.end(), [&](const Root &root) { return root->path() == path; });
    if (found != m_roots.end()) {
        m_roots.erase(found);
        forgetNewsOf(path);
        m_outbox->setSwept(path, false);
    }
}

// Except where another root wants them.
void ZQWatchLoop::forgetNewsOf(const QByteArray &path)
{
    const std::vector<QByteArray> others = startedPaths();
    const bool isWanted = std::any_of(others.cbegin(), others.cend(), [&](const QByteArray &other) {
        return zqIsPathWithin(path, other) || zqIsPathWithin(other, path);
    });
    if (!isWanted) {
        m_changes.forgetBelow(path);
        m_files.forgetBelow(path);
    }
}

std::vector<QByteArray> ZQWatchLoop::startedPaths() const
{
    std::vector<QByteArray> paths;
    for (const Root &root : m_roots) {
        if (root->isStarted()) {
            paths.push_back(root->path());
        }
    }
    std::sort(paths.begin(), paths.end(), [](const auto &a, const auto &b) { return a.size() < b.size(); });
    return paths;
}

void ZQWatchLoop::checkRoots()
{
    for (const Root &root : m_roots) {
        if (root->isStarted() && !root->isInPlace()) {
            vanish(*root);
        }
    }
}

void ZQWatchLoop::startMissingRoots()
{
    m_returnDue.reset();
    std::vector<ZQWatchedRoot *> missing;
    for (const Root &root : m_roots) {
        if (!root->isStarted()) {
            missing.push_back(root.get());
        }
    }
    for (ZQWatchedRoot *const root : missing) {
        startRoot(*root);
    }
}

void ZQWatchLoop::lookAt(ZQWatchedRoot &root)
{
    if (root.isInPlace() && root.tree().look(root.tree().root(), m_pulse)) {
        m_changes.note(root.path(), {true, true}, m_now);
    } else {
        vanish(root);
    }
}

void ZQWatchLoop::lookAtMounts()
{
    ZQMountTable mounts = ZQMountTable::read(m_options.mountTable);
    if (mounts == m_mounts) {
        return;
    }
    const ZQMountTable before = std::exchange(m_mounts, std::move(mounts));
    // Before anything is looked at: what is there now may not answer.
    for (const Root &root : m_roots) {
        if (root->isStarted() && isElsewhere(*root)) {
            vanish(*root);
        }
    }
    checkRoots();
    for (const Root &root : m_roots) {
        if (!root->isStarted()) {
            continue;
        }
        root->leaveOutSilentPlaces(m_mounts);
        const std::vector<ZQMountTable::Mount> was = before.mountsBelow(root->systemPath());
        const std::vector<ZQMountTable::Mount> is = m_mounts.mountsBelow(root->systemPath());
        for (const auto &[some, others] : {std::pair(&was, &is), std::pair(&is, &was)}) {
            for (const ZQMountTable::Mount &mount : *some) {
                if (std::find(others->cbegin(), others->cend(), mount) == others->cend()) {
                    lookAtMount(*root, mount.point);
                }
            }
        }
        tellSilentPlaces(*root);
    }
    m_returnDue = m_now;
    if (!m_isForSilent) {
        tell(Kind::PlacesChanged);
    }
}

void ZQWatchLoop::lookAtMount(ZQWatchedRoot &root, const QByteArray &point)
{
    ZQFolderTree &tree = root.tree();
    ZQWatchedFolder *const around = tree.findPath(point.first(std::max<qsizetype>(point.lastIndexOf('/'), 1)));
    if (around && tree.look(*around, m_pulse)) {
        m_changes.note(root.reported(point), {true, true}, m_now);
    }
}

void ZQWatchLoop::sweep()
{
    lookAtMounts();
    for (const Root &root : m_roots) {
        if (root->isStarted()) {
            lookAt(*root);
        }
    }
    tellWatches();
}

void ZQWatchLoop::sweepSilent()
{
    for (const Root &root : m_roots) {
        if (!root->isStarted() || !(m_isForSilent || root->tree().unwatched() > 0)) {
            continue;
        }
        if (!root->isInPlace()) {
            vanish(*root);
            continue;
        }
        for (const auto &[folder, isNew] : root->tree().sweep(m_isForSilent, m_pulse)) {
            m_changes.note(root->tree().reportedPath(*folder), {isNew, true}, m_now);
        }
    }
}

// The trees are brought in step when it is quiet again: until then more may be lost.
void ZQWatchLoop::loseEvents()
{
    m_isLost = true;
    for (const QByteArray &path : startedPaths()) {
        m_changes.note(path, {true, true}, m_now);
    }
}

void ZQWatchLoop::announce()
{
    m_eventCount = 0;
    if (std::exchange(m_isLost, false)) {
        for (const Root &root : m_roots) {
            if (root->isStarted()) {
                lookAt(*root);
            }
        }
    }
    ZQSettlingChanges::Changes changes = m_changes.take();
    std::erase_if(changes.folders, [this](const auto &one) {
        const auto &[folder, extent] = one;
        if (extent.everythingBelow) {
            m_files.lookBelow(folder, m_now);
            return false;
        }
        return !m_files.look(folder, m_now) && !extent.isSure;
    });
    ZQSettlingChanges::gather(changes, startedPaths());
    std::vector<ZQWatchNews> news;
    for (const auto &[from, to] : changes.moves) {
        news.push_back({Kind::Moved, from, to, false, 0, m_isForSilent});
    }
    for (const auto &[folder, extent] : changes.folders) {
        news.push_back({Kind::Changed, folder, {}, extent.everythingBelow, 0, m_isForSilent});
    }
    m_outbox->post(std::move(news));
    tellWatches();
}

void ZQWatchLoop::tellFolders(const std::vector<QByteArray> &folders)
{
    std::vector<ZQWatchNews> news;
    for (const QByteArray &folder : folders) {
        const QByteArray told = ZQSettlingChanges::textPath(folder);
        news.push_back({Kind::Changed, told, {}, told != folder, 0, m_isForSilent});
    }
    m_outbox->post(std::move(news));
}

void ZQWatchLoop::tellWatches()
{
    qint64 unwatched = 0;
    for (const Root &root : m_roots) {
        if (root->isStarted()) {
            unwatched += root->tree().unwatched();
            m_outbox->setSwept(root->path(), m_isForSilent || root->tree().unwatched() > 0);
        }
    }
    const qint64 needed = unwatched > 0 && m_table.descriptor() >= 0 ? m_table.limit() + unwatched : 0;
    if (needed > m_toldNeeded) {
        tell(Kind::RanOut, {}, needed);
    }
    m_toldNeeded = needed;
}
