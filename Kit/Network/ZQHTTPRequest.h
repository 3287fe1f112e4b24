#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Foundation/ZQSecret.h"

#include <QByteArray>
#include <QHostAddress>
#include <QIODevice>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

class ZQHTTPConnections;

using ZQHTTPHeaders = QList<std::pair<QByteArray, QByteArray>>;

// What is asked of a web server, with the limits within which the answer is taken. No cookies are sent or kept, nothing
// is cached, and each request has connections and a login of its own unless `connections` says otherwise. The proxies
// of the desktop are used, but for this machine.
//
// The functions are called on the network's thread: they must be short and must not wait.
struct ZQHTTPRequest
{
    QUrl url = {}; // http or https
    QByteArray method = "GET";
    ZQHTTPHeaders headers = {};
    QByteArray body = {};
    // Instead of it, for one that is not to be held in memory: called for each time that the body is sent, as again
    // after a redirect. What it makes can seek and knows its size, and is open unless it cannot be read. Null: it
    // cannot be read. `ZQHTTPBody` and `ZQMultipartForm` make such functions.
    std::function<std::unique_ptr<QIODevice>()> makeBody = {};
    // For a server that asks for a login (Basic or Digest), and only for the one of the URL, or of `loginServer` where
    // that is set, as when another one redirects there. Empty: what stands in the URL.
    QString user = {};
    ZQSecret password = {};
    QUrl loginServer = {};
    bool mayLogInUnencrypted = false; // as `user`, over http to who is not of this machine or its network
    std::shared_ptr<ZQHTTPConnections> connections = {}; // of the work that it is a part of; null: its own

    // A file that is not there yet; it gets its name when all of it came, and nothing is left of it otherwise. Empty:
    // the answer's body is kept in memory.
    QString destination = {};
    qint64 maximumSize = qint64(64) << 20; // bytes of the body, unpacked where it came compressed
    QStringList acceptedTypes = {};        // MIME types, "image/*" for a family; empty: any
    std::chrono::milliseconds connectTime{20'000};
    std::chrono::milliseconds stallTime{30'000}; // without a byte
    std::chrono::milliseconds wholeTime{0};      // zero: as long as it takes
    // For all of the answer, from when all of `body` was sent or the answer began: one that drips is never silent.
    // Zero: as long as it takes.
    std::chrono::milliseconds answerTime{0};

    int mostRedirects = 10;
    bool mayLoseEncryption = false; // by a redirect from https to http
    bool mayMoveBody = true;        // by a redirect that keeps it (307 and 308) to another server
    // Asked for the address and for each that it redirects to; an error refuses it. Null: all may be gone to.
    std::function<ZQError(const QUrl &url)> mayGoTo = {};
    // Asked for each address that the host's name resolves to; those refused are not connected to, and where none is
    // left the request fails. The connection is made to an address that was asked about and not to the name, so that a
    // name that resolves to something else a moment later gains nothing. With a proxy, which resolves names itself,
    // only addresses that stand in the URL can be asked about: `mayGoTo` has to judge the name. Null: all.
    std::function<bool(const QHostAddress &address)> mayConnectTo = {};

    std::function<void(qint64 received, qint64 expected)> didReceiveBytes = {}; // expected: negative when unknown
    std::function<void(qint64 sent, qint64 total)> didSendBytes = {};
};

// What came. A value; any thread.
struct ZQHTTPResponse
{
    ZQError error = {}; // null: it came whole, with a status below 400
    int statusCode = 0; // 0: there was no answer
    ZQHTTPHeaders headers = {};
    QUrl url = {};            // after redirects
    QByteArray body = {};     // without a destination; of an answer that says no, its first 64 KiB in any case
    QString destination = {}; // the file; empty: there is none
    qint64 size = 0;          // bytes of the body that came

    bool isWhole() const { return error.isNull(); }
    QByteArray header(const QByteArray &name) const; // whatever its case; empty: it is not there
    // Of the header "Content-Type", in lower case and without its parameters.
    QString MIMEType() const;
    // How long the server wants to be left alone, as it may say with 429 and 503; at most a day.
    std::optional<std::chrono::seconds> retryAfter() const;
};

// The preferred extension of files of a content type, without the dot; empty where the type is not known.
QString zqExtensionForContentType(const QString &contentType);
