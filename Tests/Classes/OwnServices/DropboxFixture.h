#pragma once

#include "Classes/Sharing/DropboxAdapter.h"
#include "Classes/Sharing/WebBrowser.h"
#include "Tests/Classes/OwnServices/ServicesFixture.h"

class PlayedBrowser : public WebBrowser
{
public:
    bool open(const QUrl &url) override
    {
        opened = url;
        return isThere;
    }
    QUrl opened;
    bool isThere = true;
};

// A Dropbox of the test's own, and its web pages.
class DropboxFixture : public ServicesFixture
{
protected:
    DropboxFixture()
    {
        auto played = std::make_unique<PlayedBrowser>();
        browser = played.get();
        WebBrowser::setShared(std::move(played));
        set(DBSession::APIHostKey, server.address({}));
        set(DBSession::contentHostKey, server.address({}));
        set(DBSession::authorizeURLKey, server.address(QStringLiteral("/authorize")));
        set(DBSession::appKeyKey, QStringLiteral("key"));
        set(DBSession::loopbackPortKey, 0);
        server.setAnswer(QStringLiteral("/oauth2/token"), json(tokens));
    }
    ~DropboxFixture() override { WebBrowser::setShared(nullptr); }

    static inline const QByteArray tokens =
        R"({"access_token": "A1", "refresh_token": "R1", "expires_in": 14400, "account_id": "dbid:1"})";
    void storeAccount() { secrets->entries = {{DBSession::serviceOfSecrets, QStringLiteral("dbid:1"), "R1"}}; }

    PlayedBrowser *browser; // of WebBrowser
    DBSession session;
};
