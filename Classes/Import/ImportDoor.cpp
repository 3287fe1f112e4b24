#include "Classes/Import/ImportDoor.h"

#include "Classes/Import/AImportManager.h"
#include "Classes/Import/ImportKind.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/PasteboardFiles.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QMimeData>
#include <QUrl>

#include <utility>

namespace ImportDoor {

QStringList localPaths(const QMimeData *data)
{
    QStringList paths;
    for (const QUrl &url : data->urls()) {
        if (url.isLocalFile()) {
            paths.append(url.toLocalFile());
        }
    }
    return paths;
}

SidebarTargetRules::Files filesAtPaths(const QStringList &paths)
{
    return ImportQueries::kindsOfFilesAtPaths(paths);
}

bool carriesContent(const QMimeData *data)
{
    return PasteboardFiles::hasContent(*data);
}

bool dragCarriesContent(const QMimeData *data)
{
    return carriesContent(data) || AImportManager::sharedAImportManager().isPromised(*data);
}

QStringList openPanelExtensions()
{
    return importableExtensions();
}

void importFiles(const QStringList &paths, ZQSidebarBaseItem *into, quint32 atIndex)
{
    AImportManager::sharedAImportManager().importFilesAtPaths(paths, into->objectID(), atIndex, {});
}

void importPasteboard(const QMimeData *data, ZQSidebarBaseItem *into, quint32 atIndex)
{
    AImportManager::sharedAImportManager().importItemsFromPasteboard(data, into, atIndex);
}

void importDrop(const QMimeData *data, ZQSidebarBaseItem *into, quint32 atIndex)
{
    const bool hasFiles = !localPaths(data).isEmpty();
    if (hasFiles || !AImportManager::sharedAImportManager().importPromisedFiles(*data, into, atIndex)) {
        importPasteboard(data, into, atIndex);
    }
}

void setWatchedFolderCopy(
    std::function<void(const QStringList &paths, const ZQObjectID &folder, const WhereFroms &origin)> copy)
{
    AImportManager::sharedAImportManager().setWatchedFolderCopy(std::move(copy));
}

} // namespace ImportDoor
