#pragma once

#include "Tests/Power/DiskImage.h"

#include <QList>
#include <QSet>
#include <QString>

#include <atomic>
#include <mutex>
#include <random>
#include <vector>

// A disk below one folder that forgets at a power cut what was not brought to it. While it lives, this process's calls
// that flush, name, remove and shorten files come by (DiskCalls.cpp), those of the libraries it uses included, and each
// is a moment at which the power may fail. Flushing takes no time, since nothing really fails.
//
// What survives: the content of a file as it was when it was last flushed, the names in a folder as they were when that
// folder was; all of both after `syncfs`. Of the rest a disk writes what it likes before it is told to: nothing at all,
// always the same kind of change (`DiskImage::Habit`), or what chance lets arrive. Any thread.
class SimulatedDisk
{
public:
    struct Cut
    {
        QString moment;
        int reports; // what had been reported as done before
        DiskImage image;
    };

    SimulatedDisk(const QByteArray &folder, quint32 seed);
    ~SimulatedDisk();
    SimulatedDisk(const SimulatedDisk &) = delete;
    SimulatedDisk &operator=(const SimulatedDisk &) = delete;

    void report(); // the program said of something that it is done
    // Ends the listening. Each different disk that a cut can leave: all that hold nothing more than was flushed, and of
    // those that hold more at most `chances`, spread over the moments before a flush or after a report, where the most
    // is under way, and a third of it over the others.
    QList<Cut> cuts(int chances);

    // Names below `folder` and others cannot be renamed into each other, as between two file systems.
    void setOwnFileSystem(const QByteArray &folder);

    void setHasLinks(bool hasLinks); // a second name for a file is refused otherwise

    // For the calls. A flush that is none of this disk's is passed over.
    static SimulatedDisk *current();
    void willChange(const char *call);
    void willRename(DiskImage::Inode file);
    void flush(int file, bool withAttributes);
    void flushAll(int file);
    bool hasLinks() const { return m_hasLinks; }
    bool isBetweenFileSystems(const QByteArray &from, const QByteArray &to) const;

private:
    struct Disk
    {
        DiskImage::Habit habit;
        DiskImage image;
    };

    DiskImage look();
    void noteFlushed(const QString &moment);
    void letArrive(const DiskImage &live);
    void noteArrived(const DiskImage &live, const QString &moment);
    static void add(QList<Cut> &cuts, const Cut &cut);
    bool isOurs(int file) const;

    const QByteArray m_folder;
    std::mutex m_mutex;
    std::mt19937 m_random;
    DiskImage m_flushed;
    DiskImage m_live;
    QString m_lastFlush;
    int m_reports = 0;
    int m_moments = 0;
    QByteArray m_ownFileSystem;
    std::atomic<bool> m_hasLinks = true;
    std::vector<Disk> m_withHabits;
    QSet<DiskImage::Inode> m_renamed;
    QList<Cut> m_certain;
    QList<Cut> m_atFlushes;
    QList<Cut> m_byChance;
    QSet<DiskImage::Inode> m_seen;
    QList<int> m_held; // keep the numbers of inodes from being given to new files
};
