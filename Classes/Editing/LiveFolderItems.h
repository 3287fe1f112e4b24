#pragma once

#include "Classes/Editing/EditContext.h"

class ZQSidebarWatchedFolder;

// The items of live folders that go out of sight with their rows, or come back with them: few at once, many on the edit
// queue and beside the window. A step that is cut off between rows and items is completed by the next start, so that
// what comes is looked at again as a whole. Main thread.
class LiveFolderItems
{
public:
    // `goingText`: what the person reads while many go; localized.
    LiveFolderItems(EditContext &edits, QString goingText);

    void addGoing(const ZQObjectID &folder);
    // Nothing of one that is off or out of reach, whose items come when it does.
    void addComing(ZQSidebarWatchedFolder &folder);
    // After the rows were changed; who calls saves them. Saves them itself where the items are many.
    void change();

private:
    void changeItemsOfFolders(const QList<ZQObjectID> &folders, bool active);

    EditContext &m_edits;
    QString m_goingText;
    QList<ZQObjectID> m_going;
    QList<ZQObjectID> m_coming;
};
