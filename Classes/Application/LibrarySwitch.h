#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

#include <functional>

class LibraryPlaces;
class LibraryStore;
class Quit;
class RunningParts;

// Another library, or the same one at another place. It takes effect at the next launch: each of these remembers the
// place and quits. Errors are presented, and then nothing has changed. Main thread; a move copies on a thread of its
// own and serves the main loop meanwhile.
class LibrarySwitch
{
public:
    // `closeLibrary` closes the store and lets go of everything in the bundle.
    LibrarySwitch(RunningParts &running, LibraryPlaces &places, LibraryStore &store, Quit &quit,
                  std::function<void()> closeLibrary);

    void newZeltoLibrary();
    void openZeltoLibrary();
    void moveZeltoLibrary(); // takes the window away: not from inside one of its own events
    void revealLibraryInFinder();
    // For a library that the desktop hands over. True when it is remembered.
    bool switchToLibrary(const QString &path);

private:
    void notifyAndQuit();
    void rememberAndQuit(const QString &library);
    bool agreesToReplace(const QString &path);
    bool moveInBackground(const QString &source, const QString &destination, ZQError *error);

    RunningParts &m_running;
    LibraryPlaces &m_places;
    LibraryStore &m_store;
    Quit &m_quit;
    std::function<void()> m_closeLibrary;
};
