#include "Kit/Imaging/ZQArchiveProtocol.h"

#include <QDataStream>
#include <QIODevice>

namespace {

constexpr quint32 questionMark = 0x5a514151;
constexpr quint32 answerMark = 0x5a514141;
constexpr qsizetype longestName = 32 * 1024; // bytes; beyond every path a system takes
constexpr qsizetype longestText = 500;
constexpr int nanosecondsOfSecond = 1'000'000'000;

template <class Kind>
bool isKind(qint32 value, Kind last)
{
    return value >= 0 && value <= qint32(last);
}

QString oneLine(QString text)
{
    text.removeIf([](QChar c) { return c.category() == QChar::Other_Control; });
    return text.left(longestText);
}

void write(QDataStream &stream, const ZQArchiveEntry &entry)
{
    // A name too long to be said is one that cannot be read.
    const bool isSaid = !entry.name.isNull() && entry.name.size() <= longestName;
    stream << qint32(entry.kind) << isSaid << (isSaid ? entry.name : QByteArray()) << entry.isEncrypted
           << entry.isListed << entry.size.has_value() << entry.size.value_or(0) << entry.time.has_value()
           << entry.time.value_or(0) << qint32(entry.timeNanoseconds);
}

bool read(QDataStream &stream, ZQArchiveEntry &entry)
{
    qint32 kind = 0;
    qint32 nanoseconds = 0;
    qint64 size = 0;
    qint64 time = 0;
    bool isNamed = false;
    bool hasSize = false;
    bool hasTime = false;
    stream >> kind >> isNamed >> entry.name >> entry.isEncrypted >> entry.isListed >> hasSize >> size >> hasTime >>
        time >> nanoseconds;
    entry.kind = ZQArchiveEntry::Kind(kind);
    entry.name = isNamed ? QByteArray(entry.name.constData(), entry.name.size()) : QByteArray();
    entry.size = hasSize ? std::optional(size) : std::nullopt;
    entry.time = hasTime ? std::optional(time) : std::nullopt;
    entry.timeNanoseconds = nanoseconds;
    return isKind(kind, ZQArchiveEntry::Kind::Other) && entry.name.size() <= longestName && size >= 0 &&
           nanoseconds >= 0 && nanoseconds < nanosecondsOfSecond;
}

} // namespace

QByteArray zqEncode(const ZQArchiveQuestion &question)
{
    QByteArray out;
    QDataStream(&out, QIODevice::WriteOnly) << questionMark << qint32(question.kind);
    return out;
}

std::optional<ZQArchiveQuestion> zqDecodeArchiveQuestion(const QByteArray &message)
{
    quint32 mark = 0;
    qint32 kind = -1;
    QDataStream stream(message);
    stream >> mark >> kind;
    const bool isWhole = stream.status() == QDataStream::Ok && stream.atEnd() && mark == questionMark;
    return isWhole && isKind(kind, ZQArchiveQuestion::Kind::Block)
               ? std::optional(ZQArchiveQuestion{ZQArchiveQuestion::Kind(kind)})
               : std::nullopt;
}

QByteArray zqEncode(const ZQArchiveAnswer &answer)
{
    QByteArray out;
    QDataStream stream(&out, QIODevice::WriteOnly);
    stream << answerMark << qint32(answer.kind) << answer.size << answer.isLast << qint32(answer.end.kind)
           << oneLine(answer.end.text);
    write(stream, answer.entry);
    return out;
}

std::optional<ZQArchiveAnswer> zqDecodeArchiveAnswer(const QByteArray &message)
{
    quint32 mark = 0;
    qint32 kind = -1;
    qint32 end = -1;
    ZQArchiveAnswer out;
    QDataStream stream(message);
    stream >> mark >> kind >> out.size >> out.isLast >> end >> out.end.text;
    const bool isEntryPossible = read(stream, out.entry);
    const bool isWhole = stream.status() == QDataStream::Ok && stream.atEnd() && mark == answerMark;
    // How the worker itself ended is seen, not said.
    const bool isPossible = isKind(kind, ZQArchiveAnswer::Kind::End) && isKind(end, ZQArchiveEnd::Kind::Damaged) &&
                            isEntryPossible && out.size >= 0 && out.size <= zqArchiveBlockBytes;
    if (!isWhole || !isPossible) {
        return std::nullopt;
    }
    out.kind = ZQArchiveAnswer::Kind(kind);
    out.end.kind = ZQArchiveEnd::Kind(end);
    out.end.text = oneLine(out.end.text);
    const bool isEndless = out.kind == ZQArchiveAnswer::Kind::Block && out.size == 0 && !out.isLast;
    return isEndless ? std::nullopt : std::optional(out);
}
