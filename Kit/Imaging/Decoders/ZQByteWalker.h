#pragma once

#include <QtEndian>

// Bytes at places; past the end there are zeros, and it is remembered. The bytes stay the caller's.
class ZQByteWalker
{
public:
    ZQByteWalker(const uchar *bytes, quint64 size) : m_bytes(bytes), m_size(bytes ? size : 0) {}

    template <class T>
    T value(quint64 at, bool bigEndian = false)
    {
        if (at > m_size || m_size - at < sizeof(T)) {
            m_isPastEnd = true;
            return 0;
        }
        return bigEndian ? qFromBigEndian<T>(m_bytes + at) : qFromLittleEndian<T>(m_bytes + at);
    }
    quint64 size() const { return m_size; }
    bool isPastEnd() const { return m_isPastEnd; }

private:
    const uchar *m_bytes;
    quint64 m_size;
    bool m_isPastEnd = false;
};
