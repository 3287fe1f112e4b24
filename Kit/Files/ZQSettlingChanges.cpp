#include "Kit/Files/ZQSettlingChanges.h"

#include "Kit/Files/ZQMountTable.h"

#include <QFile>

#include <algorithm>
#include <utility>

namespace {

bool isText(const QByteArray &path)
{
    return QFile::encodeName(QFile::decodeName(path)) == path;
}

QByteArray folderAround(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash > 0 ? path.first(slash) : QByteArrayLiteral("/");
}

QByteArray folderAroundBoth(QByteArray one, const QByteArray &other)
{
    while (!zqIsPathWithin(other, one)) {
        one = folderAround(one);
    }
    return one;
}

// What is told by a folder around it need not be told again.
void dropCovered(std::map<QByteArray, ZQSettlingChanges::Extent> &folders)
{
    for (auto it = folders.begin(); it != folders.end();) {
        bool isCovered = false;
        for (QByteArray around = it->first; !isCovered && around.size() > 1;) {
            around = folderAround(around);
            const auto found = folders.find(around);
            isCovered = found != folders.end() && found->second.everythingBelow;
        }
        it = isCovered ? folders.erase(it) : std::next(it);
    }
}

} // namespace

ZQSettlingChanges::ZQSettlingChanges(std::chrono::milliseconds quiet, std::chrono::milliseconds longest)
    : m_quiet(quiet), m_longest(longest)
{
}

QByteArray ZQSettlingChanges::textPath(const QByteArray &path)
{
    QByteArray text = path;
    while (!isText(text)) {
        text = folderAround(text);
    }
    return text;
}

void ZQSettlingChanges::begin(Clock::time_point now)
{
    if (m_changes.folders.empty() && m_changes.moves.empty()) {
        m_first = now;
    }
    m_last = now;
}

void ZQSettlingChanges::note(const QByteArray &folder, Extent extent, Clock::time_point now)
{
    begin(now);
    const QByteArray told = textPath(folder);
    extent.everythingBelow = extent.everythingBelow || told != folder;
    Extent &known = m_changes.folders[told];
    known.everythingBelow = known.everythingBelow || extent.everythingBelow;
    known.isSure = known.isSure || extent.isSure;
}

void ZQSettlingChanges::didMoveFolder(const QByteArray &from, const QByteArray &to, Clock::time_point now)
{
    std::map<QByteArray, Extent> moved;
    for (auto it = m_changes.folders.lower_bound(from); it != m_changes.folders.end() && it->first.startsWith(from);) {
        if (!zqIsPathWithin(it->first, from)) {
            ++it;
            continue;
        }
        moved.emplace(to + it->first.mid(from.size()), it->second);
        it = m_changes.folders.erase(it);
    }
    for (const auto &[folder, extent] : moved) {
        note(folder, extent, now);
    }
}

void ZQSettlingChanges::noteMove(const QByteArray &from, const QByteArray &to, Clock::time_point now)
{
    if (isText(from) && isText(to)) {
        begin(now);
        m_changes.moves.push_back({from, to});
    }
}

void ZQSettlingChanges::forgetBelow(const QByteArray &folder)
{
    std::erase_if(m_changes.folders, [&](const auto &one) { return zqIsPathWithin(one.first, folder); });
}

std::optional<ZQSettlingChanges::Clock::time_point> ZQSettlingChanges::due() const
{
    if (m_changes.folders.empty() && m_changes.moves.empty()) {
        return std::nullopt;
    }
    return std::min(m_last + m_quiet, m_first + m_longest);
}

ZQSettlingChanges::Changes ZQSettlingChanges::take()
{
    dropCovered(m_changes.folders);
    return std::exchange(m_changes, {});
}

void ZQSettlingChanges::gather(Changes &changes, const std::vector<QByteArray> &roots)
{
    if (changes.folders.size() <= mostFolders) {
        return;
    }
    std::map<QByteArray, Extent> gathered;
    for (const auto &[folder, extent] : changes.folders) {
        const auto root = std::find_if(roots.cbegin(), roots.cend(),
                                       [&path = folder](const QByteArray &one) { return zqIsPathWithin(path, one); });
        if (root == roots.cend()) {
            gathered.emplace(folder, extent);
            continue;
        }
        const auto earlier = std::find_if(gathered.begin(), gathered.end(),
                                          [&](const auto &one) { return zqIsPathWithin(one.first, *root); });
        if (earlier == gathered.end()) {
            gathered.emplace(folder, extent);
        } else {
            const QByteArray around = folderAroundBoth(earlier->first, folder);
            gathered.erase(earlier);
            gathered.emplace(around, Extent{true, true});
        }
    }
    changes.folders = std::move(gathered);
}
