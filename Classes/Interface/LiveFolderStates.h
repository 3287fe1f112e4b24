#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Kit/Operations/ZQNotificationCenter.h"

#include <QHash>
#include <QObject>

class ZQManagedObjectContext;
class ZQSidebarWatchedFolder;

// How the live folders stand, as a window shows it: asked for once and kept until a change is announced, so that
// painting asks nobody. Main thread.
class LiveFolderStates : public QObject
{
    Q_OBJECT
public:
    // What a row says of its folder; of a sub-folder what holds for it through those above.
    enum class Kind {
        Mirrored,
        Swept, // looked at in intervals, since its disk tells of no change
        Off,   // by a person
        Trashed,
        Missing,
    };

    LiveFolderStates(LiveFolderManaging &manager, ZQManagedObjectContext &context, QObject *parent = nullptr);

    LiveFolderManaging &manager() const { return m_manager; }
    const LiveFolderStatus &statusOf(const ZQObjectID &folder) const;
    void forgetStatuses() { m_statuses.clear(); } // the rows themselves may be others
    bool isSyncing(const ZQObjectID &folder) const { return m_syncing.contains(folder); }
    bool holdsAnother(const ZQObjectID &folder) const { return statusOf(folder).holdsAnother; } // at its place
    // In no order.
    QList<ZQObjectID> syncing() const { return m_syncing.values(); }

    // Without a status, what the library itself knows.
    static Kind kindOf(const ZQSidebarWatchedFolder &folder, const LiveFolderStatus &status = {});
    static bool isAway(Kind kind) { return kind == Kind::Off || kind == Kind::Trashed || kind == Kind::Missing; }
    // In a word beside its title; empty where all is well.
    static QString badge(Kind kind);
    // In sentences, with what can be done; empty where all is well and nothing is going on.
    static QString explanation(Kind kind, const LiveFolderStatus &status);

Q_SIGNALS:
    void changed(const QList<ZQObjectID> &folders);

private:
    void syncDidChange(const ZQNotification &notification, bool isSyncing);
    void statusDidChange(const ZQNotification &notification);
    QList<ZQObjectID> foldersOf(const ZQNotification &notification) const;

    LiveFolderManaging &m_manager;
    ZQManagedObjectContext &m_context;
    mutable QHash<ZQObjectID, LiveFolderStatus> m_statuses;
    QSet<ZQObjectID> m_syncing;
    QList<ZQNotificationCenter::Token> m_tokens;
};
