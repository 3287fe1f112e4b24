#include "Classes/Application/BackupDigests.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <utility>

namespace BackupDigests {

bool Writer::open(const QString &bundle)
{
    m_file.setFileName(bundle + u'/' + fileName);
    return m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
}

void Writer::add(const BackupDigest &digest)
{
    const QByteArray line =
        QJsonDocument(QJsonArray{digest.key, QString::fromLatin1(digest.SHA1), digest.path, digest.isNew})
            .toJson(QJsonDocument::Compact) +
        '\n';
    m_isWritten = m_file.write(line) == line.size() && m_isWritten;
}

bool Writer::close()
{
    m_isWritten = m_file.flush() && m_isWritten;
    m_file.close();
    return m_isWritten && m_file.error() == QFileDevice::NoError;
}

Reader::Reader(const QString &bundle) : m_file(bundle + u'/' + fileName)
{
    m_file.open(QIODevice::ReadOnly); // without one there are no lines
}

std::optional<BackupDigest> Reader::next()
{
    if (m_read) {
        return std::exchange(m_read, std::nullopt);
    }
    constexpr qint64 longestLine = 1 << 16;
    while (m_file.isOpen() && !m_file.atEnd()) {
        const QJsonArray line = QJsonDocument::fromJson(m_file.readLine(longestLine)).array();
        if (line.size() == 4) {
            return BackupDigest{line[0].toInteger(), line[1].toString().toLatin1(), line[2].toString(),
                                line[3].toBool()};
        }
    }
    return std::nullopt;
}

QHash<QString, QByteArray> Reader::ofKey(qint64 key)
{
    QHash<QString, QByteArray> digests;
    while (auto digest = next()) {
        if (digest->key > key) {
            m_read = std::move(digest);
            break;
        }
        if (digest->key == key) {
            digests.insert(digest->path, digest->SHA1);
        }
    }
    return digests;
}

} // namespace BackupDigests
