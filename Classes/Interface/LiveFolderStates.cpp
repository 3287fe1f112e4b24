#include "Classes/Interface/LiveFolderStates.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QLocale>

namespace {

QString syncText(const LiveFolderStatus &status)
{
    const QLocale locale;
    if (status.filesTotal > 0) {
        return zqFormat(
            zqLocalized("Syncing: %@ of %@ files"),
            {locale.toString(std::min(status.filesDone, status.filesTotal)), locale.toString(status.filesTotal)});
    }
    return status.filesDone > 0 ? zqFormat(zqLocalized("Syncing: %@ files"), {locale.toString(status.filesDone)})
                                : zqLocalized("Syncing…");
}

QString standing(LiveFolderStates::Kind kind, const QString &reason)
{
    using enum LiveFolderStates::Kind;
    switch (kind) {
    case Missing:
        return reason.isEmpty()
                   ? zqLocalized("Its folder cannot be found. Connect the drive it is on, or put the folder back.")
                   : reason;
    case Trashed:
        return reason.isEmpty()
                   ? zqLocalized("Its folder is in the trash. Restore it there, or remove the live folder.")
                   : reason;
    case Off:
        return zqLocalized("This live folder is off: Enable in its menu has it looked at again.");
    case Swept:
        return reason.isEmpty() ? zqLocalized("Its disk tells of no changes, so it is looked at in intervals.")
                                : reason;
    case Mirrored:
        return reason;
    }
    return {};
}

} // namespace

LiveFolderStates::LiveFolderStates(LiveFolderManaging &manager, ZQManagedObjectContext &context, QObject *parent)
    : QObject(parent), m_manager(manager), m_context(context)
{
    auto &center = ZQNotificationCenter::defaultCenter();
    const auto observe = [&](const QString &name, auto member) {
        m_tokens.append(center.addObserver(name, nullptr, member));
    };
    observe(LiveFolderManaging::didStartSync, [this](const ZQNotification &start) { syncDidChange(start, true); });
    observe(LiveFolderManaging::didEndSync, [this](const ZQNotification &end) { syncDidChange(end, false); });
    observe(LiveFolderManaging::statusDidChange, [this](const ZQNotification &change) { statusDidChange(change); });
    const auto roots = ZQSidebarWatchedFolder::rootWatchedFoldersInManagedObjectContext(context);
    for (const auto &root : roots.value_or(QList<ZQRef<ZQSidebarWatchedFolder>>())) {
        if (manager.statusOfWatchedFolder(root->objectID()).isSyncing) { // since before there was a window
            m_syncing.insert(root->objectID());
        }
    }
}

const LiveFolderStatus &LiveFolderStates::statusOf(const ZQObjectID &folder) const
{
    auto found = m_statuses.find(folder);
    if (found == m_statuses.end()) {
        found = m_statuses.insert(folder, m_manager.statusOfWatchedFolder(folder));
        found->isSyncing = isSyncing(folder); // what waits for its turn does nothing yet
    }
    return *found;
}

QList<ZQObjectID> LiveFolderStates::foldersOf(const ZQNotification &notification) const
{
    const QString uri = notification.userInfo.value(QStringLiteral("folder")).toString();
    const auto folder = uri.isEmpty() ? ZQRef<ZQManagedObject>() : m_context.objectWithURIRepresentation(uri);
    return folder ? QList{folder->objectID()} : QList<ZQObjectID>();
}

void LiveFolderStates::syncDidChange(const ZQNotification &notification, bool isSyncing)
{
    const QList<ZQObjectID> folders = foldersOf(notification);
    for (const ZQObjectID &folder : folders) {
        m_statuses.remove(folder);
        if (isSyncing) {
            m_syncing.insert(folder);
        } else {
            m_syncing.remove(folder);
        }
    }
    if (!folders.isEmpty()) {
        Q_EMIT changed(folders);
    }
}

// Of none in particular: all may be others.
void LiveFolderStates::statusDidChange(const ZQNotification &notification)
{
    QList<ZQObjectID> folders = foldersOf(notification);
    if (folders.isEmpty()) {
        folders = m_statuses.keys();
    }
    for (const ZQObjectID &folder : std::as_const(folders)) {
        m_statuses.remove(folder);
    }
    Q_EMIT changed(folders);
}

LiveFolderStates::Kind LiveFolderStates::kindOf(const ZQSidebarWatchedFolder &folder, const LiveFolderStatus &status)
{
    using enum ZQSidebarWatchedFolder::Standing;
    switch (folder.standing()) {
    case Missing:
        return Kind::Missing;
    case Trashed:
        return Kind::Trashed;
    case Off:
        return Kind::Off;
    case Followed:
        break;
    }
    return status.isSwept ? Kind::Swept : Kind::Mirrored;
}

QString LiveFolderStates::badge(Kind kind)
{
    switch (kind) {
    case Kind::Missing:
        return zqLocalized("missing");
    case Kind::Trashed:
        return zqLocalized("in trash");
    case Kind::Off:
        return zqLocalized("off");
    case Kind::Mirrored:
    case Kind::Swept:
        break;
    }
    return {};
}

QString LiveFolderStates::explanation(Kind kind, const LiveFolderStatus &status)
{
    QStringList lines;
    if (const QString text = standing(kind, status.reason); !text.isEmpty()) {
        lines.append(text);
    }
    if (status.isSyncing) {
        lines.append(syncText(status));
    }
    return lines.join(u'\n');
}
