#include "Kit/Network/ZQTransferError.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Network/ZQHTTPExchange.h"
#include "Kit/Network/ZQPrivateAddress.h"

#include <QHostAddress>
#include <QLocale>
#include <QUrl>

#include <cerrno>
#include <cstring>

namespace {

QString sizeText(qint64 bytes)
{
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

ZQError offline()
{
    return zqNetworkError(ZQNetworkErrorCode::Offline, zqLocalized("There is no connection to the internet."),
                          zqLocalized("Connect this computer to a network, then try again."));
}

ZQError offlineOr(const QString &host, const ZQError &other)
{
    return zqReachOfHostName(host) == ZQAddressReach::Machine || zqIsOnline() ? other : offline();
}

// Interfaces that are up, as those of a virtual machine, lead nowhere by themselves. Of a name this says nothing: the
// last of its addresses may be of a kind that this network does not have.
bool isWithoutRoute(const QString &host, int systemError)
{
    QHostAddress address;
    return zqReachOfHostName(host) != ZQAddressReach::Machine &&
           (systemError == ENETUNREACH || systemError == ENETDOWN) && address.setAddress(host) &&
           address.protocol() == QAbstractSocket::IPv4Protocol;
}

ZQError proxyFails(const QString &host, const QString &reason)
{
    return zqNetworkError(ZQNetworkErrorCode::CannotConnect,
                          zqFormat(zqLocalized("The proxy does not lead to %@: %@"), {host, zqSentence(reason)}),
                          zqLocalized("Look at the network settings of the desktop."));
}

ZQError cannotConnect(const QString &host, const ZQHTTPEnd &end)
{
    if (isWithoutRoute(host, end.systemError)) {
        return offline();
    }
    const bool isRefused = end.systemError == ECONNREFUSED;
    const QString reason = end.systemError ? QString::fromLocal8Bit(std::strerror(end.systemError)) : end.reason;
    return offlineOr(host, zqNetworkError(ZQNetworkErrorCode::CannotConnect,
                                          isRefused ? zqFormat(zqLocalized("%@ takes no connection."), {host})
                                                    : zqFormat(zqLocalized("%@ cannot be read from: %@"),
                                                               {host, zqSentence(reason)}),
                                          isRefused ? zqLocalized("Try again later.") : QString()));
}

} // namespace

ZQError ZQTransferError::cancelled()
{
    return zqNetworkError(ZQNetworkErrorCode::Cancelled, zqLocalized("The request was cancelled."));
}

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
        zqFormat(zqLocalized("%@ is on this computer or its network, where this request must not go."), {host}));
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

ZQError ZQTransferError::of(const ZQHTTPEnd &end, const QUrl &url, bool wasConnected)
{
    const QString host = url.host();
    if (end.wasRefused) {
        return notAllowed(host);
    }
    if (end.proxyStatus != 0) {
        return proxyFails(host, end.reason);
    }
    if (end.isBroken()) {
        return brokeOff(host);
    }
    switch (end.code) {
    case CURLE_URL_MALFORMAT:
        return noAddress(url);
    case CURLE_COULDNT_RESOLVE_HOST:
        return hostNotFound(host);
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_PROXY:
        return proxyFails(host, end.reason);
    case CURLE_COULDNT_CONNECT:
        return end.isProxied ? proxyFails(host, end.reason) : cannotConnect(host, end);
    case CURLE_OPERATION_TIMEDOUT:
        return wasConnected ? silence(host) : noAnswer(host);
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
        return zqNetworkError(
            ZQNetworkErrorCode::Untrusted,
            zqFormat(zqLocalized("A safe connection to %@ could not be made: %@"), {host, zqSentence(end.reason)}),
            zqLocalized("Look at the address, and at the clock of this computer."));
    default:
        return offlineOr(
            host, zqNetworkError(wasConnected ? ZQNetworkErrorCode::BadResponse : ZQNetworkErrorCode::CannotConnect,
                                 zqFormat(zqLocalized("%@ cannot be read from: %@"), {host, zqSentence(end.reason)})));
    }
}
