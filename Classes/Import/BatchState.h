#pragma once

#include "Classes/Import/BatchRecord.h"
#include "Classes/Import/BatchRequest.h"
#include "Classes/Import/ImportSettings.h"
#include "Classes/Import/ItemInserter.h"
#include "Kit/Operations/ZQOperation.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QList>
#include <QStringList>

#include <memory>
#include <vector>

class UserInteraction;

// Files that go into one sidebar item.
struct FileGroup
{
    ZQRef<ZQSidebarBaseItem> project;
    QStringList files;
    QString droppedFolder = {};            // which all of them come from; empty: each was dropped itself
    std::vector<qint64> milliseconds = {}; // of each file's import date behind the batch's
};

// What the parts of one batch share. Made on the main thread; from its start on the batch's thread alone, but for
// `record` and `operation`.
struct BatchState
{
    ZQOperation &operation; // its cancel ends the batch
    UserInteraction &user;
    const ImportSettings settings;                                   // as they were when it was asked for
    const std::shared_ptr<ZQPersistentStoreCoordinator> coordinator; // null: there is no store

    BatchRequest request;      // `index` moves on with what is in already; `paths` are what is being imported now
    quint32 originalDropIndex; // as it was asked for, where folders and archives are to go
    BatchRecord record = {};

    std::unique_ptr<ZQManagedObjectContext> context = {}; // its own, on the store; null before and after it runs
    std::unique_ptr<ItemInserter> inserter = {};          // into `context`

    ZQObjectID target = {};
    QStringList requestedFiles = {}; // every single file that was to become an item
    QStringList foldersAndArchivesPathOrdered = {};
    bool hasArchives = false;
    bool isProcessed = false; // the last group gave something

    bool isCancelled() const { return operation.isCancelled(); }
};
