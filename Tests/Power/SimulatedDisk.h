#pragma once

#include "Tests/Power/DiskImage.h"

#include <QList>
#include <QSet>
#include <QString>

#include <atomic>
#include <mutex>
#include <random>

// A disk below one folder that forgets at a power cut what was not brought to it. While it lives, this process's calls
// that flush, name, remove and shorten files come by (DiskCalls.cpp), those of the libraries it uses included, and each
// is a moment at which the power may fail. Flushing takes no time, since nothing really fails.
//
// What survives: the content of a file as it was when it was last flushed, the names in a folder as they were when that
// folder was; all of both after `syncfs`. Any thread.
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
    // those to which chance brought more at most `chances`.
    QList<Cut> cuts(int chances);

    // Names below `folder` and others cannot be renamed into each other, as between two file systems.
    void setOwnFileSystem(const QByteArray &folder);

    void setHasLinks(bool hasLinks); // a second name for a file is refused otherwise

    // For the calls. False for a flush that is none of this disk's.
    static SimulatedDisk *current();
    void willChange(const char *call);
    bool didFlush(int file, bool withAttributes);
    bool didFlushAll(int file);
    bool hasLinks() const { return m_hasLinks; }
    bool isBetweenFileSystems(const QByteArray &from, const QByteArray &to) const;

private:
    DiskImage look();
    void noteFlushed(const QString &moment);
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
    QList<Cut> m_certain;
    QList<Cut> m_byChance;
    QSet<DiskImage::Inode> m_seen;
    QList<int> m_held; // keep the numbers of inodes from being given to new files
};
