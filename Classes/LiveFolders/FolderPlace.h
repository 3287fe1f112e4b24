#pragma once

#include "Classes/LiveFolders/FolderListing.h"
#include "Classes/LiveFolders/LiveFolderRecord.h"

// Whether what lies at a folder's path is still that folder. A drive that was unmounted leaves an empty directory, and
// another one may be mounted in its place: read literally, everything would have been removed.
enum class FolderPlace {
    Here,
    HereAnew, // under another identity, as after a restart; what it held is there
    Emptied,  // it had something, and lists nothing
    Another,  // another directory, with other things
};

// `placeNow` where it was recorded, and can be read.
FolderPlace placeOf(const RecordedFolder &was, const FolderListing &now,
                    const std::optional<ZQFolderIdentity> &placeNow);
// Whether at least half of what was in a folder is in another one: files by name, size and time, folders by name.
bool holdsHalfOf(const FolderEntries &was, const FolderEntries &now);
