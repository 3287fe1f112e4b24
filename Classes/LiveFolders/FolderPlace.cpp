#include "Classes/LiveFolders/FolderPlace.h"

FolderPlace placeOf(const RecordedFolder &was, const FolderListing &now,
                    const std::optional<ZQFolderIdentity> &placeNow)
{
    const bool hadSomething = was.isKnown && !was.entries.isEmpty();
    if (hadSomething && now.entries.isEmpty()) {
        return FolderPlace::Emptied;
    }
    const bool isSame =
        was.place && placeNow ? was.place->isSamePlace(*placeNow) : was.device == now.device && was.inode == now.inode;
    if (isSame) {
        return FolderPlace::Here;
    }
    return !hadSomething || holdsHalfOf(was.entries, now.entries) ? FolderPlace::HereAnew : FolderPlace::Another;
}

bool holdsHalfOf(const FolderEntries &was, const FolderEntries &now)
{
    return !was.isEmpty() && 2 * now.countOfSame(was) >= qsizetype(was.all().size());
}
