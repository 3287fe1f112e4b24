#include "Kit/Network/ZQTransferError.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQPrivateAddress.h"

#include <QLocale>
#include <QNetworkReply>
#include <QUrl>

namespace {

QString sizeText(qint64 bytes)
{
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

ZQError offlineOr(const QString &host, const ZQError &other)
{
    if (zqReachOfHostName(host) == ZQAddressReach::Machine || zqIsOnline()) {
        return other;
    }
    return zqNetworkError(ZQNetworkErrorCode::Offline, zqLocalized("There is no connection to the internet."),
                          zqLocalized("Connect this computer to a network, then try again."));
}

} // namespace

ZQError ZQTransferError::noAddress(const QUrl &url)
{
    return zqNetworkError(ZQNetworkErrorCode::BadAddress,
                          zqFormat(zqLocalized("“%@” is no address of the web."), {url.toDisplayString()}),
                          zqLocalized("It has to begin with http:// or https://."));
}

ZQError ZQTransferError::notAllowed(const QString &host)
{
    return zqNetworkError(
        ZQNetworkErrorCode::NotAllowed,
        zqFormat(zqLocalized("%@ is on this computer or its network, where the page has no business."), {host}));
}

ZQError ZQTransferError::hostNotFound(const QString &host)
{
    return offlineOr(host, zqNetworkError(ZQNetworkErrorCode::HostNotFound,
                                          zqFormat(zqLocalized("There is no server named %@."), {host}),
                                          zqLocalized("Look at the address.")));
}

ZQError ZQTransferError::noAnswer(const QString &host)
{
    return offlineOr(host,
                     zqNetworkError(ZQNetworkErrorCode::TimedOut, zqFormat(zqLocalized("%@ does not answer."), {host}),
                                    zqLocalized("Try again later.")));
}

ZQError ZQTransferError::silence(const QString &host)
{
    return offlineOr(host, zqNetworkError(ZQNetworkErrorCode::TimedOut,
                                          zqFormat(zqLocalized("%@ stopped answering in the middle."), {host}),
                                          zqLocalized("Try again later.")));
}

ZQError ZQTransferError::tookTooLong(const QString &host)
{
    return zqNetworkError(ZQNetworkErrorCode::TimedOut, zqFormat(zqLocalized("%@ took too long."), {host}),
                          zqLocalized("Try again later."));
}

ZQError ZQTransferError::tooManyRedirects(const QString &host)
{
    return zqNetworkError(ZQNetworkErrorCode::TooManyRedirects,
                          zqFormat(zqLocalized("%@ sends from one address to the next without end."), {host}));
}

ZQError ZQTransferError::losesEncryption(const QString &host)
{
    return zqNetworkError(ZQNetworkErrorCode::RedirectRefused,
                          zqFormat(zqLocalized("%@ sends to an address without encryption."), {host}));
}

ZQError ZQTransferError::movesBody(const QString &host, const QString &otherHost)
{
    return zqNetworkError(
        ZQNetworkErrorCode::RedirectRefused,
        zqFormat(zqLocalized("%@ sends on to “%@”, for which the file is not meant."), {host, otherHost}));
}

ZQError ZQTransferError::unwantedType(const QString &host, const QString &type)
{
    return zqNetworkError(ZQNetworkErrorCode::UnwantedType,
                          type.isEmpty() ? zqFormat(zqLocalized("%@ does not say what it sends."), {host})
                                         : zqFormat(zqLocalized("%@ sent something else (%@)."), {host, type}));
}

ZQError ZQTransferError::tooLarge(qint64 maximumSize)
{
    return zqNetworkError(ZQNetworkErrorCode::TooLarge,
                          zqFormat(zqLocalized("It is larger than %@."), {sizeText(maximumSize)}));
}

ZQError ZQTransferError::brokeOff(const QString &host)
{
    return offlineOr(host, zqNetworkError(ZQNetworkErrorCode::ConnectionLost,
                                          zqFormat(zqLocalized("%@ broke off."), {host}), zqLocalized("Try again.")));
}

ZQError ZQTransferError::cutOff(const QString &host, qint64 size, qint64 expected)
{
    return zqNetworkError(
        ZQNetworkErrorCode::ConnectionLost,
        zqFormat(zqLocalized("%@ broke off: only %@ of %@ came."), {host, sizeText(size), sizeText(expected)}),
        zqLocalized("Try again."));
}

ZQError ZQTransferError::cannotRead(const QString &reason)
{
    return zqNetworkError(ZQNetworkErrorCode::CannotRead,
                          reason.isEmpty() ? zqLocalized("What is to be sent cannot be read.") : reason);
}

ZQError ZQTransferError::badHeader(const QByteArray &name)
{
    return zqNetworkError(ZQNetworkErrorCode::BadAddress,
                          zqFormat(zqLocalized("The header “%@” cannot be sent: it has a line break, or no name."),
                                   {QString::fromLatin1(name)}));
}

ZQError ZQTransferError::loginUnencrypted(const QString &host)
{
    return zqNetworkError(ZQNetworkErrorCode::NotAllowed,
                          zqFormat(zqLocalized("%@ asks for the password without encryption."), {host}),
                          zqLocalized("Use an address that begins with https://."));
}

ZQError ZQTransferError::cannotWrite(const QString &path, const ZQError &reason)
{
    return zqNetworkError(ZQNetworkErrorCode::CannotWrite,
                          zqFormat(zqLocalized("“%@” cannot be written: %@"), {path, reason.localizedDescription()}));
}

ZQError ZQTransferError::of(const QNetworkReply &reply, const QString &host, bool wasConnected)
{
    switch (reply.error()) {
    case QNetworkReply::HostNotFoundError:
        return hostNotFound(host);
    case QNetworkReply::ConnectionRefusedError:
        return offlineOr(host, zqNetworkError(ZQNetworkErrorCode::CannotConnect,
                                              zqFormat(zqLocalized("%@ takes no connection."), {host}),
                                              zqLocalized("Try again later.")));
    case QNetworkReply::RemoteHostClosedError:
        return brokeOff(host);
    case QNetworkReply::UnknownNetworkError:
        if (wasConnected) { // a reset in the middle of what is sent
            return brokeOff(host);
        }
        break;
    case QNetworkReply::SslHandshakeFailedError:
        return zqNetworkError(
            ZQNetworkErrorCode::Untrusted,
            zqFormat(zqLocalized("A safe connection to %@ could not be made: %@"), {host, reply.errorString()}),
            zqLocalized("Look at the address, and at the clock of this computer."));
    case QNetworkReply::TimeoutError:
        return wasConnected ? silence(host) : noAnswer(host);
    case QNetworkReply::ProxyAuthenticationRequiredError:
    case QNetworkReply::ProxyConnectionRefusedError:
    case QNetworkReply::ProxyConnectionClosedError:
    case QNetworkReply::ProxyNotFoundError:
    case QNetworkReply::ProxyTimeoutError:
        return zqNetworkError(ZQNetworkErrorCode::CannotConnect,
                              zqFormat(zqLocalized("The proxy does not lead to %@: %@"), {host, reply.errorString()}),
                              zqLocalized("Look at the network settings of the desktop."));
    default:
        break;
    }
    return offlineOr(host,
                     zqNetworkError(wasConnected ? ZQNetworkErrorCode::BadResponse : ZQNetworkErrorCode::CannotConnect,
                                    zqFormat(zqLocalized("%@ cannot be read from: %@"), {host, reply.errorString()})));
}
