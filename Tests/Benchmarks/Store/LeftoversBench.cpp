#include "Tests/Benchmarks/Store/LeftoversBench.h"

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Tests/Support/ScriptedUser.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <sys/stat.h>

namespace {

// Of this process, in MB: what it holds, and the most since that was last forgotten.
double memory(const char *name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith(name)) {
                return line.simplified().split(' ').value(1).toDouble() / 1024;
            }
        }
    }
    return 0;
}

void forgetHighestMemory()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (file.open(QIODevice::WriteOnly)) {
        file.write("5");
    }
}

} // namespace

bool measureLeftovers(const QString &path)
{
    ScriptedUser user;
    ApplicationParts parts;
    parts.userInteraction = &user;
    tamberin_AppDelegate delegate(parts);
    delegate.setLibraryBundleDirectory(QFileInfo(path).absolutePath());
    if (!delegate.managedObjectContext()) {
        return false;
    }
    QEventLoop loop;
    QTimer tick;
    QElapsedTimer sinceTick;
    double longest = 0;
    QObject::connect(&tick, &QTimer::timeout, &tick, [&] {
        longest = std::max(longest, double(sinceTick.nsecsElapsed()) / 1e6 - tick.interval());
        sinceTick.start();
    });
    bool isDone = false;
    forgetHighestMemory();
    const double before = memory("VmRSS");
    tick.setTimerType(Qt::PreciseTimer);
    tick.start(1);
    sinceTick.start();
    QElapsedTimer all;
    all.start();
    delegate.checkAndDeleteLibraryLeftovers([&] {
        isDone = true;
        loop.quit();
    });
    if (!isDone) {
        loop.exec();
    }
    std::printf("leftovers-s %.4f\n", double(all.nsecsElapsed()) / 1e9);
    std::printf("leftovers-mb %.4f\n", memory("VmHWM") - before);
    std::printf("leftovers-blocked-ms %.4f\n", longest);
    return user.questions.isEmpty() && user.errors.isEmpty();
}

bool makeItemDirectories(const QString &path)
{
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    const QString library = QFileInfo(path).absolutePath() + QStringLiteral("/Library");
    if (!connection || !QDir().mkpath(library)) {
        return false;
    }
    ZQSQLiteStatement select = connection->prepare(QStringLiteral("SELECT bundleID FROM ZQLibraryBaseItem"));
    while (select.next()) {
        const QString directory = library + u'/' + select.text(0) + QStringLiteral(".ztlibraryitem");
        if (::mkdir(QFile::encodeName(directory).constData(), 0777) != 0) {
            return false;
        }
    }
    return !select.failed();
}
