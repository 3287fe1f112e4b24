#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>

#include <QDir>
#include <QFileInfo>
#include <QJsonValue>
#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class LibraryIndex;
class tamberin_AppDelegate;
class ZQManagedObjectContext;
class ZQSidebarBaseItem;
class ZQLibraryBaseItem;
template <class T>
class ZQRef;

struct CommandContext;

// What is left of a command that waits for other work. Main thread.
struct PendingCommand
{
    std::function<bool()> isDone;                // what it waits for; looked at again and again
    std::function<int(CommandContext &)> finish; // once it is; answers the exit status
    QString wakes;                               // the notification after which it may be
};

// What a command works with: the open library, and where its words go. Collected instead of printed, because a command
// may run in the process of a window for another process.
struct CommandContext
{
    tamberin_AppDelegate *delegate = nullptr; // null for commands that need no library
    QString workingDirectory;
    bool json = false;
    QByteArray output; // data only
    QByteArray errors; // one line an error, each says what to do; and notes
    // In the process of a window: whether who asked has gone, as by Ctrl+C. Null where nobody can.
    std::function<bool()> isAbandoned;

    // In the process of a window: a command that waits for other work leaves the rest of it here instead, so that those
    // asked for meanwhile are served. Its status then says nothing.
    bool mayBeFinishedLater = false;
    std::optional<PendingCommand> pending;

    // In the process of a window: what answers in place of the store; null where nothing does.
    std::shared_ptr<LibraryIndex> index;

    ZQManagedObjectContext &store() const;
    bool isWanted() const { return !isAbandoned || !isAbandoned(); }
    // The index, when it is there already and knows what the store does; else null.
    LibraryIndex *readyIndex() const;
    QString absolutePath(const QString &path) const { return QDir(workingDirectory).absoluteFilePath(path); }
    // What a window is to open, as a desktop or a person writes it: a path, a file's address, or an address of the
    // application's scheme, which stays as it is.
    QString pathToOpen(const QString &given) const;

    void print(const QString &line) { output += line.toUtf8() + '\n'; }
    void printJSON(const QJsonValue &value);
    // Worth knowing, and nothing that went wrong.
    void note(const QString &text) { errors += "zelto: " + text.toUtf8() + '\n'; }
    // Exit status 2: nothing was changed, or of many items only some.
    int fail(const QString &message);
};

// REF: titles from a top-level entry down ("PROJECTS/Clients/Brand"; a title may itself hold a slash), or an entry's
// UUID text. Null with a message in `context` when there is none.
ZQRef<ZQSidebarBaseItem> zqSidebarItemForReference(const QString &reference, CommandContext &context);

// ITEM: a bundleID, a SHA1 (then every item with it) or a path inside the library. Nothing, with a message, when one of
// them names no item.
std::optional<QList<ZQRef<ZQLibraryBaseItem>>> zqItemsForReferences(const QStringList &references,
                                                                    CommandContext &context);
