#include "Classes/Import/LiveFolderManager.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQOperationQueue.h"

void LiveFolderManager::syncWatchedFolders(const QList<ZQObjectID> &folders, bool shouldTraversSubFolders,
                                           bool forceSync)
{
    Q_UNUSED(shouldTraversSubFolders)
    Q_UNUSED(forceSync)
    if (!folders.isEmpty()) {
        qCWarning(zqLogImport) << "Live folders are not synchronised;" << folders.size() << "left as they are";
    }
}

void LiveFolderManager::stopSyncingWatchedFolders()
{
    m_syncOperationQueue.cancelAllOperations();
}
