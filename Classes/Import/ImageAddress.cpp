#include "Classes/Import/ImageAddress.h"

#include "Kit/Files/ZQFreeName.h"
#include "Kit/Network/ZQDataAddress.h"

#include <QStringView>

namespace {

constexpr qsizetype mostBytes = 200; // of the 255 that a name may have

} // namespace

QString fileNameFromUrl(const QString &address)
{
    const qsizetype query = address.lastIndexOf(u'?');
    const QString path = query < 0 ? address : address.left(query);
    return path.mid(path.lastIndexOf(u'/') + 1);
}

QString safeFileNameFromUrl(const QString &address)
{
    const QString name = ZQDataAddress::isOne(address) ? QString() : fileNameFromUrl(address);
    return zqNumberedName(zqSafeName(name, QStringLiteral("image"), ZQLeadingDots::Dropped, QStringLiteral(":\\")), 0,
                          mostBytes);
}

QUrl urlOfImage(const QString &address, const QString &pageUrl)
{
    const QUrl url(address.trimmed(), QUrl::TolerantMode);
    return url.isRelative() && !url.isEmpty() ? QUrl(pageUrl, QUrl::TolerantMode).resolved(url) : url;
}

QByteArray refererFor(const QUrl &image, const QString &pageUrl)
{
    const QUrl page(pageUrl, QUrl::TolerantMode);
    const bool isSafe = page.scheme() == u"https";
    if (page.host().isEmpty() || (!isSafe && page.scheme() != u"http") || (isSafe && image.scheme() != u"https")) {
        return {};
    }
    const bool isOwn = page.scheme() == image.scheme() && page.host() == image.host() && page.port() == image.port();
    QUrl told = page.adjusted(QUrl::RemoveUserInfo | QUrl::RemoveFragment);
    if (!isOwn) {
        told = told.adjusted(QUrl::RemovePath | QUrl::RemoveQuery);
        told.setPath(QStringLiteral("/"));
    }
    return told.toEncoded();
}
