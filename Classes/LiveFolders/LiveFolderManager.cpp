#include "Classes/LiveFolders/LiveFolderManager.h"

#include "Kit/Foundation/ZQLog.h"

LiveFolderManager::LiveFolderManager() : m_syncOperationQueue(QStringLiteral("Live folders"), 1) {}

void LiveFolderManager::syncWatchedFolder(const ZQObjectID & /*folder*/, bool /*force*/)
{
    qCWarning(zqLogImport) << "Live folders are not synchronised; one is left as it is";
}

void LiveFolderManager::stopSyncingWatchedFolders(const QList<ZQObjectID> & /*folders*/)
{
    m_syncOperationQueue.cancelAllOperations();
}
