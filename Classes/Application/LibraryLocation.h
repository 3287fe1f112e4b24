#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

// Which library is the person's: the place that the preferences remember, and what a move that was cut off left to sort
// out there. Main thread, and the thread of a move.
namespace LibraryLocation {

inline const QString suffix = QStringLiteral(".ztlibrary");

enum class Missing { IsRefused, MayBeMade };

// Why `path` cannot be opened as a library; null when it can.
ZQError refusal(const QString &path);
// The same for one that is named for a single run, which may lie anywhere and, for some, need not exist yet.
ZQError refusalOfNamed(const QString &path, Missing missing);

// Remembers an existing library, the preferences on the disk; false, with what was remembered kept, when it cannot be
// used.
bool remember(const QString &path, ZQError *error = nullptr);
QString remembered();          // empty: none, or it cannot be used
QString rememberedOrDefault(); // that, or where the default library is; nothing is made

// The folder a path leads to, whatever links it goes through; for one that does not exist, where it would be made.
QString realPath(const QString &path);
bool isSamePlace(const QString &one, const QString &other);

// A move under way, for the launch after a kill. `copy`: the folder the copy is made in; empty when the bundle is
// renamed.
struct Move
{
    QString from;
    QString to;
    QString copy;
    bool isNull() const { return from.isEmpty(); }
};
// A null one: there is none any more. False when the preferences cannot be written, which then hold what they held.
bool noteMove(const Move &move, ZQError *error = nullptr);
Move notedMove();

inline const QString errorDomain = QStringLiteral("zelto.library");
enum ErrorCode { NoLibrary = 3, IsOpen, NotNoted };

} // namespace LibraryLocation
