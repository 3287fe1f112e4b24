#pragma once

#include "Classes/Interface/WindowContext.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QHash>

#include <optional>

// What a closed row of the sidebar says of the live folders below it, which nobody sees otherwise. Gathered when it is
// first asked for, and anew after something changed. Main thread.
class LiveFolderSigns
{
public:
    struct Below
    {
        bool isSyncing = false;
        QString mark;        // an icon; empty: nothing is to be known
        QStringList reasons; // localized, one a folder
    };

    explicit LiveFolderSigns(const WindowContext &window) : m_window(window) {}
    // Of a live folder or the section of them all.
    const Below &below(const ZQObjectID &row) const;
    void forget() // the rows may be others
    {
        m_isKnown = false;
        m_folders.reset();
    }
    void forgetStatuses() { m_isKnown = false; }
    static QString textOf(const Below &below); // the first reasons, one a line

private:
    using Folders = QList<ZQRef<ZQSidebarWatchedFolder>>;
    const Folders &folders() const; // that may have something to say, whether they are read or not
    void gather() const;
    void add(const ZQSidebarWatchedFolder &folder) const;

    const WindowContext &m_window;
    mutable bool m_isKnown = false;
    mutable std::optional<Folders> m_folders;
    mutable QHash<ZQObjectID, Below> m_below;
};
