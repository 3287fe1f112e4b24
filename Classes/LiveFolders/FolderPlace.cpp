#include "Classes/LiveFolders/FolderPlace.h"

#include <sys/statfs.h>

#include <cstring>

FolderPlace placeOf(const RecordedFolder &was, const FolderListing &now, quint64 fileSystemNow)
{
    const bool hadSomething = was.isKnown && !was.entries.isEmpty();
    if (hadSomething && now.entries.isEmpty()) {
        return FolderPlace::Emptied;
    }
    const bool isSame = was.device == now.device && was.inode == now.inode &&
                        (was.fileSystem == 0 || fileSystemNow == 0 || was.fileSystem == fileSystemNow);
    if (isSame) {
        return FolderPlace::Here;
    }
    return !hadSomething || holdsHalfOf(was.entries, now.entries) ? FolderPlace::HereAnew : FolderPlace::Another;
}

bool holdsHalfOf(const FolderEntries &was, const FolderEntries &now)
{
    return !was.isEmpty() && 2 * now.countOfSame(was) >= qsizetype(was.all().size());
}

quint64 fileSystemOfFolder(const QByteArray &path)
{
    struct statfs status = {};
    if (::statfs(path.constData(), &status) != 0) {
        return 0;
    }
    quint64 number = 0;
    static_assert(sizeof status.f_fsid == sizeof number);
    std::memcpy(&number, &status.f_fsid, sizeof number);
    return number == 0 ? 0 : number ^ quint64(status.f_type);
}
