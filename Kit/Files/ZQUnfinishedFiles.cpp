#include "Kit/Files/ZQUnfinishedFiles.h"

#include "Kit/Files/ZQMountTable.h"
#include "Kit/Files/ZQOpenForWriting.h"

#include <QFile>

#include <sys/stat.h>

#include <utility>

ZQUnfinishedFiles::ZQUnfinishedFiles(std::chrono::milliseconds pause, std::chrono::milliseconds longest)
    : m_pause(pause), m_longest(longest)
{
}

ZQUnfinishedFiles::File &ZQUnfinishedFiles::file(const QByteArray &folder, const QByteArray &name,
                                                 Clock::time_point now)
{
    if (m_folders.empty()) {
        m_next = now + m_pause;
    }
    return m_folders[folder].try_emplace(name, File{now, now, false, -1, 0}).first->second;
}

void ZQUnfinishedFiles::didAppear(const QByteArray &folder, const QByteArray &name, Clock::time_point now)
{
    file(folder, name, now).isClosed = false;
}

void ZQUnfinishedFiles::didClose(const QByteArray &folder, const QByteArray &name, Clock::time_point now)
{
    file(folder, name, now).isClosed = true;
}

void ZQUnfinishedFiles::forget(const QByteArray &folder, const QByteArray &name)
{
    const auto found = m_folders.find(folder);
    if (found != m_folders.end() && found->second.erase(name) > 0 && found->second.empty()) {
        m_folders.erase(found);
    }
}

void ZQUnfinishedFiles::forgetBelow(const QByteArray &folder)
{
    std::erase_if(m_folders, [&](const auto &one) { return zqIsPathWithin(one.first, folder); });
}

void ZQUnfinishedFiles::didMoveFolder(const QByteArray &from, const QByteArray &to)
{
    std::map<QByteArray, Files> moved;
    for (auto it = m_folders.begin(); it != m_folders.end();) {
        if (zqIsPathWithin(it->first, from)) {
            moved.insert_or_assign(to + it->first.mid(from.size()), std::move(it->second));
            it = m_folders.erase(it);
        } else {
            ++it;
        }
    }
    m_folders.merge(moved);
}

bool ZQUnfinishedFiles::contains(const QByteArray &folder, const QByteArray &name) const
{
    const auto found = m_folders.find(folder);
    return found != m_folders.end() && found->second.contains(name);
}

bool ZQUnfinishedFiles::isFinished(const QByteArray &path, File &file, Clock::time_point now) const
{
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0 || !S_ISREG(status.st_mode) || now - file.since >= m_longest) {
        return true;
    }
    const qint64 modified = qint64(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec;
    const bool isMoving = file.size != status.st_size || file.modified != modified;
    const bool wasLookedAtBefore = now - file.looked >= m_pause;
    if (isMoving) {
        file.size = status.st_size;
        file.modified = modified;
        file.looked = now;
    }
    if (zqIsOpenForWriting(QFile::decodeName(path))) {
        return false;
    }
    return file.isClosed || (!isMoving && wasLookedAtBefore);
}

bool ZQUnfinishedFiles::look(const QByteArray &folder, Clock::time_point now)
{
    const auto found = m_folders.find(folder);
    if (found == m_folders.end()) {
        return true;
    }
    const size_t before = found->second.size();
    for (auto one = found->second.begin(); one != found->second.end();) {
        one = isFinished(folder + '/' + one->first, one->second, now) ? found->second.erase(one) : std::next(one);
    }
    const bool isAnyFinished = found->second.size() < before;
    if (found->second.empty()) {
        m_folders.erase(found);
    }
    return isAnyFinished;
}

void ZQUnfinishedFiles::lookBelow(const QByteArray &folder, Clock::time_point now)
{
    std::vector<QByteArray> all;
    for (auto it = m_folders.lower_bound(folder); it != m_folders.end() && it->first.startsWith(folder); ++it) {
        if (zqIsPathWithin(it->first, folder)) {
            all.push_back(it->first);
        }
    }
    for (const QByteArray &one : all) {
        look(one, now);
    }
}

std::optional<ZQUnfinishedFiles::Clock::time_point> ZQUnfinishedFiles::due() const
{
    return m_folders.empty() ? std::nullopt : std::optional(m_next);
}

std::vector<QByteArray> ZQUnfinishedFiles::lookAtAll(Clock::time_point now,
                                                     const std::function<bool(const QByteArray &folder)> &isToldAnyway)
{
    m_next = now + m_pause;
    std::vector<QByteArray> all;
    for (const auto &[folder, files] : m_folders) {
        all.push_back(folder);
    }
    std::erase_if(all, [&](const QByteArray &folder) { return isToldAnyway(folder) || !look(folder, now); });
    return all;
}
