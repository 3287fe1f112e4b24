#pragma once

#include "Kit/Files/ZQFolderIdentity.h"
#include "Kit/Files/ZQFolderTree.h"
#include "Kit/Files/ZQRootGuard.h"

#include <QByteArray>

#include <memory>
#include <optional>

class ZQMountTable;

// A folder that somebody wants to hear of, while it is there and while it is not. One thread; waits for the disk.
class ZQWatchedRoot
{
public:
    explicit ZQWatchedRoot(const QByteArray &path) : m_path(path) {}

    const QByteArray &path() const { return m_path; }
    bool isStarted() const { return m_tree != nullptr; }
    ZQFolderTree &tree() { return *m_tree; } // only of one that is started
    const QByteArray &systemPath() const { return m_systemPath; }
    QByteArray reported(const QByteArray &systemPath) const; // of a path below it

    // Where the path leads without links; empty when there is nothing.
    static QByteArray resolved(const QByteArray &path);
    // False when there is no folder that could be listed.
    bool start(ZQWatchTable &table, const ZQMountTable &mounts, const ZQFolderTree::Pulse &pulse);
    void stop();
    bool isInPlace() const; // whether what lies at its path is what was started
    void leaveOutSilentPlaces(const ZQMountTable &mounts);

    void setToldMissing(bool wasTold) { m_wasToldMissing = wasTold; }
    bool wasToldMissing() const { return m_wasToldMissing; }

private:
    const QByteArray m_path;
    QByteArray m_systemPath; // without links
    bool m_wasToldMissing = false;
    std::optional<ZQFolderIdentity> m_identity;
    std::unique_ptr<ZQRootGuard> m_guard;
    std::unique_ptr<ZQFolderTree> m_tree;
};
