#include "Classes/Sharing/ServiceAddress.h"

#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQPrivateAddress.h"

#include <algorithm>

namespace {

constexpr qsizetype longestLink = 4096;

ZQError refusal(const QString &format, const QString &text)
{
    return ZQError::with(ServiceAddress::errorDomain, 1, zqFormat(format, {text}));
}

} // namespace

ZQError ServiceAddress::refusalOf(const QUrl &url)
{
    if (url.scheme() == u"https" || (url.scheme() == u"http" && zqIsPrivateHostName(url.host()))) {
        return {};
    }
    return refusal(zqLocalized("“%@” can only be reached unencrypted. Use an address that begins with https."),
                   url.host());
}

std::optional<QUrl> ServiceAddress::from(const QString &text, ZQError *error)
{
    const QString plain = text.trimmed();
    QUrl url(plain.contains(u"://") ? plain : QStringLiteral("https://") + plain, QUrl::StrictMode);
    const bool isWeb = url.scheme() == u"https" || url.scheme() == u"http";
    if (plain.isEmpty() || !url.isValid() || url.host().isEmpty() || !isWeb) {
        const QString shown = plain.section(u'@', -1); // a login in it is nobody's business
        zqSetError(
            error,
            refusal(zqLocalized("“%@” is not the address of a server. Enter one like https://example.org."), shown));
        return {};
    }
    if (!url.userInfo().isEmpty() || url.hasQuery() || url.hasFragment()) {
        zqSetError(error, refusal(zqLocalized("Enter the address of “%@” without a login and without “?” and “#”."),
                                  url.host()));
        return {};
    }
    if (const ZQError unsafe = refusalOf(url); !unsafe.isNull()) {
        zqSetError(error, unsafe);
        return {};
    }
    QString path = url.path(QUrl::FullyEncoded);
    while (path.endsWith(u'/')) {
        path.chop(1);
    }
    url.setPath(path, QUrl::TolerantMode);
    return url;
}

std::optional<QUrl> ServiceAddress::ofDefault(const QString &key, const QString &usual, ZQError *error)
{
    const QString set = ZQUserDefaults::standardUserDefaults().stringForKey(key);
    return from(set.isEmpty() ? usual : set, error);
}

QUrl ServiceAddress::below(const QUrl &base, const QString &path)
{
    QUrl url = base;
    const QByteArray escaped = QUrl::toPercentEncoding(path, "/");
    url.setPath(base.path(QUrl::FullyEncoded) + QString::fromLatin1(escaped), QUrl::StrictMode);
    return url;
}

QString ServiceAddress::link(const QString &given)
{
    const QString plain = given.trimmed();
    const bool isOneWord =
        std::none_of(plain.begin(), plain.end(), [](QChar each) { return each.isSpace() || !each.isPrint(); });
    const QUrl url(plain, QUrl::TolerantMode);
    const bool isWeb = url.scheme() == u"https" || url.scheme() == u"http";
    return isOneWord && plain.size() <= longestLink && isWeb && url.isValid() && !url.host().isEmpty() ? plain
                                                                                                       : QString();
}
