#include "Classes/Application/QuestionWithdrawal.h"
#include "Classes/Application/Quit.h"
#include "Classes/Application/TemporaryArea.h"
#include "Classes/Sharing/CloudAppAccount.h"
#include "Classes/Sharing/CloudAppService.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Kit/Network/ZQNetworkError.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Tests/Classes/Sharing/SharingFixture.h"
#include "Tests/Support/MemorySecretStore.h"

#include <future>
#include <optional>
#include <random>
#include <thread>

using CloudUploaderTest = SharingFixture;

namespace {
QString link(const char *name)
{
    return FakeAdapter::link(QString::fromLatin1(name));
}
} // namespace

TEST_F(CloudUploaderTest, ABatchEndsWithTheLastLinkOnThePasteboard)
{
    service->script = [](FakeAdapter &adapter) {
        adapter.uploadProgess(0.5);
        adapter.succeed();
    };
    uploader.uploadLibrayItems(items(3));
    waitForUploads();
    EXPECT_EQ(told, QStringList({QStringLiteral("DidStart 3"), QStringLiteral("DidUpdate 0.5"),
                                 QStringLiteral("DidUpdate 1.5"), QStringLiteral("DidUpdate 2.5"),
                                 QStringLiteral("DidFinish")}));
    ASSERT_EQ(user.notifications.size(), 1);
    EXPECT_EQ(user.notifications[0].text, QStringLiteral("Uploaded 3 files to the cloud!"));
    EXPECT_EQ(user.notifications[0].position, NotificationPlace::Window);
    EXPECT_EQ(user.notifications[0].time, std::chrono::milliseconds(1500));
    EXPECT_EQ(pasteboard, QStringList(link("p3")));
    EXPECT_EQ(latest(), QStringList({link("p3"), link("p2"), link("p1")}));
    EXPECT_GE(menu.updates, 1) << "links that come at once are told of at once";

    uploader.setFileToUploadAfterExport(temporaryFiles(1));
    uploader.uploadExportedItems();
    waitForUploads();
    EXPECT_EQ(user.notifications.last().text, QStringLiteral("Upload done, url copied to clipboard!"));
}

TEST_F(CloudUploaderTest, TheSameCommandCancels)
{
    const auto shared = items(2);
    service->script = [](FakeAdapter &) {}; // never ends by itself
    uploader.uploadLibrayItems(shared);
    zqRunMainLoopUntil([this] { return !service->started().isEmpty(); });
    uploader.uploadLibrayItems(shared);
    EXPECT_FALSE(uploader.isUploading());
    waitForUploads();
    EXPECT_EQ(user.notificationTexts(), QStringList(QStringLiteral("Upload cancelled")));
    EXPECT_EQ(told, QStringList({QStringLiteral("DidStart 2"), QStringLiteral("DidFinish")}));
    EXPECT_EQ(service->started().size(), 1);
    EXPECT_TRUE(pasteboard.isEmpty() && latest().isEmpty());
}

TEST_F(CloudUploaderTest, ItemsWithoutAFileAreLeftOut)
{
    const auto shared = items(2);
    ASSERT_TRUE(QFile::remove(shared[0]->itemURL()));
    uploader.uploadLibrayItems({shared[0], nullptr});
    uploader.uploadLibrayItems({});
    ASSERT_EQ(user.notificationTexts(), QStringList(2, QStringLiteral("Please select some items!")));
    EXPECT_EQ(user.notifications[0].time, std::chrono::milliseconds(1200));
    uploader.uploadLibrayItems(shared);
    waitForUploads();
    EXPECT_EQ(told.first(), QStringLiteral("DidStart 1"));
    EXPECT_EQ(service->started(), QStringList(QStringLiteral("p2")));
}

TEST_F(CloudUploaderTest, TheFirstFailureEndsTheBatchAndSaysWhy)
{
    const QString general = QStringLiteral("Cannot upload the files An error as occured, please try again later");
    ZQError advised{QStringLiteral("imguruploader"), 10000, {}};
    UploadProblem::advise(advised, QStringLiteral("Enter another key."));
    const struct
    {
        ZQError error;
        QStringList alerts;
    } cases[] = {
        {zqNetworkError(ZQNetworkErrorCode::Offline, QStringLiteral("offline")),
         {QStringLiteral("Cannot upload the files The internet connection seem to be unavailable."), general}},
        {ZQError::with(UploadProblem::errorDomain, -1, QStringLiteral("Over the limit"),
                       QStringLiteral("Wait until tomorrow.")),
         {QStringLiteral("Over the limit Wait until tomorrow.")}},
        {UploadProblem::with(QStringLiteral("Your server is full."), QStringLiteral("Make room there.")),
         {QStringLiteral("“p2” could not be uploaded Your server is full. Make room there. One more file was not "
                         "sent.")}},
        {advised, {general + QStringLiteral("\n\nEnter another key.")}},
        {ZQError::with(QStringLiteral("imguruploader"), 10000, QStringLiteral("no")), {general}},
        {ZQError(), {general}},
    };
    const auto shared = items(3);
    for (const auto &each : cases) {
        user.errors.clear();
        told.clear();
        const qsizetype before = service->started().size();
        service->script = [&each](FakeAdapter &adapter) {
            adapter.fileToUploadName() == QStringLiteral("p2") ? adapter.uploadFailed(each.error) : adapter.succeed();
        };
        bool wasOver = false;
        user.onError = [&] { wasOver = told.contains(QStringLiteral("DidFinish")) && !uploader.isUploading(); };
        uploader.uploadLibrayItems(shared);
        waitForUploads();
        EXPECT_EQ(alerts(), each.alerts);
        EXPECT_TRUE(wasOver) << "an alert must not stand over a batch that seems to go on";
        EXPECT_EQ(service->started().size() - before, 2) << "the third is not tried";
        EXPECT_EQ(latest().first(), link("p1")) << "what was uploaded stays";
    }
    EXPECT_TRUE(pasteboard.isEmpty());
}

TEST_F(CloudUploaderTest, APasswordThatCannotBeReadIsSaidToThePerson)
{
    auto secrets = std::make_unique<MemorySecretStore>();
    secrets->entries = {{CloudAppAccount::service, QStringLiteral("me@example.org"), "secret"}};
    secrets->failure = ZQError::with(SecretStore::errorDomain, SecretStore::Denied, QStringLiteral("Unlock it."));
    SecretStore::setShared(std::move(secrets));
    CloudServices::sharedCloudServices().setServices({std::make_shared<CloudAppService>()});
    const auto shared = items(1);
    uploader.uploadLibrayItems(shared);
    waitForUploads();
    SecretStore::setShared(nullptr);
    EXPECT_EQ(alerts(), QStringList(QStringLiteral("“p1” could not be uploaded Unlock it.")));
}

TEST_F(CloudUploaderTest, AnAnswerWithoutALinkIsAFailure)
{
    for (const QVariantMap &answer :
         {QVariantMap(), QVariantMap{{QStringLiteral("url"), QStringLiteral("https://a.org/\nrm -r ~")}},
          QVariantMap{{QStringLiteral("url"), QVariantMap()}},
          QVariantMap{{QStringLiteral("url"), QStringLiteral("javascript:alert(1)")}}}) {
        service->script = [&answer](FakeAdapter &adapter) { adapter.uploadSuccessful(answer); };
        uploader.setFileToUploadAfterExport(temporaryFiles(1));
        uploader.uploadExportedItems();
        waitForUploads();
    }
    EXPECT_EQ(user.errors.size(), 4);
    EXPECT_TRUE(pasteboard.isEmpty() && latest().isEmpty());
}

TEST_F(CloudUploaderTest, TheLatestTenAreKeptWhateverWasThere)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(
        QVariantList{5, QVariantMap{{QStringLiteral("url"), QStringLiteral("https://a.org")}}},
        LatestUploads::storageKey);
    EXPECT_TRUE(LatestUploads::all().isEmpty());
    uploader.setFileToUploadAfterExport(temporaryFiles(11));
    uploader.uploadExportedItems();
    waitForUploads();
    ASSERT_EQ(latest().size(), 10);
    EXPECT_EQ(latest().first(), link("f11"));
    EXPECT_EQ(latest().last(), link("f2"));
    EXPECT_EQ(LatestUploads::all().first().filename, QStringLiteral("f11"));
}

TEST_F(CloudUploaderTest, TheServiceIsTheChosenOneOrTheFirstThatIsReady)
{
    const auto cloudApp = std::make_shared<FakeCloudService>(QStringLiteral("cloudapp"));
    const auto dropbox = std::make_shared<FakeCloudService>(QStringLiteral("dropbox"));
    const auto own = std::make_shared<FakeCloudService>(QStringLiteral("webdav"));
    CloudServices &services = CloudServices::sharedCloudServices();
    services.setServices({cloudApp, dropbox, service, own});
    const struct
    {
        bool hasCloudApp;
        bool hasDropbox;
        bool hasImgur;
        bool hasOwn;
        const char *chosen;
        const char *expected; // null: none
    } cases[] = {
        {true, true, true, true, "", "cloudapp"},     {false, true, true, true, "", "dropbox"},
        {false, false, true, true, "", "imgur"},      {false, false, false, true, "", "webdav"},
        {false, false, false, false, "", "imgur"},    {false, false, true, true, "dropbox", "dropbox"},
        {true, true, true, true, "webdav", "webdav"}, {true, true, true, true, "custom:gone", nullptr},
    };
    for (const auto &each : cases) {
        cloudApp->ready = each.hasCloudApp;
        dropbox->ready = each.hasDropbox;
        service->ready = each.hasImgur;
        own->ready = each.hasOwn;
        ZQUserDefaults::standardUserDefaults().setObjectForKey(QString::fromLatin1(each.chosen),
                                                               CloudServices::choiceKey);
        const auto chosen = services.adapterClassForUpload();
        EXPECT_EQ(chosen ? chosen->identifier() : QString(), QLatin1String(each.expected)) << each.chosen;
    }
    const auto shared = items(1);
    uploader.uploadLibrayItems(shared); // the chosen one is gone
    dropbox->ready = false;
    ZQUserDefaults::standardUserDefaults().setObjectForKey(QStringLiteral("dropbox"), CloudServices::choiceKey);
    uploader.uploadLibrayItems(shared);
    EXPECT_FALSE(uploader.hasUploadsLeft());
    EXPECT_TRUE(told.isEmpty());
    ASSERT_EQ(user.questions.size(), 2);
    EXPECT_TRUE(user.questions[0].informativeText.contains(QStringLiteral("not there any more")));
    EXPECT_EQ(user.questions[1].message, QStringLiteral("Cannot upload the files"));
    EXPECT_EQ(user.questions[1].informativeText, QStringLiteral("Enter a key."));
}

TEST_F(CloudUploaderTest, WhoSharesBeforeAnythingIsSetUpIsLedThere)
{
    service->ready = false;
    int requests = 0;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        CloudUploader::preferencesRequested, nullptr, [&requests](const ZQNotification &) { ++requests; });
    const auto shared = items(1);
    uploader.uploadLibrayItems(shared);
    EXPECT_EQ(requests, 0) << "the answer that changes least";
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    uploader.uploadLibrayItems(shared);
    EXPECT_EQ(requests, 1);
    ASSERT_EQ(user.questions.size(), 2);
    EXPECT_TRUE(user.questions[0].informativeText.startsWith(QStringLiteral("Enter a key.")));
    EXPECT_TRUE(user.questions[0].informativeText.contains(QStringLiteral("Nextcloud")));
    EXPECT_TRUE(told.isEmpty());
}

TEST_F(CloudUploaderTest, WhatAnExportWroteIsUploadedWhenItsOwnExportEnds)
{
    const QList<ZQObjectID> ids = importImages(2);
    const QString folder = TemporaryArea::newFolder();
    ExportRequest other{.items = ids, .destinationURL = out};
    ExportRequest own{.items = ids, .destinationURL = folder, .fileFormat = 3}; // JPEG
    const auto first = ExportManager::sharedExportManager().exportItems(other);
    const QStringList names = ExportManager::filenamesForItems(own);
    const auto second = ExportManager::sharedExportManager().exportItems(own);
    uploader.setFileToUploadAfterExport(names);
    zqRunMainLoopUntil([&] { return second->isFinished() && uploader.fileToUploadAfterExport().isEmpty(); });
    waitForUploads();
    EXPECT_EQ(told, QStringList({QStringLiteral("DidStart 2"), QStringLiteral("DidFinish")}));
    EXPECT_EQ(service->started(), QStringList({QStringLiteral("p1"), QStringLiteral("p2")}));
    EXPECT_EQ(written().size(), 2) << "those of the other export are the person's";
    EXPECT_FALSE(QFileInfo::exists(folder));

    std::promise<void> gate;
    delegate->backgroundOperationQueue().addOperationWithBlock([&gate] { gate.get_future().wait(); });
    own.destinationURL = TemporaryArea::newFolder();
    const auto cancelled = ExportManager::sharedExportManager().exportItems(own);
    uploader.setFileToUploadAfterExport({own.destinationURL + QStringLiteral("/p1.jpg")});
    cancelled->cancel();
    gate.set_value();
    wait();
    EXPECT_TRUE(uploader.fileToUploadAfterExport().isEmpty());
    EXPECT_EQ(service->started().size(), 2);
}

TEST_F(CloudUploaderTest, SeveralExportsAreEachUploadedWhenTheyEnd)
{
    const QList<ZQObjectID> ids = importImages(1);
    std::promise<void> gate;
    delegate->backgroundOperationQueue().addOperationWithBlock([&gate] { gate.get_future().wait(); });
    QStringList folders;
    std::shared_ptr<ExportOperation> latest;
    for (int i = 0; i < 2; ++i) {
        folders.append(TemporaryArea::newFolder());
        const ExportRequest request{.items = ids, .destinationURL = folders.last()};
        latest = ExportManager::sharedExportManager().exportItems(request);
        uploader.setFileToUploadAfterExport(ExportManager::filenamesForItems(request));
    }
    uploader.uploadExportedItems();
    EXPECT_EQ(uploader.fileToUploadAfterExport().size(), 2) << "they are not written yet";
    gate.set_value();
    zqRunMainLoopUntil([&] { return latest->isFinished() && uploader.fileToUploadAfterExport().isEmpty(); });
    waitForUploads();
    EXPECT_EQ(service->started(), QStringList(2, QStringLiteral("p1")));
    EXPECT_EQ(pasteboard.size(), 2) << "each ends by itself";
    EXPECT_FALSE(QFileInfo::exists(folders[0]) || QFileInfo::exists(folders[1]));

    std::promise<void> second;
    delegate->backgroundOperationQueue().addOperationWithBlock([&second] { second.get_future().wait(); });
    const ExportRequest unwanted{.items = ids, .destinationURL = TemporaryArea::newFolder()};
    latest = ExportManager::sharedExportManager().exportItems(unwanted);
    uploader.setFileToUploadAfterExport(ExportManager::filenamesForItems(unwanted));
    uploader.cancelUploadExportedItems();
    EXPECT_TRUE(QFileInfo::exists(unwanted.destinationURL)) << "the export writes into it";
    second.set_value();
    latest->waitUntilFinished();
    zqRunMainLoopUntil([&] { return !QFileInfo::exists(unwanted.destinationURL); });
    EXPECT_EQ(service->started().size(), 2);
}

TEST_F(CloudUploaderTest, BatchesFollowOneAnotherAndEndEachForItself)
{
    std::shared_ptr<CloudAdapter> held;
    service->script = [&held](FakeAdapter &adapter) {
        if (adapter.fileToUploadName() == QStringLiteral("p1")) {
            held = std::static_pointer_cast<CloudAdapter>(adapter.shared_from_this());
        } else {
            adapter.succeed();
        }
    };
    const auto shared = items(1);
    uploader.uploadLibrayItems(shared);
    zqRunMainLoopUntil([this] { return !service->started().isEmpty(); });
    const QStringList paths = temporaryFiles(1);
    QList<CloudUploadResult> results;
    const auto take = [&results](const CloudUploadResult &ended) { results.append(ended); };
    const quint64 given = uploader.upload({{paths[0], QStringLiteral("given")}}, *service, take);
    const quint64 dropped = uploader.upload({{paths[0], QStringLiteral("dropped")}}, *service, take);
    EXPECT_NE(given, dropped);
    uploader.cancelUpload(dropped);
    ASSERT_EQ(results.size(), 1);
    EXPECT_TRUE(results[0].isCancelled);
    EXPECT_EQ(told, QStringList(QStringLiteral("DidStart 1"))) << "the person's goes on";
    std::static_pointer_cast<FakeAdapter>(held)->succeed();
    waitForUploads();
    EXPECT_EQ(service->started(), QStringList({QStringLiteral("p1"), QStringLiteral("given")}));
    EXPECT_EQ(pasteboard, QStringList(link("p1"))) << "whatever waits behind it";
    ASSERT_EQ(results.size(), 2);
    EXPECT_EQ(results[1].links.size(), 1);
}

TEST_F(CloudUploaderTest, OnlyWhatLiesInTheTemporaryAreaIsRemovedAfterAnUpload)
{
    const QString mine = writeImage(QStringLiteral("out/t.mine/picture.png"), {4, 4});
    uploader.setFileToUploadAfterExport({mine});
    uploader.uploadExportedItems();
    waitForUploads();
    EXPECT_EQ(service->started(), QStringList(QStringLiteral("picture")));
    EXPECT_TRUE(QFileInfo::exists(mine));

    const QStringList paths = temporaryFiles(2);
    uploader.setFileToUploadAfterExport({paths[0]});
    uploader.uploadExportedItems();
    waitForUploads();
    EXPECT_FALSE(QFileInfo::exists(paths[0]));
    EXPECT_TRUE(QFileInfo::exists(paths[1])) << "nobody named it";
}

TEST_F(CloudUploaderTest, CancellingAtAnyMomentLeavesNothing)
{
    std::mt19937 random(18); // NOLINT(bugprone-random-generator-seed): the same each time
    service->script = [](FakeAdapter &adapter) {
        adapter.uploadProgess(0.3);
        std::this_thread::yield();
        adapter.succeed();
    };
    int finished = 0;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        CloudUploader::didFinish, nullptr, [&finished](const ZQNotification &) { ++finished; });
    constexpr int rounds = 500;
    for (int round = 0; round < rounds; ++round) {
        uploader.setFileToUploadAfterExport(temporaryFiles(4));
        uploader.uploadExportedItems();
        const auto moment = std::chrono::microseconds(random() % 1500);
        const auto start = std::chrono::steady_clock::now();
        while (std::chrono::steady_clock::now() - start < moment) {
            QCoreApplication::processEvents();
        }
        uploader.cancelUploads();
        waitForUploads();
        ASSERT_EQ(finished, round + 1) << "each batch ends once";
    }
    EXPECT_EQ(temporaryFolders(), QStringList());
    EXPECT_TRUE(user.errors.isEmpty());
}

TEST_F(CloudUploaderTest, ACallerIsToldInPlaceOfThePerson)
{
    const QStringList paths = temporaryFiles(2);
    const QList<CloudFile> files = {{paths[0], QStringLiteral("one")}, {paths[1], QStringLiteral("two")}};
    std::optional<CloudUploadResult> result;
    const auto take = [&result](const CloudUploadResult &ended) { result = ended; };
    EXPECT_FALSE(uploader.upload({}, *service, take));
    service->script = [](FakeAdapter &adapter) {
        adapter.fileToUploadName() == QStringLiteral("two") ? adapter.uploadFailed({}) : adapter.succeed();
    };
    ASSERT_TRUE(uploader.upload(files, *service, take));
    waitForUploads();
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->hasFailed && !result->isCancelled);
    ASSERT_EQ(result->links.size(), 1);
    EXPECT_EQ(result->links[0].url, link("one"));
    EXPECT_TRUE(user.errors.isEmpty() && user.notifications.isEmpty() && pasteboard.isEmpty());

    result.reset();
    service->script = [](FakeAdapter &adapter) { static_cast<ZQOperation &>(adapter).cancel(); }; // by somebody else
    ASSERT_TRUE(uploader.upload(files, *service, take));
    waitForUploads();
    zqRunMainLoopUntil([&] { return result.has_value(); });
    EXPECT_TRUE(result->isCancelled);
}

TEST_F(CloudUploaderTest, QuittingWhileUploadingAsks)
{
    service->script = [](FakeAdapter &) {};
    const auto shared = items(1);
    uploader.uploadLibrayItems(shared);
    int answer = 1;
    user.answerQuestion = [&answer](const UserQuestion &) { return answer; };
    EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Cancel);
    ASSERT_EQ(user.questions.size(), 1);
    EXPECT_EQ(user.questions[0].message, QStringLiteral("Zelto is uploading files"));
    EXPECT_TRUE(uploader.isUploading());
    answer = 0;
    EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
    EXPECT_FALSE(uploader.hasUploadsLeft());
    EXPECT_EQ(user.questions.size(), 2);
}

TEST_F(CloudUploaderTest, ASignalAnswersTheQuestionWhetherToQuit)
{
    service->script = [](FakeAdapter &) {}; // never ends by itself
    const auto shared = items(1);
    uploader.uploadLibrayItems(shared);
    bool wasWithdrawn = false;
    user.answerQuestion = [&](const UserQuestion &question) {
        delegate->terminate(); // by a person who is impatient
        EXPECT_FALSE(question.withdrawal->isWithdrawn());
        isEndWanted = true;
        delegate->terminate(); // by a signal
        wasWithdrawn = question.withdrawal->isWithdrawn();
        return 1;
    };
    delegate->terminate();
    EXPECT_TRUE(wasWithdrawn);
    EXPECT_FALSE(uploader.hasUploadsLeft());
    EXPECT_TRUE(delegate->isTerminating()) << "it has quit";
    EXPECT_EQ(user.questions.size(), 1);
}

TEST_F(CloudUploaderTest, ASignalEndsUploadsWithoutAQuestion)
{
    service->script = [](FakeAdapter &) {};
    uploader.uploadLibrayItems(items(1));
    isEndWanted = true;
    EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
    EXPECT_FALSE(uploader.hasUploadsLeft());
    EXPECT_TRUE(user.questions.isEmpty());
}
