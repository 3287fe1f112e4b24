// Archives as a worker reads them, and what is decided of the names in them.

#include "Kit/Imaging/Worker/ZQArchiveFile.h"
#include "Kit/Imaging/ZQArchiveProtocol.h"
#include "Tests/Fuzz/FuzzedExtraction.h"

#include <array>
#include <fcntl.h>

namespace {

// The worker's reading in this process, with its answers said and heard as over the socket.
class FileSource : public ZQArchiveSource
{
public:
    bool open(const QString &path, ZQArchiveEnd *) override
    {
        ZQFileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC));
        m_file = std::make_unique<ZQArchiveFile>(std::move(file));
        return true;
    }

    std::optional<ZQArchiveEntry> nextEntry(ZQArchiveEnd *end) override
    {
        ZQArchiveAnswer answer;
        const auto entry = m_file->nextEntry(&answer.end);
        answer.kind = entry ? ZQArchiveAnswer::Kind::Entry : ZQArchiveAnswer::Kind::End;
        answer.entry = entry.value_or(ZQArchiveEntry());
        const ZQArchiveAnswer heard = overTheSocket(answer);
        *end = heard.end;
        return entry ? std::optional(heard.entry) : std::nullopt;
    }

    std::optional<Block> nextBlock(ZQArchiveEnd *end) override
    {
        ZQArchiveAnswer answer;
        const qint64 size = m_file->read(m_area.data(), qint64(m_area.size()), &answer.isLast, &answer.end);
        answer.kind = size >= 0 ? ZQArchiveAnswer::Kind::Block : ZQArchiveAnswer::Kind::End;
        answer.size = qint32(qMax(size, qint64(0)));
        const ZQArchiveAnswer heard = overTheSocket(answer);
        *end = heard.end;
        return size >= 0 ? std::optional(Block{{m_area.data(), heard.size}, heard.isLast}) : std::nullopt;
    }

private:
    // What an honest worker says is never taken for nonsense.
    static ZQArchiveAnswer overTheSocket(const ZQArchiveAnswer &answer)
    {
        const auto heard = zqDecodeArchiveAnswer(zqEncode(answer));
        if (!heard || heard->kind != answer.kind || heard->isLast != answer.isLast) {
            std::abort();
        }
        return *heard;
    }

    std::unique_ptr<ZQArchiveFile> m_file;
    std::array<char, zqArchiveBlockBytes> m_area{};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static FileSource source;
    const QString archive = fuzzedFolder().filePath(QStringLiteral("fuzzed.zip"));
    fuzzedWrite(archive, reinterpret_cast<const char *>(data), qsizetype(size));
    fuzzExtraction(source, archive);
    return 0;
}
