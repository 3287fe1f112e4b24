#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>

// Where files go on a server of the person's own. Either a Nextcloud (or what speaks as it does), which makes links of
// its own, or any WebDAV folder that the public can read at another address. The password is no part of it: it lies in
// the secret service, for this user at this server and no other. A value; main thread.
struct WebDAVSettings
{
    static inline const QString serviceOfSecrets = QStringLiteral("ZeltoWebDAVAccount");
    // User defaults.
    static inline const QString addressKey = QStringLiteral("WebDAVAddress");
    static inline const QString userKey = QStringLiteral("WebDAVUser");
    static inline const QString folderKey = QStringLiteral("WebDAVFolder");
    static inline const QString publicAddressKey = QStringLiteral("WebDAVPublicAddress");

    // Of a Nextcloud the address that one opens in the browser, or the one of its "WebDAV" settings; else of a folder.
    QString address;
    QString user;
    QString folder;        // below it; made where it is not there; empty: none
    QString publicAddress; // at which the public reads what lies in `folder`; empty: links are made by the server

    static QStringList keys();
    static WebDAVSettings stored();
    // Nothing is stored, with an error, when `addresses` has one.
    bool store(ZQError *error = nullptr) const;

    struct Addresses
    {
        QUrl root;         // of the files
        QString folder;    // "/" and what follows, or empty
        QUrl shares;       // where links are made; empty: nowhere
        QString rootThere; // `root` as paths of links have it: "/" and what follows, or empty
        QUrl publicFolder; // empty: links are made by the server
    };
    // Nothing, with an error, when something is missing or cannot be meant.
    std::optional<Addresses> addresses(ZQError *error = nullptr) const;
    QString account() const; // of the password: "user@host:port"
};
