#include "Classes/Sharing/UploadDescription.h"

#include "Classes/Sharing/ServiceAddress.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

constexpr qsizetype mostSearched = 64 * 1024; // bytes of an answer

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

QString between(const QByteArray &body, const QString &before, const QString &after)
{
    const QString text = QString::fromUtf8(body.left(mostSearched));
    const qsizetype found = text.indexOf(before);
    const qsizetype start = found + before.size();
    const qsizetype end = found < 0 ? -1 : text.indexOf(after, start);
    return end < 0 ? QString() : text.mid(start, end - start);
}

} // namespace

QStringList UploadDescription::secrets() const
{
    QStringList names;
    for (const Pairs &pairs : {headers, fields}) {
        for (const auto &pair : pairs) {
            names += secretsIn(pair.second);
        }
    }
    names.removeDuplicates();
    return names;
}

QStringList UploadDescription::secretsIn(const QString &text)
{
    QStringList names;
    for (auto each = placeholder().globalMatch(text); each.hasNext();) {
        names.append(each.next().captured(1));
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
    case LinkPlace::Between:
        found = between(response.body, linkAt, linkEnd);
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

QByteArray UploadDescription::example()
{
    return R"({
  "format": 1,
  "name": "Our server",
  "method": "POST",
  "url": "https://files.example.org/upload",
  "headers": {"Authorization": "Bearer {secret:token}"},
  "fields": {"album": "Zelto"},
  "file": "upload",
  "link": {"pointer": "/data/url"}
}
)";
}
