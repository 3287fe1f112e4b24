#pragma once

#include "Kit/Files/ZQFolderEvents.h"
#include "Kit/Files/ZQFolderTree.h"
#include "Kit/Files/ZQSettlingChanges.h"
#include "Kit/Files/ZQUnfinishedFiles.h"

#include <QByteArray>

#include <set>
#include <vector>

class ZQOwnChanges;

// Has the trees follow what the system tells, and notes what is to be announced. One thread.
class ZQTreeEvents
{
public:
    using Clock = ZQSettlingChanges::Clock;
    ZQTreeEvents(ZQWatchTable &table, ZQOwnChanges &ownChanges, ZQSettlingChanges &changes, ZQUnfinishedFiles &files,
                 ZQFolderTree::Pulse pulse);

    void handle(const ZQFolderEvent &event, Clock::time_point now);

    // What the events asked for beyond that; answered once.
    struct Demands
    {
        bool everything = false;           // events were lost
        bool mounts = false;               // a place inside was unmounted
        bool roots = false;                // a root may lie somewhere else now
        std::set<ZQFolderTree *> vanished; // whose root is gone
    };
    Demands takeDemands();

private:
    using User = ZQWatchTable::User;
    void handleFolder(const User &user, const ZQFolderEvent &event);
    void handleSelf(const User &user, const ZQFolderEvent &event);
    void handleFile(const User &user, const QByteArray &name, uint32_t mask);
    void handleMove(const ZQFolderEvent &event);
    void handleArrival(const User &target, const ZQFolderEvent &event, std::vector<ZQSettlingChanges::Move> &told);
    bool isThere(int watch, const User &user) const; // what is done for one may take away another
    void didLeave(const User &from, const QByteArray &name, bool isFolder);
    void didArrive(const User &to, const QByteArray &name, bool isFolder);
    void followFolder(const User &from, const QByteArray &name, const User &to, const QByteArray &newName,
                      bool isFirst); // who sees the move
    void noteFolder(const QByteArray &folder, bool everythingBelow = false, bool isSure = true);
    bool isOwn(const User &user, const QByteArray &name) const;
    static QByteArray path(const User &user, const QByteArray &name);

    ZQWatchTable &m_table;
    ZQOwnChanges &m_ownChanges;
    ZQSettlingChanges &m_changes;
    ZQUnfinishedFiles &m_files;
    const ZQFolderTree::Pulse m_pulse;
    Clock::time_point m_now;
    Demands m_demands;
};
