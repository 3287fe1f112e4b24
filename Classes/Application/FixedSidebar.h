#pragma once

class LibraryPlaces;
class LibraryStore;
class RunningParts;

// The fixed entries of the sidebar: made at the first launch, named anew at every launch and change of language. Main
// thread.
class FixedSidebar
{
public:
    FixedSidebar(LibraryPlaces &places, LibraryStore &store, RunningParts &running);

    // Opens the store. An error is presented, and then nothing is made.
    void setupBasicSidebarProjects();
    void updateLocalization(); // of the window as well
    void updateSidebarElementNamesWithCurrentLocale();

private:
    LibraryPlaces &m_places;
    LibraryStore &m_store;
    RunningParts &m_running;
};
