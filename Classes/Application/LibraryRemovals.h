#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <chrono>

class LibraryPlaces;
class LibraryStore;
class QProcess;

// Removes files for good, in processes that may outlive this one, and keeps the note of item directories that are to
// go. Nothing outside the base directory is removed, nor anything by a relative path without one; what is refused is
// logged, and how a process ends is not looked at. Main thread. Destroying it would kill what runs: `waitForRemovals`
// or `leaveRemovals` come before.
class LibraryRemovals : public QObject
{
public:
    LibraryRemovals(LibraryPlaces &places, LibraryStore &store, QObject *parent);

    void deleteFilesAtPaths(const QStringList &paths, const QString &baseDirectory);
    QProcess *deleteTask() const { return m_deleteTask; } // the last that was started
    void waitForRemovals();                               // every removal that was started
    // At the end: those that take longer than a moment go on by themselves, without the library being held. Nothing is
    // lost by it: what they remove has left the store, names of item directories are never given again, and what they
    // do not come to is noted, so that the next launch removes it, or finds it gone.
    void leaveRemovals(std::chrono::milliseconds moment);

    QString removalsPath(); // of the note
    void noteRemovals(const QStringList &directories);
    void dropNotedRemovals(); // those that are gone

private:
    LibraryPlaces &m_places;
    LibraryStore &m_store;
    QProcess *m_deleteTask = nullptr;
};
