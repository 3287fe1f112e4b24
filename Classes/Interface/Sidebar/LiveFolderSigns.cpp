#include "Classes/Interface/Sidebar/LiveFolderSigns.h"

#include "Classes/Interface/LiveFolderStates.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"

#include <algorithm>
#include <utility>

namespace {

using Kind = LiveFolderStates::Kind;

constexpr qsizetype mostTold = 5;
constexpr qsizetype longestName = 60;

// A folder that is off is so because its person said so.
QString markOf(Kind kind, const LiveFolderStatus &status)
{
    switch (kind) {
    case Kind::Missing:
    case Kind::Trashed:
        return QStringLiteral("warning");
    case Kind::Swept:
        return QStringLiteral("recent");
    case Kind::Mirrored:
        return status.reason.isEmpty() ? QString() : QStringLiteral("warning");
    case Kind::Off:
        break;
    }
    return {};
}

} // namespace

const LiveFolderSigns::Below &LiveFolderSigns::below(const ZQObjectID &row) const
{
    static const Below nothing;
    if (!m_window.liveFolders) {
        return nothing;
    }
    if (!m_isKnown) {
        gather();
    }
    const auto found = m_below.constFind(row);
    return found == m_below.constEnd() ? nothing : *found;
}

const LiveFolderSigns::Folders &LiveFolderSigns::folders() const
{
    if (m_folders) {
        return *m_folders;
    }
    m_folders = ZQSidebarWatchedFolder::rootWatchedFoldersInManagedObjectContext(m_window.context).value_or(Folders());
    // What is mounted in another one can be away alone.
    const auto away = zqFetch<ZQSidebarWatchedFolder>(
        m_window.context, QStringLiteral("is_root == NO AND is_missing == YES AND active == YES"));
    for (const auto &folder : away.value_or(Folders())) {
        const auto father = zqCast<ZQSidebarWatchedFolder>(folder->father());
        if (father && LiveFolderStates::kindOf(*father) != Kind::Missing) {
            m_folders->append(folder);
        }
    }
    return *m_folders;
}

void LiveFolderSigns::gather() const
{
    m_isKnown = true;
    m_below.clear();
    for (const auto &folder : folders()) {
        add(*folder);
    }
    for (const ZQObjectID &id : m_window.liveFolders->syncing()) {
        if (const auto folder = zqCast<ZQSidebarWatchedFolder>(m_window.sidebarItem(id));
            folder && !folder->is_root()) {
            add(*folder);
        }
    }
}

void LiveFolderSigns::add(const ZQSidebarWatchedFolder &folder) const
{
    constexpr int deepest = 1000; // of a damaged tree
    LiveFolderStatus status = m_window.liveFolders->statusOf(folder.objectID());
    const bool isSyncing = std::exchange(status.isSyncing, false);
    const Kind kind = LiveFolderStates::kindOf(folder, status);
    const QString mark = markOf(kind, status);
    const QString reason = mark.isEmpty()
                               ? QString()
                               : zqFormat(zqLocalized("“%@”: %@"), {zqShortened(folder.title(), longestName),
                                                                    LiveFolderStates::explanation(kind, status)});
    auto above = folder.father();
    for (int depth = 0; above && depth < deepest; ++depth, above = above->father()) {
        Below &below = m_below[above->objectID()];
        below.isSyncing = below.isSyncing || isSyncing;
        if (!reason.isEmpty() && !below.reasons.contains(reason)) {
            below.reasons.append(reason);
        }
        if (below.mark != QStringLiteral("warning") && !mark.isEmpty()) {
            below.mark = mark;
        }
    }
}

QString LiveFolderSigns::textOf(const Below &below)
{
    QStringList lines = below.reasons.first(std::min(mostTold, below.reasons.size()));
    if (below.reasons.size() > mostTold) {
        lines.append(zqFormat(zqLocalized("and %d more"), {int(below.reasons.size() - mostTold)}));
    }
    return lines.join(u'\n');
}
