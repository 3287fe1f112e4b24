#include "Kit/Network/ZQNetworkError.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QNetworkInterface>

#include <algorithm>

ZQError zqNetworkError(ZQNetworkErrorCode code, const QString &description, const QString &whatToDo)
{
    return ZQError::with(zqNetworkErrorDomain, int(code), description, whatToDo);
}

namespace {

QString wordsForStatus(int status)
{
    switch (status) {
    case 400:
        return zqLocalized("bad request");
    case 401:
        return zqLocalized("a name and a password are needed");
    case 403:
        return zqLocalized("access refused");
    case 404:
        return zqLocalized("not found");
    case 408:
        return zqLocalized("the request took too long");
    case 410:
        return zqLocalized("gone for good");
    case 413:
        return zqLocalized("what was sent is too large");
    case 429:
        return zqLocalized("too many requests");
    case 451:
        return zqLocalized("not available for legal reasons");
    case 500:
        return zqLocalized("an error in the server");
    case 502:
    case 504:
        return zqLocalized("a server behind it does not answer");
    case 503:
        return zqLocalized("not available at the moment");
    default:
        return status >= 500 ? zqLocalized("an error in the server") : zqLocalized("the request was refused");
    }
}

} // namespace

ZQError zqNetworkErrorForStatus(int status, const QString &host, std::optional<std::chrono::seconds> retryAfter)
{
    const bool isForTheMoment = retryAfter && (status == 429 || status == 503);
    const qint64 minutes = isForTheMoment ? std::chrono::ceil<std::chrono::minutes>(*retryAfter).count() : 0;
    const QString whatToDo = !isForTheMoment ? QString()
                             : minutes > 1   ? zqFormat(zqLocalized("Try again in %d minutes."), {minutes})
                                             : zqLocalized("Try again in a minute.");
    ZQError error =
        zqNetworkError(ZQNetworkErrorCode::BadResponse,
                       zqFormat(zqLocalized("%@ answered %d (%@)."), {host, status, wordsForStatus(status)}), whatToDo);
    error.userInfo.insert(zqNetworkErrorStatusKey, status);
    if (isForTheMoment) {
        error.userInfo.insert(zqNetworkErrorRetryAfterKey, qint64(retryAfter->count()));
    }
    return error;
}

bool zqIsNetworkError(const ZQError &error, ZQNetworkErrorCode code)
{
    return error.domain == zqNetworkErrorDomain && error.code == int(code);
}

bool zqIsOnline()
{
    const QList<QNetworkInterface> all = QNetworkInterface::allInterfaces();
    return std::any_of(all.begin(), all.end(), [](const QNetworkInterface &each) {
        const auto flags = each.flags();
        const QList<QNetworkAddressEntry> entries = each.addressEntries();
        return flags.testFlag(QNetworkInterface::IsUp) && flags.testFlag(QNetworkInterface::IsRunning) &&
               !flags.testFlag(QNetworkInterface::IsLoopBack) &&
               std::any_of(entries.begin(), entries.end(),
                           [](const QNetworkAddressEntry &entry) { return !entry.ip().isLinkLocal(); });
    });
}
