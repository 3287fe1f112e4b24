#pragma once

#include <QStringList>

#include <memory>

class LeftoverCheck;
class LibraryPlaces;
class LibraryRemovals;
class LibraryStore;
class QuestionWithdrawal;
class RunningParts;
class StoreWork;

enum class TerminateReply { Cancel = 0, Now = 1 };

// Quitting: what runs is drained, state is kept, what was deleted goes for good. The store is written before any file
// is removed, so that a kill in between leaves directories without items, never items without files. Main thread; the
// main loop is served while imports and edits end.
class Quit
{
public:
    Quit(RunningParts &running, LibraryPlaces &places, LibraryStore &store, LeftoverCheck &leftovers,
         StoreWork &storeWork, LibraryRemovals &removals);

    // Called off by the person, everything goes on. A save that fails is asked about.
    TerminateReply applicationShouldTerminate();
    // Asks that and, when it agrees, ends the event loop.
    void terminate();
    // Whether imports ended, or none ran; false when the person wants them to go on.
    bool stopRunningImports();
    // Of the open store: offers to quit, recover it and open again.
    void reportDamage(const QStringList &problems);

    bool isTerminating() const { return m_isEnding || m_hasQuit; } // and the person has agreed
    bool hasQuit() const { return m_hasQuit; }                     // perhaps while the launch waited for an answer
    // Whether the person agreed to quit only so that the next launch recovers the library.
    bool reopensAfterQuit() const { return m_reopensAfterQuit; }

private:
    // Whether nothing is uploaded, or the person lets that end; nothing is ended yet.
    bool mayEndUploads();
    void endUploads();
    bool isEndWanted() const; // by a signal or the desktop: nobody is there to be asked
    QStringList purge();
    void removePurged();

    RunningParts &m_running;
    LibraryPlaces &m_places;
    LibraryStore &m_store;
    LeftoverCheck &m_leftovers;
    StoreWork &m_storeWork;
    LibraryRemovals &m_removals;
    std::shared_ptr<QuestionWithdrawal> m_uploadQuestion; // while it is shown
    QStringList m_notedRemovals;                          // by every attempt to quit
    bool m_isTerminating = false;
    bool m_isEnding = false;
    bool m_hasQuit = false;
    bool m_reopensAfterQuit = false;
};
