#include "Classes/Application/TemporaryArea.h"
#include "Classes/Command/Commands.h"
#include "Classes/Sharing/CloudServices.h"
#include "Classes/Sharing/CloudUploader.h"
#include "Classes/Sharing/LatestUploads.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Command/CommandFixture.h"
#include "Tests/Classes/Sharing/FakeCloudService.h"

class ShareCommandTest : public CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        kept = CloudServices::sharedCloudServices().services();
        CloudServices::sharedCloudServices().setServices({service});
        picture(QStringLiteral("in/red.png"), qRgb(220, 20, 20));
        picture(QStringLiteral("in/green.png"), qRgb(20, 220, 20));
        ASSERT_EQ(run("import in/red.png in/green.png"), 0);
        ASSERT_EQ(run("items --json"), 0);
        for (const QJsonValue item : array()) {
            bundleIDs.insert(item[QStringLiteral("title")].toString(), item[QStringLiteral("bundleID")].toString());
            paths.insert(item[QStringLiteral("title")].toString(), item[QStringLiteral("itemPath")].toString());
        }
    }
    void TearDown() override
    {
        zqRunMainLoopUntil([] { return !CloudUploader::sharedCloudUploader().hasUploadsLeft(); });
        CloudServices::sharedCloudServices().setServices(kept);
        CommandTest::TearDown();
    }
    int share(const QStringList &arguments) { return run(QStringList{QStringLiteral("share")} + arguments); }
    int begin(CommandContext &in, const ShareRequest &request) // as a window does
    {
        in.delegate = delegate.get();
        in.mayBeFinishedLater = true;
        return zqRunShare(request, in);
    }
    static QStringList temporaryFolders()
    {
        return QDir(TemporaryArea::folder()).entryList({QStringLiteral("t.*")}, QDir::Dirs);
    }
    QString red() const { return bundleIDs.value(QStringLiteral("red")); }
    QString green() const { return bundleIDs.value(QStringLiteral("green")); }

    const std::shared_ptr<FakeCloudService> service = std::make_shared<FakeCloudService>();
    CloudServices::List kept;
    QHash<QString, QString> bundleIDs; // by title
    QHash<QString, QString> paths;
};

TEST_F(ShareCommandTest, LinksAreTheOutput)
{
    EXPECT_EQ(share({red(), green(), red()}), 0) << context.errors.constData();
    EXPECT_EQ(context.output, "https://example.org/red\nhttps://example.org/green\n");
    EXPECT_EQ(LatestUploads::all().first().filename, QStringLiteral("green"));

    ASSERT_TRUE(QFile::remove(paths.value(QStringLiteral("red"))));
    EXPECT_EQ(share({QStringLiteral("--in"), QStringLiteral("LIBRARY/Library"), QStringLiteral("--json")}), 1);
    EXPECT_EQ(object()[QStringLiteral("links")].toArray().size(), 1);
    EXPECT_EQ(object()[QStringLiteral("missing")][0][QStringLiteral("title")].toString(), QStringLiteral("red"));
    EXPECT_EQ(share({red()}), 2) << "nothing is left to share";
    EXPECT_TRUE(context.output.isEmpty());
}

TEST_F(ShareCommandTest, APresetIsUploadedInPlaceOfTheFileAndLeavesNothing)
{
    QStringList files;
    service->script = [&files](FakeAdapter &adapter) {
        files.append(QFileInfo(adapter.fileToUploadURL()).fileName());
        EXPECT_TRUE(QFileInfo(adapter.fileToUploadURL()).isFile());
        adapter.succeed();
    };
    const QStringList before = temporaryFolders();
    EXPECT_EQ(share({red(), QStringLiteral("--preset"), QStringLiteral("1")}), 0) << context.errors.constData();
    EXPECT_EQ(files, QStringList(QStringLiteral("red.jpg")));
    EXPECT_EQ(context.output, "https://example.org/red\n");
    EXPECT_EQ(temporaryFolders(), before);
}

TEST_F(ShareCommandTest, WhatCannotBeSharedIsRefusedBeforeAnythingIsSent)
{
    const QList<QStringList> refused = {
        {},
        QStringList(QStringLiteral("nobody")),
        {red(), QStringLiteral("--preset"), QStringLiteral("99")},
        {red(), QStringLiteral("--service"), QStringLiteral("elsewhere")},
        {QStringLiteral("--in"), QStringLiteral("PROJECTS/None")},
    };
    for (const QStringList &arguments : refused) {
        EXPECT_EQ(share(arguments), 2) << arguments.join(u' ').toStdString();
        EXPECT_FALSE(context.errors.isEmpty());
    }
    service->ready = false;
    EXPECT_EQ(share({red()}), 2);
    EXPECT_TRUE(context.errors.contains("Enter a key.")) << context.errors.constData();
    EXPECT_TRUE(service->started().isEmpty());
}

TEST_F(ShareCommandTest, AFailureKeepsTheLinksThatCameBeforeIt)
{
    service->script = [](FakeAdapter &adapter) {
        adapter.fileToUploadName() == QStringLiteral("green")
            ? adapter.uploadFailed(ZQError::with(QStringLiteral("test"), 1, QStringLiteral("The server is full.")))
            : adapter.succeed();
    };
    EXPECT_EQ(share({red(), green()}), 2);
    EXPECT_EQ(context.output, "https://example.org/red\n");
    EXPECT_TRUE(context.errors.contains("The server is full. The links above stay valid"))
        << context.errors.constData();
}

TEST_F(ShareCommandTest, InAWindowItIsAnsweredLaterAndEndsWhenNobodyWaits)
{
    context = {};
    ASSERT_EQ(begin(context, {.items = {red()}, .preset = 1}), 0) << context.errors.constData();
    ASSERT_TRUE(context.pending);
    zqRunMainLoopUntil(context.pending->isDone);
    EXPECT_EQ(context.pending->finish(context), 0) << context.errors.constData();
    EXPECT_EQ(context.output, "https://example.org/red\n");

    service->script = [](FakeAdapter &) {}; // never ends by itself
    bool isAbandoned = false;
    context = {};
    context.isAbandoned = [&isAbandoned] { return isAbandoned; };
    ASSERT_EQ(begin(context, {.items = {red()}}), 0);
    ASSERT_TRUE(context.pending);
    CommandContext second;
    EXPECT_EQ(begin(second, {.items = {green()}}), 2) << "what is uploaded is not cut off by another command";
    EXPECT_TRUE(second.errors.contains("is uploading other files"));
    zqRunMainLoopUntil([this] { return service->started().size() == 2; });
    EXPECT_FALSE(context.pending->isDone());
    isAbandoned = true;
    zqRunMainLoopUntil(context.pending->isDone);
    EXPECT_EQ(context.pending->finish(context), 2);
    EXPECT_TRUE(context.errors.contains("nothing was shared"));
}

TEST_F(ShareCommandTest, APresetWaitsForWhatThePersonUploadsAndLeavesItAlone)
{
    CloudUploader &uploader = CloudUploader::sharedCloudUploader();
    service->script = [](FakeAdapter &) {}; // never ends by itself
    bool isAbandoned = false;
    context = {};
    context.isAbandoned = [&isAbandoned] { return isAbandoned; };
    ASSERT_EQ(begin(context, {.items = {red()}, .preset = 1}), 0) << context.errors.constData();
    uploader.setFileToUploadAfterExport({paths.value(QStringLiteral("green"))});
    uploader.uploadExportedItems();
    zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
    EXPECT_FALSE(context.pending->isDone());
    isAbandoned = true;
    EXPECT_TRUE(context.pending->isDone());
    EXPECT_EQ(context.pending->finish(context), 2);
    EXPECT_TRUE(uploader.isUploading());
    uploader.cancelUploads();
    EXPECT_EQ(service->started().filter(QStringLiteral("red")), QStringList());
}
