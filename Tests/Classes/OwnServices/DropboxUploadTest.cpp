#include "Tests/Classes/OwnServices/DropboxFixture.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

class DropboxUploadTest : public DropboxFixture
{
protected:
    DropboxUploadTest()
    {
        storeAccount();
        server.setAnswer(QStringLiteral("/2/files/create_folder_v2"), made);
        server.setHandler(QStringLiteral("/2/files/upload"),
                          [](const Request &asked) { return stored(argument(asked)); });
        server.setAnswer(share, json(R"({".tag": "file", "url": "https://www.dropbox.com/scl/fi/x?dl=0"})"));
    }
    static QJsonObject argument(const Request &asked)
    {
        return QJsonDocument::fromJson(asked.headers.value("dropbox-api-arg")).object();
    }
    static Answer stored(const QJsonObject &commit)
    {
        return json(QJsonDocument(QJsonObject{{QStringLiteral("path_display"), commit.value(u"path")},
                                              {QStringLiteral("rev"), QStringLiteral("1")}})
                        .toJson());
    }
    std::shared_ptr<DropboxAdapter> make(const QString &name = QStringLiteral("Pïcture/1"),
                                         const QString &identifier = QStringLiteral("ID"))
    {
        auto adapter = std::make_shared<DropboxAdapter>(path(), name, identifier, this, session);
        if (sizes.piece > 0) {
            adapter->dropboxClient().setSizes(sizes);
        }
        return adapter;
    }
    Request requestFor(const QString &target) const
    {
        for (const Request &each : server.requests()) {
            if (each.target == target) {
                return each;
            }
        }
        return {};
    }
    // Keeps what comes in pieces; `answer` may say no to the piece of that number.
    void takePieces(std::function<std::optional<Answer>(int number, const Request &asked)> answer)
    {
        sizes = {.mostAtOnce = 1000, .piece = 30'000, .pause = std::chrono::milliseconds(0)};
        server.setAnswer(QStringLiteral("/2/files/upload_session/start"), json(R"({"session_id": "S"})"));
        server.setHandler(QStringLiteral("/2/files/upload_session/append_v2"), [this, answer](const Request &asked) {
            const QJsonObject cursor = argument(asked).value(u"cursor").toObject();
            if (const auto special = answer(++pieces, asked)) {
                return *special;
            }
            if (cursor.value(u"offset").toInteger() != received.size() ||
                cursor.value(u"session_id").toString() != u"S") {
                return json("{\"error_summary\": \"incorrect_offset/..\", \"error\": {\".tag\": \"incorrect_offset\", "
                            "\"correct_offset\": " +
                                QByteArray::number(received.size()) + "}}",
                            409);
            }
            received += asked.body;
            return json("null");
        });
        server.setHandler(QStringLiteral("/2/files/upload_session/finish"),
                          [](const Request &asked) { return stored(argument(asked).value(u"commit").toObject()); });
    }

    const Answer made = json(R"({"metadata": {"path_display": "/ID"}})");
    const QString share = QStringLiteral("/2/sharing/create_shared_link_with_settings");
    DBUpload::Sizes sizes{.piece = 0};
    QByteArray received; // server's thread
    int pieces = 0;      // the same
};

TEST_F(DropboxUploadTest, AFileGoesIntoAFolderOfItsOwnAndItsLinkIsTold)
{
    run(make());
    EXPECT_EQ(link, QStringLiteral("https://www.dropbox.com/scl/fi/x?dl=0")) << problem();
    EXPECT_EQ(progress, 1);
    const Request folderMade = requestFor(QStringLiteral("/2/files/create_folder_v2"));
    EXPECT_EQ(folderMade.headers.value("authorization"), QByteArray("Bearer A1"));
    EXPECT_EQ(folderMade.headers.value("content-type"), QByteArray("application/json"));
    EXPECT_EQ(QJsonDocument::fromJson(folderMade.body),
              QJsonDocument::fromJson(R"({"path": "/ID", "autorename": false})"));
    const Request sent = requestFor(QStringLiteral("/2/files/upload"));
    EXPECT_EQ(sent.body, contents);
    EXPECT_EQ(sent.headers.value("content-type"), QByteArray("application/octet-stream"));
    EXPECT_TRUE(sent.headers.value("dropbox-api-arg").contains("P\\u00efcture_1.png"));
    EXPECT_EQ(argument(sent).value(u"path").toString(), QStringLiteral("/ID/Pïcture_1.png"));
    EXPECT_EQ(argument(sent).value(u"mode").toString(), QStringLiteral("add"));
    EXPECT_EQ(argument(sent).value(u"autorename").toBool(true), false);
    EXPECT_EQ(QJsonDocument::fromJson(requestFor(share).body).object().value(u"path").toString(),
              QStringLiteral("/ID/Pïcture_1.png"));
    const Request renewed = requestFor(QStringLiteral("/oauth2/token"));
    EXPECT_EQ(renewed.body, QByteArray("grant_type=refresh_token&refresh_token=R1&client_id=key"));
    EXPECT_EQ(server.requests().size(), 4);

    run(make(QStringLiteral("Pïcture/1"), QStringLiteral("ID2")));
    EXPECT_EQ(argument(server.requests().at(5)).value(u"path").toString(), QStringLiteral("/ID2/Pïcture_1.png"));
    EXPECT_EQ(server.countOfRequestsFor(QStringLiteral("/oauth2/token")), 1) << "the token is still good";
}

TEST_F(DropboxUploadTest, ALinkThatExistsIsTakenAndATokenThatRanOutIsRenewedOnce)
{
    server.setAnswer(share, json(R"({"error_summary": "shared_link_already_exists/..", "error": {".tag":
        "shared_link_already_exists", "shared_link_already_exists": {".tag": "metadata", "metadata": {"url":
        "https://www.dropbox.com/old"}}}})",
                                 409));
    run(make());
    EXPECT_EQ(link, QStringLiteral("https://www.dropbox.com/old")) << problem();

    server.setAnswer(share, json(R"({"error_summary": "shared_link_already_exists/", "error": {".tag":
        "shared_link_already_exists"}})",
                                 409));
    server.setAnswer(QStringLiteral("/2/sharing/list_shared_links"),
                     json(R"({"links": [{"url": "https://www.dropbox.com/listed"}], "has_more": false})"));
    run(make());
    EXPECT_EQ(link, QStringLiteral("https://www.dropbox.com/listed")) << problem();

    server.setHandler(share, [](const Request &asked) {
        return asked.headers.value("authorization") == "Bearer A2"
                   ? json(R"({"url": "https://www.dropbox.com/new"})")
                   : json(R"({"error_summary": "expired_access_token/", "error": {".tag": "expired_access_token"}})",
                          401);
    });
    server.setAnswer(QStringLiteral("/oauth2/token"), json(R"({"access_token": "A2", "expires_in": 14400})"));
    run(make());
    EXPECT_EQ(link, QStringLiteral("https://www.dropbox.com/new")) << problem();
    EXPECT_EQ(secrets->entries.first().password, QByteArray("R1"));
}

TEST_F(DropboxUploadTest, ALargeFileGoesInPiecesAndGoesOnWhereDropboxSays)
{
    const struct
    {
        const char *name;
        std::function<std::optional<Answer>(int number, const Request &asked)> answer;
    } cases[] = {
        {"nothing happens", [](int, const Request &) { return std::nullopt; }},
        {"one is dropped",
         [](int number, const Request &) {
             return number == 2 ? std::optional(Answer{.end = LocalHTTPServer::End::Dropped, .endsBeforeHead = true})
                                : std::nullopt;
         }},
        {"one came, and its answer did not",
         [this](int number, const Request &asked) -> std::optional<Answer> {
             if (number != 3) {
                 return {};
             }
             received += asked.body;
             return Answer{.status = 503 - 1};
         }},
        {"the server lost some",
         [this](int number, const Request &) -> std::optional<Answer> {
             if (number == 3) {
                 received.truncate(10'000);
             }
             return {};
         }},
        {"it is busy", [](int number, const Request &) { return number == 1 ? std::optional(busy()) : std::nullopt; }},
    };
    for (const auto &each : cases) {
        received.clear();
        pieces = 0;
        takePieces(each.answer);
        run(make());
        EXPECT_FALSE(link.isEmpty()) << each.name << problem();
        EXPECT_EQ(received, contents) << each.name;
    }
}

TEST_F(DropboxUploadTest, FailuresEndInOneMessage)
{
    const QString upload = QStringLiteral("/2/files/upload");
    const QString mkdir = QStringLiteral("/2/files/create_folder_v2");
    const struct
    {
        QString at;
        Answer answer;
        QString domain;
    } cases[] = {
        {mkdir, json(R"({"error_summary": "path/conflict/folder/.."})", 409), DBSession::errorDomain},
        {mkdir, json(R"({"error_summary": "missing_scope/..", "error": {".tag": "missing_scope"}})", 401),
         UploadProblem::errorDomain},
        {mkdir, json("[]"), DBSession::errorDomain},
        {upload, json(R"({"error_summary": "path/insufficient_space/.."})", 409), UploadProblem::errorDomain},
        {upload, Answer{.status = 500, .headers = {{"Content-Type", "text/html"}}, .body = "<h1>"},
         zqNetworkErrorDomain},
        {upload, Answer{.zeros = qint64(2) << 30}, zqNetworkErrorDomain},
        {upload, Answer{.endsBeforeHead = true}, zqNetworkErrorDomain},
        {share, json(R"x({"url": "javascript:alert(1)"})x"), DBSession::errorDomain},
        {share, Answer::redirect("/loop"), zqNetworkErrorDomain},
        {share, busy(), zqNetworkErrorDomain},
        {QStringLiteral("/oauth2/token"), json(R"({"error": "invalid_grant"})", 400), UploadProblem::errorDomain},
    };
    for (const auto &each : cases) {
        server.setAnswer(mkdir, made);
        server.setAnswer(upload, json(R"({"path_display": "/ID/x.png"})"));
        server.setAnswer(each.at, each.answer);
        if (each.at.endsWith(u"token")) {
            session.forgetAccessToken();
        }
        run(make());
        EXPECT_TRUE(link.isEmpty()) << each.at.toStdString();
        ASSERT_TRUE(error) << each.at.toStdString();
        EXPECT_EQ(error->domain, each.domain) << each.at.toStdString() << problem();
    }
}

TEST_F(DropboxUploadTest, EndlessWrongOffsetsEndAndACancelledUploadTellsNobody)
{
    takePieces([](int, const Request &) {
        return json(
            R"({"error_summary": "incorrect_offset/", "error": {".tag": "incorrect_offset", "correct_offset": 0}})",
            409);
    });
    run(make());
    ASSERT_TRUE(error);
    EXPECT_LT(server.requests().size(), 20);

    sizes.piece = 0;
    server.setAnswer(QStringLiteral("/2/files/upload"),
                     Answer{.end = LocalHTTPServer::End::Silence, .endsBeforeHead = true});
    const auto adapter = make();
    onProgress = [&] { adapter->cancel(); };
    run(adapter);
    EXPECT_FALSE(error);
    EXPECT_TRUE(link.isEmpty());
    const auto late = make();
    late->cancel();
    const qsizetype before = server.requests().size();
    run(late);
    EXPECT_FALSE(error);
    EXPECT_EQ(server.requests().size(), before);
}

TEST_F(DropboxUploadTest, ACancelledUploadTakesItsFolderBack)
{
    const QString removal = QStringLiteral("/2/files/delete_v2");
    const auto adapter = make(QStringLiteral("a"), uploadID);
    server.setHandler(QStringLiteral("/2/files/upload"), [adapter](const Request &) {
        adapter->cancel();
        return json(R"({"path_display": "/x"})");
    });
    run(adapter);
    EXPECT_FALSE(error) << problem();
    zqRunMainLoopUntil([&] { return server.countOfRequestsFor(removal) > 0; });
    EXPECT_EQ(requestFor(removal).body, "{\"path\":\"/" + uploadID.toUtf8() + "\"}");
    EXPECT_EQ(requestFor(removal).headers.value("authorization"), QByteArray("Bearer A1"));
}

TEST_F(DropboxUploadTest, AFailedUploadTakesItsFolderBack)
{
    const QString removal = QStringLiteral("/2/files/delete_v2");
    server.setAnswer(share, Answer{.status = 500});
    run(make(QStringLiteral("a"), uploadID));
    EXPECT_TRUE(error);
    zqRunMainLoopUntil([&] { return server.countOfRequestsFor(removal) > 0; });
    EXPECT_EQ(requestFor(removal).body, "{\"path\":\"/" + uploadID.toUtf8() + "\"}");
}

TEST_F(DropboxUploadTest, CancelledFromAnyThreadAtAnyStepItEndsAndTellsNobody)
{
    const std::pair<QString, Answer> steps[] = {
        {QStringLiteral("/oauth2/token"), json(tokens)},
        {QStringLiteral("/2/files/create_folder_v2"), made},
        {QStringLiteral("/2/files/upload"), json(R"({"path_display": "/ID/x.png"})")},
        {share, json(R"({"url": "https://www.dropbox.com/x"})")},
    };
    for (const auto &[step, answer] : steps) {
        session.forgetAccessToken();
        const auto adapter = make();
        server.setHandler(step, [adapter, given = answer](const Request &) {
            adapter->cancel();
            return given;
        });
        run(adapter);
        EXPECT_FALSE(error) << step.toStdString() << problem();
        EXPECT_TRUE(link.isEmpty()) << step.toStdString();
        server.setAnswer(step, answer);
    }
    run(make());
    EXPECT_FALSE(link.isEmpty()) << problem();
}

} // namespace
