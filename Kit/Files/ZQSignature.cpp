#include "Kit/Files/ZQSignature.h"

#include <openssl/evp.h>

#include <memory>

namespace {
constexpr qsizetype keySize = 32;
constexpr qsizetype signatureSize = 64;

const unsigned char *bytes(const QByteArray &data)
{
    return reinterpret_cast<const unsigned char *>(data.constData());
}
} // namespace

bool zqIsSignedBy(const QByteArray &publicKey, const QByteArray &data, const QByteArray &signature)
{
    if (publicKey.size() != keySize || signature.size() != signatureSize) {
        return false;
    }
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, bytes(publicKey), size_t(keySize)), &EVP_PKEY_free);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    return key && context && EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1 &&
           EVP_DigestVerify(context.get(), bytes(signature), size_t(signature.size()), bytes(data),
                            size_t(data.size())) == 1;
}
