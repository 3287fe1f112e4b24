#pragma once

#include "Kit/Files/ZQSystemFile.h"

#include <functional>
#include <optional>

// What all ways of copying here have in common, and nobody else needs. Paths are the bytes the system sees.
namespace ZQCopyParts {

using IsCancelled = std::function<bool()>;

// True, with ECANCELED, when the copying is to end.
bool isStopped(const IsCancelled &isCancelled, ZQError *error);

enum class LinkRule { Follow, Refuse };

// A regular file, open for reading. Anything else is refused before it is opened, since opening a pipe can wait and
// opening a device can act.
ZQFileDescriptor openRegularFile(const QByteArray &path, LinkRule rule, struct stat *status, ZQError *error);

bool isFolder(const QByteArray &path); // or a link to one

// Makes `target` share the blocks of `source`, as some file systems can. It no longer follows the source.
bool clone(int source, int target);

// Calls `pass`, which reads `source` to its end and answers how many bytes that were (nothing, with an error of its
// own, when it failed), again when the source changed meanwhile, and refuses one that does not hold still.
bool readUnchanged(int source, const QByteArray &path, const std::function<std::optional<qint64>()> &pass,
                   ZQError *error);

// For what is copied anew from its beginning. errno tells why not.
bool empty(int target);

// Modes, times and extended attributes, as far as the destination takes them.
void keepMetadata(int source, int destination);

} // namespace ZQCopyParts
