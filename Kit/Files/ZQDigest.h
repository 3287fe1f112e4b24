#pragma once

#include <QByteArray>

struct evp_md_ctx_st;

// A SHA-1 that is fed in pieces.
class ZQDigest
{
public:
    ZQDigest();
    ~ZQDigest();
    void add(const char *data, qint64 size);
    QByteArray hex(); // 40 lower-case digits; ends it

private:
    evp_md_ctx_st *m_context;
};
