#include "Kit/Files/ZQDigest.h"

#include <openssl/evp.h>

ZQDigest::ZQDigest() : m_context(EVP_MD_CTX_new())
{
    EVP_DigestInit_ex(m_context, EVP_sha1(), nullptr);
}

ZQDigest::~ZQDigest()
{
    EVP_MD_CTX_free(m_context);
}

void ZQDigest::add(const char *data, qint64 size)
{
    EVP_DigestUpdate(m_context, data, static_cast<size_t>(size));
}

QByteArray ZQDigest::hex()
{
    unsigned char bytes[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_DigestFinal_ex(m_context, bytes, &length);
    return QByteArray(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(length)).toHex();
}
