#pragma once

#include "Classes/Import/ImportBatch.h"
#include "Classes/Import/ImportedFile.h"
#include "Kit/Operations/ZQOperation.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QDateTime>
#include <QHash>
#include <QStringList>

#include <atomic>
#include <memory>

class ImportOwner;
class UserInteraction;
class UserProgress;
class ZQOperationQueue;

// Makes items again of item directories that the store does not name, after a store was lost or recovered: the file is
// read as by an import, but stays where it is, and the item gets the directory's name. They come into the project
// "Recovered", which is found again by its title.
//
// Saves a few dozen items at a time and asks the store first which directories are named, so it may be ended anywhere
// and begun again. A directory that gives no item (no asset in it, a kind that is not supported, a damaged file) stays
// as it is. Made on the main thread, runs on the background queue.
class TakeBackOperation : public ZQOperation, private ImportBatch
{
public:
    TakeBackOperation(const QStringList &names, ImportOwner &owner); // names of the directories

    // Once it has finished.
    qsizetype takenBackCount() const { return m_takenBackCount; }
    bool isComplete() const { return m_isComplete; }             // every directory was seen to
    const QStringList &namesLeft() const { return m_namesLeft; } // of the directories that gave no item

    void main() override;

    // The asset in an item directory, and not what was made of it; empty when there is none that could be imported.
    static QString assetInDirectory(const QString &directory);

private:
    void fileDidDrop(const DroppedFile &file) override;
    void fileDidFinish() override;
    QString refusal() const override { return {}; }
    void setRefusal(const QString &) override { m_isRefused = true; } // a full disk
    void archiveDidUnfold(const UnfoldedArchive &) override {}

    void orderByBirth();
    bool takeBack(const QStringList &names);
    std::optional<QStringList> unnamed(const QStringList &names);
    std::vector<ImportedFile> readFiles(const QStringList &names, ZQOperationQueue &queue);
    bool insertItems(const std::vector<ImportedFile> &files);
    ZQRef<ZQSidebarBaseItem> recoveredProject();

    QStringList m_names;
    ImportOwner &m_owner;
    const std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    UserInteraction &m_userInteraction;
    std::unique_ptr<ZQManagedObjectContext> m_moc;
    std::shared_ptr<UserProgress> m_progress;
    QHash<QString, QDateTime> m_importDates; // by the directory's name
    QStringList m_namesLeft;
    qsizetype m_takenBackCount = 0;
    bool m_isComplete = false;
    std::atomic<bool> m_isRefused = false;
};
