#include "Kit/Network/ZQHTTPTask.h"
#include "Tests/Classes/OwnServices/DropboxFixture.h"

#include <QCryptographicHash>
#include <QUrlQuery>

namespace {

class DropboxLinkTest : public DropboxFixture
{
protected:
    void begin(std::chrono::milliseconds time = std::chrono::minutes(1))
    {
        session.link([this](const ZQError &problem) { ends.append(problem); }, time);
        asked = QUrlQuery(browser->opened);
    }
    QString ask(const char *name) const { return asked.queryItemValue(QString::fromLatin1(name), QUrl::FullyDecoded); }
    // What the browser gets from us at the address that Dropbox sends it back to.
    int visit(const QString &query, const QByteArray &host = {})
    {
        ZQHTTPRequest request{.url = QUrl(ask("redirect_uri") + query)};
        if (!host.isEmpty()) {
            request.headers = {{"Host", host}};
        }
        std::optional<int> status;
        const auto task = ZQHTTPTask::start(request, [&](const ZQHTTPResponse &response) {
            zqOnMainThread([&status, code = response.statusCode] { status = code; });
        });
        zqRunMainLoopUntil([&] { return status.has_value(); });
        return *status;
    }
    void waitForEnd()
    {
        zqRunMainLoopUntil([&] { return !ends.isEmpty(); });
    }
    QString rightAnswer() const { return QStringLiteral("?code=C%2B1&state=") + ask("state"); }

    QUrlQuery asked;
    QList<ZQError> ends;
};

TEST_F(DropboxLinkTest, ThePersonAllowsItInTheBrowserAndIsAskedNoMore)
{
    begin();
    EXPECT_EQ(ask("client_id"), QStringLiteral("key"));
    EXPECT_EQ(ask("response_type"), QStringLiteral("code"));
    EXPECT_EQ(ask("token_access_type"), QStringLiteral("offline"));
    EXPECT_EQ(ask("code_challenge_method"), QStringLiteral("S256"));
    EXPECT_GE(ask("state").size(), 40);
    EXPECT_TRUE(session.isLinking());
    EXPECT_EQ(visit(rightAnswer()), 200);
    waitForEnd();
    ASSERT_TRUE(ends.first().isNull()) << ends.first().localizedDescription().toStdString();
    EXPECT_TRUE(session.isLinked());
    ASSERT_EQ(secrets->entries.size(), 1);
    EXPECT_EQ(secrets->entries.first().account, QStringLiteral("dbid:1"));
    EXPECT_EQ(secrets->entries.first().password, QByteArray("R1"));

    ASSERT_EQ(server.requests().size(), 1);
    const QUrlQuery exchange(QString::fromUtf8(server.requests().first().body));
    const auto sent = [&](const char *name) {
        return exchange.queryItemValue(QString::fromLatin1(name), QUrl::FullyDecoded);
    };
    EXPECT_EQ(sent("grant_type"), QStringLiteral("authorization_code"));
    EXPECT_EQ(sent("code"), QStringLiteral("C+1"));
    EXPECT_EQ(sent("client_id"), QStringLiteral("key"));
    EXPECT_EQ(sent("redirect_uri"), ask("redirect_uri"));
    const QByteArray challenge = QCryptographicHash::hash(sent("code_verifier").toUtf8(), QCryptographicHash::Sha256)
                                     .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
    EXPECT_EQ(challenge, ask("code_challenge").toUtf8());

    EXPECT_EQ(visit(rightAnswer()), 0) << "nobody listens any more";
    EXPECT_EQ(ends.size(), 1);
    for (const QString &key : defaults.keys()) {
        EXPECT_FALSE(defaults.stringForKey(key).contains(u"R1")) << key.toStdString();
    }
}

TEST_F(DropboxLinkTest, WhatIsNotTheAnswerIsNotTakenForIt)
{
    begin();
    EXPECT_EQ(visit(QStringLiteral("?code=C&state=other")), 400);
    EXPECT_EQ(visit(QStringLiteral("?code=C")), 400);
    EXPECT_EQ(visit(QStringLiteral("?error=access_denied")), 400) << "so that no other page can end it";
    EXPECT_EQ(visit(QStringLiteral("favicon.ico")), 404);
    EXPECT_EQ(visit(rightAnswer(), "evil.example:80"), 404);
    EXPECT_TRUE(ends.isEmpty());
    EXPECT_EQ(visit(rightAnswer()), 200);
    waitForEnd();
    EXPECT_TRUE(ends.first().isNull());
}

TEST_F(DropboxLinkTest, EachWayNotToGetThereEndsInOneMessage)
{
    const struct
    {
        const char *name;
        std::function<void()> happens;
        int code;
        QString domain = DBSession::errorDomain;
    } cases[] = {
        {"denied", [&] { visit(QStringLiteral("?error=access_denied&state=") + ask("state")); }, DBSession::Refused},
        {"cancelled", [&] { session.cancelLink(); }, DBSession::Cancelled},
        {"refused by the server",
         [&] {
             server.setAnswer(QStringLiteral("/oauth2/token"),
                              json(R"({"error_description": "code\nexpired )" + QByteArray(5'000, 'x') + "\"}", 400));
             visit(rightAnswer());
         },
         DBSession::Refused},
        {"no refresh token",
         [&] {
             server.setAnswer(QStringLiteral("/oauth2/token"), json(R"({"access_token": "A"})"));
             visit(rightAnswer());
         },
         DBSession::BadAnswer},
        {"a token that would break a header",
         [&] {
             server.setAnswer(QStringLiteral("/oauth2/token"),
                              json(R"({"access_token": "A\r\nX: y", "refresh_token": "R"})"));
             visit(rightAnswer());
         },
         DBSession::BadAnswer},
        {"no secret service",
         [&] {
             server.setAnswer(QStringLiteral("/oauth2/token"), json(tokens));
             secrets->failure =
                 ZQError::with(SecretStore::errorDomain, SecretStore::Unavailable, QStringLiteral("none"));
             visit(rightAnswer());
         },
         SecretStore::Unavailable, SecretStore::errorDomain},
    };
    for (const auto &each : cases) {
        ends.clear();
        begin();
        each.happens();
        waitForEnd();
        ASSERT_EQ(ends.size(), 1) << each.name;
        EXPECT_EQ(ends.first().domain, each.domain) << each.name;
        EXPECT_EQ(ends.first().code, each.code) << each.name;
        const QString told = ends.first().localizedDescription();
        EXPECT_TRUE(told.size() < 400 && !told.contains(u'\n')) << each.name << ": " << told.toStdString();
        EXPECT_FALSE(session.isLinked()) << each.name;
        EXPECT_FALSE(session.isLinking()) << each.name;
    }
}

TEST_F(DropboxLinkTest, WithoutAnAnswerAKeyOrABrowserItSaysWhatToDo)
{
    begin(std::chrono::milliseconds(1));
    waitForEnd();
    EXPECT_EQ(ends.takeFirst().domain, LoopbackListener::errorDomain);
    browser->isThere = false;
    begin();
    EXPECT_EQ(ends.takeFirst().code, int(DBSession::NoBrowser));
    set(DBSession::appKeyKey, QString());
    begin();
    EXPECT_EQ(ends.first().code, int(DBSession::NoAppKey));
    EXPECT_TRUE(ends.takeFirst().localizedDescription().contains(u"dropbox.com/developers"));

    LocalHTTPServer other;
    set(DBSession::appKeyKey, QStringLiteral("key"));
    set(DBSession::loopbackPortKey, other.port());
    begin();
    ASSERT_EQ(ends.size(), 1);
    EXPECT_TRUE(ends.first().localizedDescription().contains(QString::number(other.port())));
}

TEST_F(DropboxLinkTest, UnlinkingLeavesNoTrace)
{
    storeAccount();
    server.setAnswer(QStringLiteral("/2/auth/token/revoke"), {});
    bool hasToken = false;
    session.accessToken([&](const ZQSecret &token, const ZQError &) { hasToken = !token.isEmpty(); });
    zqRunMainLoopUntil([&] { return hasToken; });
    std::optional<ZQError> end;
    session.unlink([&](const ZQError &problem) { end = problem; });
    zqRunMainLoopUntil([&] { return end && server.countOfRequestsFor(QStringLiteral("/2/auth/token/revoke")) == 1; });
    EXPECT_TRUE(end->isNull());
    EXPECT_TRUE(secrets->entries.isEmpty());
    EXPECT_FALSE(session.isLinked());
    EXPECT_EQ(server.requests().last().headers.value("authorization"), QByteArray("Bearer A1"));
    session.accessToken([&](const ZQSecret &token, const ZQError &problem) {
        EXPECT_TRUE(token.isEmpty());
        EXPECT_EQ(problem.domain, UploadProblem::errorDomain);
        end.reset();
    });
    EXPECT_FALSE(end) << "told at once";
}

} // namespace
