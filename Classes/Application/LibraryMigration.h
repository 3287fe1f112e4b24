#pragma once

#include <QString>

class LibraryPlaces;
class LibraryStore;
class RunningParts;

// Fills in what a library of an older version lacks after its store was migrated, a thousand items a save, with a
// window that shows how far it is. What fails is presented or logged. What failed or was cancelled stays noted in the
// store for the next launch. Main thread.
class LibraryMigration
{
public:
    LibraryMigration(LibraryPlaces &places, LibraryStore &store, RunningParts &running);

    // Opens the store when there is anything to do, and only then.
    void checkModelMigration();
    // Fills in what "Version6" or "Version7" brought; others need nothing, or have it done beside the window. False,
    // with the version still noted as pending, after an error or when it was cancelled.
    bool migrateToModelVersion(const QString &version);

private:
    LibraryPlaces &m_places;
    LibraryStore &m_store;
    RunningParts &m_running;
};
