#include "Tests/Benchmarks/Live/WatchBench.h"

#include "Kit/Files/ZQFileWatcher.h"
#include "Kit/Files/ZQSystemFile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTimer>

#include <ftw.h>
#include <malloc.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int longestWait = 60'000; // milliseconds
constexpr int rounds = 20;
constexpr int changes = 10'000;

double milliseconds(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

// Of this process, in bytes; what was given back to the system does not count.
double memory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    return file.open(QIODevice::ReadOnly)
               ? file.readAll().split(' ').value(1).toDouble() * static_cast<double>(::sysconf(_SC_PAGESIZE))
               : 0;
}

int bareWatches = -1;
int bareCount = 0;

int watchBare(const char *path, const struct stat *, int kind, FTW *)
{
    if (kind == FTW_D) {
        ++bareCount;
        return ::inotify_add_watch(bareWatches, path, IN_ALL_EVENTS) < 0;
    }
    return 0;
}

// With the standard library's walk, which looks at each file.
bool bareTime(const QString &root, double &time)
{
    const ZQFileDescriptor inotify(::inotify_init1(IN_CLOEXEC));
    bareWatches = inotify.get();
    bareCount = 0;
    QElapsedTimer timer;
    timer.start();
    const bool isDone = ::nftw(QFile::encodeName(root).constData(), watchBare, 100, FTW_PHYS) == 0;
    time = milliseconds(timer);
    return isDone;
}

class Waiting
{
public:
    explicit Waiting(ZQFileWatcher &watcher)
    {
        QObject::connect(&watcher, &ZQFileWatcher::watchingDidStart, &m_loop, &QEventLoop::quit);
        QObject::connect(&watcher, &ZQFileWatcher::folderDidChange, &m_loop, &QEventLoop::quit);
        QObject::connect(&m_limit, &QTimer::timeout, &m_loop, [this] { m_loop.exit(1); });
        m_limit.setInterval(longestWait);
        m_limit.start();
    }
    bool wait() { return m_loop.exec() == 0; }

private:
    QEventLoop m_loop;
    QTimer m_limit;
};

} // namespace

bool measureWatches(const QString &root)
{
    double bare = 0;
    if (!bareTime(root, bare)) { // also brings all into the system's memory
        return false;
    }
    const int folders = bareCount;
    std::vector<double> times;
    std::vector<double> bareTimes;
    double added = 0;
    for (int i = 0; i < 3; ++i) {
        ::malloc_trim(0);
        const double before = memory();
        ZQFileWatcher watcher;
        Waiting waiting(watcher);
        QElapsedTimer timer;
        timer.start();
        if (!watcher.addPath(root) || !waiting.wait() || watcher.isSwept(root)) {
            return false;
        }
        times.push_back(milliseconds(timer));
        added = i == 0 ? memory() - before : added; // later ones may use what the first gave back
        if (!bareTime(root, bare)) {
            return false;
        }
        bareTimes.push_back(bare);
    }
    std::printf("folders %d\n", folders);
    std::printf("watches-s %.6f\n", *std::min_element(times.cbegin(), times.cend()) / 1e3);
    std::printf("watches-bare-s %.6f\n", *std::min_element(bareTimes.cbegin(), bareTimes.cend()) / 1e3);
    std::printf("folder-bytes %.1f\n", added / folders);
    return true;
}

bool measureLatency(const QString &root)
{
    ZQFileWatcher watcher;
    Waiting waiting(watcher);
    if (!watcher.addPath(root) || !waiting.wait()) {
        return false;
    }
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        QFile file(root + QStringLiteral("/latency"));
        if (!file.open(QIODevice::WriteOnly) || file.write("x") != 1) {
            return false;
        }
        file.close();
        QElapsedTimer timer;
        timer.start();
        if (!waiting.wait()) {
            return false;
        }
        times.push_back(milliseconds(timer));
    }
    QFile::remove(root + QStringLiteral("/latency"));
    std::sort(times.begin(), times.end());
    std::printf("latency-ms %.3f\nlatency-worst-ms %.3f\n", times[times.size() / 2], times.back());
    return true;
}

bool measureBurst(const QString &root)
{
    ZQFileWatcher watcher;
    {
        Waiting waiting(watcher);
        if (!watcher.addPath(root) || !waiting.wait()) {
            return false;
        }
    }
    int announcements = 0;
    QElapsedTimer sinceTold;
    QObject::connect(&watcher, &ZQFileWatcher::folderDidChange, [&] {
        ++announcements;
        sinceTold.start();
    });
    double longest = 0;
    QTimer tick;
    QElapsedTimer sinceTick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        longest = std::max(longest, milliseconds(sinceTick) - tick.interval());
        sinceTick.start();
    });
    tick.setTimerType(Qt::PreciseTimer);
    tick.setInterval(1);
    QProcess writer;
    writer.setWorkingDirectory(root);
    QEventLoop loop;
    QElapsedTimer sinceEnd;
    QObject::connect(&writer, &QProcess::finished, [&] {
        sinceEnd.start();
        QTimer::singleShot(2000, &loop, &QEventLoop::quit);
    });
    sinceTick.start();
    tick.start();
    writer.start(
        QStringLiteral("bash"),
        {QStringLiteral("-c"), QStringLiteral("for ((i = 0; i < %1; ++i)); do ((i % 100)) || mkdir -p burst/$i; "
                                              "printf x >burst/$((i - i % 100))/$i; done")
                                   .arg(changes)});
    loop.exec();
    QDir(root + QStringLiteral("/burst")).removeRecursively();
    if (!sinceTold.isValid() || writer.exitCode() != 0) {
        return false;
    }
    std::printf("burst-blocked-ms %.3f\nburst-announcements %d\n", longest, announcements);
    std::printf("burst-told-after-ms %.3f\n", milliseconds(sinceEnd) - milliseconds(sinceTold));
    return true;
}
