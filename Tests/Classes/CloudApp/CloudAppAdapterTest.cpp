#include "Classes/Sharing/CloudAppAdapter.h"

#include "Classes/Sharing/CloudAppService.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Tests/Classes/CloudApp/CloudAppFixture.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstring>
#include <optional>

namespace {

using Code = ZQNetworkErrorCode;

struct Recorder : CloudAdapterDelegate
{
    std::optional<QVariantMap> uploaded;
    std::optional<ZQError> error;
    QList<double> fractions;
    std::function<void()> onProgress = [] {};

    void cloudAdapter(CloudAdapter &, const QVariantMap &didUploadFile) override { uploaded = didUploadFile; }
    void cloudAdapter(CloudAdapter &, const ZQError &didFailUpload) override { error = didFailUpload; }
    void cloudAdapter(CloudAdapter &, double didProgressUpload) override
    {
        fractions.append(didProgressUpload);
        onProgress();
    }
};

class CloudAppAdapterTest : public CloudAppFixture
{
protected:
    CloudAppAdapterTest()
    {
        storeAccount();
        QFile file(folder.filePath(QStringLiteral("picture.png")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size());
        giveSlots();
    }
    void giveSlots()
    {
        api.setHandler(QStringLiteral("/items/new"),
                       forMe(Answer::with("application/json",
                                          "{\"url\": \"" + storage.address(QStringLiteral("/bucket")).toUtf8() +
                                              "\", \"uploads_remaining\": 1, \"params\": {\"policy\": \"p\", "
                                              "\"acl\": \"public-read\", \"size\": 5}}")));
    }
    std::shared_ptr<CloudAdapter> make(const QString &name = QStringLiteral("picture.png"))
    {
        return service.makeAdapter(folder.filePath(name), QStringLiteral("Picture"), QStringLiteral("ID"), &recorder);
    }
    void run(const std::shared_ptr<CloudAdapter> &adapter)
    {
        recorder = {};
        adapter->start();
        zqRunMainLoopUntil([&] { return adapter->isFinished(); });
    }

    const QByteArray contents = QByteArray(4 << 20, 'x');
    QTemporaryDir folder;
    LocalHTTPServer storage;
    CloudAppService service;
    Recorder recorder;
};

TEST_F(CloudAppAdapterTest, AFileGoesToTheStorageAndItsLinkComesFromCloudApp)
{
    storage.setAnswer(QStringLiteral("/bucket"),
                      Answer::redirect(api.address(QStringLiteral("/items/s3")).toUtf8(), 303));
    api.setHandler(QStringLiteral("/items/s3"),
                   forMe(Answer::with("application/json", R"({"url": "http://cl.ly/x"})")));
    run(make());
    ASSERT_TRUE(recorder.uploaded) << recorder.error.value_or(ZQError()).localizedDescription().toStdString();
    EXPECT_EQ(recorder.uploaded->value(QStringLiteral("url")).toString(), QStringLiteral("http://cl.ly/x"));
    EXPECT_FALSE(recorder.error);
    ASSERT_FALSE(recorder.fractions.isEmpty());
    EXPECT_GT(recorder.fractions.first(), 0);
    EXPECT_EQ(recorder.fractions.last(), 1);

    const Request slot = api.requests().first();
    EXPECT_EQ(slot.method, QByteArray("GET"));
    EXPECT_EQ(slot.headers.value("accept"), QByteArray("application/json"));
    EXPECT_FALSE(slot.headers.contains("authorization")) << "nobody asked for it yet";
    ASSERT_EQ(storage.requests().size(), 1);
    const Request sent = storage.requests().first();
    EXPECT_EQ(sent.method, QByteArray("POST"));
    EXPECT_EQ(sent.headers.value("accept"), QByteArray("application/json"));
    for (const char *header : {"authorization", "cookie"}) {
        EXPECT_FALSE(sent.headers.contains(header)) << header;
    }
    const QByteArray line =
        "--" + sent.headers.value("content-type").mid(qsizetype(std::strlen("multipart/form-data; boundary=")));
    const auto field = [&](const QByteArray &name, const QByteArray &value) {
        return line + "\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" + value + "\r\n";
    };
    EXPECT_TRUE(sent.body == field("policy", "p") + field("acl", "public-read") + field("size", "5") + line +
                                 "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"picture.png\"\r\n"
                                 "Content-Type: image/png\r\n\r\n" +
                                 contents + "\r\n" + line + "--\r\n")
        << sent.body.left(600).toStdString();
    EXPECT_EQ(api.requests().last().method, QByteArray("GET"));
}

TEST_F(CloudAppAdapterTest, ASlotThatIsRefusedEndsInTheWordsForIt)
{
    for (const char *answer : {R"({"url": "u", "uploads_remaining": 0, "params": {"a": "b"}})",
                               R"({"uploads_remaining": "0", "params": {}})", R"({"url": "u", "uploads_remaining": 5})",
                               R"({"url": "u", "params": 5})", "[1]", "<html>", ""}) {
        api.setHandler(QStringLiteral("/items/new"), forMe(Answer::with("application/json", answer)));
        run(make());
        ASSERT_TRUE(recorder.error) << answer;
        EXPECT_EQ(recorder.error->domain, QStringLiteral("CloudUploadErrorDomain"));
        EXPECT_EQ(recorder.error->code, -1);
        EXPECT_EQ(recorder.error->localizedDescription(),
                  QStringLiteral("You have exceded your maximum daily upload limit "
                                 "Wait until tomorrow or upgrade your CloudApp account."));
    }
    EXPECT_TRUE(storage.requests().isEmpty());
}

TEST_F(CloudAppAdapterTest, WhatGoesWrongWithARequestIsItsError)
{
    struct Case
    {
        const char *what;
        Code code; // Cancelled: a failure without a reason
        std::optional<Answer> slot;
        std::optional<Answer> stored;
        qint64 afterBytes = -1;
    };
    const Answer drop{.end = LocalHTTPServer::End::Dropped, .endsBeforeHead = true};
    const Answer endless{.zeros = qint64(2) << 30};
    const QByteArray loop = storage.address(QStringLiteral("/bucket")).toUtf8();
    for (const Case &each :
         {Case{"wrong password",
               Code::BadResponse,
               Answer{.status = 401, .headers = {{"WWW-Authenticate", "Basic"}}},
               {}},
          Case{"server error", Code::BadResponse, Answer{.status = 500, .body = "<html>no</html>"}, {}},
          Case{"busy for long", Code::BadResponse, Answer{.status = 429, .headers = {{"Retry-After", "3600"}}}, {}},
          Case{"cut slot", Code::ConnectionLost, drop, {}}, Case{"endless slot", Code::TooLarge, endless, {}},
          Case{"no storage", Code::BadAddress, Answer::with("application/json", R"({"params": {}})"), {}},
          Case{"cut in the file", Code::ConnectionLost, {}, drop, 1 << 20},
          Case{"cut at its end", Code::ConnectionLost, {}, drop}, Case{"endless answer", Code::TooLarge, {}, endless},
          Case{"loop", Code::TooManyRedirects, {}, Answer::redirect(loop, 307)},
          Case{"refusal", Code::BadResponse, {}, Answer{.status = 403, .body = "<Error>"}},
          Case{"page", Code::Cancelled, {}, Answer{.body = "<html>"}},
          Case{"list", Code::Cancelled, {}, Answer{.body = "[]"}}}) {
        giveSlots();
        if (each.slot) {
            api.setAnswer(QStringLiteral("/items/new"), *each.slot);
        }
        if (each.afterBytes >= 0) {
            storage.setInterruption(QStringLiteral("/bucket"), each.afterBytes, *each.stored);
        } else {
            storage.setInterruption(QStringLiteral("/bucket"), qint64(1) << 40, {});
            storage.setAnswer(QStringLiteral("/bucket"), each.stored.value_or(Answer{}));
        }
        run(make());
        ASSERT_TRUE(recorder.error) << each.what;
        EXPECT_FALSE(recorder.uploaded) << each.what;
        EXPECT_EQ(recorder.error->isNull(), each.code == Code::Cancelled) << each.what;
        EXPECT_TRUE(recorder.error->isNull() || zqIsNetworkError(*recorder.error, each.code))
            << each.what << ": " << recorder.error->localizedDescription().toStdString();
        EXPECT_FALSE(recorder.error->localizedDescription().contains(QStringLiteral("pässword")));
    }
    run(make(QStringLiteral("none.png")));
    ASSERT_TRUE(recorder.error);
    EXPECT_EQ(recorder.error->domain, UploadProblem::errorDomain) << "a file that is gone is told of in its own words";
}

TEST_F(CloudAppAdapterTest, AFileDoesNotGoThroughTheOpenNet)
{
    const QByteArray open = "http://storage.example.org/bucket";
    api.setHandler(QStringLiteral("/items/new"),
                   forMe(Answer::with("application/json", "{\"url\": \"" + open + "\", \"params\": {}}")));
    run(make());
    ASSERT_TRUE(recorder.error) << "named as the storage";
    EXPECT_EQ(recorder.error->domain, UploadProblem::errorDomain);
    EXPECT_TRUE(recorder.error->localizedDescription().contains(QStringLiteral("storage.example.org")));

    giveSlots();
    storage.setAnswer(QStringLiteral("/bucket"), Answer::redirect(open, 307));
    run(make());
    ASSERT_TRUE(recorder.error) << "sent on to it";
    EXPECT_EQ(recorder.error->domain, UploadProblem::errorDomain);
}

TEST_F(CloudAppAdapterTest, WithoutItsPasswordNothingIsAsked)
{
    secrets->failure = ZQError::with(SecretStore::errorDomain, SecretStore::Denied, QStringLiteral("locked"));
    run(make());
    ASSERT_TRUE(recorder.error);
    EXPECT_EQ(recorder.error->domain, UploadProblem::errorDomain);
    EXPECT_TRUE(recorder.error->localizedDescription().contains(QStringLiteral("locked")));
    EXPECT_TRUE(api.requests().isEmpty());
    ZQUserDefaults::standardUserDefaults().setObjectForKey(QStringLiteral("http://example.org"),
                                                           CloudAppAccount::APIHostKey);
    EXPECT_TRUE(service.isReady()) << "another service must not get the file";
    run(make());
    EXPECT_EQ(recorder.error->domain, UploadProblem::errorDomain);
    EXPECT_TRUE(recorder.error->localizedDescription().contains(QStringLiteral("https")));
}

TEST_F(CloudAppAdapterTest, ACancelAtEachStageEndsItAndNobodyIsTold)
{
    const Answer silence{.end = LocalHTTPServer::End::Silence, .endsBeforeHead = true};
    storage.setInterruption(QStringLiteral("/bucket"), 1 << 20, silence);
    auto adapter = make();
    adapter->cancel();
    run(adapter);
    EXPECT_TRUE(api.requests().isEmpty());

    adapter = make();
    adapter->start(); // the secret store has not answered yet
    adapter->cancel();
    EXPECT_TRUE(adapter->isFinished());
    zqRunMainLoopFor(std::chrono::milliseconds(50));
    EXPECT_TRUE(api.requests().isEmpty());

    adapter = make();
    recorder.onProgress = [&] { adapter->cancel(); };
    adapter->start();
    zqRunMainLoopUntil([&] { return adapter->isFinished(); });

    api.setAnswer(QStringLiteral("/items/new"), silence);
    adapter = make();
    adapter->start();
    zqRunMainLoopUntil([&] { return api.countOfRequestsFor(QStringLiteral("/items/new")) == 3; });
    adapter->cancel();
    EXPECT_TRUE(adapter->isFinished());
    EXPECT_FALSE(recorder.error || recorder.uploaded);
    EXPECT_TRUE(static_cast<CloudAppAdapter &>(*adapter).password().isEmpty());
}

} // namespace
