#include "Classes/LiveFolders/FolderListing.h"

#include "Classes/LiveFolders/LiveFolderNames.h"
#include "Kit/Files/ZQFolderIdentity.h"
#include "Kit/Files/ZQSystemFile.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace {

constexpr int mostReadings = 5; // of a directory that does not come to rest

qint64 nanoseconds(const timespec &time)
{
    return qint64(time.tv_sec) * 1000000000 + time.tv_nsec;
}

FolderEntry entryOf(EntryKind kind, const struct stat &status)
{
    FolderEntry entry;
    entry.kind = kind;
    entry.inode = status.st_ino;
    if (kind != EntryKind::Folder) {
        entry.size = status.st_size;
        entry.modification = nanoseconds(status.st_mtim);
        entry.change = nanoseconds(status.st_ctim);
    }
    return entry;
}

// What a program writes into a package does not change the directory.
void addDocument(FolderEntry &entry, int folder, const char *name)
{
    struct stat status = {};
    const std::string document = std::string(name) + "/Data";
    if (fstatat(folder, document.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode)) {
        entry.size = status.st_size;
        entry.modification = std::max(entry.modification, nanoseconds(status.st_mtim));
        entry.change = std::max(entry.change, nanoseconds(status.st_ctim));
    }
}

// False when nobody knows what the entry is.
bool addEntry(int folder, const dirent &found, FolderListing &listing)
{
    const std::string_view name(found.d_name);
    const bool mayBeFolder = found.d_type == DT_DIR || found.d_type == DT_UNKNOWN;
    const bool mayBeFile = found.d_type == DT_REG || found.d_type == DT_UNKNOWN;
    EntryKind asFile = EntryKind::Nothing;
    EntryKind asFolder = EntryKind::Nothing;
    if (!LiveFolderNames::isLeftAlone(name)) {
        asFile = mayBeFile ? LiveFolderNames::kindOfFile(name) : EntryKind::Nothing;
        asFolder = mayBeFolder ? LiveFolderNames::kindOfDirectory(name) : EntryKind::Nothing;
    }
    if (asFile == EntryKind::Nothing && asFolder == EntryKind::Nothing) {
        return true;
    }
    struct stat status = {};
    if (fstatat(folder, found.d_name, &status, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT) != 0) {
        const int error = errno;
        if (error == ENOENT) { // went meanwhile
            return true;
        }
        if (fstatat(folder, ".", &status, 0) != 0) { // nor can any other
            errno = error;
            return false;
        }
        listing.unreadNames.append(QByteArray(name.data(), qsizetype(name.size())));
        return true;
    }
    const EntryKind kind = S_ISREG(status.st_mode) ? asFile : S_ISDIR(status.st_mode) ? asFolder : EntryKind::Nothing;
    if (kind == EntryKind::Nothing) {
        return true;
    }
    if (!LiveFolderNames::isText(name)) {
        ++listing.unheldNames;
        return true;
    }
    FolderEntry entry = entryOf(kind, status);
    if (kind == EntryKind::Package) {
        addDocument(entry, folder, found.d_name);
    }
    listing.entries.add(name, entry);
    return true;
}

bool readEntries(DIR *stream, FolderListing &listing)
{
    const int folder = dirfd(stream);
    for (;;) {
        errno = 0;
        const dirent *const found = readdir(stream);
        if (!found) {
            return errno == 0;
        }
        if (!addEntry(folder, *found, listing)) {
            return false;
        }
    }
}

// Nothing when it changed while it was read.
std::optional<FolderListing> readOnce(const QByteArray &path, FolderListing::Links links, bool isLastTime)
{
    FolderListing listing;
    const int follow = links == FolderListing::Links::Followed ? 0 : O_NOFOLLOW;
    ZQFileDescriptor file(::open(path.constData(), O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC | follow));
    struct stat before = {};
    if (!file.isOpen() || fstat(file.get(), &before) != 0) {
        listing.error = errno;
        const bool isGone = errno == ENOENT || errno == ENOTDIR || errno == ELOOP;
        listing.status = isGone ? FolderListing::Status::Gone : FolderListing::Status::Unreadable;
        return listing;
    }
    listing.device = before.st_dev;
    listing.inode = before.st_ino;
    const std::unique_ptr<DIR, int (*)(DIR *)> stream(fdopendir(file.get()), closedir);
    if (!stream) {
        listing.error = errno;
        return listing;
    }
    file.release();
    struct statfs system = {};
    listing.hasPassingInodes =
        fstatfs(dirfd(stream.get()), &system) == 0 &&
        ZQFolderIdentity::hasPassingInodes(static_cast<quint64>(static_cast<unsigned int>(system.f_type)));
    if (!readEntries(stream.get(), listing)) {
        listing.error = errno;
        listing.entries = {};
        return listing;
    }
    struct stat after = {};
    const bool isAtRest = fstat(dirfd(stream.get()), &after) == 0 && after.st_mtim.tv_sec == before.st_mtim.tv_sec &&
                          after.st_mtim.tv_nsec == before.st_mtim.tv_nsec;
    if (!isAtRest && !isLastTime) {
        return std::nullopt;
    }
    listing.entries.sort();
    listing.status = FolderListing::Status::Whole;
    return listing;
}

} // namespace

void FolderListing::keepUnread(const FolderEntries &was)
{
    for (const QByteArray &name : std::as_const(unreadNames)) {
        const std::string_view text(name.constData(), std::size_t(name.size()));
        if (const FolderEntry *const entry = was.find(text)) {
            entries.add(text, *entry);
        }
    }
    entries.sort();
}

FolderListing FolderListing::ofFolder(const QByteArray &path, Links links)
{
    std::optional<FolderListing> listing;
    for (int i = 1; !listing; ++i) {
        listing = readOnce(path, links, i == mostReadings);
    }
    return *std::move(listing);
}
