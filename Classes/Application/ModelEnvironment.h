#pragma once

#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <functional>
#include <memory>

class FileReferenceRenewal;
class FileTagAdoption;
class LibraryPlaces;
class LibraryStore;
class RunningParts;
class TagFileJournal;

// What the entities ask of the running application.
class ModelEnvironment : public ZQLibraryEnvironment
{
public:
    ModelEnvironment(RunningParts &running, LibraryPlaces &places, LibraryStore &store);
    ~ModelEnvironment() override;

    QString libraryDirectory() override;
    QString libraryPathForFilePath(const QString &path) override;
    void thumbForLibraryItem(ZQLibraryBaseItem *item) override;
    void presentError(const ZQError &error) override;
    std::optional<QStringList> userTagsOfFile(const QString &path) override;
    std::optional<QString> commentOfFile(const QString &path) override;
    std::optional<int> ratingOfFile(const QString &path) override;
    std::optional<ZQFileTags> tagsAfterReadingFile(const QString &path, const ZQFileTags &present) override;
    void didTakeInTagsOfFile(const QString &bundleID, const QString &path, const ZQFileTags &tags) override;
    void takeInTagsOfFiles(const QList<ZQRef<ZQLibraryBaseItem>> &items) override;
    bool fileOfItemDidMove(const ZQObjectID &item, const QByteArray &reference, const QByteArray &renewed) override;
    std::shared_ptr<void> willWriteTagsOfItems(const QStringList &bundleIDs) override;
    void writeTagsToFile(const QString &path, const ZQFileTags &tags) override;
    void writeTagsToFileOfItem(const QString &bundleID, const QString &path, const ZQFileTags &tags) override;
    void writeTagsToMovedFileOfItem(const QString &bundleID, const QByteArray &reference,
                                    const ZQFileTags &tags) override;
    bool writesTagsToFiles() override;

    // At launch, with the store open: has the tags written again that a killed process was writing. Main thread.
    void finishInterruptedTagWrites();
    // Before the store closes: returns when everything is in the files. Main thread.
    void closeTagFiles();

private:
    void queueMerging(const QString &bundleID, const QString &path, const ZQFileTags &tags,
                      const std::function<QString()> &find = {});

    RunningParts &m_running;
    LibraryPlaces &m_places;
    LibraryStore &m_store;
    std::shared_ptr<TagFileJournal> m_journal;
    std::shared_ptr<FileTagAdoption> m_adoption;
    std::shared_ptr<FileReferenceRenewal> m_renewal; // while the store is open
    ZQOperationQueue m_readings;
    ZQManagedObjectContext::Token m_willSaveObserver; // what files are to be written is on the disk before the store
    ZQManagedObjectContext::Token m_saveObserver;
};
