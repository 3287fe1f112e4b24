#include "Classes/Application/BackupWork.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"

#include <QPointer>

BackupWork::BackupWork(tamberin_AppDelegate &delegate)
    : m_delegate(delegate), m_queue(std::make_unique<ZQOperationQueue>(QStringLiteral("backup"), 1))
{
}

BackupWork::~BackupWork()
{
    m_stop.request_stop();
}

bool BackupWork::start(const BackupOptions &options)
{
    const auto store = m_delegate.persistentStoreCoordinator();
    if (m_isRunning || !store) {
        return false;
    }
    m_delegate.saveAction(); // what the person sees is in it
    m_isRunning = true;
    m_stop = {};
    m_queue->addOperationWithBlock([self = QPointer(this), stop = m_stop.get_token(), store, options,
                                    bundle = m_delegate.libraryBundleDirectory()] {
        const auto tell = [self](LibraryBackup::Stage stage, qint64 done, qint64 total) {
            zqOnMainThread([self, stage, done, total] {
                if (self) {
                    Q_EMIT self->progressed(stage, done, total);
                }
            });
        };
        const BackupResult result = LibraryBackup(store, bundle).run(options, stop, tell);
        zqOnMainThread([self, result] {
            if (self) {
                self->end(result);
            }
        });
    });
    return true;
}

void BackupWork::stop()
{
    m_stop.request_stop();
}

void BackupWork::end(const BackupResult &result)
{
    m_result = result;
    m_isRunning = false;
    Q_EMIT ended();
}

QString BackupWork::stageText(LibraryBackup::Stage stage)
{
    switch (stage) {
    case LibraryBackup::Stage::Measuring:
        return zqLocalized("Looking at what changed");
    case LibraryBackup::Stage::Copying:
        return zqLocalized("Backing up");
    case LibraryBackup::Stage::Verifying:
        break;
    }
    return zqLocalized("Reading the backup again");
}
