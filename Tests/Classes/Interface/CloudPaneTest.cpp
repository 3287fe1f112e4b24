// The accounts for sharing: each is connected and given up in its own way, and no password is ever kept but in the
// secret store.

#include "Classes/Interface/Preferences/CloudPane.h"
#include "Classes/Interface/Preferences/CloudAccountPage.h"
#include "Classes/Sharing/CloudAppAccount.h"
#include "Classes/Sharing/CloudServices.h"
#include "Classes/Sharing/CustomServices.h"
#include "Classes/Sharing/DBSession.h"
#include "Classes/Sharing/ImgurService.h"
#include "Classes/Sharing/WebDAVSettings.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Tests/Classes/Interface/FakeCloudService.h"
#include "Tests/Support/LocalHTTPServer.h"
#include "Tests/Support/MemorySecretStore.h"
#include "Tests/Support/ScriptedUser.h"

#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QToolButton>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace {

ZQUserDefaults &defaults()
{
    return ZQUserDefaults::standardUserDefaults();
}

class CloudPaneTest : public testing::Test
{
protected:
    void SetUp() override
    {
        forget();
        auto store = std::make_unique<MemorySecretStore>();
        secrets = store.get();
        SecretStore::setShared(std::move(store));
        WebBrowser::setShared(std::make_unique<FakeBrowser>(opened, true));
        openPane();
    }
    void TearDown() override
    {
        token.reset();
        pane.reset();
        QCoreApplication::processEvents(); // what is still told
        SecretStore::setShared(nullptr);
        WebBrowser::setShared(nullptr);
        forget();
    }
    static void forget()
    {
        const QStringList keys =
            WebDAVSettings::keys() + QStringList{CloudServices::choiceKey,   CloudAppAccount::APIHostKey,
                                                 ImgurService::clientIDKey,  DBSession::appKeyKey,
                                                 DBSession::loopbackPortKey, CustomServices::listKey};
        for (const QString &key : keys) {
            defaults().removeObjectForKey(key);
        }
    }
    void openPane()
    {
        pane = std::make_unique<CloudPane>(user);
        pane->show();
        pane->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(pane.get()));
        token = defaults().observe([this](const QString &key) { pane->showPreference(key); });
    }
    static bool waitFor(const std::function<bool()> &condition) { return QTest::qWaitFor(condition, 20000); }
    template <class T>
    T *shown(const QString &name)
    {
        for (T *each : pane->findChildren<T *>()) {
            QString text = each->accessibleName();
            if constexpr (std::is_base_of_v<QAbstractButton, T>) {
                text = QString(each->text()).remove(u'&');
            }
            if (each->isVisible() && text == name) {
                return each;
            }
        }
        return nullptr;
    }
    QPushButton *button(const char *name) { return shown<QPushButton>(QString::fromUtf8(name)); }
    void enter(const char *name, const QString &text)
    {
        auto *field = shown<QLineEdit>(QString::fromUtf8(name));
        ASSERT_TRUE(field) << name;
        field->setFocus();
        field->clear();
        QTest::keyClicks(field, text);
    }
    bool isSaid(const QString &text) // somewhere in the pane
    {
        for (const QLabel *label : pane->findChildren<QLabel *>()) {
            if (label->isVisible() && label->text().contains(text)) {
                return true;
            }
        }
        return false;
    }
    // All that is in the file of the defaults.
    static QByteArray kept()
    {
        defaults().synchronize();
        QFile file(defaults().path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void enterCloudApp(const QString &email, const QString &password)
    {
        pane->showPage(QStringLiteral("cloudapp"));
        enter("E-mail", email);
        enter("Password", password);
    }

    ScriptedUser user;
    MemorySecretStore *secrets = nullptr;
    QList<QUrl> opened;
    std::unique_ptr<CloudPane> pane;
    ZQUserDefaults::Token token;
};

const QString password = QStringLiteral("s3cret-word");

} // namespace

TEST_F(CloudPaneTest, TheServiceIsChosenByNameOrByTheRule)
{
    QComboBox &menu = pane->serviceMenu();
    EXPECT_EQ(menu.currentText(), QStringLiteral("Automatic"));
    EXPECT_TRUE(isSaid(QStringLiteral("Now: Imgur.")));
    EXPECT_TRUE(isSaid(QStringLiteral("Imgur is not set up yet")));
    const int imgur = menu.findText(QStringLiteral("Imgur"));
    menu.setCurrentIndex(imgur);
    Q_EMIT menu.activated(imgur);
    EXPECT_EQ(defaults().stringForKey(CloudServices::choiceKey), QStringLiteral("imgur"));

    pane->showPage(QStringLiteral("imgur"));
    enter("Client ID", QStringLiteral("two words"));
    QTest::keyClick(shown<QLineEdit>(QStringLiteral("Client ID")), Qt::Key_Return);
    EXPECT_TRUE(isSaid(QStringLiteral("letters and digits")));
    enter("Client ID", QStringLiteral(" 3f0c1b9d2e8a4c7 "));
    QTest::keyClick(shown<QLineEdit>(QStringLiteral("Client ID")), Qt::Key_Return);
    EXPECT_EQ(ImgurService::clientID(), QStringLiteral("3f0c1b9d2e8a4c7"));
    EXPECT_FALSE(isSaid(QStringLiteral("not set up yet")));

    defaults().setObjectForKey(QStringLiteral("custom:Gone"), CloudServices::choiceKey);
    EXPECT_EQ(menu.currentText(), QStringLiteral("custom:Gone (gone)"));
    EXPECT_TRUE(isSaid(QStringLiteral("not there any more")));
}

TEST_F(CloudPaneTest, CloudAppIsTriedBeforeItIsKeptAndForgottenWhole)
{
    LocalHTTPServer server;
    defaults().setObjectForKey(server.address({}), CloudAppAccount::APIHostKey);
    server.setAnswer(QStringLiteral("/account"), {.status = 401});
    pane->showPage(QStringLiteral("cloudapp"));
    ASSERT_TRUE(button("Connect"));
    EXPECT_FALSE(button("Connect")->isEnabled()) << "nothing is entered";
    enterCloudApp(QStringLiteral("me@example.org"), password);
    EXPECT_EQ(shown<QLineEdit>(QStringLiteral("Password"))->echoMode(), QLineEdit::Password);
    button("Connect")->click();
    EXPECT_FALSE(button("Connect")->isEnabled());
    EXPECT_TRUE(isSaid(QStringLiteral("Asking CloudApp…")));
    ASSERT_TRUE(waitFor([this] { return user.questions.size() == 1; }));
    EXPECT_EQ(user.questions[0].message, QStringLiteral("Can't connect to Cloud App"));
    EXPECT_EQ(user.questions[0].informativeText, QStringLiteral("Username or Password are invalid"));
    ASSERT_TRUE(waitFor([this] { return button("Connect")->isEnabled(); })) << "with what was entered";
    EXPECT_TRUE(secrets->entries.isEmpty());

    server.setAnswer(QStringLiteral("/account"), LocalHTTPServer::Answer::with("application/json", "{}"));
    QTest::keyClick(shown<QLineEdit>(QStringLiteral("Password")), Qt::Key_Return);
    ASSERT_TRUE(waitFor([this] { return button("Disconnect") != nullptr; }));
    EXPECT_TRUE(isSaid(QStringLiteral("Connected as me@example.org")));
    EXPECT_FALSE(shown<QLineEdit>(QStringLiteral("Password")));
    ASSERT_EQ(secrets->entries.size(), 1);
    EXPECT_EQ(secrets->entries[0].password, password.toUtf8());
    EXPECT_FALSE(kept().contains(password.toUtf8()));

    button("Disconnect")->click();
    ASSERT_TRUE(button("Disconnect")) << "the person is not sure";
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    button("Disconnect")->click();
    ASSERT_TRUE(waitFor([this] { return button("Connect") != nullptr; }));
    EXPECT_TRUE(secrets->entries.isEmpty());
    EXPECT_TRUE(shown<QLineEdit>(QStringLiteral("Password"))->text().isEmpty()) << "no trace of it";
}

TEST_F(CloudPaneTest, WithoutASecretStoreThePersonIsToldAndNothingIsWritten)
{
    LocalHTTPServer server;
    server.setAnswer(QStringLiteral("/account"), LocalHTTPServer::Answer::with("application/json", "{}"));
    defaults().setObjectForKey(server.address({}), CloudAppAccount::APIHostKey);
    secrets->failure =
        ZQError::with(SecretStore::errorDomain, SecretStore::Unavailable, QStringLiteral("No keyring. Start one."));
    enterCloudApp(QStringLiteral("me@example.org"), password);
    button("Connect")->click();
    ASSERT_TRUE(waitFor([this] { return user.errors.size() == 1; }));
    EXPECT_EQ(user.errors[0].localizedDescription(), QStringLiteral("No keyring. Start one."));
    EXPECT_TRUE(waitFor([this] { return button("Connect") && button("Connect")->isEnabled(); }));
    EXPECT_FALSE(kept().contains(password.toUtf8()));
}

TEST_F(CloudPaneTest, APaneThatGoesWhileItAsksIsNotMissed)
{
    auto server = std::make_unique<LocalHTTPServer>();
    server->setAnswer(QStringLiteral("/account"), {.end = LocalHTTPServer::End::Silence, .endsBeforeHead = true});
    defaults().setObjectForKey(server->address({}), CloudAppAccount::APIHostKey);
    enterCloudApp(QStringLiteral("me@example.org"), password);
    button("Connect")->click();
    ASSERT_TRUE(waitFor([&] { return server->countOfRequestsFor(QStringLiteral("/account")) == 1; }));
    button("Cancel")->click();
    EXPECT_TRUE(waitFor([this] { return button("Connect")->isEnabled(); }));
    EXPECT_TRUE(user.questions.isEmpty());
    button("Connect")->click();
    ASSERT_TRUE(waitFor([&] { return server->countOfRequestsFor(QStringLiteral("/account")) == 2; }));
    token.reset();
    pane.reset();
    QTest::qWait(50);
    openPane();
    pane->showPage(QStringLiteral("cloudapp"));
    EXPECT_TRUE(button("Connect"));
    EXPECT_TRUE(secrets->entries.isEmpty());
    server.reset();
    EXPECT_TRUE(waitFor([this] { return user.questions.size() == 1; })) << "what was asked for comes to its end";
}

TEST_F(CloudPaneTest, DropboxIsLinkedInTheBrowserWhichCanBeCancelled)
{
    defaults().setObjectForKey(0, DBSession::loopbackPortKey);
    pane->showPage(QStringLiteral("dropbox"));
    ASSERT_TRUE(button("Link…"));
    EXPECT_FALSE(button("Link…")->isEnabled()) << "without a key";
    enter("App key", QStringLiteral("k3y"));
    button("Link…")->setFocus();
    EXPECT_EQ(defaults().stringForKey(DBSession::appKeyKey), QStringLiteral("k3y"));
    button("Link…")->click();
    ASSERT_EQ(opened.size(), 1);
    EXPECT_TRUE(opened[0].query().contains(QStringLiteral("client_id=k3y")));
    EXPECT_TRUE(isSaid(QStringLiteral("Waiting for you")));
    button("Cancel")->click();
    ASSERT_TRUE(waitFor([this] { return button("Link…") != nullptr; }));
    EXPECT_FALSE(isSaid(QStringLiteral("Waiting for you")));

    WebBrowser::setShared(std::make_unique<FakeBrowser>(opened, false));
    button("Link…")->click();
    EXPECT_TRUE(waitFor([this] { return isSaid(QStringLiteral("No web browser could be opened.")); }));

    secrets->entries.append({DBSession::serviceOfSecrets, QStringLiteral("Me"), "token"});
    pane->showPreference(SecretStore::accountsKey);
    EXPECT_TRUE(isSaid(QStringLiteral("Linked with Me")));
    EXPECT_FALSE(shown<QLineEdit>(QStringLiteral("App key"))->isEnabled());
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    button("Unlink")->click();
    ASSERT_TRUE(waitFor([this] { return button("Link…") != nullptr; }));
    EXPECT_TRUE(secrets->entries.isEmpty());
}

TEST_F(CloudPaneTest, AServerOfOnesOwnIsTriedWithWhatWasEntered)
{
    LocalHTTPServer server;
    const QString files = QStringLiteral("/remote.php/dav/files/me/");
    server.setAnswer(files, {.status = 401});
    pane->showPage(QStringLiteral("webdav"));
    EXPECT_FALSE(button("Test and Connect")->isEnabled());
    enter("Address", server.address({}));
    enter("User", QStringLiteral("me"));
    enter("Password", password);
    button("Test and Connect")->click();
    EXPECT_TRUE(waitFor([this] { return isSaid(QStringLiteral("does not accept")); }));
    EXPECT_TRUE(WebDAVSettings::stored().address.isEmpty()) << "what does not work is not kept";

    server.setAnswer(files, {.status = 207});
    button("Test and Connect")->click();
    ASSERT_TRUE(waitFor([this] { return button("Disconnect") != nullptr; }));
    EXPECT_TRUE(isSaid(QStringLiteral("Connected as me@127.0.0.1")));
    EXPECT_TRUE(isSaid(QStringLiteral("Now: 127.0.0.1."))) << "nothing else is set up";
    EXPECT_FALSE(isSaid(QStringLiteral("not set up yet")));
    EXPECT_FALSE(button("Use It for Sharing"));
    defaults().setObjectForKey(QStringLiteral("imgur"), CloudServices::choiceKey);
    ASSERT_TRUE(button("Use It for Sharing"));
    button("Use It for Sharing")->click();
    EXPECT_EQ(defaults().stringForKey(CloudServices::choiceKey), QStringLiteral("webdav"));
    EXPECT_FALSE(button("Use It for Sharing"));
    ASSERT_EQ(secrets->entries.size(), 1);
    EXPECT_FALSE(kept().contains(password.toUtf8()));
    button("Disconnect")->click();
    ASSERT_TRUE(button("Disconnect")) << "the person is not sure";
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    button("Disconnect")->click();
    ASSERT_TRUE(waitFor([this] { return button("Test and Connect") != nullptr; }));
    EXPECT_TRUE(secrets->entries.isEmpty());
    EXPECT_TRUE(WebDAVSettings::stored().address.isEmpty());
}

TEST_F(CloudPaneTest, WhatIsConnectedCanBeChangedWithoutGivingItUp)
{
    LocalHTTPServer server;
    const QString files = QStringLiteral("/remote.php/dav/files/me/");
    server.setAnswer(files, {.status = 207});
    pane->showPage(QStringLiteral("webdav"));
    enter("Address", server.address({}));
    enter("User", QStringLiteral("me"));
    enter("Password", QStringLiteral("old"));
    QTest::keyClick(shown<QLineEdit>(QStringLiteral("Password")), Qt::Key_Return);
    ASSERT_TRUE(waitFor([this] { return button("Change…") != nullptr; }));
    EXPECT_TRUE(button("Change…")->hasFocus());

    button("Change…")->click();
    EXPECT_FALSE(button("Disconnect"));
    enter("Folder", QStringLiteral("Shared"));
    ASSERT_TRUE(button("Test and Connect")->isEnabled()) << "with the password that is known";
    button("Test and Connect")->click();
    ASSERT_TRUE(waitFor([this] { return button("Change…") != nullptr; }));
    EXPECT_EQ(WebDAVSettings::stored().folder, QStringLiteral("Shared"));
    EXPECT_EQ(secrets->entries.last().password, QByteArray("old"));

    button("Change…")->click();
    enter("User", QStringLiteral("other"));
    EXPECT_FALSE(button("Test and Connect")->isEnabled()) << "the password is not that one's";
    button("Cancel")->click();
    EXPECT_EQ(WebDAVSettings::stored().user, QStringLiteral("me"));
    button("Change…")->click();
    EXPECT_EQ(shown<QLineEdit>(QStringLiteral("User"))->text(), QStringLiteral("me"));
    server.setAnswer(files, {.status = 401});
    enter("Password", password);
    button("Test and Connect")->click();
    ASSERT_TRUE(waitFor([this] { return isSaid(QStringLiteral("does not accept")); }));
    EXPECT_EQ(secrets->entries.last().password, QByteArray("old")) << "what does not work is not kept";
    server.setAnswer(files, {.status = 207});
    button("Test and Connect")->click();
    ASSERT_TRUE(waitFor([this] { return button("Change…") != nullptr; }));
    EXPECT_EQ(secrets->entries.last().password, password.toUtf8());
    EXPECT_EQ(secrets->entries.size(), 1);

    secrets->failure = ZQError::with(SecretStore::errorDomain, SecretStore::Unavailable, QStringLiteral("none"));
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    button("Disconnect")->click();
    ASSERT_TRUE(waitFor([this] { return button("Test and Connect") != nullptr; }));
    EXPECT_TRUE(isSaid(QStringLiteral("ZeltoWebDAVAccount"))) << "where the password may still be";
    EXPECT_TRUE(WebDAVSettings::stored().address.isEmpty());
}

TEST_F(CloudPaneTest, WhoeverWaitsForTheKeyringIsTold)
{
    LocalHTTPServer server;
    server.setAnswer(QStringLiteral("/remote.php/dav/files/me/"), {.status = 207});
    pane->showPage(QStringLiteral("webdav"));
    enter("Address", server.address({}));
    enter("User", QStringLiteral("me"));
    enter("Password", password);
    bool wasSaid = false;
    secrets->onSet = [&] {
        const auto waiting = SecretStore::wait();
        wasSaid = isSaid(QStringLiteral("Waiting for the keyring…"));
    };
    button("Test and Connect")->click();
    ASSERT_TRUE(waitFor([this] { return button("Disconnect") != nullptr; }));
    EXPECT_TRUE(wasSaid);
    EXPECT_FALSE(isSaid(QStringLiteral("Waiting for the keyring…")));
}

TEST_F(CloudPaneTest, ADescriptionSaysWhereFilesGoBeforeItIsAdded)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("ours.json"));
    const auto write = [&](const QByteArray &text) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    };
    pane->showPage(QStringLiteral("custom"));
    auto *list = shown<QListWidget>(QStringLiteral("Other services"));
    ASSERT_TRUE(list);
    button("Import…")->click();
    EXPECT_FALSE(button("Add")) << "no file was chosen";
    user.filesToOpen = QStringList{path};
    write("{]");
    button("Import…")->click();
    EXPECT_TRUE(isSaid(QStringLiteral("1"))) << "the line";
    EXPECT_FALSE(button("Add"));

    write(R"({"format": 1, "name": "Ours", "url": "https://files.example.org/upload", "file": "f",
              "headers": {"Authorization": "Bearer {secret:token}"}, "link": {"pointer": "/url"}})");
    button("Import…")->click();
    ASSERT_TRUE(waitFor([this] { return button("Add") != nullptr; }));
    EXPECT_TRUE(isSaid(QStringLiteral("files.example.org")));
    EXPECT_FALSE(button("Add")->isEnabled()) << "the secret is missing";
    button("Cancel")->click();
    EXPECT_TRUE(waitFor([this] { return !button("Add"); }));
    EXPECT_TRUE(CustomServices::all().isEmpty());

    button("Import…")->click();
    ASSERT_TRUE(waitFor([this] { return button("Add") != nullptr; }));
    enter("token", password);
    button("Add")->click();
    ASSERT_TRUE(waitFor([&] { return list->count() == 1; }));
    EXPECT_EQ(list->item(0)->text(), QStringLiteral("Ours, to files.example.org"));
    EXPECT_EQ(secrets->entries.size(), 1);
    EXPECT_FALSE(kept().contains(password.toUtf8()));
    EXPECT_FALSE(button("Remove")->isEnabled()) << "nothing is selected";

    list->setCurrentRow(0);
    user.answerQuestion = [](const UserQuestion &question) { return int(question.buttons.size()) - 1; };
    button("Remove")->click();
    EXPECT_EQ(CustomServices::all().size(), 1);
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    button("Remove")->click();
    ASSERT_TRUE(waitFor([&] { return list->count() == 0; }));
    EXPECT_TRUE(secrets->entries.isEmpty());
    EXPECT_TRUE(CustomServices::all().isEmpty());
}

TEST_F(CloudPaneTest, ADescriptionBeginsWithTheExampleAndTheGuide)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("mine.json"));
    pane->showPage(QStringLiteral("custom"));
    button("Save an Example…")->click();
    EXPECT_FALSE(QFile::exists(path)) << "no name was chosen";
    user.fileToSave = path;
    button("Save an Example…")->click();
    EXPECT_TRUE(CustomServices::read(path)) << "it can be imported as it is";

    const auto contents = [&path] {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("mine") == 4);
    file.close();
    button("Save an Example…")->click();
    EXPECT_EQ(contents(), QByteArray("mine"));
    EXPECT_TRUE(isSaid(QStringLiteral("is there already")));
    user.fileToSave = folder.filePath(QStringLiteral("none/x.json"));
    button("Save an Example…")->click();
    EXPECT_TRUE(isSaid(QStringLiteral("cannot be written")));

    auto *link = shown<QToolButton>(QStringLiteral("What a description says"));
    ASSERT_TRUE(link);
    link->click();
    const auto *text = shown<QTextBrowser>(QStringLiteral("What a description says"));
    ASSERT_TRUE(text);
    EXPECT_TRUE(text->toPlainText().contains(QStringLiteral("If-None-Match")));
}
