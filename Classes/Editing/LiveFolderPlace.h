#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"

class EditRun;
class ZQSidebarWatchedFolder;

// The live folder, if files can be put there now: it is in the sidebar, enabled and in its place. Null, told, if not.
ZQRef<ZQSidebarWatchedFolder> zqFolderForFiles(EditRun &run, const ZQObjectID &id);
