#include "Classes/Sharing/SecretStore.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <sys/types.h>

namespace {

const QString service = QStringLiteral("ZeltoTestAccount");
const QString mine = QStringLiteral("me@example.org");
const QByteArray password = "pässword that is nowhere else";

ZQError store(const QString &account, const QByteArray &secret)
{
    std::optional<ZQError> ended;
    SecretStore::shared().setPassword(secret, service, account, [&ended](const ZQError &error) { ended = error; });
    zqRunMainLoopUntil([&] { return ended.has_value(); });
    return *ended;
}

std::pair<std::optional<QByteArray>, ZQError> read(const QString &account)
{
    std::optional<std::pair<std::optional<QByteArray>, ZQError>> ended;
    SecretStore::shared().password(
        service, account, [&ended](const std::optional<QByteArray> &secret, const ZQError &error) {
            // a copy that is not wiped with what was handed over
            ended = {secret ? std::optional(QByteArray(secret->constData(), secret->size())) : std::nullopt, error};
        });
    zqRunMainLoopUntil([&] { return ended.has_value(); });
    return *ended;
}

ZQError remove(const QString &account)
{
    std::optional<ZQError> ended;
    SecretStore::shared().deletePassword(service, account, [&ended](const ZQError &error) { ended = error; });
    zqRunMainLoopUntil([&] { return ended.has_value(); });
    return *ended;
}

bool isWrittenBelow(const QString &folder, const QByteArray &words)
{
    for (QDirIterator each(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); each.hasNext();) {
        QFile file(each.next());
        if (file.open(QIODevice::ReadOnly) && file.readAll().contains(words)) {
            return true;
        }
    }
    return false;
}

void expectNoTrace()
{
    EXPECT_TRUE(SecretStore::shared().accountsOfService(service).isEmpty());
    EXPECT_FALSE(read(mine).first);
    EXPECT_FALSE(isWrittenBelow(QDir::homePath(), password));
    EXPECT_FALSE(isWrittenBelow(qEnvironmentVariable("XDG_CONFIG_HOME"), password));
}

// The four below run in the sessions that the tests after them make.

TEST(InSession, DISABLED_WithAKeyring)
{
    EXPECT_TRUE(store(QStringLiteral("old@example.org"), "x").isNull());
    EXPECT_TRUE(store(mine, "wrong").isNull());
    const ZQError error = store(mine, password);
    ASSERT_TRUE(error.isNull()) << error.localizedDescription().toStdString();
    EXPECT_EQ(read(mine).first, password);
    EXPECT_EQ(SecretStore::shared().accountsOfService(service), (QStringList{QStringLiteral("old@example.org"), mine}));
    QProcess other;
    other.start(QStringLiteral("secret-tool"),
                {QStringLiteral("lookup"), QStringLiteral("server"), service, QStringLiteral("user"), mine});
    EXPECT_TRUE(other.waitForFinished(20'000));
    EXPECT_EQ(other.readAllStandardOutput(), password) << "other programs of the desktop see it as it is";

    EXPECT_TRUE(remove(mine).isNull());
    EXPECT_TRUE(remove(mine).isNull()) << "it is gone, as was asked";
    const auto [none, missing] = read(mine);
    EXPECT_FALSE(none);
    EXPECT_EQ(missing.code, int(SecretStore::Failed));
    EXPECT_EQ(SecretStore::shared().accountsOfService(service), QStringList{QStringLiteral("old@example.org")});
    EXPECT_TRUE(remove(QStringLiteral("old@example.org")).isNull());
    EXPECT_FALSE(ZQUserDefaults::standardUserDefaults().isSet(SecretStore::accountsKey));
    EXPECT_FALSE(isWrittenBelow(QDir::homePath(), password));
}

TEST(InSession, DISABLED_WithoutOne)
{
    const ZQError error = store(mine, password);
    EXPECT_EQ(error.code, int(SecretStore::Unavailable)) << error.localizedDescription().toStdString();
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("Nothing was stored.")));
    EXPECT_FALSE(error.localizedDescription().contains(QString::fromUtf8(password)));
    EXPECT_FALSE(remove(mine).isNull());
    expectNoTrace();
}

TEST(InSession, DISABLED_WithALockedOne)
{
    const ZQError error = store(mine, password);
    EXPECT_EQ(error.domain, SecretStore::errorDomain);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("try again")))
        << error.localizedDescription().toStdString();
    expectNoTrace();
}

TEST(InSession, DISABLED_WithOneThatIsStartedAnew)
{
    ASSERT_TRUE(store(mine, password).isNull());
    QProcess restart;
    restart.start(QStringLiteral("sh"), {QStringLiteral("-c"), qEnvironmentVariable("RESTART")});
    ASSERT_TRUE(restart.waitForFinished(30'000));
    const auto [found, error] = read(mine);
    EXPECT_EQ(found, password) << error.localizedDescription().toStdString();
    EXPECT_TRUE(remove(mine).isNull());
}

class KeyringTest : public testing::Test
{
protected:
    QProcessEnvironment environment() const
    {
        QProcessEnvironment result = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR", "XDG_CACHE_HOME"}) {
            result.insert(QString::fromLatin1(name), home.path());
        }
        for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "KDE_FULL_SESSION", "GNOME_KEYRING_CONTROL"}) {
            result.remove(QString::fromLatin1(name));
        }
        result.insert(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("GNOME"));
        return result;
    }
    void run(const QProcessEnvironment &variables, const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.setProcessEnvironment(variables);
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(program, arguments);
        ASSERT_TRUE(process.waitForStarted());
        EXPECT_TRUE(process.waitForFinished(60'000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process.exitCode(), 0);
    }
    void runWithKeyring(const char *test)
    {
        // Asking for the keyring before it is there would have the bus start another one, which is locked.
        const auto until = [](const char *isThere) {
            return QStringLiteral("timeout 20 sh -c 'until dbus-send --session --print-reply "
                                  "--dest=org.freedesktop.DBus / org.freedesktop.DBus.NameHasOwner "
                                  "string:org.freedesktop.secrets | grep -q %1; do sleep 0.1; done'; ")
                .arg(QLatin1StringView(isThere));
        };
        const QString begin = QStringLiteral("printf words | gnome-keyring-daemon --foreground --unlock "
                                             "--components=secrets >/dev/null 2>&1 & echo $! >\"$HOME/keeper\"; ") +
                              until("true");
        const QString end = QStringLiteral("kill $(cat \"$HOME/keeper\"); ") + until("false");
        QProcessEnvironment variables = environment();
        variables.insert(QStringLiteral("RESTART"), end + begin);
        const QString script = begin + QStringLiteral("\"$@\"; ended=$?; ") + end + QStringLiteral("exit $ended");
        run(variables, QStringLiteral("dbus-run-session"),
            QStringList{QStringLiteral("--"), QStringLiteral("sh"), QStringLiteral("-c"), script, QStringLiteral("sh"),
                        QCoreApplication::applicationFilePath()} +
                only(test));
    }
    static QStringList only(const char *name)
    {
        return {QStringLiteral("--gtest_also_run_disabled_tests"),
                QStringLiteral("--gtest_filter=InSession.DISABLED_") + QString::fromLatin1(name)};
    }

    QTemporaryDir home;
};

TEST_F(KeyringTest, PasswordsGoIntoTheKeyringOfTheSessionAndNowhereElse)
{
    runWithKeyring("WithAKeyring");
}

TEST_F(KeyringTest, AKeyringThatWasStartedAnewIsAskedInANewSession)
{
    runWithKeyring("WithOneThatIsStartedAnew");
}

TEST_F(KeyringTest, ALockedKeyringThatNobodyCanUnlockIsSaid)
{
    run(environment(), QStringLiteral("dbus-run-session"),
        QStringList{QStringLiteral("--"), QCoreApplication::applicationFilePath()} + only("WithALockedOne"));
}

TEST_F(KeyringTest, WithoutAKeyringThePersonIsToldAndNothingIsWritten)
{
    QProcessEnvironment alone = environment();
    alone.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nonexistent/bus"));
    run(alone, QCoreApplication::applicationFilePath(), only("WithoutOne"));
}

} // namespace
