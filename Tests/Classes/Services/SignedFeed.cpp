#include "Tests/Classes/Services/SignedFeed.h"

#include <QJsonDocument>

SignedFeed::SignedFeed() : m_key(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"), &EVP_PKEY_free) {}

QByteArray SignedFeed::publicKey() const
{
    QByteArray key(32, '\0');
    std::size_t size = std::size_t(key.size());
    EVP_PKEY_get_raw_public_key(m_key.get(), reinterpret_cast<unsigned char *>(key.data()), &size);
    return key;
}

QByteArray SignedFeed::sign(const QByteArray &announcement) const
{
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    QByteArray signature(64, '\0');
    std::size_t size = std::size_t(signature.size());
    EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, m_key.get());
    EVP_DigestSign(context.get(), reinterpret_cast<unsigned char *>(signature.data()), &size,
                   reinterpret_cast<const unsigned char *>(announcement.constData()), std::size_t(announcement.size()));
    const QJsonObject feed{{QStringLiteral("announcement"), QString::fromLatin1(announcement.toBase64())},
                           {QStringLiteral("signature"), QString::fromLatin1(signature.toBase64())}};
    return QJsonDocument(feed).toJson();
}

QByteArray SignedFeed::announcement(const QJsonObject &changes)
{
    QJsonObject said{{QStringLiteral("program"), QStringLiteral("zelto")},
                     {QStringLiteral("channel"), QStringLiteral("release")},
                     {QStringLiteral("version"), QStringLiteral("1.3.0")},
                     {QStringLiteral("date"), QStringLiteral("2026-11-20T10:00:00Z")},
                     {QStringLiteral("page"), QStringLiteral("https://zelto.example/get")},
                     {QStringLiteral("notes"), QStringLiteral("Faster <b>search</b>")}};
    for (auto change = changes.begin(); change != changes.end(); ++change) {
        if (change.value().isNull()) {
            said.remove(change.key());
        } else {
            said.insert(change.key(), change.value());
        }
    }
    return QJsonDocument(said).toJson();
}
