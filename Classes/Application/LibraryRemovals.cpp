#include "Classes/Application/LibraryRemovals.h"

#include "Classes/Application/LeftoverSearch.h"
#include "Classes/Application/LibraryPlaces.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/RemovalNote.h"
#include "Kit/Foundation/ZQLog.h"

#include <QDeadlineTimer>
#include <QProcess>

namespace {
// Names come from the store, which may have come from elsewhere: nothing is removed but what lies in the base. Without
// a base a relative path would be looked for wherever the process happens to stand.
bool isRemovable(const QString &path, const QString &baseDirectory)
{
    const QStringList parts = path.split(u'/');
    const bool isPlain = !parts.contains(QStringLiteral("..")) && !parts.contains(QStringLiteral(".")) &&
                         !path.contains(QChar(QChar::Null));
    return !path.isEmpty() && isPlain && path.startsWith(u'/') == baseDirectory.isEmpty() && path != u"/";
}
} // namespace

LibraryRemovals::LibraryRemovals(LibraryPlaces &places, LibraryStore &store, QObject *parent)
    : QObject(parent), m_places(places), m_store(store)
{
}

void LibraryRemovals::deleteFilesAtPaths(const QStringList &paths, const QString &baseDirectory)
{
    QStringList arguments{QStringLiteral("-rf")};
    for (const QString &path : paths) {
        if (!isRemovable(path, baseDirectory)) {
            qCWarning(zqLogApplication).noquote() << "Not removed:" << path << "in" << baseDirectory;
            continue;
        }
        arguments.append(path.startsWith(u'-') ? QStringLiteral("./") + path : path);
    }
    if (arguments.size() == 1) {
        return;
    }
    auto *task = new QProcess(this);
    if (!baseDirectory.isEmpty()) {
        task->setWorkingDirectory(baseDirectory);
    }
    task->setStandardOutputFile(QProcess::nullDevice());
    task->setStandardErrorFile(QProcess::nullDevice());
    task->start(QStringLiteral("/bin/rm"), arguments);
    m_deleteTask = task;
}

void LibraryRemovals::waitForRemovals()
{
    for (QProcess *task : findChildren<QProcess *>()) {
        task->waitForFinished(-1);
    }
}

void LibraryRemovals::leaveRemovals(std::chrono::milliseconds moment)
{
    // Reachable to the end of this process, and never destroyed, which would kill what runs.
    static auto *const left = new QList<QProcess *>;
    const QDeadlineTimer end(moment);
    for (QProcess *task : findChildren<QProcess *>()) {
        if (!task->waitForFinished(int(end.remainingTime())) && task->state() != QProcess::NotRunning) {
            qCInfo(zqLogApplication).noquote()
                << "A removal goes on after the end of this process:" << task->workingDirectory();
            task->setParent(nullptr);
            left->append(task);
        }
    }
}

QString LibraryRemovals::removalsPath()
{
    return m_places.libraryBundleDirectory() + QStringLiteral("/pending-removals");
}

void LibraryRemovals::noteRemovals(const QStringList &directories)
{
    if (directories.isEmpty()) {
        return;
    }
    // Beside them what an earlier process noted and did not come to, but for what the store names again: its items are
    // wanted.
    const RemovalNote note(removalsPath(), m_places.libraryDirectory());
    const QStringList earlier = note.present();
    QStringList names = LeftoverSearch({m_places.libraryDirectory(), {}, {}, {}, m_store.coordinatorIfOpen()})
                            .unnamedOf(earlier)
                            .value_or(earlier);
    names.append(directories);
    names.removeDuplicates();
    note.write(names);
}

void LibraryRemovals::dropNotedRemovals()
{
    if (m_store.isLocked() && m_places.isLibraryKnown()) {
        RemovalNote(removalsPath(), m_places.libraryDirectory()).dropWhatIsGone();
    }
}
