#include "Kit/Network/ZQMultipartForm.h"

#include "Kit/Files/ZQTypeIdentifier.h"

#include <QFileInfo>
#include <QRandomGenerator>

#include <array>

namespace {

// As browsers write names: in UTF-8, and what would end them as percent signs.
QByteArray quoted(const QString &name)
{
    QByteArray text = name.toUtf8();
    text.replace('"', "%22").replace('\r', "%0D").replace('\n', "%0A").replace('\0', "");
    return '"' + text + '"';
}

QByteArray contentTypeOf(const QString &path)
{
    const QString type = ZQTypeIdentifier::mimeType(ZQTypeIdentifier::forPath(path));
    return type.isEmpty() ? QByteArray("application/octet-stream") : type.toLatin1();
}

} // namespace

ZQMultipartForm::ZQMultipartForm()
{
    std::array<quint32, 6> random = {};
    QRandomGenerator::system()->fillRange(random.data(), qsizetype(random.size()));
    m_boundary =
        "----Part" + QByteArray(reinterpret_cast<const char *>(random.data()), qsizetype(sizeof(random))).toHex();
}

void ZQMultipartForm::addField(const QString &name, const QString &value)
{
    m_parts.append("--" + m_boundary + "\r\nContent-Disposition: form-data; name=" + quoted(name) + "\r\n\r\n" +
                   value.toUtf8() + "\r\n");
}

bool ZQMultipartForm::addFile(const QString &name, const QString &path, ZQError *error, const QString &fileName,
                              const QByteArray &contentType)
{
    ZQHTTPBody parts = m_parts;
    parts.append("--" + m_boundary + "\r\nContent-Disposition: form-data; name=" + quoted(name) +
                 "; filename=" + quoted(fileName.isEmpty() ? QFileInfo(path).fileName() : fileName) +
                 "\r\nContent-Type: " + (contentType.isEmpty() ? contentTypeOf(path) : contentType) + "\r\n\r\n");
    if (!parts.appendFile(path, error)) {
        return false;
    }
    parts.append("\r\n");
    m_parts = parts;
    return true;
}

QByteArray ZQMultipartForm::contentType() const
{
    return "multipart/form-data; boundary=" + m_boundary;
}

ZQHTTPBody ZQMultipartForm::body() const
{
    ZQHTTPBody whole = m_parts;
    whole.append("--" + m_boundary + "--\r\n");
    return whole;
}

void ZQMultipartForm::giveTo(ZQHTTPRequest &request) const
{
    request.method = "POST";
    request.headers.append({"Content-Type", contentType()});
    request.makeBody = body().maker();
}
