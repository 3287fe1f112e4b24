#pragma once

#include <QByteArray>

// The bytes of PSD documents: big-endian integers, and rows packed by PackBits. Any thread.
namespace PSDBytes {

// The lowest `withLength` bytes (1 to 8) of a value, the most significant first.
void appendValue(QByteArray &data, qint64 value, int withLength);
void putValue(char *at, qint64 value, int withLength); // the same in place

struct Range
{
    qsizetype location = 0;
    qsizetype length = 0;
};

// Every `skip`-th byte of the range, packed. Literal packets hold 1 to 128 bytes and repeat packets 3 to 127: from
// three equal bytes on it is a repeat. What of the range lies outside the data, or a `skip` below 1, gives nothing.
QByteArray packedBitsForRange(const QByteArray &data, Range range, qsizetype skip);

} // namespace PSDBytes
