#include "Classes/Sharing/UploadDescription.h"

#include "Classes/Sharing/ServiceAddress.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

// A stranger's expression over a stranger's answer: both are kept short, and so is the search.
constexpr qsizetype mostSearched = 64 * 1024;
const QString searchLimit = QStringLiteral("(*LIMIT_MATCH=200000)(*LIMIT_DEPTH=2000)");

const QRegularExpression &placeholder()
{
    static const QRegularExpression expression(QStringLiteral("\\{secret:([A-Za-z0-9_-]{1,40})\\}"));
    return expression;
}

QString atPointer(const QByteArray &body, const QString &pointer)
{
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(body, &problem);
    if (problem.error != QJsonParseError::NoError) {
        return {};
    }
    QJsonValue value = document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
    const QStringList steps = pointer.split(u'/').mid(1);
    for (QString step : steps) {
        step.replace(QStringLiteral("~1"), QStringLiteral("/")).replace(QStringLiteral("~0"), QStringLiteral("~"));
        if (value.isArray()) {
            bool isIndex = false;
            const qsizetype index = step.toLongLong(&isIndex);
            const bool isPlain = isIndex && QString::number(index) == step;
            value = isPlain && index >= 0 && index < value.toArray().size() ? value.toArray().at(index)
                                                                            : QJsonValue(QJsonValue::Undefined);
        } else {
            value = value.toObject().value(step); // of what is no object: undefined
        }
    }
    return value.toString();
}

QString atPattern(const QByteArray &body, const QString &pattern)
{
    const QRegularExpression expression(searchLimit + pattern);
    const QRegularExpressionMatch match = expression.match(QString::fromUtf8(body.left(mostSearched)));
    return match.hasMatch() ? match.captured(match.lastCapturedIndex() >= 1 ? 1 : 0) : QString();
}

} // namespace

QStringList UploadDescription::secrets() const
{
    QStringList names;
    for (const Pairs &pairs : {headers, fields}) {
        for (const auto &pair : pairs) {
            for (auto each = placeholder().globalMatch(pair.second); each.hasNext();) {
                if (const QString secret = each.next().captured(1); !names.contains(secret)) {
                    names.append(secret);
                }
            }
        }
    }
    return names;
}

QString UploadDescription::destination() const
{
    const QString port = url.port() < 0 ? QString() : u':' + QString::number(url.port());
    return (url.scheme() == u"https" ? QString() : url.scheme() + QStringLiteral("://")) + url.host() + port;
}

QString UploadDescription::filledIn(const QString &text, const QHash<QString, ZQSecret> &secrets)
{
    QString filled;
    qsizetype end = 0;
    for (auto each = placeholder().globalMatch(text); each.hasNext();) {
        const QRegularExpressionMatch match = each.next();
        filled += text.mid(end, match.capturedStart() - end);
        filled += QString::fromUtf8(secrets.value(match.captured(1)).UTF8());
        end = match.capturedEnd();
    }
    return filled + text.mid(end);
}

QString UploadDescription::linkIn(const ZQHTTPResponse &response) const
{
    QString found;
    switch (linkPlace) {
    case LinkPlace::Pointer:
        found = atPointer(response.body, linkAt);
        break;
    case LinkPlace::Pattern:
        found = atPattern(response.body, linkAt);
        break;
    case LinkPlace::Header:
        found = QString::fromUtf8(response.header(linkAt.toLatin1()));
        break;
    case LinkPlace::FinalAddress:
        return ServiceAddress::link(response.url.toString(QUrl::FullyEncoded | QUrl::RemoveUserInfo));
    }
    if (found.trimmed().isEmpty()) {
        return {};
    }
    // Many name only the path on their own server.
    return ServiceAddress::link(
        response.url.resolved(QUrl(found.trimmed())).toString(QUrl::FullyEncoded | QUrl::RemoveUserInfo));
}
