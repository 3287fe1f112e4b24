#pragma once

#include "Classes/Application/UserInteraction.h"

#include <QStringList>

// Screens the files of a batch for ones that cannot be read, and lets the person decide how to go on. Any thread; waits
// for the answer, which is asked for on the main thread.
class ImportConflictResolver
{
public:
    ImportConflictResolver(const QStringList &filePaths, UserInteraction &userInteraction);

    // The paths to import, in order. `cancellingOperation` becomes true when the person stops the import.
    QStringList validFilesCancellingOperation(bool *cancellingOperation);
    // After that: the paths left out.
    QStringList excludedFiles() const { return m_excluded; }

    // Sets `isValid` and the reason.
    static void checkReadability(FileConflict &conflict);

private:
    QStringList m_filePaths;
    QStringList m_excluded;
    UserInteraction &m_userInteraction;
};
