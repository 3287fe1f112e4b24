#include "Kit/Imaging/ZQPreviewService.h"
#include "Kit/Imaging/ZQRenderPool.h"
#include "Tests/Kit/Imaging/ImagingSupport.h"
#include "Tests/Support/Skip.h"
#include "Tools/samples/SampleFormats.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <atomic>
#include <linux/landlock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

using Kind = ZQRenderRequest::Kind;
constexpr QSize box(100, 100);

long landlockVersion()
{
    return ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
}

bool hasLandlock()
{
    return landlockVersion() >= 1;
}

// Every call a worker may make, whatever its arguments are.
const char everyWorker[] =
    "access alarm arch_prctl brk chdir clock_getres clock_gettime clock_nanosleep close close_range copy_file_range "
    "dup "
    "dup2 dup3 epoll_create epoll_create1 epoll_ctl epoll_pwait epoll_pwait2 epoll_wait eventfd eventfd2 exit "
    "exit_group faccessat faccessat2 fadvise64 fallocate fchdir fdatasync fstat fstatfs fsync ftruncate futex getcpu "
    "getcwd getdents getdents64 getegid geteuid getgid getgroups getitimer getpeername getpgrp getpid getppid "
    "getrandom "
    "getresgid getresuid getrlimit getrusage gettid gettimeofday getuid lseek lstat madvise membarrier memfd_create "
    "mincore mmap mprotect mremap msync munmap nanosleep newfstatat pause pipe pipe2 poll ppoll pread64 preadv preadv2 "
    "pselect6 pwrite64 pwritev pwritev2 read readahead readlink readlinkat readv recvmsg restart_syscall rseq "
    "rt_sigaction rt_sigpending rt_sigprocmask rt_sigreturn rt_sigsuspend rt_sigtimedwait sched_get_priority_max "
    "sched_get_priority_min sched_getaffinity sched_getparam sched_getscheduler sched_yield select sendfile sendmsg "
    "set_robust_list set_tid_address setitimer setrlimit sigaltstack stat statfs statx sysinfo time times umask uname "
    "wait4 waitid write writev";
// With some arguments, of which the walk's zeros are some.
const char boundedCalls[] = "clone fcntl kill open openat prlimit64";
const char boundedArguments[] = "clone:thread|fcntl:copy|ioctl:terminal|kill:itself|open:read|openat:read|"
                                "prctl:name|prlimit64:itself|tgkill:itself";
const char withFileRules[] = "creat execve execveat fork mkdir mkdirat rename renameat renameat2 rmdir symlink "
                             "symlinkat unlink unlinkat vfork";
const char argumentsWithFileRules[] =
    "clone:process|open:create|open:write|openat:both|openat:create|openat:cut|openat:unnamed|openat:write";

class RenderConfinementTest : public ImagingTest
{
protected:
    RenderConfinementTest() { qputenv("ZELTO_RENDER", ZELTO_FAULTY_RENDERER); }
    ~RenderConfinementTest() override
    {
        qunsetenv("ZELTO_RENDER");
        qunsetenv("ZELTO_FAULTY_WITHOUT_LANDLOCK");
        qunsetenv("ZELTO_FAULTY_WITHOUT_SECCOMP");
    }

    QString fileNamed(const QString &name, const QByteArray &content)
    {
        EXPECT_TRUE(SampleFormats::writeBytes(content, path(name)));
        return path(name);
    }
    QStringList allowedCalls()
    {
        QProcess walk;
        walk.start(QStringLiteral(ZELTO_FAULTY_RENDERER), {QStringLiteral("calls"), path(QString())});
        EXPECT_TRUE(walk.waitForFinished());
        EXPECT_EQ(walk.exitCode(), 0) << walk.readAllStandardError().constData();
        QStringList out = QString::fromUtf8(walk.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
        out.sort();
        return out;
    }
    // What the system answers to the fault `name` with `content`.
    static QString attempt(ZQRenderPool &pool, const QString &file)
    {
        ZQError error;
        pool.perform(Kind::Bitmap, file, box, 0, &error);
        return error.userInfo.value(ZQError::failureReasonKey).toString();
    }
};

QStringList sorted(std::initializer_list<QStringList> parts)
{
    QStringList out;
    for (const QStringList &part : parts) {
        out.append(part);
    }
    out.sort();
    return out;
}

QStringList words(const char *text, QChar between = u' ')
{
    return QString::fromLatin1(text).split(between);
}

} // namespace

TEST_F(RenderConfinementTest, OnlyTheCallsThatDrawingTakesAreCarriedOut)
{
    const QStringList always = sorted({words(everyWorker), words(boundedCalls), words(boundedArguments, u'|')});
    if (hasLandlock()) {
        EXPECT_EQ(
            allowedCalls().join(u'\n').toStdString(),
            sorted({always, words(withFileRules), words(argumentsWithFileRules, u'|')}).join(u'\n').toStdString());
    } else {
        ADD_FAILURE() << "this system has no Landlock: the longer list of calls is not tested";
    }
    qputenv("ZELTO_FAULTY_WITHOUT_LANDLOCK", "1");
    QStringList shorter = always;
    shorter.removeAll(QStringLiteral("clone")); // with no flag at all it is a new process
    EXPECT_EQ(allowedCalls().join(u'\n').toStdString(), shorter.join(u'\n').toStdString());
}

TEST_F(RenderConfinementTest, RulesForFilesAloneKeepAWorkerFromFilesNetworkAndOtherProcesses)
{
    constexpr long versionWithSignals = 6;
    if (landlockVersion() < versionWithSignals) {
        return skipWithout("Landlock that knows of signals (version 6)");
    }
    qputenv("ZELTO_FAULTY_WITHOUT_SECCOMP", "1");
    ZQRenderPool pool({.processes = 1});
    const QString secret = fileNamed(QStringLiteral("secret.txt"), "secret");
    for (const auto &[name, code] : std::initializer_list<std::pair<const char *, int>>{{"read-other.png", EACCES},
                                                                                        {"write-other.png", EACCES},
                                                                                        {"cut-other.png", EACCES},
                                                                                        {"connect.png", EACCES},
                                                                                        {"listen.png", EACCES},
                                                                                        {"signal.png", EPERM}}) {
        EXPECT_EQ(attempt(pool, fileNamed(QLatin1String(name), secret.toUtf8())),
                  QString::fromLocal8Bit(std::strerror(code)))
            << name;
    }
    EXPECT_EQ(attempt(pool, fileNamed(QStringLiteral("write-own.png"), "x")), QStringLiteral("allowed"));
}

TEST_F(RenderConfinementTest, WithoutRulesForFilesNothingIsWrittenOrStarted)
{
    qputenv("ZELTO_FAULTY_WITHOUT_LANDLOCK", "1");
    ZQRenderPool pool({.processes = 1});
    const QString own = fileNamed(QStringLiteral("own.txt"), "mine");
    const QString missing = path(QStringLiteral("new"));
    for (const auto &[name, target] :
         std::initializer_list<std::pair<const char *, QString>>{{"write-other.png", own},
                                                                 {"write-other.png", missing},
                                                                 {"remove-other.png", own},
                                                                 {"cut-other.png", own},
                                                                 {"rename-other.png", own},
                                                                 {"make-other.png", missing},
                                                                 {"write-own.png", own},
                                                                 {"start-program.png", own}}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(attempt(pool, fileNamed(QLatin1String(name), target.toUtf8())),
                  QString::fromLocal8Bit(std::strerror(ENOSYS)));
    }
    QFile file(own);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("mine"));
    EXPECT_FALSE(QFile::exists(missing));
}

TEST_F(RenderConfinementTest, WithoutRulesForFilesPicturesAreDrawnAndOtherProgramsRefusedInWords)
{
    qputenv("ZELTO_FAULTY_WITHOUT_LANDLOCK", "1");
    ZQRenderPool pool({.processes = 1});
    std::atomic_int told = 0;
    ZQPreviewService::setUnconfinedHandler([&] { ++told; });
    for (const auto &[name, content] : std::initializer_list<std::pair<const char *, QByteArray>>{
             {"drawing.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='40' height='20'>"
                             "<text y='15'>Hi</text></svg>"},
             {"document.pdf", SampleFormats::pdfFile({100, 50}, "1 0 0 rg 0 0 100 50 re f")}}) {
        ZQError error;
        EXPECT_FALSE(
            pool.perform(Kind::Preview, fileNamed(QLatin1String(name), content), box, 0, &error).bitmap.isNull())
            << name << error.localizedDescription().toStdString();
    }
    QImage large(6000, 6000, QImage::Format_RGB32); // beyond what would go to a file
    large.fill(Qt::red);
    ASSERT_TRUE(large.save(path(QStringLiteral("large.tif"))) || large.save(path(QStringLiteral("large.tif")), "PNG"));
    EXPECT_FALSE(pool.perform(Kind::Bitmap, path(QStringLiteral("large.tif")), {}, 0, nullptr).bitmap.isNull());

    const QString folder = qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/thumbnailers");
    ASSERT_TRUE(QDir().mkpath(folder));
    const QString entry = folder + QStringLiteral("/unconfined.thumbnailer");
    ASSERT_TRUE(SampleFormats::writeBytes("[Thumbnailer Entry]\nExec=cp %i %o\nMimeType=image/x-xpixmap;\n", entry));
    for (const QString &refused : {fileNamed(QStringLiteral("a.eps"), SampleFormats::epsFile({40, 20}, "showpage")),
                                   fileNamed(QStringLiteral("a.ai"), SampleFormats::epsFile({40, 20}, "showpage")),
                                   fileNamed(QStringLiteral("a.xpm"), "XXXX")}) {
        ZQError error;
        EXPECT_TRUE(pool.perform(Kind::Preview, refused, box, 0, &error).bitmap.isNull());
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("cannot keep such a program from your files")))
            << error.localizedDescription().toStdString();
    }
    QFile::remove(entry);
    EXPECT_EQ(told, 1);
    ZQPreviewService::setUnconfinedHandler([&] { ++told; });
    EXPECT_EQ(told, 2) << "one who asks later is told at once";
}

TEST_F(RenderConfinementTest, WhatAWorkerPrintsDoesNotComeAmongWhatTheApplicationPrints)
{
    QFile heard(fileNamed(QStringLiteral("heard"), {}));
    ASSERT_TRUE(heard.open(QIODevice::ReadWrite));
    const QString speaking = fileNamed(QStringLiteral("speak.png"), "x");
    std::fflush(stdout);
    const ZQFileDescriptor before(::dup(STDOUT_FILENO));
    ASSERT_EQ(::dup2(heard.handle(), STDOUT_FILENO), STDOUT_FILENO);
    QString answer;
    {
        ZQRenderPool pool({.processes = 1});
        answer = attempt(pool, speaking);
    }
    ASSERT_EQ(::dup2(before.get(), STDOUT_FILENO), STDOUT_FILENO);
    EXPECT_EQ(answer, QStringLiteral("allowed"));
    EXPECT_EQ(heard.size(), 0);
}
