#include "Classes/Export/ExportOperation.h"

#include "Kit/Imaging/ZQImageExport.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Tests/Classes/Export/ExportFixture.h"
#include "Tests/Support/ScratchMount.h"
#include "Tests/Support/Skip.h"

#include <QDir>
#include <QRandomGenerator>

#include <future>

namespace {

class ExportFaultsTest : public ExportFixture
{
protected:
    // Pictures that do not get smaller.
    QList<ZQObjectID> importNoise(int count)
    {
        QStringList paths;
        for (int i = 1; i <= count; ++i) {
            QImage image(400, 400, QImage::Format_RGB32);
            for (int y = 0; y < image.height(); ++y) {
                QRandomGenerator::global()->fillRange(reinterpret_cast<quint32 *>(image.scanLine(y)), image.width());
            }
            paths.append(path(QStringLiteral("in/n%1.png").arg(i)));
            QDir().mkpath(path(QStringLiteral("in")));
            EXPECT_TRUE(image.save(paths.last()));
        }
        return import(paths);
    }
    void expectOnlyWholeFiles(const ExportResult &result)
    {
        EXPECT_EQ(written().size(), result.written.size()) << written().join(u'|').toStdString();
        for (const QString &file : result.written) {
            EXPECT_FALSE(ZQImageSource::bitmapOfFile(file).isNull()) << file.toStdString();
        }
        EXPECT_TRUE(temporaryFolders().isEmpty());
    }
    void emptyOut() const
    {
        QDir(out).removeRecursively();
        QDir().mkpath(out);
    }
};

} // namespace

TEST_F(ExportFaultsTest, ACancelAtAnyStepLeavesNoHalfFileAndNoTemporaryFolder)
{
    constexpr int count = 6;
    const QList<ZQObjectID> items = importImages(count);
    for (const bool archive : {false, true}) {
        for (const std::optional<int> type : {std::optional<int>(), std::optional<int>(JPEG)}) {
            for (int stop = 0; stop <= (archive ? 2 * count : count); ++stop) {
                emptyOut();
                ends.clear();
                user.onBeginProgress = [stop](const std::function<void()> &cancel) {
                    if (stop == 0) {
                        cancel();
                    }
                };
                user.onStep = [stop](int step, const std::function<void()> &cancel) {
                    if (step == stop) {
                        cancel();
                    }
                };
                const auto result = run({.items = items, .fileFormat = type, .archive = archive});
                EXPECT_TRUE(result.isCancelled);
                EXPECT_EQ(ends, QStringList{ExportManager::didCancelExportOperation}) << stop;
                if (archive) {
                    EXPECT_TRUE(written().isEmpty()) << stop;
                }
                expectOnlyWholeFiles(result);
                EXPECT_TRUE(user.progresses.last()->isOver);
            }
        }
    }
    EXPECT_TRUE(user.errors.isEmpty()) << "who cancels is told of no failure";
}

TEST_F(ExportFaultsTest, TheLibraryIsNoPlaceForFilesItKnowsNothingOf)
{
    const QList<ZQObjectID> items = importImages(1);
    const QString within = delegate->libraryBundleDirectory() + QStringLiteral("/Library");
    const QStringList before = QDir(within).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const QString &folder : {delegate->libraryBundleDirectory(), within}) {
        const ExportResult result = run({.items = items, .destinationURL = folder});
        EXPECT_TRUE(result.refusal.contains(QStringLiteral("in the library itself"))) << result.refusal.toStdString();
        EXPECT_TRUE(result.written.isEmpty());
    }
    EXPECT_EQ(QDir(within).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), before);
}

TEST_F(ExportFaultsTest, OfTwoThatWaitOneCanBeCancelled)
{
    const QList<ZQObjectID> items = importImages(2);
    std::promise<void> open;
    delegate->backgroundOperationQueue().addOperationWithBlock([opened = open.get_future().share()] { opened.wait(); });
    const auto first = ExportManager::sharedExportManager().exportItems({.items = {items[0]}, .destinationURL = out});
    const auto second = ExportManager::sharedExportManager().exportItems(
        {.items = {items[1]}, .destinationURL = out, .fileFormat = JPEG, .imageSizePercentage = 50});
    first->cancel();
    open.set_value();
    wait();
    EXPECT_EQ(ends, (QStringList{ExportManager::didCancelExportOperation, ExportManager::didFinishExportOperation}));
    EXPECT_TRUE(first->result().isCancelled && first->result().written.isEmpty());
    EXPECT_EQ(written(), QStringList{QStringLiteral("p2.jpg")});
    EXPECT_TRUE(liveFolders.synced.contains(out));
}

TEST_F(ExportFaultsTest, AFullDiskIsSaidOnceWithWhatWasWritten)
{
    const QList<ZQObjectID> items = importNoise(6);
    for (const bool archive : {false, true}) {
        for (const std::optional<int> type : {std::optional<int>(), std::optional<int>(PNG)}) {
            const ScratchMount disk(out, 1 << 20);
            if (!disk.isMounted()) {
                return skipWithout("the right to mount");
            }
            user.errors.clear();
            const auto result = run({.items = items, .fileFormat = type, .archive = archive});
            EXPECT_FALSE(result.refusal.isNull());
            ASSERT_EQ(user.errors.size(), 1);
            EXPECT_TRUE(user.errors[0].localizedDescription().contains(result.refusal));
            EXPECT_EQ(result.count, result.written.size());
            if (!archive) {
                EXPECT_EQ(result.count + result.failed.size(), items.size());
                EXPECT_TRUE(user.errors[0].localizedDescription().contains(QString::number(result.count)));
                ASSERT_FALSE(result.failed.isEmpty());
                EXPECT_TRUE(user.errors[0].localizedDescription().contains(u'“' + result.failed[0].title + u'”'));
            }
            expectOnlyWholeFiles(result);
        }
    }
}

TEST_F(ExportFaultsTest, AFolderThatTakesNothingIsRefusedBeforeAnythingIsDone)
{
    const QList<ZQObjectID> items = importImages(2);
    const auto refused = [&](const QString &folder) {
        user.errors.clear();
        ends.clear();
        const auto result = run({.items = items, .destinationURL = folder, .fileFormat = PNG});
        EXPECT_FALSE(result.refusal.isNull());
        EXPECT_EQ(result.count, 0);
        EXPECT_EQ(user.errors.size(), 1);
        EXPECT_EQ(ends, QStringList{ExportManager::didFinishExportOperation});
    };
    refused(out + QStringLiteral("/nowhere"));
    refused(writeImage(QStringLiteral("file.png"), {2, 2}));
    const ScratchMount disk(out);
    if (!disk.isMounted() || !disk.setReadOnly(true)) {
        return skipWithout("the right to mount");
    }
    refused(out);
    EXPECT_TRUE(written().isEmpty());
}

TEST_F(ExportFaultsTest, AFolderThatGoesMeanwhileEndsTheExport)
{
    const QList<ZQObjectID> items = importImages(20);
    user.onStep = [&](int step, const auto &) {
        if (step == 1) {
            QDir(out).removeRecursively();
        }
    };
    const auto result = run({.items = items, .fileFormat = JPEG});
    EXPECT_FALSE(result.refusal.isNull());
    EXPECT_EQ(user.errors.size(), 1);
    EXPECT_FALSE(QFileInfo::exists(out)) << "nobody makes it again";
}

TEST_F(ExportFaultsTest, APictureThatCannotBeReadCostsItselfAndIsTold)
{
    const QList<ZQObjectID> items = importImages(3);
    QFile file(item(items[1])->itemURL());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write("no picture any more") > 0);
    file.close();
    const auto result = run({.items = items, .fileFormat = PNG});
    EXPECT_EQ(written(), (QStringList{QStringLiteral("p1.png"), QStringLiteral("p3.png")}));
    ASSERT_EQ(result.failed.size(), 1);
    EXPECT_EQ(result.failed[0].title, QStringLiteral("p2"));
    EXPECT_FALSE(result.failed[0].reason.isEmpty());
    ASSERT_EQ(user.notifications.size(), 1);
    EXPECT_TRUE(user.notifications[0].text.contains(QStringLiteral("p2")));
    EXPECT_TRUE(user.errors.isEmpty());

    user.notifications.clear();
    run({.items = items, .fileFormat = PNG, .tellsPerson = false});
    EXPECT_TRUE(user.notifications.isEmpty()) << "whoever asked says it";
}

TEST_F(ExportFaultsTest, AFileThatGoesWhileTheArchiveIsWrittenCostsItself)
{
    const QList<ZQObjectID> items = importImages(4);
    const QString going = item(items[3])->itemURL();
    user.onStep = [&](int step, const auto &) {
        if (step == 5) { // all were looked at
            QFile::remove(going);
        }
    };
    const auto result = run({.items = items, .archive = true});
    EXPECT_EQ(written(), QStringList{QStringLiteral("Archive.zip")});
    EXPECT_EQ(result.count, 3);
    ASSERT_EQ(result.failed.size(), 1);
    EXPECT_EQ(result.failed[0].title, QStringLiteral("p4"));
    EXPECT_TRUE(result.refusal.isNull());
}

TEST_F(ExportFaultsTest, APictureThatEndsTooEarlyGoesOutAsFarAsItGoesAndIsTold)
{
    const QList<ZQObjectID> items = importNoise(2);
    QFile file(item(items[0])->itemURL());
    ASSERT_TRUE(file.resize(file.size() / 2));
    const auto result = run({.items = items, .fileFormat = JPEG});
    EXPECT_EQ(written().size(), 2);
    ASSERT_EQ(result.incomplete.size(), 1);
    EXPECT_EQ(result.incomplete[0].title, QStringLiteral("n1"));
    ASSERT_EQ(user.notifications.size(), 1);
    EXPECT_TRUE(user.notifications[0].text.contains(QStringLiteral("n1")));
}
