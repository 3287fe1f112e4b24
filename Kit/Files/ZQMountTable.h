#pragma once

#include <QByteArray>

#include <vector>

// What is mounted where, as the kernel tells it. Paths are the bytes the system sees, absolute and without `.`, `..`
// and links; none of them is looked up on a disk, so that a server that does not answer stops nobody.
class ZQMountTable
{
public:
    struct Mount
    {
        bool operator==(const Mount &) const = default;
        QByteArray point;
        QByteArray type;
        QByteArray source; // a device, or what a server calls its place
        QByteArray number; // the device's, "major:minor"
        bool isSilent() const { return isSilentType(type); }
    };

    static QByteArray defaultPath() { return QByteArrayLiteral("/proc/self/mountinfo"); }
    static ZQMountTable read(const QByteArray &path = defaultPath()); // empty when there is none
    explicit ZQMountTable(const QByteArray &mountinfo = {});
    bool operator==(const ZQMountTable &) const = default;

    const Mount *mountOf(const QByteArray &path) const; // null when the table is empty
    // Whether changes that others make at the place of this path may come without any event: it lies on a server, or
    // behind a program.
    bool isSilent(const QByteArray &path) const;
    std::vector<Mount> mountsBelow(const QByteArray &folder) const; // that are not covered by others; not at it
    static bool isSilentType(const QByteArray &type);

private:
    std::vector<Mount> m_mounts; // the later one covers the earlier one
};

bool zqIsPathWithin(const QByteArray &path, const QByteArray &folder); // or the same
