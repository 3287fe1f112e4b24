#pragma once

#include "Kit/Files/ZQArchiveSource.h"

// What is said to a worker that unpacks, and by it: one answer to each question. Contents come in the shared memory.
// Private to this folder. Answers are taken for nothing but what they are: claims of a process that reads a stranger's
// file.

struct ZQArchiveQuestion
{
    enum class Kind { Open, Entry, Block }; // with `Open` comes the file
    Kind kind = Kind::Open;
};

struct ZQArchiveAnswer
{
    enum class Kind { Opened, Entry, Block, End };

    Kind kind = Kind::End;
    ZQArchiveEntry entry;
    qint32 size = 0; // of the block, in bytes
    bool isLast = false;
    ZQArchiveEnd end;
};

constexpr qint32 zqArchiveBlockBytes = 256 * 1024;

QByteArray zqEncode(const ZQArchiveQuestion &question);
std::optional<ZQArchiveQuestion> zqDecodeArchiveQuestion(const QByteArray &message);
QByteArray zqEncode(const ZQArchiveAnswer &answer);
// Nothing when the message is no answer, or one that cannot be true.
std::optional<ZQArchiveAnswer> zqDecodeArchiveAnswer(const QByteArray &message);
