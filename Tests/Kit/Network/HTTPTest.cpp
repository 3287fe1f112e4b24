#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Network/ZQHTTPConnections.h"
#include "Kit/Network/ZQHTTPTask.h"
#include "Kit/Network/ZQNetworkError.h"
#include "Kit/Network/ZQPrivateAddress.h"
#include "Tests/Support/LocalHTTPServer.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QTcpServer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <future>
#include <ostream>
#include <thread>
#include <vector>
#include <zlib.h>

void PrintTo(ZQNetworkErrorCode code, std::ostream *out)
{
    *out << int(code);
}

namespace {

using Code = ZQNetworkErrorCode;
using Answer = LocalHTTPServer::Answer;
constexpr std::chrono::milliseconds soon{300};

class HTTPTest : public testing::Test
{
protected:
    ZQHTTPRequest request(const QString &target) const
    {
        ZQHTTPRequest result{.url = server.url(target)};
        result.destination = folder.filePath(QStringLiteral("file"));
        return result;
    }
    QStringList files() const
    {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    QByteArray contents() const
    {
        QFile file(folder.filePath(QStringLiteral("file")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // Fails, and leaves nothing.
    void expectFailure(const ZQHTTPRequest &asked, Code code, const char *what)
    {
        const ZQHTTPResponse response = ZQHTTPTask::perform(asked);
        EXPECT_EQ(Code(response.error.code), code)
            << what << ": " << response.error.localizedDescription().toStdString();
        EXPECT_TRUE(response.isWhole() || response.error.domain == zqNetworkErrorDomain) << what;
        EXPECT_TRUE(files().isEmpty()) << what;
        EXPECT_TRUE(response.destination.isEmpty()) << what;
    }

    LocalHTTPServer server;
    QTemporaryDir folder;
};

QByteArray gzip(qint64 zeros)
{
    z_stream stream = {};
    deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
    QByteArray zero(1 << 20, '\0');
    QByteArray room(1 << 20, '\0');
    QByteArray packed;
    int state = Z_OK;
    while (state != Z_STREAM_END) {
        const qint64 size = std::min<qint64>(zeros, zero.size());
        zeros -= size;
        stream.next_in = reinterpret_cast<Bytef *>(zero.data());
        stream.avail_in = uInt(size);
        do {
            stream.next_out = reinterpret_cast<Bytef *>(room.data());
            stream.avail_out = uInt(room.size());
            state = deflate(&stream, zeros == 0 ? Z_FINISH : Z_NO_FLUSH);
            packed.append(room.constData(), room.size() - qsizetype(stream.avail_out));
        } while (stream.avail_out == 0);
    }
    deflateEnd(&stream);
    return packed;
}

TEST_F(HTTPTest, WhatComesWholeIsInTheFileWithItsHeadersAndAddress)
{
    server.setAnswer(QStringLiteral("/from"), Answer::redirect("to?x=%20y"));
    server.setAnswer(QStringLiteral("/to"),
                     {.headers = {{"Content-Type", "Image/PNG; x=y"}, {"Set-Cookie", "a=b"}}, .body = "hello"});
    qint64 last = 0;
    ZQHTTPRequest asked = request(QStringLiteral("/from"));
    asked.acceptedTypes = {QStringLiteral("image/*")};
    asked.headers = {{"Referer", "http://page/"}};
    asked.didReceiveBytes = [&](qint64 received, qint64 expected) {
        last = received;
        EXPECT_EQ(expected, 5);
    };
    const ZQHTTPResponse response = ZQHTTPTask::perform(asked);
    EXPECT_TRUE(response.isWhole()) << response.error.localizedDescription().toStdString();
    EXPECT_EQ(response.url, server.url(QStringLiteral("/to?x=%20y")));
    EXPECT_EQ(response.MIMEType(), QStringLiteral("image/png"));
    EXPECT_EQ(zqExtensionForContentType(response.MIMEType()), QStringLiteral("png"));
    EXPECT_EQ(response.destination, asked.destination);
    EXPECT_EQ(contents(), QByteArray("hello"));
    EXPECT_EQ(files(), QStringList{QStringLiteral("file")});
    EXPECT_EQ(last, 5);
    EXPECT_EQ(server.requests().last().headers.value("referer"), QByteArray("http://page/"));
}

TEST_F(HTTPTest, ServersThatDoNotKeepToTheRulesLeaveAnErrorAndNothingElse)
{
    const qint64 gigabytes = qint64(5) << 30;
    const auto set = [this](const char *path, const Answer &answer) {
        server.setAnswer(QString::fromLatin1(path), answer);
    };
    set("/short", {.body = "abc", .statedLength = 10});
    set("/dropped", {.body = "abc", .statedLength = 10, .end = LocalHTTPServer::End::Dropped});
    set("/nothing", {.endsBeforeHead = true});
    set("/silent", {.body = "abc", .statedLength = 10, .end = LocalHTTPServer::End::Silence});
    set("/silentAtOnce", {.end = LocalHTTPServer::End::Silence, .endsBeforeHead = true});
    set("/large", {.zeros = gigabytes});
    set("/endless", {.zeros = gigabytes, .statedLength = -1});
    set("/html", Answer::with("text/html", "<p>"));
    set("/loop", Answer::redirect("/loop"));
    set("/file", Answer::redirect("file:///etc/passwd"));
    set("/nowhere", Answer::redirect("http://"));
    set("/endlessRedirect",
        {.status = 302, .headers = {{"Location", "/html"}}, .zeros = gigabytes, .statedLength = -1});
    set("/endlessRefusal", {.status = 500, .zeros = gigabytes, .statedLength = -1});

    struct Case
    {
        const char *path;
        Code code;
    };
    for (const Case &each :
         {Case{"/short", Code::ConnectionLost}, Case{"/dropped", Code::ConnectionLost},
          Case{"/nothing", Code::ConnectionLost}, Case{"/silent", Code::TimedOut},
          Case{"/silentAtOnce", Code::TimedOut}, Case{"/large", Code::TooLarge}, Case{"/endless", Code::TooLarge},
          Case{"/html", Code::UnwantedType}, Case{"/loop", Code::TooManyRedirects}, Case{"/file", Code::BadAddress},
          Case{"/nowhere", Code::BadAddress}, Case{"/endlessRedirect", Code::UnwantedType},
          Case{"/endlessRefusal", Code::BadResponse}, Case{"/missing", Code::BadResponse}}) {
        ZQHTTPRequest asked = request(QString::fromLatin1(each.path));
        if (each.code == Code::TimedOut) {
            asked.stallTime = soon;
        }
        asked.maximumSize = 3 << 20;
        if (each.code == Code::UnwantedType) {
            asked.acceptedTypes = {QStringLiteral("image/*")};
        }
        expectFailure(asked, each.code, each.path);
    }
    EXPECT_LT(server.bytesSent(), qint64(100) << 20);
    EXPECT_EQ(server.countOfRequestsFor(QStringLiteral("/loop")), 11);
}

TEST_F(HTTPTest, AnAnswerMayTakeOnlyItsTimeWhateverDripsOfIt)
{
    for (const bool hasHead : {false, true}) {
        server.setAnswer(
            QStringLiteral("/"),
            {.body = "abc", .statedLength = 10, .end = LocalHTTPServer::End::Silence, .endsBeforeHead = !hasHead});
        ZQHTTPRequest asked{.url = server.url(QStringLiteral("/")), .method = "POST", .body = "sent"};
        asked.answerTime = soon;
        const ZQError error = ZQHTTPTask::perform(asked).error;
        EXPECT_EQ(Code(error.code), Code::TimedOut) << hasHead;
        EXPECT_TRUE(error.localizedDescription().contains(u"took too long")) << "it was not the silence " << hasHead;
    }
}

TEST_F(HTTPTest, WhatIsUnpackedCountsAndNotWhatCame)
{
    const Answer small{.headers = {{"Content-Encoding", "gzip"}, {"Content-Type", "image/svg+xml"}},
                       .body = gzip(1000)};
    server.setAnswer(QStringLiteral("/small"), small);
    server.setAnswer(QStringLiteral("/bomb"), {.headers = small.headers, .body = gzip(qint64(512) << 20)});
    ZQHTTPRequest asked = request(QStringLiteral("/bomb"));
    asked.maximumSize = 4 << 20;
    expectFailure(asked, Code::TooLarge, "bomb");
    asked.url = server.url(QStringLiteral("/small"));
    EXPECT_TRUE(ZQHTTPTask::perform(asked).isWhole());
    EXPECT_EQ(contents(), QByteArray(1000, '\0'));
}

TEST_F(HTTPTest, EachAddressOfTheWayIsAskedAboutAndTheConnectionMadeToTheOneThatWas)
{
    server.setAnswer(QStringLiteral("/a"), Answer::redirect("/b"));
    server.setAnswer(QStringLiteral("/b"), Answer::with("image/png", "x"));
    QStringList gone;
    ZQHTTPRequest asked = request(QStringLiteral("/a"));
    asked.url = QUrl(server.address(QStringLiteral("/a"), QStringLiteral("localhost")));
    asked.mayGoTo = [&gone](const QUrl &url) {
        gone.append(url.path());
        return url.path() == u"/b" ? zqNetworkError(Code::NotAllowed, QStringLiteral("no")) : ZQError();
    };
    expectFailure(asked, Code::NotAllowed, "second hop");
    EXPECT_EQ(gone, (QStringList{QStringLiteral("/a"), QStringLiteral("/b")}));
    EXPECT_EQ(server.countOfRequestsFor(QStringLiteral("/b")), 0);

    asked.mayGoTo = {};
    asked.mayConnectTo = [](const QHostAddress &address) {
        return zqReachOfAddress(address) == ZQAddressReach::Everybody;
    };
    expectFailure(asked, Code::NotAllowed, "name of this machine");
    EXPECT_EQ(server.requests().size(), 1);

    asked.mayConnectTo = [](const QHostAddress &address) { return address == QHostAddress(QHostAddress::LocalHost); };
    EXPECT_TRUE(ZQHTTPTask::perform(asked).isWhole());
    EXPECT_EQ(server.requests().last().headers.value("host"), "localhost:" + QByteArray::number(server.port()));
}

// As a name that leads elsewhere a moment later, and a connection that was kept by who may go there.
TEST_F(HTTPTest, TheAddressOfTheConnectionItselfIsJudged)
{
    server.setAnswer(QStringLiteral("/"), {.body = "x", .keepsConnection = true});
    const auto kept = ZQHTTPConnections::make();
    ZQHTTPRequest asked{.url = server.url(QStringLiteral("/")), .connections = kept};
    ASSERT_TRUE(ZQHTTPTask::perform(asked).isWhole());
    for (const auto &connections : {kept, ZQHTTPConnections::make()}) {
        asked.connections = connections;
        asked.mayConnectTo = [isFirst = true](const QHostAddress &) mutable { return std::exchange(isFirst, false); };
        EXPECT_EQ(Code(ZQHTTPTask::perform(asked).error.code), Code::NotAllowed);
    }
    EXPECT_EQ(server.requests().size(), 1);
}

TEST_F(HTTPTest, WhatAProxyRefusesIsSaidAndItLearnsNoSecret)
{
    const auto clear = [] {
        qunsetenv("http_proxy");
        qunsetenv("https_proxy");
    };
    const QScopeGuard restore(clear);
    ZQHTTPRequest asked{.url = QUrl(QStringLiteral("https://example.org/x")),
                        .headers = {{"Authorization", "Bearer mine"}}};
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    const QString gone = QStringLiteral("http://127.0.0.1:%1/").arg(closed.serverPort());
    closed.close();
    server.setAnswer(QStringLiteral("example.org:443"), {.status = 407});
    for (const QString &proxy : {gone, server.address(QStringLiteral("/"))}) {
        qputenv("http_proxy", proxy.toLatin1());
        qputenv("https_proxy", proxy.toLatin1());
        const ZQError error = ZQHTTPTask::perform(asked).error;
        EXPECT_EQ(Code(error.code), Code::CannotConnect);
        EXPECT_TRUE(error.localizedDescription().contains(u"proxy")) << error.localizedDescription().toStdString();
    }
    ASSERT_EQ(server.requests().size(), 1);
    EXPECT_EQ(server.requests().first().method, QByteArray("CONNECT"));
    EXPECT_FALSE(server.requests().first().headers.contains("authorization"));
    server.setAnswer(QStringLiteral("http://example.org/x"), {.status = 407, .body = "who?"});
    ZQHTTPRequest plain = request({});
    plain.url = QUrl(QStringLiteral("http://example.org/x"));
    expectFailure(plain, Code::CannotConnect, "without encryption the refusal comes as an answer");
    EXPECT_EQ(server.countOfRequestsFor(plain.url.toString()), 1);
    clear();
    qputenv("ALL_PROXY", gone.toLatin1()); // of which the desktop says nothing for this machine
    server.setAnswer(QStringLiteral("/"), {.body = "x"});
    EXPECT_TRUE(ZQHTTPTask::perform({.url = server.url(QStringLiteral("/"))}).isWhole());
    qunsetenv("ALL_PROXY");
}

TEST_F(HTTPTest, AnUntrustedServerIsNotReadAndEncryptionIsNotLost)
{
    LocalHTTPServer safe(LocalHTTPServer::Scheme::HTTPS);
    safe.setAnswer(QStringLiteral("/"), Answer::with("image/png", "x"));
    ZQHTTPRequest asked = request({});
    asked.url = QUrl(safe.address(QStringLiteral("/"), QStringLiteral("localhost")));
    expectFailure(asked, Code::Untrusted, "by name");
    asked.mayConnectTo = [](const QHostAddress &) { return true; };
    expectFailure(asked, Code::Untrusted, "by a checked address");
    EXPECT_TRUE(safe.requests().isEmpty());

    QTemporaryDir trusted;
    const QString path = trusted.filePath(QStringLiteral("certificate.pem"));
    QFile certificate(path);
    ASSERT_TRUE(certificate.open(QIODevice::WriteOnly) && certificate.write(safe.certificate()) > 0);
    certificate.close();
    qputenv("SSL_CERT_FILE", path.toUtf8());
    const QScopeGuard restore([] { qunsetenv("SSL_CERT_FILE"); });
    safe.setAnswer(QStringLiteral("/away"), Answer::redirect(server.address(QStringLiteral("/plain")).toUtf8()));
    server.setAnswer(QStringLiteral("/plain"), Answer::with("image/png", "x"));
    asked.url = QUrl(safe.address(QStringLiteral("/away"), QStringLiteral("localhost")));
    expectFailure(asked, Code::RedirectRefused, "from https to http");
    asked.url = QUrl(safe.address(QStringLiteral("/away")));
    expectFailure(asked, Code::Untrusted, "the certificate is for another name");
    EXPECT_TRUE(server.requests().isEmpty());
    asked.mayLoseEncryption = true;
    asked.url = QUrl(safe.address(QStringLiteral("/away"), QStringLiteral("localhost")));
    EXPECT_TRUE(ZQHTTPTask::perform(asked).isWhole());
}

TEST_F(HTTPTest, ACancelFromAnyThreadEndsItAndIsToldOnce)
{
    server.setAnswer(QStringLiteral("/"), {.zeros = qint64(5) << 30, .end = LocalHTTPServer::End::Silence});
    ZQHTTPRequest asked = request(QStringLiteral("/"));
    asked.maximumSize = qint64(10) << 30;
    const auto cancellation = std::make_shared<ZQCancellation>();
    asked.didReceiveBytes = [cancellation](qint64, qint64) { cancellation->cancel(); };
    {
        const ZQCancellation::Scope scope(cancellation);
        expectFailure(asked, Code::Cancelled, "by the work it is for");
    }

    std::promise<Code> ended;
    asked.didReceiveBytes = {};
    const auto task = ZQHTTPTask::start(asked, [&ended](const ZQHTTPResponse &response) {
        ended.set_value(Code(response.error.code)); // a second time would throw
    });
    std::thread other([task] {
        task->cancel();
        task->cancel();
    });
    EXPECT_EQ(ended.get_future().get(), Code::Cancelled);
    other.join();
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(HTTPTest, ManyRequestsAtOnceEachGetTheirOwn)
{
    server.setHandler(QStringLiteral("/n"), [](const LocalHTTPServer::Request &asked) {
        return Answer::with("text/plain", asked.target.toUtf8());
    });
    std::vector<std::thread> threads;
    for (int i = 0; i < 40; ++i) {
        threads.emplace_back([this, i] {
            const QString target = QStringLiteral("/n?%1").arg(i);
            EXPECT_EQ(ZQHTTPTask::perform({.url = server.url(target)}).body, target.toUtf8());
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

TEST_F(HTTPTest, ABodyIsSentAgainAfterALoginAndNothingSecretGoesToAnotherServer)
{
    LocalHTTPServer other;
    server.setHandler(QStringLiteral("/login"), [](const LocalHTTPServer::Request &asked) {
        return asked.headers.contains("authorization")
                   ? Answer::with("text/plain", asked.method + ' ' + asked.body)
                   : Answer{.status = 401, .headers = {{"WWW-Authenticate", "Basic realm=\"x\""}}};
    });
    server.setAnswer(QStringLiteral("/away"), Answer::redirect(other.address(QStringLiteral("/")).toUtf8(), 307));
    other.setHandler(QStringLiteral("/"), [](const LocalHTTPServer::Request &asked) {
        return Answer::with("text/plain", asked.method + ' ' + asked.body + ' ' + asked.headers.value("authorization"));
    });
    ZQHTTPRequest asked{.url = server.url(QStringLiteral("/login")), .method = "POST"};
    asked.user = QStringLiteral("me");
    asked.password = QStringLiteral("secret");
    asked.makeBody = [] {
        auto device = std::make_unique<QBuffer>();
        device->setData("body");
        device->open(QIODevice::ReadOnly);
        return device;
    };
    ZQHTTPResponse response = ZQHTTPTask::perform(asked);
    EXPECT_EQ(response.body, QByteArray("POST body")) << response.error.localizedDescription().toStdString();
    asked.user.clear();
    response = ZQHTTPTask::perform(asked);
    EXPECT_EQ(response.statusCode, 401);
    EXPECT_EQ(Code(response.error.code), Code::BadResponse);

    asked.url = server.url(QStringLiteral("/away"));
    asked.headers = {{"Authorization", "Bearer mine"}};
    EXPECT_EQ(ZQHTTPTask::perform(asked).body, QByteArray("POST body "));
}

TEST_F(HTTPTest, WhatCannotBeReachedOrWrittenIsSaidInWords)
{
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    const QString gone = QStringLiteral("http://127.0.0.1:%1/").arg(closed.serverPort());
    closed.close();
    ZQHTTPRequest asked = request(QStringLiteral("/"));
    asked.url = QUrl(gone);
    expectFailure(asked, Code::CannotConnect, "nobody there");
    asked.mayConnectTo = [](const QHostAddress &) { return true; };
    expectFailure(asked, Code::CannotConnect, "nobody there, by a checked address");
    for (const char *address : {"ftp://127.0.0.1/x", "http:///x", "", "/etc/passwd", "javascript:1"}) {
        asked.url = QUrl(QString::fromLatin1(address));
        expectFailure(asked, Code::BadAddress, address);
    }

    server.setAnswer(QStringLiteral("/"), Answer::with("image/png", "x"));
    asked = request(QStringLiteral("/"));
    asked.destination = folder.filePath(QStringLiteral("none/file"));
    expectFailure(asked, Code::CannotWrite, "no folder");
    asked.destination = folder.filePath(QStringLiteral("file"));
    QFile mine(asked.destination);
    ASSERT_TRUE(mine.open(QIODevice::WriteOnly) && mine.write("mine") == 4);
    mine.close();
    EXPECT_EQ(Code(ZQHTTPTask::perform(asked).error.code), Code::CannotWrite);
    EXPECT_EQ(contents(), QByteArray("mine")) << "another file is never replaced";
}

} // namespace
