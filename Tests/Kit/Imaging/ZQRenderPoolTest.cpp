#include "Kit/Imaging/ZQRenderPool.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Imaging/ZQPreviewService.h"
#include "Tests/Kit/Imaging/ImagingSupport.h"
#include "Tests/Support/FileSizeLimit.h"
#include "Tools/samples/SampleFormats.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

using Kind = ZQRenderRequest::Kind;
using namespace std::chrono_literals;

constexpr QSize box(100, 100);

// The processes whose group `leader` leads.
int processesInGroup(pid_t leader)
{
    int count = 0;
    for (const QString &name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        const pid_t process = name.toInt();
        count += process > 0 && ::getpgid(process) == leader ? 1 : 0;
    }
    return count;
}

qsizetype openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::System | QDir::Files).size();
}

// The children of this process that have ended and were not waited for.
int zombies()
{
    int count = 0;
    for (const QString &name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QFile file(QStringLiteral("/proc/%1/stat").arg(name));
        const QByteArray stat = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        const QList<QByteArray> words = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        count += words.size() > 1 && words.at(0) == "Z" && words.at(1).toInt() == ::getpid() ? 1 : 0;
    }
    return count;
}

qsizetype workerFolders()
{
    return QDir(QDir::tempPath()).entryList({QStringLiteral("zelto-render.*")}, QDir::Dirs).size();
}

// A pool whose workers misbehave on files of certain names; see FaultyRenderer.
class RenderPoolTest : public ImagingTest
{
protected:
    RenderPoolTest() { qputenv("ZELTO_RENDER", ZELTO_FAULTY_RENDERER); }
    ~RenderPoolTest() override { qunsetenv("ZELTO_RENDER"); }

    QString fileNamed(const QString &name, const QByteArray &content)
    {
        EXPECT_TRUE(SampleFormats::writeBytes(content, path(name)));
        return path(name);
    }
    QString picture()
    {
        QImage image(200, 100, QImage::Format_RGBA8888);
        image.fill(QColor(10, 200, 30));
        const QString out = path(QStringLiteral("picture.png"));
        EXPECT_TRUE(image.save(out));
        return out;
    }
    static bool draws(ZQRenderPool &pool, const QString &picture)
    {
        const ZQBitmap bitmap = pool.perform(Kind::Bitmap, picture, box, 0, nullptr).bitmap;
        return bitmap.size() == QSize(100, 50) && colorAt(bitmap, 0.5, 0.5) == QColor(10, 200, 30);
    }
};

TEST_F(RenderPoolTest, AWorkerThatFailsCostsItsOwnRequestOnly)
{
    ZQRenderPool pool({.time = 30s, .processes = 1});
    const QString good = picture();
    ASSERT_TRUE(draws(pool, good));
    for (const char *row : {"crash.png", "leave.png", "garbage.png", "lie-short.png", "lie-long.png",
                            "lie-unsealed.png", "lie-half-sealed.png", "lie-box.png", "lie-tall.png", "lie-huge.png",
                            "lie-negative.png", "lie-area.png", "greet.png", "lie-kind.png", "bytes.png"}) {
        SCOPED_TRACE(row);
        ZQError error;
        const QString bad = fileNamed(QLatin1String(row), "x");
        EXPECT_TRUE(pool.perform(Kind::Bitmap, bad, box, 0, &error).bitmap.isNull());
        EXPECT_EQ(error.domain, QStringLiteral("zelto.imaging"));
        EXPECT_EQ(error.code, int(ZQImagingErrorCode::RendererStopped));
        EXPECT_EQ(
            error.localizedDescription(),
            QStringLiteral("The picture \"%1\" could not be drawn: the renderer stopped.").arg(QLatin1String(row)));
        EXPECT_TRUE(draws(pool, good));
    }
}

TEST_F(RenderPoolTest, TakesAPictureThatFitsItsBoxAndBytesThatNobodyCanChange)
{
    ZQRenderPool pool({.time = 30s, .processes = 1});
    EXPECT_EQ(pool.perform(Kind::Bitmap, fileNamed(QStringLiteral("fits.png"), "x"), box, 0, nullptr).bitmap.size(),
              box);
    EXPECT_EQ(pool.perform(Kind::EmbeddedPicture, fileNamed(QStringLiteral("bytes.png"), "x"), {}, 0, nullptr).bytes,
              QByteArray("bytes"));
    for (const char *bad : {"bytes-none.png", "bytes-unsealed.png", "bytes-many.png", "fits.png", "lie-kind.png"}) {
        ZQError error;
        EXPECT_TRUE(
            pool.perform(Kind::EmbeddedPicture, fileNamed(QLatin1String(bad), "x"), {}, 0, &error).bytes.isEmpty());
        EXPECT_EQ(error.code, int(ZQImagingErrorCode::RendererStopped)) << bad;
    }
}

TEST_F(RenderPoolTest, WhatIsNoFileWithAnythingInItIsNotHandedToAWorker)
{
    ZQRenderPool pool({.processes = 1});
    const QString pipe = path(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &none :
         {pipe, path({}), path(QStringLiteral("missing")), fileNamed(QStringLiteral("empty"), {})}) {
        ZQError error;
        EXPECT_TRUE(pool.perform(Kind::Bitmap, none, box, 0, &error).bitmap.isNull());
        const bool isEmpty = none.endsWith(QStringLiteral("empty"));
        EXPECT_EQ(error.code, int(isEmpty ? ZQImagingErrorCode::Empty : ZQImagingErrorCode::CannotRead));
        EXPECT_EQ(error.userInfo.value(ZQError::failureReasonKey).toString(),
                  isEmpty ? QStringLiteral("The file is empty.")
                          : QStringLiteral("It does not exist or you don't have the permission to read it."));
    }
    EXPECT_TRUE(pool.processIDs().empty());
}

TEST_F(RenderPoolTest, PreparesOneWorkerAndRemovesTheFoldersOfThoseLeftBehind)
{
    QDir temporary(QDir::tempPath());
    const QString left = QStringLiteral("zelto-render.999999999.left");
    const QString used = QStringLiteral("zelto-render.%1.used").arg(::getpid());
    ASSERT_TRUE(temporary.mkpath(left + QStringLiteral("/inner")) && temporary.mkpath(used));
    ZQRenderPool pool({.processes = 3});
    pool.prepare();
    pool.prepare();
    std::vector<pid_t> workers;
    while (workers.empty()) {
        workers = pool.processIDs();
        std::this_thread::sleep_for(1ms);
    }
    EXPECT_TRUE(draws(pool, picture()));
    pool.prepare();
    EXPECT_EQ(pool.processIDs(), workers);
    EXPECT_FALSE(temporary.exists(left));
    EXPECT_TRUE(temporary.exists(used));
    EXPECT_TRUE(temporary.rmdir(used));
}

TEST_F(RenderPoolTest, ClosingEndsWhatIsBeingDrawnAndStartsNothing)
{
    const qsizetype foldersBefore = workerFolders();
    ZQRenderPool pool({.time = 60s, .processes = 2});
    const QString good = picture();
    ASSERT_TRUE(draws(pool, good));
    ZQError error;
    std::thread asking([&] { pool.perform(Kind::Bitmap, fileNamed(QStringLiteral("hang.png"), "x"), box, 0, &error); });
    pid_t worker = -1;
    while (worker < 0 || processesInGroup(worker) < 2) {
        const std::vector<pid_t> all = pool.processIDs();
        worker = all.empty() ? -1 : all.back();
        std::this_thread::sleep_for(10ms);
    }
    pool.close();
    EXPECT_TRUE(pool.processIDs().empty());
    asking.join();
    EXPECT_EQ(error.code, int(ZQImagingErrorCode::RendererStopped));
    pool.close();
    pool.prepare();
    EXPECT_TRUE(pool.perform(Kind::Bitmap, good, box, 0, &error).bitmap.isNull());
    EXPECT_EQ(error.localizedDescription(),
              QStringLiteral("The picture \"picture.png\" can't be opened. Zelto is about to quit."));
    EXPECT_TRUE(pool.processIDs().empty());
    EXPECT_EQ(zombies(), 0);
    EXPECT_EQ(workerFolders(), foldersBefore);
}

TEST_F(RenderPoolTest, LimitsSuitTheComputerUnlessTheyAreGiven)
{
    EXPECT_EQ((ZQRenderLimits{.memory = 5, .processes = 7}.memoryOrDefault()), 5);
    EXPECT_EQ((ZQRenderLimits{.memory = 5, .processes = 7}.processesOrDefault()), 7);
    EXPECT_EQ(ZQRenderLimits{.processes = 1}.processesOrDefault(), 1);
    EXPECT_EQ(ZQRenderLimits{.memory = 1}.memoryOrDefault(), 1);
    const int cores = int(std::thread::hardware_concurrency());
    EXPECT_EQ(ZQRenderLimits().processesOrDefault(), cores < 2 ? 2 : cores > 2 ? 4 : 3);
    const qint64 gigabyte = qint64(1) << 30;
    const qint64 physical = qint64(::sysconf(_SC_PHYS_PAGES)) * ::sysconf(_SC_PAGESIZE);
    const qint64 memory = ZQRenderLimits().memoryOrDefault();
    EXPECT_TRUE(memory >= 3 * gigabyte && memory <= 12 * gigabyte);
    EXPECT_TRUE(memory <= qMax(physical, 3 * gigabyte) && (memory == 12 * gigabyte || memory * 2 > physical));
}

TEST_F(RenderPoolTest, TheProgramIsTheOneNamedOrTheOneBuilt)
{
    EXPECT_EQ(zqRenderProgram(), QStringLiteral(ZELTO_FAULTY_RENDERER));
    qputenv("ZELTO_RENDER", fileNamed(QStringLiteral("text"), "x").toUtf8());
    EXPECT_EQ(zqRenderProgram(), QString()) << "it cannot be run, and no other is taken for it";
    qunsetenv("ZELTO_RENDER");
    EXPECT_TRUE(zqRenderProgram().endsWith(QStringLiteral("/bin/zelto-render")));
    EXPECT_TRUE(QFileInfo(zqRenderProgram()).isExecutable());
}

TEST_F(RenderPoolTest, EveryNumberOfAnAnswerIsWithinBounds)
{
    ZQRenderPool pool({.time = 30s, .processes = 1});
    for (const char *lie :
         {"width -1", "width 0", "width 2147483647", "height -2147483648", "height 10000001", "orientation 9",
          "orientation -1", "bits 0", "bits 129", "frames 0", "frames -5", "model 4000"}) {
        SCOPED_TRACE(lie);
        ZQError error;
        const QString liar = fileNamed(QStringLiteral("lie-properties.png"), lie);
        EXPECT_FALSE(pool.perform(Kind::Properties, liar, {}, 0, &error).properties);
        EXPECT_EQ(error.code, int(ZQImagingErrorCode::RendererStopped));
    }
    // What a real file may say, too, is cut to what can be worked with.
    const QString boasting =
        fileNamed(QStringLiteral("lie-properties.png"), "frames 2000000000\ndurations 5000\ndpi 2147483647");
    const auto properties = pool.perform(Kind::Properties, boasting, {}, 0, nullptr).properties;
    ASSERT_TRUE(properties);
    EXPECT_EQ(properties->frameCount, 100'000);
    EXPECT_EQ(properties->dpi, 1'000'000);
    ASSERT_EQ(properties->frameDurations.size(), 5000);
    EXPECT_EQ(properties->frameDurations.last(), 3600'000);
    const QString still = fileNamed(QStringLiteral("lie-properties.png"), "frames 2\ndurations 5000");
    EXPECT_EQ(pool.perform(Kind::Properties, still, {}, 0, nullptr).properties->frameDurations.size(), 2);
}

TEST_F(RenderPoolTest, PropertiesComeWithThePictureOrWithWhyThereIsNone)
{
    ZQRenderPool pool({.time = 30s, .processes = 1});
    const QString good = picture();
    QFile file(good);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    const QString cut = fileNamed(QStringLiteral("cut.png"), content.left(content.indexOf("IDAT") + 4));
    for (const Kind kind : {Kind::Bitmap, Kind::Preview}) {
        ZQError error;
        const ZQRenderPool::Result both = pool.perform(kind, good, box, 0, &error, true);
        EXPECT_EQ(both.bitmap.size(), QSize(100, 50));
        ASSERT_TRUE(both.properties);
        EXPECT_EQ(both.properties->pixelWidth, 200);
        EXPECT_TRUE(error.isNull());
        EXPECT_FALSE(pool.perform(kind, good, box, 0, &error).properties);
        const ZQRenderPool::Result half = pool.perform(kind, cut, box, 0, &error, true);
        EXPECT_TRUE(half.bitmap.isNull());
        EXPECT_EQ(error.code, int(ZQImagingErrorCode::Damaged));
        ASSERT_TRUE(half.properties);
        EXPECT_EQ(half.properties->pixelHeight, 100);
        EXPECT_FALSE(pool.perform(kind, fileNamed(QStringLiteral("no.png"), "x"), box, 0, nullptr, true).properties);
    }
}

TEST_F(RenderPoolTest, PropertiesBesideAnAnswerAreBelievedNoMoreThanAlone)
{
    ZQRenderPool pool({.time = 30s, .processes = 1});
    const QString claim = fileNamed(QStringLiteral("claim.png"), "x");
    EXPECT_FALSE(pool.perform(Kind::Bitmap, claim, box, 0, nullptr).properties) << "nobody asked for them";
    EXPECT_TRUE(pool.perform(Kind::Bitmap, claim, box, 0, nullptr, true).properties);
    ZQError error;
    const QString liar = fileNamed(QStringLiteral("lie-beside.png"), "x");
    EXPECT_FALSE(pool.perform(Kind::Bitmap, liar, box, 0, &error, true).properties);
    EXPECT_EQ(error.code, int(ZQImagingErrorCode::RendererStopped));
    EXPECT_TRUE(draws(pool, picture()));
}

TEST_F(RenderPoolTest, ACancelEndsTheWorkerAndTheWaitForOne)
{
    ZQRenderPool pool({.time = 60s, .processes = 1});
    const QString bad = fileNamed(QStringLiteral("hang.png"), "x");
    const auto cancellation = std::make_shared<ZQCancellation>();
    std::array<ZQError, 2> errors;
    std::vector<std::thread> asking;
    for (ZQError &error : errors) { // one of them waits for the worker of the other
        asking.emplace_back([&] {
            const ZQCancellation::Scope scope(cancellation);
            pool.perform(Kind::Bitmap, bad, box, 0, &error);
        });
    }
    pid_t worker = -1;
    while (worker < 0 || processesInGroup(worker) < 2) { // until it has started its child
        const std::vector<pid_t> all = pool.processIDs();
        worker = all.empty() ? -1 : all.front();
        std::this_thread::sleep_for(10ms);
    }
    cancellation->cancel();
    for (std::thread &thread : asking) {
        thread.join();
    }
    for (const ZQError &error : errors) {
        EXPECT_EQ(error.code, int(ZQImagingErrorCode::Cancelled));
        EXPECT_EQ(error.localizedDescription(),
                  QStringLiteral("The picture \"hang.png\" was not drawn: that was cancelled."));
    }
    for (int i = 0; i < 1000 && processesInGroup(worker) > 0; ++i) {
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_EQ(processesInGroup(worker), 0);
    EXPECT_TRUE(draws(pool, picture())); // others go on
}

TEST_F(RenderPoolTest, EndsAWorkerThatTakesTooLongWithAllItStarted)
{
    ZQRenderPool pool({.time = 500ms, .processes = 1});
    const QString bad = fileNamed(QStringLiteral("hang.png"), "x");
    ZQError error;
    std::thread asking([&] { pool.perform(Kind::Bitmap, bad, box, 0, &error); });
    pid_t worker = -1;
    while (worker < 0) {
        const std::vector<pid_t> all = pool.processIDs();
        worker = all.empty() ? -1 : all.front();
    }
    asking.join();
    EXPECT_EQ(error.code, int(ZQImagingErrorCode::TookTooLong));
    EXPECT_EQ(error.localizedDescription(),
              QStringLiteral("The picture \"hang.png\" could not be drawn: it took too long."));
    // The child is somebody else's to wait for now; it goes at once, but not at this very moment.
    for (int i = 0; i < 1000 && processesInGroup(worker) > 0; ++i) {
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_EQ(processesInGroup(worker), 0);
}

TEST_F(RenderPoolTest, SaysThatMemoryRanOutHoweverMuchThatWas)
{
    ZQRenderPool pool({.processes = 1});
    ZQError error;
    EXPECT_TRUE(
        pool.perform(Kind::Bitmap, fileNamed(QStringLiteral("no-memory.png"), "x"), {}, 0, &error).bitmap.isNull());
    EXPECT_EQ(error.code, int(ZQImagingErrorCode::TooMuchMemory));
    EXPECT_EQ(error.localizedDescription(),
              QStringLiteral("The picture \"no-memory.png\" could not be drawn: it needs too much memory."));
    EXPECT_TRUE(draws(pool, picture()));
}

TEST_F(RenderPoolTest, SaysThatAPictureNeedsTooMuchMemory)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "memory is not limited under a sanitizer";
#endif
    ZQRenderPool pool({.memory = qint64(1) << 30, .processes = 1});
    for (const QString &bad : {fileNamed(QStringLiteral("memory.png"), "x"),
                               fileNamed(QStringLiteral("a.png"), SampleFormats::lyingPNG(20000, 20000))}) {
        SCOPED_TRACE(qPrintable(bad));
        ZQError error;
        EXPECT_TRUE(pool.perform(Kind::Bitmap, bad, {}, 0, &error).bitmap.isNull());
        EXPECT_EQ(error.code, int(ZQImagingErrorCode::TooMuchMemory)) << qPrintable(error.localizedDescription());
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("needs too much memory")));
    }
    EXPECT_TRUE(draws(pool, picture()));
}

TEST_F(RenderPoolTest, AWorkerReachesNoFileButTheOneItIsHanded)
{
    if (::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) < 1) {
        FAIL() << "this system has no Landlock: nothing keeps a worker from reading a file";
    }
    ZQRenderPool pool({.processes = 1});
    const QString secret = fileNamed(QStringLiteral("secret.txt"), "secret");
    for (const char *name : {"read-other.png", "write-other.png", "remove-other.png", "cut-other.png"}) {
        SCOPED_TRACE(name);
        ZQError error;
        pool.perform(Kind::Bitmap, fileNamed(QLatin1String(name), secret.toUtf8()), box, 0, &error);
        const QString told = error.userInfo.value(ZQError::failureReasonKey).toString();
        EXPECT_TRUE(told == QString::fromLocal8Bit(std::strerror(EACCES)) ||
                    told == QString::fromLocal8Bit(std::strerror(ENOSYS)))
            << qPrintable(error.localizedDescription());
    }
    QFile file(secret);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("secret"));
    ZQError error;
    pool.perform(Kind::Bitmap, fileNamed(QStringLiteral("read-other.png"), "/usr/share/mime/version"), box, 0, &error);
    EXPECT_EQ(error.userInfo.value(ZQError::failureReasonKey).toString(), QStringLiteral("allowed"));
}

TEST_F(RenderPoolTest, AWorkerHasNoNetwork)
{
    ZQRenderPool pool({.processes = 1});
    for (const char *name : {"call-network.png", "call-local.png"}) {
        SCOPED_TRACE(name);
        ZQError error;
        pool.perform(Kind::Bitmap, fileNamed(QLatin1String(name), "x"), box, 0, &error);
        EXPECT_EQ(error.userInfo.value(ZQError::failureReasonKey).toString(),
                  QString::fromLocal8Bit(std::strerror(ENOSYS)));
    }
}

TEST_F(RenderPoolTest, AnswersManyThreadsWhileSomeWorkersDie)
{
    const qsizetype foldersBefore = workerFolders();
    ZQRenderPool pool({.processes = 3});
    const QString good = picture();
    const QString bad = fileNamed(QStringLiteral("crash.png"), "x");
    ASSERT_TRUE(draws(pool, good));
    const qsizetype descriptorsBefore = openDescriptors();
    std::vector<std::thread> threads;
    std::array<int, 6> right{};
    constexpr int rounds = 12;
    for (size_t i = 0; i < right.size(); ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < rounds; ++round) {
                const bool crashes = i == 0 && round % 3 == 0;
                right[i] +=
                    int(crashes ? pool.perform(Kind::Bitmap, bad, box, 0, nullptr).bitmap.isNull() : draws(pool, good));
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (const int each : right) {
        EXPECT_EQ(each, rounds);
    }
    pool.close();
    EXPECT_LE(openDescriptors(), descriptorsBefore);
    EXPECT_EQ(zombies(), 0);
    EXPECT_EQ(workerFolders(), foldersBefore);
}

TEST_F(RenderPoolTest, AWorkerThatDiedInItsSleepCostsNothing)
{
    ZQRenderPool pool({.processes = 1});
    const QString good = picture();
    ASSERT_TRUE(draws(pool, good));
    const std::vector<pid_t> workers = pool.processIDs();
    ASSERT_EQ(workers.size(), 1U);
    ASSERT_EQ(::kill(workers.front(), SIGKILL), 0);
    siginfo_t information{};
    ASSERT_EQ(::waitid(P_PID, id_t(workers.front()), &information, WEXITED | WNOWAIT), 0);
    EXPECT_TRUE(draws(pool, good));
    EXPECT_NE(pool.processIDs(), workers);
}

TEST_F(RenderPoolTest, KeepsAWorkerWarmAndEndsAnIdleOne)
{
    ZQRenderPool warm({.processes = 3});
    const QString good = picture();
    ASSERT_TRUE(draws(warm, good));
    const std::vector<pid_t> first = warm.processIDs();
    ASSERT_TRUE(draws(warm, good));
    EXPECT_EQ(warm.processIDs(), first);

    ZQRenderPool impatient({.processes = 1, .idle = 20ms});
    ASSERT_TRUE(draws(impatient, good));
    for (int i = 0; i < 1000 && !impatient.processIDs().empty(); ++i) {
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_TRUE(impatient.processIDs().empty());
    EXPECT_TRUE(draws(impatient, good));
}

TEST_F(RenderPoolTest, AWorkerEndsWithWhoStartedIt)
{
    std::unique_ptr<ZQRenderProcess> process;
    std::thread starting([&] {
        QString failure;
        process = ZQRenderProcess::start({}, -1, &failure);
        ASSERT_TRUE(process) << qPrintable(failure);
        const ZQRenderRequest request{Kind::Bitmap, box, 0, QStringLiteral("none"), false};
        ASSERT_TRUE(process->send(request, STDIN_FILENO)); // it has prepared itself when it answers
        ASSERT_EQ(process->receive(request, 30s).outcome, ZQRenderProcess::Outcome::Answered);
    });
    starting.join();
    ASSERT_TRUE(process);
    siginfo_t information{};
    ASSERT_EQ(::waitid(P_PID, id_t(process->processID()), &information, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(information.si_status, SIGKILL);
}

TEST_F(RenderPoolTest, SaysWhenTheProgramIsMissingOrNoProgram)
{
    const QString text = fileNamed(QStringLiteral("program"), "not a program");
    ASSERT_TRUE(QFile::setPermissions(text, QFile::ReadOwner | QFile::ExeOwner));
    for (const QByteArray &program : {QByteArray("/no/such/program"), text.toUtf8(), QByteArray("/bin/true")}) {
        SCOPED_TRACE(program.constData());
        qputenv("ZELTO_RENDER", program);
        ZQRenderPool pool({.processes = 1});
        ZQError error;
        EXPECT_TRUE(pool.perform(Kind::Bitmap, picture(), box, 0, &error).bitmap.isNull());
        EXPECT_EQ(error.domain, QStringLiteral("zelto.imaging"));
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("picture.png")));
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("zelto-render")))
            << qPrintable(error.localizedDescription());
    }
}

TEST_F(RenderPoolTest, SaysWhenThereIsNoRoomForPictures)
{
    const QString file = picture();
    ZQRenderPool pool({.processes = 1});
    ZQError error;
    {
        const FileSizeLimit limit(4096);
        EXPECT_TRUE(pool.perform(Kind::Bitmap, file, box, 0, &error).bitmap.isNull());
    }
    EXPECT_TRUE(error.localizedDescription().contains(QString::fromLocal8Bit(std::strerror(EFBIG))))
        << qPrintable(error.localizedDescription());
    EXPECT_TRUE(draws(pool, file)) << "once there is";
}

TEST_F(RenderPoolTest, LargePicturesComeWhole)
{
    QImage image(1500, 1100, QImage::Format_RGBA8888);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixelColor(x, y, QColor(x % 256, y % 256, (x + y) % 256, 255));
        }
    }
    const QString file = path(QStringLiteral("large.png"));
    ASSERT_TRUE(image.save(file));
    ZQRenderPool pool({.processes = 1});
    ZQBitmap bitmap = pool.perform(Kind::Bitmap, file, {}, 0, nullptr).bitmap;
    EXPECT_EQ(bitmap.image(), image);
    pool.close();
    EXPECT_EQ(bitmap.image(), image); // outlives its worker
}

// A thumbnailer for pixmaps that drops the first four bytes of the file `input` names.
void registerThumbnailer(const QString &input)
{
    const QString folder = qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/thumbnailers");
    ASSERT_TRUE(QDir().mkpath(folder));
    const QByteArray entry = "[Thumbnailer Entry]\nExec=dd if=" + input.toUtf8() +
                             " of=%o bs=1 skip=4 status=none\nMimeType=image/x-xpixmap;\n";
    ASSERT_TRUE(SampleFormats::writeBytes(entry, folder + QStringLiteral("/test.thumbnailer")));
}

TEST_F(RenderPoolTest, AThumbnailerReadsTheFileItDrawsAndNoOther)
{
    QFile file(picture());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray hidden = "XXXX" + file.readAll();
    const QString drawn = fileNamed(QStringLiteral("drawn here.xpm"), hidden);
    const QString other = fileNamed(QStringLiteral("other.xpm"), hidden);
    ZQRenderPool pool({.processes = 1});
    registerThumbnailer(QStringLiteral("%i"));
    EXPECT_EQ(pool.perform(Kind::Preview, drawn, box, 0, nullptr).bitmap.size(), QSize(100, 50));
    registerThumbnailer(other);
    ZQError error;
    EXPECT_TRUE(pool.perform(Kind::Preview, drawn, box, 0, &error).bitmap.isNull());
    EXPECT_EQ(error.code, int(ZQImagingErrorCode::UnknownFormat));

    registerThumbnailer(QStringLiteral("%i")); // for an application that has no standard input
    const ZQFileDescriptor input(::dup(STDIN_FILENO));
    ASSERT_EQ(::dup2(ZQFileDescriptor(::open(qPrintable(drawn), O_RDONLY)).get(), STDIN_FILENO), STDIN_FILENO);
    QString failure;
    const auto process = ZQRenderProcess::start({.time = 30s}, STDIN_FILENO, &failure);
    const ZQRenderRequest request{Kind::Thumbnailer, box, 0, drawn, false};
    const bool isSent = process && process->send(request, STDIN_FILENO);
    ::dup2(input.get(), STDIN_FILENO);
    ASSERT_TRUE(isSent) << qPrintable(failure);
    EXPECT_EQ(process->receive(request, 30s).bitmap.size(), QSize(100, 50));
}

} // namespace

TEST_F(RenderPoolTest, AWorkerWhoseFolderWasCleanedAwayIsReplaced)
{
    qunsetenv("ZELTO_RENDER"); // the real one, which runs Ghostscript in that folder
    ZQRenderPool pool({.time = 30s, .processes = 1});
    ASSERT_TRUE(draws(pool, picture()));
    const QStringList own{QStringLiteral("zelto-render.%1.*").arg(::getpid())};
    QDir temporary(QDir::tempPath());
    ASSERT_FALSE(temporary.entryList(own, QDir::Dirs).isEmpty());
    for (const QString &folder : temporary.entryList(own, QDir::Dirs)) {
        ASSERT_TRUE(QDir(temporary.filePath(folder)).removeRecursively());
    }
    const QString drawing = fileNamed(QStringLiteral("drawing.eps"),
                                      SampleFormats::epsFile({40, 20}, "1 0 0 setrgbcolor 5 5 9 9 rectfill"));
    ZQError error;
    EXPECT_FALSE(pool.perform(Kind::Bitmap, drawing, box, 0, &error).bitmap.isNull())
        << qPrintable(error.localizedDescription());
}
