#pragma once

#include "Classes/Sharing/LoopbackListener.h"
#include "Classes/Sharing/ServiceRequests.h"
#include "Kit/Foundation/ZQSecret.h"

#include <QDateTime>
#include <QUrl>

#include <chrono>
#include <functional>

// The person's Dropbox, once they allowed it. What lets us in again and again (the refresh token) lies in the desktop's
// secret service; what lets us in for some hours is held in memory only. Main thread.
//
// Dropbox sends the browser back only to an address that stands among the app's "Redirect URIs" letter for letter, so
// that the port is always the same.
class DBSession
{
public:
    using Done = std::function<void(const ZQError &error)>; // null: done
    using Token = std::function<void(const ZQSecret &token, const ZQError &error)>;
    enum Error { NoAppKey = 1, NoBrowser, Refused, BadAnswer, Cancelled };
    static inline const QString errorDomain = QStringLiteral("zelto.dropbox");
    static inline const QString serviceOfSecrets = QStringLiteral("ZeltoDropboxAccount");
    static constexpr std::chrono::minutes timeToAllow{10};
    // User defaults.
    static inline const QString appKeyKey = QStringLiteral("DropboxAppKey"); // which the person makes for themselves
    static inline const QString APIHostKey = QStringLiteral("DropboxAPIHost");
    static inline const QString contentHostKey = QStringLiteral("DropboxContentHost");
    static inline const QString authorizeURLKey = QStringLiteral("DropboxAuthorizeURL");
    static inline const QString loopbackPortKey = QStringLiteral("DropboxLoopbackPort"); // 0: any that is free

    static DBSession &sharedSession();
    DBSession() = default; // for tests

    bool isLinked() const;
    static bool hasAppKey();
    static QString howToGetAppKey(); // localized; names the redirect address to enter there

    // Asks in the web browser. While that goes on it can be cancelled; a second call cancels the first.
    void link(Done done, std::chrono::milliseconds time = timeToAllow);
    void cancelLink();
    bool isLinking() const { return m_linked != nullptr; }
    // Forgets the account, and tells Dropbox so where that is possible at once.
    void unlink(Done done);

    // For requests; renewed when it ran out.
    void accessToken(Token told);
    ZQSecret currentAccessToken() const { return m_accessToken; } // empty: there is none without asking
    void forgetAccessToken();                                     // it was refused
    static ZQError noLongerLinked();

    static std::optional<QUrl> APIAddress(const QString &path, ZQError *error = nullptr);
    static std::optional<QUrl> contentAddress(const QString &path, ZQError *error = nullptr);

private:
    struct Tokens
    {
        ZQSecret access;
        ZQSecret refresh; // empty: the one that is there stays
        QString account;
    };
    void exchange(const QUrlQuery &answer);
    void keep(const Tokens &tokens);
    void endLink(const ZQError &error);
    void renew(const ZQSecret &refreshToken);
    void endRenewal(const ZQError &error);
    std::optional<Tokens> read(const ZQHTTPResponse &response, ZQError *error);

    LoopbackListener m_listener;
    QByteArray m_verifier;
    QString m_redirectAddress;
    Done m_linked;          // null: not linking
    QList<Token> m_whoWait; // for the token that is being renewed
    ServiceRequests m_linking;
    ServiceRequests m_renewing;
    ServiceRequests m_leaving;
    ZQSecret m_accessToken; // empty: none
    QDateTime m_runsOut;
    int m_attempt = 0; // so that what a store answers late is known as such
};
