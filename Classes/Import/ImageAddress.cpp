#include "Classes/Import/ImageAddress.h"

#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Network/ZQDataAddress.h"

#include <QStringView>

namespace {

constexpr qsizetype mostBytes = 200; // of the 255 that a name may have
constexpr qsizetype longestExtension = 20;

QString shortened(const QString &name)
{
    if (name.toUtf8().size() <= mostBytes) {
        return name;
    }
    const QString extension = zqPathExtension(name);
    const QString end = extension.isEmpty() || extension.size() > longestExtension ? QString() : u'.' + extension;
    QString start = name.chopped(end.size());
    while (start.toUtf8().size() + end.toUtf8().size() > mostBytes) {
        start.chop(start.size() > 1 && start.back().isLowSurrogate() ? 2 : 1);
    }
    return start + end;
}

} // namespace

QString fileNameFromUrl(const QString &address)
{
    const qsizetype query = address.lastIndexOf(u'?');
    const QString path = query < 0 ? address : address.left(query);
    return path.mid(path.lastIndexOf(u'/') + 1);
}

QString safeFileNameFromUrl(const QString &address)
{
    QString name = ZQDataAddress::isOne(address) ? QString() : fileNameFromUrl(address);
    for (QChar &each : name) {
        if (each.category() == QChar::Other_Control || each == u':' || each == u'\\') {
            each = u'-';
        }
    }
    while (name.startsWith(u'.')) {
        name.remove(0, 1);
    }
    name = shortened(name.trimmed());
    return name.isEmpty() ? QStringLiteral("image") : name;
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
