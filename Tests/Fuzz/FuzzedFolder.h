#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>

// A folder for what a fuzzer has written, among the temporary files: where one that crashed left its own, ./dev fuzz
// removes it.
inline const QTemporaryDir &fuzzedFolder()
{
    static const QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/zelto-fuzz-XXXXXX"));
    return folder;
}

inline void fuzzedWrite(const QString &path, const char *data, qsizetype size)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data, size) != size) {
        std::abort();
    }
}

// Takes the bytes of one input apart, piece by piece.
class FuzzedInput
{
public:
    FuzzedInput(const unsigned char *data, size_t size) : m_rest(reinterpret_cast<const char *>(data), qsizetype(size))
    {
    }

    bool isAtEnd() const { return m_rest.isEmpty(); }
    int byte()
    {
        const int value = m_rest.isEmpty() ? 0 : int(static_cast<unsigned char>(m_rest.front()));
        m_rest = m_rest.sliced(m_rest.isEmpty() ? 0 : 1);
        return value;
    }
    // Two bytes say how long it is; the last one may be shorter than it says.
    QByteArray piece()
    {
        const qsizetype low = byte();
        const qsizetype said = low + 256 * byte();
        const qsizetype size = qMin(m_rest.size(), said);
        const QByteArray out = m_rest.first(size).toByteArray();
        m_rest = m_rest.sliced(size);
        return out;
    }
    QByteArray rest() { return std::exchange(m_rest, {}).toByteArray(); }

private:
    QByteArrayView m_rest;
};
