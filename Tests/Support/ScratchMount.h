#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>

#include <cstdlib>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

// A small file system of its own at a folder, for as long as it lives: another disk, a full one, one that is mounted
// read-only. Without the rights for it `isMounted` is false, and the test is to skip.
class ScratchMount
{
public:
    // At the beginning of a test program, before it has threads: what it mounts is seen by no other. With `argv` the
    // program begins anew there, since it could not tell where it lies otherwise.
    static void useOwnMounts(char **argv = nullptr)
    {
        constexpr const char *begunAnew = "ZELTO_HAS_OWN_MOUNTS";
        if (::getenv(begunAnew)) {
            s_isPossible = true;
            return;
        }
        const QString program = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
        const QString folder = QDir::currentPath();
        if (::unshare(CLONE_NEWNS) == 0) {
            s_isPossible = ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
        }
        if (s_isPossible && argv && QDir::setCurrent(folder) && ::setenv(begunAnew, "1", 1) == 0) {
            ::execv(QFile::encodeName(program).constData(), argv);
        }
    }

    explicit ScratchMount(const QString &folder, qint64 bytes = 16LL << 20) : m_folder(QFile::encodeName(folder))
    {
        QDir().mkpath(folder);
        const QByteArray options = "size=" + QByteArray::number(bytes) + ",mode=0700";
        m_isMounted = s_isPossible && ::mount("scratch", m_folder.constData(), "tmpfs", 0, options.constData()) == 0;
    }
    ~ScratchMount()
    {
        if (m_isMounted) {
            ::umount2(m_folder.constData(), MNT_DETACH);
        }
    }
    ScratchMount(const ScratchMount &) = delete;
    ScratchMount &operator=(const ScratchMount &) = delete;

    bool isMounted() const { return m_isMounted; }
    bool setReadOnly(bool isReadOnly) const
    {
        const unsigned long flags = isReadOnly ? MS_REMOUNT | MS_RDONLY : MS_REMOUNT;
        return ::mount(nullptr, m_folder.constData(), nullptr, flags, nullptr) == 0;
    }

private:
    static inline bool s_isPossible = false;
    QByteArray m_folder;
    bool m_isMounted;
};
