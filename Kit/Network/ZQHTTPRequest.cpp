#include "Kit/Network/ZQHTTPRequest.h"

#include "Kit/Files/ZQTypeIdentifier.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>

QByteArray ZQHTTPResponse::header(const QByteArray &name) const
{
    for (const auto &[each, value] : headers) {
        if (each.compare(name, Qt::CaseInsensitive) == 0) {
            return value;
        }
    }
    return {};
}

QString ZQHTTPResponse::MIMEType() const
{
    return QString::fromLatin1(header("Content-Type")).section(u';', 0, 0).trimmed().toLower();
}

std::optional<std::chrono::seconds> ZQHTTPResponse::retryAfter() const
{
    constexpr qint64 day = 24 * 3600;
    const QByteArray stated = header("Retry-After").trimmed();
    bool isNumber = false;
    qint64 seconds = stated.toLongLong(&isNumber);
    if (!isNumber) {
        const QString text = QString::fromLatin1(stated).chopped(std::min<qsizetype>(4, stated.size())); // " GMT"
        QDateTime date = QLocale::c().toDateTime(text, QStringLiteral("ddd, dd MMM yyyy HH:mm:ss"));
        if (!date.isValid()) {
            return std::nullopt;
        }
        date.setTimeSpec(Qt::UTC);
        seconds = QDateTime::currentDateTimeUtc().secsTo(date);
    }
    return std::chrono::seconds(std::clamp<qint64>(seconds, 0, day));
}

QString zqExtensionForContentType(const QString &contentType)
{
    const QString type = ZQTypeIdentifier::forMimeType(contentType);
    return type.isEmpty() ? QString() : ZQTypeIdentifier::preferredExtension(type);
}
