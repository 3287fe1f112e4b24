#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"

class EditRun;
class ZQSidebarWatchedFolder;

// The live folder, if files can be put there now: it is in the sidebar, enabled and in its place, and what is there is
// that folder and not one that has its name, as of a disk that is away. Null, with an error or told, if not.
ZQRef<ZQSidebarWatchedFolder> zqFolderForFiles(ZQManagedObjectContext &context, const ZQObjectID &id, ZQError *error);
ZQRef<ZQSidebarWatchedFolder> zqFolderForFiles(EditRun &run, const ZQObjectID &id);
