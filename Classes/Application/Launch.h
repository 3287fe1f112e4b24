#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QDateTime>
#include <QString>

class DesktopRequests;
class FixedSidebar;
class ItemTagSync;
class LeftoverCheck;
class LibraryMigration;
class LibraryPlaces;
class LibraryStore;
class Quit;
class RunningParts;
class StoreWork;

// The steps of a launch, in their order: with a window, or for one command. Main thread, which is kept while a large
// library is opened or migrated and while the person answers. With a window, what fails is presented and the launch
// goes on or ends where nothing can be shown.
class Launch
{
public:
    struct Uses
    {
        RunningParts &running;
        LibraryPlaces &places;
        LibraryStore &store;
        LibraryMigration &migration;
        FixedSidebar &sidebar;
        ItemTagSync &tags;
        LeftoverCheck &leftovers;
        StoreWork &storeWork;
        Quit &quit;
        DesktopRequests &requests;
    };
    Launch(const Uses &uses, QDateTime launchDate);

    // Both in this order, once.
    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching();
    // The store, the fixed sidebar, the defaults and the background queue; no window, no watching.
    bool openLibraryForCommand(ZQError *error);

    bool isLaunched() const { return m_isLaunched; }
    void setLaunched(bool launched) { m_isLaunched = launched; }
    bool followsLocale() const { return m_followsLocale; } // the window is there and its texts can be renewed
    static QString appCastURL(bool testKeysHeld);

private:
    void startCrashReporter();

    const Uses m_uses;
    const QDateTime m_launchDate;
    bool m_isLaunched = false;
    bool m_followsLocale = false;
};
