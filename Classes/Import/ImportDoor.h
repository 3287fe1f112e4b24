#pragma once

#include "Classes/Editing/SidebarTargetRules.h"
#include "Classes/Tags/WhereFroms.h"

#include <QStringList>

#include <functional>

class QMimeData;
class ZQSidebarBaseItem;

// The way into the import manager for files and clipboards that a person hands over. Main thread.
namespace ImportDoor {

QStringList localPaths(const QMimeData *data); // of the file addresses it carries
SidebarTargetRules::Files filesAtPaths(const QStringList &paths);
bool carriesContent(const QMimeData *data);     // files or a picture
bool dragCarriesContent(const QMimeData *data); // or a file that another program promises to write; asks nobody for it
QStringList openPanelExtensions();
void importFiles(const QStringList &paths, ZQSidebarBaseItem *into, quint32 atIndex);
void importPasteboard(const QMimeData *data, ZQSidebarBaseItem *into, quint32 atIndex);
// What is dropped: files as they are, or else what is promised, or else the picture.
void importDrop(const QMimeData *data, ZQSidebarBaseItem *into, quint32 atIndex);
// What any of these is to bring into a live folder is copied there by this, as far as live folders show it; null: it is
// refused.
void setWatchedFolderCopy(
    std::function<void(const QStringList &paths, const ZQObjectID &folder, const WhereFroms &origin)> copy);

} // namespace ImportDoor
