#pragma once

#include <QByteArray>

#include <functional>

// Packing the rows of a channel on several threads, without holding more than a few of them beside the document.
namespace PSDRows {

// Packs the next row to `out`; the end of what it wrote. One is called on one thread only, for rows in their order.
using Packer = std::function<char *(char *out)>;

struct Channel
{
    int rows = 0;
    qsizetype mostBytesPerRow = 0;
    std::function<Packer(int firstRow)> packerFrom; // called on several threads
};

// Appends the rows, and puts the number of bytes of each, 2 bytes for one, to `countsAt` in the document. False, with
// the document as long as it was, once it would be longer than `longest`.
bool append(const Channel &channel, QByteArray &document, qsizetype countsAt, qsizetype longest);

} // namespace PSDRows
