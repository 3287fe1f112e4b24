#pragma once

#include <QByteArray>
#include <QJsonObject>

#include <openssl/evp.h>

#include <memory>

// A key of the test's own, and feeds that are signed with it.
class SignedFeed
{
public:
    SignedFeed();
    QByteArray publicKey() const;
    QByteArray sign(const QByteArray &announcement) const; // the whole feed

    // "zelto", "release", of today, with what is in `changes` instead; null values take a part away.
    static QByteArray announcement(const QJsonObject &changes);

private:
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> m_key;
};
