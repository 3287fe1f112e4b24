#include "Classes/Sharing/CloudAppService.h"
#include "Tests/Classes/CloudApp/CloudAppFixture.h"
#include "Tests/Support/ScriptedUser.h"

#include <optional>

namespace {

class CloudAppAccountTest : public CloudAppFixture
{
protected:
    CloudAppAccountTest() { api.setHandler(QStringLiteral("/account"), forMe(Answer::with("application/json", "{}"))); }
    CloudAppAccount::Outcome test(const QString &password)
    {
        std::optional<CloudAppAccount::Outcome> outcome;
        account.testCloudAppCredentials(QStringLiteral(" me@example.org "), password,
                                        [&outcome](CloudAppAccount::Outcome ended) { outcome = ended; });
        zqRunMainLoopUntil([&] { return outcome.has_value(); });
        return *outcome;
    }

    ScriptedUser user;
    CloudAppAccount account{user};
};

TEST_F(CloudAppAccountTest, WhomCloudAppKnowsIsKeptAndGoneWhenDisconnected)
{
    EXPECT_FALSE(CloudAppService().isReady());
    EXPECT_FALSE(CloudAppService().whatIsMissing().isEmpty());
    EXPECT_EQ(test(QStringLiteral("pässword")), CloudAppAccount::Outcome::Connected);
    EXPECT_EQ(test(QStringLiteral("pässword")), CloudAppAccount::Outcome::Connected);
    ASSERT_EQ(secrets->entries.size(), 1);
    EXPECT_EQ(secrets->entries.first().service, QStringLiteral("ZeltoCloudAppAccount"));
    EXPECT_EQ(secrets->entries.first().password, QByteArray("pässword"));
    EXPECT_EQ(CloudAppAccount::current(), QStringLiteral("me@example.org"));
    EXPECT_TRUE(CloudAppService().isReady());
    EXPECT_EQ(api.requests().first().headers.value("accept"), QByteArray("application/json"));
    EXPECT_TRUE(user.questions.isEmpty());

    const ZQError locked = ZQError::with(SecretStore::errorDomain, SecretStore::Denied, QStringLiteral("locked"));
    secrets->failure = locked;
    std::optional<ZQError> ended;
    const auto disconnect = [&] {
        ended.reset();
        account.disconnect([&ended](const ZQError &error) { ended = error; });
        zqRunMainLoopUntil([&] { return ended.has_value(); });
    };
    disconnect();
    EXPECT_EQ(ended->code, int(SecretStore::Denied));
    EXPECT_TRUE(CloudAppService().isReady()) << "it is still there";
    secrets->failure = {};
    disconnect();
    EXPECT_TRUE(ended->isNull());
    EXPECT_TRUE(secrets->entries.isEmpty());
    disconnect();
    EXPECT_TRUE(ended->isNull()) << "there is none";
}

TEST_F(CloudAppAccountTest, WhatGoesWrongIsSaidAndNothingKept)
{
    EXPECT_EQ(test(QStringLiteral("wrong")), CloudAppAccount::Outcome::Refused);
    api.setAnswer(QStringLiteral("/account"), {.status = 500});
    EXPECT_EQ(test(QStringLiteral("pässword")), CloudAppAccount::Outcome::Refused);
    ASSERT_EQ(user.questions.size(), 2);
    EXPECT_EQ(user.questions.at(0).message, QStringLiteral("Can't connect to Cloud App"));
    EXPECT_EQ(user.questions.at(0).informativeText, QStringLiteral("Username or Password are invalid"));
    EXPECT_EQ(user.questions.at(0).buttons, QStringList{QStringLiteral("OK")});
    EXPECT_EQ(user.questions.at(1).informativeText,
              QStringLiteral("Check your internet connection or your network settings."));

    api.setAnswer(QStringLiteral("/account"), {.body = "{}"});
    secrets->failure = ZQError::with(SecretStore::errorDomain, SecretStore::Unavailable, QStringLiteral("none"));
    EXPECT_EQ(test(QStringLiteral("pässword")), CloudAppAccount::Outcome::Refused);
    EXPECT_EQ(user.errors.size(), 1);
    EXPECT_TRUE(secrets->entries.isEmpty());
}

TEST_F(CloudAppAccountTest, ACheckThatIsGivenUpIsToldOnceAndKeepsNothing)
{
    api.setAnswer(QStringLiteral("/account"), {.end = LocalHTTPServer::End::Silence, .endsBeforeHead = true});
    QList<CloudAppAccount::Outcome> outcomes;
    const auto ended = [&outcomes](CloudAppAccount::Outcome outcome) { outcomes.append(outcome); };
    account.testCloudAppCredentials(QStringLiteral("a"), QStringLiteral("b"), ended);
    zqRunMainLoopUntil([&] { return !api.requests().isEmpty(); });
    account.cancel();
    account.cancel();
    EXPECT_EQ(outcomes, QList<CloudAppAccount::Outcome>{CloudAppAccount::Outcome::Cancelled});
    EXPECT_TRUE(user.questions.isEmpty());
    {
        CloudAppAccount gone(user);
        gone.testCloudAppCredentials(QStringLiteral("a"), QStringLiteral("b"), ended);
    }
    zqRunMainLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(outcomes.size(), 1);

    auto closed = std::make_unique<CloudAppAccount>(user); // by a person who leaves the alert open
    user.answerQuestion = [&closed](const UserQuestion &) {
        closed.reset();
        return 0;
    };
    api.setAnswer(QStringLiteral("/account"), {.status = 500});
    closed->testCloudAppCredentials(QStringLiteral("a"), QStringLiteral("b"), ended);
    zqRunMainLoopUntil([&] { return !closed; });
    EXPECT_EQ(outcomes.size(), 1);
    EXPECT_TRUE(secrets->entries.isEmpty());
}

} // namespace
