#include "Classes/Import/ImportConflictResolver.h"

#include "Classes/Import/ImportQueries.h"
#include "Kit/Operations/ZQOperationQueue.h"

ImportConflictResolver::ImportConflictResolver(const QStringList &filePaths, UserInteraction &userInteraction)
    : m_filePaths(filePaths), m_userInteraction(userInteraction)
{
}

void ImportConflictResolver::checkReadability(FileConflict &conflict)
{
    conflict.isValid = ImportQueries::isFileReadableAtPath(conflict.path, &conflict.reason);
}

QStringList ImportConflictResolver::validFilesCancellingOperation(bool *cancellingOperation)
{
    QList<FileConflict> conflicts;
    bool hasUnreadable = false;
    for (const QString &path : m_filePaths) {
        FileConflict conflict = FileConflict::fileConflictWithPath(path);
        checkReadability(conflict);
        hasUnreadable = hasUnreadable || !conflict.isValid;
        conflicts.append(conflict);
    }
    if (!hasUnreadable) {
        return m_filePaths;
    }
    bool goesOn = false;
    ZQOperationQueue::standAside([&] { goesOn = m_userInteraction.resolveUnreadableFiles(conflicts); });
    if (!goesOn) {
        *cancellingOperation = true;
        return {};
    }
    QStringList valid;
    for (FileConflict &conflict : conflicts) {
        if (conflict.isIncluded && !conflict.isValid) {
            checkReadability(conflict); // permissions may have been given while the question was open
        }
        (conflict.isIncluded && conflict.isValid ? valid : m_excluded).append(conflict.path);
    }
    return valid;
}
