#pragma once

#include "Classes/Import/BatchState.h"

#include <optional>

class BatchResumption;
struct DirectoryContent;

// What goes where in one batch: sorts the paths of the request into groups of files that go into one sidebar item each,
// and makes the folders and projects that dropped folders become. They are saved disabled, and come into use at the
// batch's end.
//
// The batch's thread. Asks the person about files that cannot be read, who may cancel the batch there. What is not
// taken is told to the batch's record. Reads each folder once.
class ImportPlan
{
public:
    struct Planned
    {
        QList<FileGroup> groups;
        bool madeFolders = false; // going on would make them once more, unless the groups are noted
    };

    ImportPlan(BatchState &batch, BatchResumption &resumption) : m_batch(batch), m_resumption(resumption) {}

    // Of the request's paths. Nothing when there is nothing to be done: the batch is cancelled, its target takes no
    // files, or the folders could not be saved.
    std::optional<Planned> groupsForTarget();
    // Of a request that was cut off after its folders had been made: what is missing goes into those, or into the
    // library where somebody removed one meanwhile.
    std::optional<QList<FileGroup>> remainingGroups();

    // Takes the folders and projects made here out of the context again.
    void removeCreatedSidebarItems();
    void forgetCreatedSidebarItems() { m_createdSidebarItems.clear(); }

private:
    std::optional<Planned> flat(ZQSidebarBaseItem &target);
    std::optional<Planned> structured(ZQSidebarBaseItem &target);
    QStringList screened(const QStringList &files);
    QStringList supportedFiles();
    void addLooseFiles(const QStringList &files, ZQSidebarBaseItem &target, quint32 &dropIndex,
                       QList<FileGroup> &groups);
    bool addFolders(const QStringList &folders, ZQSidebarBaseItem &target, quint32 dropIndex, QList<FileGroup> &groups);
    QList<FileGroup> projectsToImportFromDirectory(const QString &directoryPath, ZQSidebarBaseItem *inFolder,
                                                   quint32 atIndex);
    QStringList filesBelowDirectory(const QString &directoryPath);
    void dropRefused(const DirectoryContent &content);
    bool save();

    BatchState &m_batch;
    BatchResumption &m_resumption;
    QList<ZQRef<ZQSidebarBaseItem>> m_createdSidebarItems;
};
