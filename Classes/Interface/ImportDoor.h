#pragma once

#include "Classes/Editing/SidebarTargetRules.h"

#include <QStringList>

class QMimeData;
class ZQSidebarBaseItem;

// The window's way into the import manager. Main thread.
namespace ImportDoor {

QStringList localPaths(const QMimeData *data); // of the file addresses it carries
SidebarTargetRules::Files filesAtPaths(const QStringList &paths);
bool carriesContent(const QMimeData *data); // files or a picture
QStringList openPanelExtensions();
void importFiles(const QStringList &paths, ZQSidebarBaseItem *into, quint32 atIndex);
void importPasteboard(const QMimeData *data, ZQSidebarBaseItem *into, quint32 atIndex);

} // namespace ImportDoor
