#pragma once

#include <QString>

// Writes a report when this process ends by a fault of its own (SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT,
// std::terminate), and then lets it end as it would have. A report says where in the program it happened, of which
// version, and which kinds of messages were logged last: what they say may hold names, paths and tags of a library, and
// is in no report. Processes that are forked of this one write none, and a program that is started has handlers of its
// own. Once a process; main thread.
namespace CrashHandler {

// Into `folder`, which is there. False: nothing can be written there, or it is installed already; nothing was changed.
bool install(const QString &folder, const QString &version);

constexpr char newSuffix[] = ".new"; // of a report that nobody has seen yet

} // namespace CrashHandler
