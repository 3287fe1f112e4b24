#pragma once

#include "Kit/Network/ZQNetworkError.h"

#include <QByteArray>
#include <QString>

class QUrl;
struct ZQHTTPEnd;

// What goes wrong with a transfer, in words for the person. `host` is the name of the server.
namespace ZQTransferError {

ZQError cancelled();
ZQError noAddress(const QUrl &url);
ZQError notAllowed(const QString &host);
ZQError hostNotFound(const QString &host); // or: offline
ZQError noAnswer(const QString &host);     // or: offline
ZQError silence(const QString &host);      // or: offline
ZQError tookTooLong(const QString &host);
ZQError tooManyRedirects(const QString &host);
ZQError losesEncryption(const QString &host);
ZQError movesBody(const QString &host, const QString &otherHost);
ZQError unwantedType(const QString &host, const QString &type);
ZQError tooLarge(qint64 maximumSize);
ZQError brokeOff(const QString &host); // or: offline
ZQError cutOff(const QString &host, qint64 size, qint64 expected);
ZQError cannotRead(const QString &reason); // what is to be sent; empty: there is no more to say
ZQError badHeader(const QByteArray &name);
ZQError loginUnencrypted(const QString &host);
ZQError cannotWrite(const QString &path, const ZQError &reason);
// What an exchange that failed without a status from 400 on says.
ZQError of(const ZQHTTPEnd &end, const QUrl &url, bool wasConnected);

} // namespace ZQTransferError
