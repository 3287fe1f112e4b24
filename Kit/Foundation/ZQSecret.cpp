#include "Kit/Foundation/ZQSecret.h"

#include <cstring>

namespace {

std::shared_ptr<const QByteArray> held(const char *data, qsizetype size)
{
    return std::shared_ptr<const QByteArray>(new QByteArray(data, size), [](const QByteArray *bytes) {
        explicit_bzero(const_cast<char *>(bytes->constData()), std::size_t(bytes->size()));
        delete bytes;
    });
}

} // namespace

ZQSecret::ZQSecret(const QString &text)
{
    if (!text.isEmpty()) {
        QByteArray bytes = text.toUtf8();
        m_held = held(bytes.constData(), bytes.size());
        zqWipe(bytes);
    }
}

ZQSecret::ZQSecret(const QByteArray &UTF8) : m_held(UTF8.isEmpty() ? nullptr : held(UTF8.constData(), UTF8.size())) {}

QByteArray ZQSecret::UTF8() const
{
    return m_held ? QByteArray::fromRawData(m_held->constData(), m_held->size()) : QByteArray();
}

void zqWipe(QByteArray &bytes)
{
    if (bytes.isDetached()) {
        explicit_bzero(bytes.data(), std::size_t(bytes.size()));
    }
    bytes.clear();
}

void zqWipe(QString &text)
{
    if (text.isDetached()) {
        explicit_bzero(text.data(), std::size_t(text.size()) * sizeof(QChar));
    }
    text.clear();
}
