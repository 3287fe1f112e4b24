#include "Classes/Sharing/ImgurAdapter.h"
#include "Classes/Sharing/ImgurService.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Network/ZQNetworkError.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Tests/Support/LocalHTTPServer.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <optional>
#include <thread>

namespace {

constexpr qint64 hugeFile = qint64(4) << 30;

struct Heard : CloudAdapterDelegate
{
    void cloudAdapter(CloudAdapter &, const QVariantMap &didUploadFile) override
    {
        urls.append(didUploadFile.value(QStringLiteral("url")).toString());
    }
    void cloudAdapter(CloudAdapter &, const ZQError &didFailUpload) override { error = didFailUpload; }
    void cloudAdapter(CloudAdapter &, double didProgressUpload) override { fractions.append(didProgressUpload); }

    QStringList urls;
    std::optional<ZQError> error;
    QList<double> fractions;
};

class ImgurTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
        defaults.setObjectForKey(server.address({}), ImgurService::hostKey);
        defaults.setObjectForKey(QStringLiteral("0123456789abcde"), ImgurService::clientIDKey);
        answer("{\"data\":{\"link\":\"https://i.example.org/x.png\"}}");
    }
    void TearDown() override
    {
        for (const QString &key : {ImgurService::hostKey, ImgurService::clientIDKey}) {
            ZQUserDefaults::standardUserDefaults().removeObjectForKey(key);
        }
    }
    void answer(const QByteArray &body, int status = 200)
    {
        auto answer = LocalHTTPServer::Answer::with("application/json", body);
        answer.status = status;
        answer.keepsConnection = true;
        server.setAnswer(QStringLiteral("/3/upload.json"), answer);
    }
    QString file(const QString &name, const QByteArray &contents) const
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size());
        return file.fileName();
    }
    void add(const QString &path, const QString &name)
    {
        queue.addOperation(service.makeAdapter(path, name, QStringLiteral("id"), &heard));
    }
    void wait()
    {
        zqRunMainLoopUntil([this] { return queue.operationCount() == 0; }, std::chrono::milliseconds(2));
        zqRunMainLoopFor(std::chrono::milliseconds(1));
    }

    QTemporaryDir folder;
    LocalHTTPServer server;
    Heard heard;
    ImgurService service;
    ZQOperationQueue queue;
};

} // namespace

TEST_F(ImgurTest, EveryByteOfTheFormAndOneConnectionForAll)
{
    const QByteArray contents = QByteArray("\x89PNG\r\n\0--", 9) + QByteArray(100'000, 'x');
    add(file(QStringLiteral("disk name.png"), contents), QStringLiteral("Grüße"));
    add(file(QStringLiteral("plain"), {}), QStringLiteral("plain"));
    wait();
    ASSERT_EQ(heard.urls, QStringList(2, QStringLiteral("https://i.example.org/x.png")));
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 2);
    EXPECT_EQ(requests[0].method, "POST");
    EXPECT_EQ(requests[0].headers.value("content-type"),
              "multipart/form-data; boundary=---------------------------0983745982375409872438752038475287");
    EXPECT_EQ(requests[0].headers.value("authorization"), "Client-ID 0123456789abcde");
    EXPECT_FALSE(requests[0].headers.contains("cookie"));
    const QByteArray line = "-----------------------------0983745982375409872438752038475287";
    const auto head = line + "\r\nContent-Disposition: attachment; name=\"image\"; filename=\".tiff\"\r\n"
                             "Content-Type: application/octet-stream\r\n\r\n";
    const auto tail = [&line](const QByteArray &title) {
        return "\r\n" + line + "\r\nContent-Disposition: form-data; name=\"title\"\r\n\r\n" + title + "\r\n" + line +
               "\r\nContent-Disposition: form-data; name=\"description\"\r\n\r\n\r\n" + line + "--\r\n";
    };
    EXPECT_EQ(requests[0].body, head + contents + tail("Grüße.png"));
    EXPECT_EQ(requests[1].body, head + tail("plain"));
    EXPECT_EQ(server.countOfConnections(), 1);
    ASSERT_FALSE(heard.fractions.isEmpty());
    EXPECT_EQ(*std::max_element(heard.fractions.begin(), heard.fractions.end()), 1);
}

TEST_F(ImgurTest, HoweverLongAFileTakesItIsSentWhileItsBytesFlow)
{
    const auto limited = ServiceRequests::withinLimits(ImgurAdapter::request({}, "file", QStringLiteral("a")));
    EXPECT_EQ(limited.wholeTime.count(), 0);
    EXPECT_GT(limited.stallTime.count(), 0);
    EXPECT_GT(limited.answerTime.count(), 0);
    EXPECT_GT(ServiceRequests::withinLimits({}).wholeTime.count(), 0);
}

TEST_F(ImgurTest, WhatImgurSaysWentWrong)
{
    const struct
    {
        QByteArray body;
        int status;
        QString domain;
        int code;
        QString reason;
    } cases[] = {
        {"{\"data\":{\"error\":\"over capacity\"}}", 200, ImgurAdapter::errorDomain, 10000,
         QStringLiteral("over capacity")},
        {"{\"data\":{\"error\":{\"message\":\"bad file\"}}}", 400, ImgurAdapter::errorDomain, 10000,
         QStringLiteral("bad file")},
        {"{\"data\":{\"error\":\"bad id\"}}", 401, ImgurAdapter::errorDomain, 10000, QStringLiteral("bad id")},
        {"<html>no</html>", 403, zqNetworkErrorDomain, int(ZQNetworkErrorCode::BadResponse), {}},
        {"{\"data\":{\"error\":7}}", 200, ImgurAdapter::errorDomain, 10000, QStringLiteral("7")},
        {"<html>no</html>", 500, zqNetworkErrorDomain, int(ZQNetworkErrorCode::BadResponse), {}},
        {"<html>yes</html>", 200, UploadProblem::errorDomain, -2, {}},
        {"{\"data\":{\"link\":\"file:///etc/passwd\"}}", 200, UploadProblem::errorDomain, -2, {}},
        {"[1,2]", 200, UploadProblem::errorDomain, -2, {}},
        {QByteArray(2'000'000, ' '), 200, zqNetworkErrorDomain, int(ZQNetworkErrorCode::TooLarge), {}},
    };
    const QString path = file(QStringLiteral("a.png"), "a");
    for (const auto &each : cases) {
        heard = {};
        answer(each.body, each.status);
        add(path, QStringLiteral("a"));
        wait();
        ASSERT_TRUE(heard.error) << each.body.left(40).constData();
        EXPECT_EQ(heard.error->domain, each.domain) << each.body.left(40).constData();
        EXPECT_EQ(heard.error->code, each.code) << each.body.left(40).constData();
        if (!each.reason.isEmpty()) {
            EXPECT_EQ(heard.error->userInfo.value(ZQError::failureReasonKey).toString(), each.reason);
        }
        const bool isRefused = each.status == 401 || each.status == 403;
        EXPECT_EQ(UploadProblem::adviceOf(*heard.error).contains(QStringLiteral("Client ID")), isRefused);
        EXPECT_EQ(heard.error->localizedDescription().contains(QStringLiteral("Client ID")), isRefused);
        EXPECT_TRUE(heard.urls.isEmpty());
    }
}

TEST_F(ImgurTest, AServerThatMisbehavesEndsTheUploadAndNothingElse)
{
    using Answer = LocalHTTPServer::Answer;
    using Code = ZQNetworkErrorCode;
    const QString target = QStringLiteral("/3/upload.json");
    const Answer busy{.status = 429, .headers = {{"Retry-After", "3600"}}};
    const struct
    {
        const char *what;
        Answer answer;
        Code code;
        qint64 afterBytes = -1; // of the body; negative: it is read first
    } cases[] = {
        {"cut", {.end = LocalHTTPServer::End::Dropped, .endsBeforeHead = true}, Code::ConnectionLost},
        {"cut in the file", {.end = LocalHTTPServer::End::Dropped, .endsBeforeHead = true}, Code::ConnectionLost, 1000},
        {"redirect loop", Answer::redirect(server.address(target).toUtf8(), 307), Code::TooManyRedirects},
        {"wrong identifier", {.status = 401}, Code::BadResponse},
        {"busy for long", busy, Code::BadResponse},
    };
    const QString path = file(QStringLiteral("a.png"), QByteArray(3'000'000, 'a'));
    for (const auto &each : cases) {
        heard = {};
        server.setAnswer(target, each.answer);
        server.setInterruption(target, each.afterBytes < 0 ? qint64(1) << 40 : each.afterBytes, each.answer);
        add(path, QStringLiteral("a"));
        wait();
        ASSERT_TRUE(heard.error) << each.what;
        EXPECT_TRUE(zqIsNetworkError(*heard.error, each.code))
            << each.what << ": " << heard.error->localizedDescription().toStdString();
        EXPECT_TRUE(heard.urls.isEmpty()) << each.what;
    }

    const QByteArray link = "{\"data\":{\"link\":\"https://i.example.org/x.png\"}}";
    server.setInterruption(target, qint64(1) << 40, {});
    server.setHandler(target, [&link](const LocalHTTPServer::Request &) {
        std::this_thread::sleep_for(std::chrono::milliseconds(300)); // slow, and no more than that
        return Answer::with("application/json", link);
    });
    heard = {};
    add(path, QStringLiteral("a"));
    wait();
    EXPECT_EQ(heard.urls.size(), 1);

    std::atomic<int> asked = 0;
    server.setHandler(target, [&](const LocalHTTPServer::Request &) {
        return asked++ == 0 ? Answer{.status = 429, .headers = {{"Retry-After", "1"}}}
                            : Answer::with("application/json", link);
    });
    heard = {};
    add(path, QStringLiteral("a"));
    wait();
    EXPECT_EQ(heard.urls.size(), 1) << "it said when to come back";
    EXPECT_EQ(asked, 2);
}

TEST_F(ImgurTest, FilesThatCannotGoAreRefusedBeforeAnythingIsSent)
{
    QFile huge(folder.filePath(QStringLiteral("huge.tiff")));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly) && huge.resize(hugeFile));
    for (const QString &path : {huge.fileName(), folder.filePath(QStringLiteral("nowhere.png")), folder.path()}) {
        heard = {};
        add(path, QStringLiteral("a"));
        wait();
        ASSERT_TRUE(heard.error) << path.toStdString();
        EXPECT_EQ(heard.error->domain, UploadProblem::errorDomain);
    }
    EXPECT_TRUE(server.requests().isEmpty());
}

TEST_F(ImgurTest, ACancelEndsItWhateverTheServerDoes)
{
    server.setAnswer(QStringLiteral("/3/upload.json"), {.end = LocalHTTPServer::End::Silence, .endsBeforeHead = true});
    add(file(QStringLiteral("a.png"), QByteArray(3'000'000, 'a')), QStringLiteral("a"));
    zqRunMainLoopUntil([this] { return !server.requests().isEmpty(); });
    queue.cancelAllOperations();
    wait();
    EXPECT_FALSE(heard.error);
    EXPECT_TRUE(heard.urls.isEmpty());
}

TEST_F(ImgurTest, WithoutAnIdentifierItIsNotReadyAndSaysHowToGetOne)
{
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    EXPECT_TRUE(service.isReady());
    for (const char *id : {"", "two words", "a\r\nHost: evil", "ü"}) {
        defaults.setObjectForKey(QString::fromUtf8(id), ImgurService::clientIDKey);
        EXPECT_FALSE(service.isReady()) << id;
        EXPECT_TRUE(service.whatIsMissing().contains(QStringLiteral("Client ID"))) << id;
    }
    defaults.setObjectForKey(QStringLiteral(" 0123456789abcde "), ImgurService::clientIDKey);
    EXPECT_TRUE(service.isReady());
    defaults.setObjectForKey(QStringLiteral("http://example.org"), ImgurService::hostKey);
    EXPECT_FALSE(service.isReady()) << "files do not go through the open net for everybody to read";
}
