#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

#include <functional>

// Moving a library bundle to another place. A kill at any moment leaves one whole library that the next launch finds:
// within a file system the bundle is renamed, and the preferences say beforehand from where to where; to another one
// it is copied beside its new place, brought to the disk and given its name, and its old place is emptied only once
// the new one is remembered.
namespace LibraryMove {

// Why the library at `source` cannot go to `destination`: it is inside the bundle or around it, in the trash, in a
// folder that does not exist, or a library another process has open. Null when it can.
ZQError refusal(const QString &source, const QString &destination);

struct Progress
{
    std::function<void(double done, double total)> didCopy; // item directories
    std::function<bool()> isCancelled;
};

// Moves and remembers the new place. What stands at `destination` goes to the trash. After a failure or a cancel the
// library is where it was. Any thread; nothing else may use the library meanwhile.
bool move(const QString &source, const QString &destination, const Progress &progress, ZQError *error);

// Removes the half of a copy that an interrupted move of `bundle` left. Only while this process has `bundle` locked.
void removeInterruptedCopy(const QString &bundle);

// In the domain of LibraryLocation.
enum ErrorCode { SamePlace = 10, InsideLibrary, AroundLibrary, InTrash, NoFolder, DestinationInUse, Cancelled };

} // namespace LibraryMove
