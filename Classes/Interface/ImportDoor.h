#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QStringList>

class QMimeData;
class ZQSidebarBaseItem;

// The window's way into the import manager. Main thread.
namespace ImportDoor {

QStringList localPaths(const QMimeData *data); // of the file addresses it carries
bool areFilesValid(const QStringList &paths, ZQSidebarBaseItem *forSidebarItem);
bool anySupported(const QStringList &paths);
bool anyDirectory(const QStringList &paths);
bool carriesContent(const QMimeData *data); // files, a picture or an address
QStringList openPanelExtensions();
void importFiles(const QStringList &paths, ZQSidebarBaseItem *into, quint32 atIndex);
void importPasteboard(const QMimeData *data, ZQSidebarBaseItem *into, quint32 atIndex);

} // namespace ImportDoor
