#include "Kit/Network/ZQHTTPRequest.h"

#include "Kit/Files/ZQTypeIdentifier.h"

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

QString zqExtensionForContentType(const QString &contentType)
{
    const QString type = ZQTypeIdentifier::forMimeType(contentType);
    return type.isEmpty() ? QString() : ZQTypeIdentifier::preferredExtension(type);
}
