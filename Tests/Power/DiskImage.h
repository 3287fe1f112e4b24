#pragma once

#include <QByteArray>
#include <QMap>
#include <QSet>

#include <random>

#include <sys/stat.h>

// What a disk holds below one folder: its files and folders by their inodes, so that names and contents are apart as
// they are for the disk.
class DiskImage
{
public:
    using Inode = quint64;
    struct Node
    {
        mode_t mode = 0;
        QByteArray content; // of a link, where it leads
        QMap<QByteArray, QByteArray> attributes;
        timespec modification = {};
        QMap<QByteArray, Inode> entries; // of a folder
        timespec change = {};
        bool isSettled = false; // a later change gives another `change`

        bool isFolder() const { return S_ISDIR(mode); }
        Node withoutContent() const; // as it is when its name alone has arrived
    };

    Inode root = 0;
    QMap<Inode, Node> nodes;
    QSet<Inode> renamed; // the old name of one goes when its new one comes

    // What of it a disk writes before it is told to.
    struct Habit
    {
        const char *name;
        bool newNames;
        bool renamings;
        bool removals;
        bool contents;
    };

    // What is at `folder` now. Nodes that are as `before` has them share its bytes.
    static DiskImage ofFolder(const QByteArray &folder, const DiskImage &before);
    // Makes an empty `folder` hold this.
    void layOut(const QByteArray &folder) const;
    // Without what no name leads to.
    DiskImage reachable() const;
    bool isSameAs(const DiskImage &other) const;

    // Takes over the content, the attributes and the times of one file, or the names in one folder; a file that was
    // renamed from or to another folder loses its old name with it. A file that is new has its attributes in any case.
    void bringContent(Inode file, const DiskImage &live, bool withAttributes = true);
    void bringNames(Inode folder, const DiskImage &live);
    // This, and of what `live` has beyond it what chance let arrive. A renaming arrives whole or not at all, every
    // other name by itself; files arrive with a part of their pages.
    DiskImage withSomeOf(const DiskImage &live, std::mt19937 &random) const;
    // Takes over what the habit lets arrive.
    void bringBy(const Habit &habit, const DiskImage &live);

private:
    struct Change // of one name
    {
        Inode folder;
        QByteArray name;
        Inode before; // 0 for none
        Inode after;
    };
    using Changes = QList<Change>;
    QList<Changes> changesTo(const DiskImage &live) const; // those that arrive together in one list
    void apply(const Change &change, const DiskImage &live);
};
