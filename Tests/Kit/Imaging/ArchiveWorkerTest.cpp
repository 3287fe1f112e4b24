#include "Kit/Files/ZQArchiveReader.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Imaging/ZQArchiveWorker.h"
#include "Kit/Imaging/ZQRenderPool.h"
#include "Tests/Kit/Imaging/ImagingSupport.h"
#include "Tools/samples/SampleArchives.h"
#include "Tools/samples/SampleFormats.h"

#include <QDir>
#include <QFile>

#include <atomic>
#include <thread>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

// Workers that misbehave on entries of certain names; see FaultyRenderer.
class ArchiveWorkerTest : public ImagingTest
{
protected:
    ArchiveWorkerTest() { qputenv("ZELTO_RENDER", ZELTO_FAULTY_RENDERER); }
    ~ArchiveWorkerTest() override
    {
        qunsetenv("ZELTO_RENDER");
        qunsetenv("ZELTO_FAULTY_WITHOUT_LANDLOCK");
        qunsetenv("ZELTO_FAULTY_WITHOUT_SECCOMP");
    }

    QString archiveOf(const QByteArray &entry)
    {
        EXPECT_TRUE(SampleFormats::writeBytes(SampleArchives::zipFile({{entry, "content"}}), path("a.zip")));
        return path("a.zip");
    }
    bool extract(ZQArchiveWorker &worker, const QByteArray &entry)
    {
        QDir(path("out")).removeRecursively();
        error = {};
        return ZQArchiveReader(worker, {}).extractArchive(archiveOf(entry), path("out"), 0, &error);
    }
    QString path(const char *name) const { return ImagingTest::path(QLatin1String(name)); }

    ZQError error;
};

} // namespace

TEST_F(ArchiveWorkerTest, AWorkerThatFailsOrLiesCostsItsArchiveOnly)
{
    ZQArchiveWorker worker;
    for (const char *fault : {"crash", "size", "time", "kind", "opened", "unknown", "ended", "block", "nothing"}) {
        SCOPED_TRACE(fault);
        EXPECT_FALSE(extract(worker, fault));
        EXPECT_EQ(error.code, ZQArchiveReader::Unreadable);
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("a.zip")));
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("stopped")))
            << error.localizedDescription().toStdString();
        EXPECT_FALSE(QFile::exists(path("out")));
        EXPECT_TRUE(extract(worker, "good")) << error.localizedDescription().toStdString();
        EXPECT_TRUE(QFile::exists(path("out/good")));
    }
    ZQArchiveWorker impatient({.time = 300ms});
    EXPECT_FALSE(extract(impatient, "hang"));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("took too long")));
}

TEST_F(ArchiveWorkerTest, AWorkerThatUnpacksWritesNothingItself)
{
    for (const bool hasLandlock : {true, false}) {
        if (!hasLandlock) {
            qputenv("ZELTO_FAULTY_WITHOUT_LANDLOCK", "1");
        }
        ZQArchiveWorker worker;
        EXPECT_TRUE(extract(worker, "write")) << error.localizedDescription().toStdString();
        EXPECT_TRUE(QFile::exists(path("out/refused"))) << hasLandlock;
    }
}

TEST_F(ArchiveWorkerTest, WhereNothingConfinesAWorkerItReadsNothing)
{
    qputenv("ZELTO_FAULTY_WITHOUT_LANDLOCK", "1");
    qputenv("ZELTO_FAULTY_WITHOUT_SECCOMP", "1");
    ZQArchiveWorker worker;
    EXPECT_FALSE(extract(worker, "good"));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("neither Landlock nor seccomp")));
    QImage image(20, 10, QImage::Format_RGBA8888);
    image.fill(Qt::red);
    ASSERT_TRUE(image.save(path("p.png")));
    ZQRenderPool pool({.processes = 1});
    EXPECT_TRUE(pool.perform(ZQRenderRequest::Kind::Bitmap, path("p.png"), {}, 0, &error).bitmap.isNull());
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("neither Landlock nor seccomp")));
}

TEST_F(ArchiveWorkerTest, ACancelEndsTheWorkerInTheMiddleOfAnEntry)
{
    const auto cancellation = std::make_shared<ZQCancellation>();
    std::atomic<pid_t> process = -1;
    std::thread unpacking([&] {
        const ZQCancellation::Scope scope(cancellation);
        ZQArchiveWorker worker;
        EXPECT_TRUE(extract(worker, "good"));
        process = worker.processID();
        EXPECT_FALSE(extract(worker, "hang"));
        EXPECT_EQ(worker.processID(), -1);
    });
    while (process < 0) {
        std::this_thread::sleep_for(1ms);
    }
    cancellation->cancel();
    unpacking.join();
    EXPECT_EQ(error.code, ZQArchiveReader::Cancelled);
    EXPECT_FALSE(QFile::exists(path("out")));
    EXPECT_FALSE(QFile::exists(QStringLiteral("/proc/%1").arg(process)));
}

TEST_F(ArchiveWorkerTest, SaysWhenNobodyCanUnpack)
{
    qputenv("ZELTO_RENDER", "/no/such/program");
    ZQArchiveWorker worker;
    EXPECT_FALSE(extract(worker, "good"));
    EXPECT_EQ(error.code, ZQArchiveReader::Unavailable);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("install Zelto again")));
}

TEST_F(ArchiveWorkerTest, ReadsNothingBeforeAnArchiveIsOpenAndNothingThatIsNone)
{
    ZQArchiveWorker worker;
    ZQArchiveEnd end;
    EXPECT_FALSE(worker.nextEntry(&end));
    EXPECT_EQ(end.kind, ZQArchiveEnd::Kind::Stopped);
    end = {};
    EXPECT_FALSE(worker.nextBlock(&end));
    EXPECT_EQ(end.kind, ZQArchiveEnd::Kind::Stopped);
    for (const char *none : {"missing", "."}) {
        end = {};
        EXPECT_FALSE(worker.open(path(none), &end));
        EXPECT_EQ(end.kind, ZQArchiveEnd::Kind::Damaged) << none;
        EXPECT_EQ(worker.processID(), -1) << "no worker is started for it";
    }
    EXPECT_FALSE(worker.open(path("missing"), &end));
    EXPECT_EQ(end.text, QStringLiteral("No such file or directory"));
    ASSERT_TRUE(worker.open(archiveOf("good"), &end));
    const auto entry = worker.nextEntry(&end);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->name, "good");
    EXPECT_EQ(entry->kind, ZQArchiveEntry::Kind::File);
    EXPECT_TRUE(entry->isListed);
    EXPECT_EQ(entry->size, 7);
    auto block = worker.nextBlock(&end);
    ASSERT_TRUE(block);
    EXPECT_EQ(block->bytes, QByteArrayView("content"));
    EXPECT_TRUE(block->isLast);
    EXPECT_FALSE(worker.nextEntry(&end));
    EXPECT_EQ(end.kind, ZQArchiveEnd::Kind::Whole);
}
