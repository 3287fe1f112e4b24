#include "Classes/Sharing/CloudServices.h"
#include "Classes/Sharing/CustomServices.h"
#include "Tests/Classes/OwnServices/ServicesFixture.h"

namespace {

class CustomServiceTest : public ServicesFixture
{
protected:
    CustomServiceTest() { keys.append(CustomServices::listKey); }
    QByteArray text(const QByteArray &rest, const QByteArray &target = "/up") const
    {
        return R"({"format": 1, "name": "Ours", "url": ")" + server.address(QString::fromUtf8(target)).toUtf8() +
               "\", " + rest + "}";
    }
    ZQError add(const QByteArray &source, const QHash<QString, ZQSecret> &values = {})
    {
        ZQError problem;
        const auto description = UploadDescription::from(source, &problem);
        EXPECT_TRUE(description) << problem.localizedDescription().toStdString();
        std::optional<ZQError> end;
        CustomServices::add(*description, values, [&](const ZQError &each) { end = each; });
        zqRunMainLoopUntil([&] { return end.has_value(); });
        return *end;
    }
    static ZQError removeIt()
    {
        std::optional<ZQError> end;
        CustomServices::remove(QStringLiteral("Ours"), [&](const ZQError &each) { end = each; });
        zqRunMainLoopUntil([&] { return end.has_value(); });
        return *end;
    }
    void upload()
    {
        const auto service = CloudServices::sharedCloudServices().serviceNamed(QStringLiteral("custom:Ours"));
        ASSERT_TRUE(service);
        run(service->makeAdapter(path(), QStringLiteral("A \"b\""), QStringLiteral("ID"), this));
    }

    const QByteArray form = R"("headers": {"X-Key": "{secret:key}"}, "fields": {"b": "1", "a": "{secret:key}!"},
                               "file": "f", "link": {"pointer": "/url"})";
    const QHash<QString, ZQSecret> key = {{QStringLiteral("key"), ZQSecret(QByteArray("K1"))}};
};

TEST_F(CustomServiceTest, ARefusedLoginNamesWhatToEnterAnew)
{
    ASSERT_TRUE(add(text(form), key).isNull());
    server.setAnswer(QStringLiteral("/up"), {.status = 401});
    upload();
    ASSERT_TRUE(error);
    EXPECT_NE(problem().find("“Ours” does not accept what was entered for key."), std::string::npos) << problem();
}

TEST_F(CustomServiceTest, AFormIsSentAsDescribed)
{
    ASSERT_TRUE(add(text(form), key).isNull());
    server.setAnswer(QStringLiteral("/up"), json(R"({"url": "https://x.example/1"})"));
    upload();
    EXPECT_EQ(link, QStringLiteral("https://x.example/1")) << problem();
    ASSERT_EQ(server.requests().size(), 1);
    const Request sent = server.requests().first();
    EXPECT_EQ(sent.method, QByteArray("POST"));
    EXPECT_EQ(sent.headers.value("x-key"), QByteArray("K1"));
    const QByteArray type = sent.headers.value("content-type");
    const QByteArray boundary = "--" + type.mid(type.indexOf("boundary=") + 9);
    EXPECT_EQ(sent.body, boundary + "\r\nContent-Disposition: form-data; name=\"b\"\r\n\r\n1\r\n" + boundary +
                             "\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\nK1!\r\n" + boundary +
                             "\r\nContent-Disposition: form-data; name=\"f\"; filename=\"A %22b%22.png\"\r\n"
                             "Content-Type: image/png\r\n\r\n" +
                             contents + "\r\n" + boundary + "--\r\n");
    EXPECT_FALSE(defaults.objectForKey(CustomServices::listKey).toStringList().join(u' ').contains(u"K1"));
}

TEST_F(CustomServiceTest, TheFileAloneIsSentAndLinksComeFromHeadersAndRedirects)
{
    ASSERT_TRUE(add(text(R"("method": "PUT", "raw": true, "link": {"header": "Location"})")).isNull());
    server.setAnswer(QStringLiteral("/up"), Answer::redirect("/f/1", 303));
    upload();
    EXPECT_EQ(link, server.address(QStringLiteral("/f/1"))) << problem();
    EXPECT_EQ(server.requests().first().method, QByteArray("PUT"));
    EXPECT_EQ(server.requests().first().headers.value("if-none-match"), QByteArray("*"));
    EXPECT_EQ(server.requests().first().body, contents);
    EXPECT_EQ(server.requests().first().headers.value("content-type"), QByteArray("application/octet-stream"));

    ASSERT_TRUE(add(text(R"("method": "PUT", "raw": true, "link": {"final": true})")).isNull());
    server.setAnswer(QStringLiteral("/f/1"), json("{}"));
    upload();
    EXPECT_EQ(link, server.address(QStringLiteral("/f/1"))) << problem();
    EXPECT_FALSE(server.requests().last().headers.contains("if-none-match")) << "what is there is read then";

    server.setAnswer(QStringLiteral("/up"), {.status = 412});
    upload();
    EXPECT_NE(problem().find("of that name"), std::string::npos) << problem();
    EXPECT_EQ(CustomServices::all().size(), 1) << "one took the place of the other";
}

TEST_F(CustomServiceTest, SecretsGoToTheirServerOnlyAndFailuresAreTold)
{
    ASSERT_TRUE(add(text(form), key).isNull());
    LocalHTTPServer other;
    const struct
    {
        const char *what;
        Answer answer;
    } cases[] = {
        {"another server", Answer::redirect(other.address(QStringLiteral("/x")).toUtf8(), 307)},
        {"a loop", Answer::redirect("/up", 307)},
        {"no link", json("{}")},
        {"refused", {.status = 401}},
        {"broken", {.status = 500, .headers = {{"Content-Type", "text/html"}}, .body = "<h1>no</h1>"}},
        {"endless", {.zeros = qint64(2) << 30, .statedLength = -1}},
        {"cut", {.body = "{", .statedLength = 100}},
        {"busy", busy()},
    };
    for (const auto &each : cases) {
        server.setAnswer(QStringLiteral("/up"), each.answer);
        upload();
        ASSERT_TRUE(error) << each.what;
        EXPECT_EQ(error->domain, UploadProblem::errorDomain) << each.what;
        EXPECT_FALSE(error->localizedDescription().isEmpty()) << each.what;
        EXPECT_FALSE(error->localizedDescription().contains(u"K1")) << each.what;
    }
    EXPECT_TRUE(other.requests().isEmpty());
}

TEST_F(CustomServiceTest, FilesGoToTheirServerOnlyAlsoWithoutSecrets)
{
    ASSERT_TRUE(add(text(R"("file": "f", "link": {"final": true})")).isNull());
    LocalHTTPServer other;
    other.setAnswer(QStringLiteral("/x"), json("{}"));
    for (const int status : {307, 308}) {
        server.setAnswer(QStringLiteral("/up"), Answer::redirect(other.address(QStringLiteral("/x")).toUtf8(), status));
        upload();
        EXPECT_TRUE(error) << status;
        EXPECT_TRUE(other.requests().isEmpty()) << status;
    }
    server.setAnswer(QStringLiteral("/up"), Answer::redirect("/there", 307));
    server.setAnswer(QStringLiteral("/there"), Answer::redirect(other.address(QStringLiteral("/x")).toUtf8(), 303));
    upload();
    EXPECT_EQ(link, other.address(QStringLiteral("/x"))) << problem();
    ASSERT_EQ(other.requests().size(), 1);
    EXPECT_TRUE(other.requests().first().body.isEmpty());
}

TEST_F(CustomServiceTest, SecretsAreAskedForAndForgottenWithTheirService)
{
    EXPECT_FALSE(add(text(form)).isNull()) << "the secret is missing";
    EXPECT_FALSE(add(text(form), {{QStringLiteral("key"), ZQSecret(QByteArray("a\r\nX: y"))}}).isNull());
    EXPECT_TRUE(CustomServices::all().isEmpty());
    secrets->failure = ZQError::with(SecretStore::errorDomain, SecretStore::Unavailable, QStringLiteral("none"));
    EXPECT_EQ(add(text(form), key).domain, SecretStore::errorDomain);
    EXPECT_TRUE(CustomServices::all().isEmpty()) << "nothing is listed that cannot work";
    secrets->failure = {};

    ASSERT_TRUE(add(text(form), key).isNull());
    ASSERT_EQ(secrets->entries.size(), 1);
    LocalHTTPServer other;
    QByteArray moved = text(form).replace(QByteArray::number(server.port()), QByteArray::number(other.port()));
    ASSERT_TRUE(add(moved, {{QStringLiteral("key"), ZQSecret(QByteArray("K2"))}}).isNull());
    ASSERT_EQ(secrets->entries.size(), 1) << "the one for the other server is forgotten";
    EXPECT_EQ(secrets->entries.first().password, QByteArray("K2"));

    secrets->entries.clear();
    const auto service = CloudServices::sharedCloudServices().serviceNamed(QStringLiteral("custom:Ours"));
    ASSERT_TRUE(service);
    EXPECT_FALSE(service->isReady());
    EXPECT_FALSE(service->whatIsMissing().isEmpty());
    run(service->makeAdapter(path(), QStringLiteral("A"), QStringLiteral("ID"), this));
    EXPECT_TRUE(error) << "the secret is gone";

    ASSERT_TRUE(add(text(form), key).isNull());
    secrets->failure = ZQError::with(SecretStore::errorDomain, SecretStore::Denied, QStringLiteral("locked"));
    EXPECT_EQ(removeIt().code, SecretStore::Denied);
    EXPECT_EQ(CustomServices::all().size(), 1) << "it can be removed again";
    secrets->failure = {};
    EXPECT_TRUE(removeIt().isNull());
    EXPECT_TRUE(secrets->entries.isEmpty());
    EXPECT_TRUE(CustomServices::all().isEmpty());
    EXPECT_FALSE(CloudServices::sharedCloudServices().serviceNamed(QStringLiteral("custom:Ours")));
}

TEST_F(CustomServiceTest, AFileThatIsNoDescriptionIsNotRead)
{
    ZQError problem;
    EXPECT_FALSE(CustomServices::read(folder.filePath(QStringLiteral("missing")), &problem));
    EXPECT_FALSE(problem.isNull());
    EXPECT_FALSE(CustomServices::read(folder.path(), &problem));
    EXPECT_FALSE(CustomServices::read(path(), &problem));
}

} // namespace
