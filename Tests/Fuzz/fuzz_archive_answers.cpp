// What a worker that unpacks may say once a stranger's archive has taken it over.

#include "Kit/Imaging/ZQArchiveProtocol.h"
#include "Tests/Fuzz/FuzzedExtraction.h"

namespace {

// Each answer is a piece of the input, as it came; after the last one the worker is gone.
class HostileSource : public ZQArchiveSource
{
public:
    explicit HostileSource(FuzzedInput &input) : m_input(input), m_area(zqArchiveBlockBytes, 'x') {}

    bool open(const QString &, ZQArchiveEnd *end) override
    {
        return heard(ZQArchiveAnswer::Kind::Opened, end).has_value();
    }

    std::optional<ZQArchiveEntry> nextEntry(ZQArchiveEnd *end) override
    {
        const auto answer = heard(ZQArchiveAnswer::Kind::Entry, end);
        return answer ? std::optional(answer->entry) : std::nullopt;
    }

    std::optional<Block> nextBlock(ZQArchiveEnd *end) override
    {
        const auto answer = heard(ZQArchiveAnswer::Kind::Block, end);
        return answer ? std::optional(Block{QByteArrayView(m_area).first(answer->size), answer->isLast}) : std::nullopt;
    }

private:
    std::optional<ZQArchiveAnswer> heard(ZQArchiveAnswer::Kind wanted, ZQArchiveEnd *end)
    {
        const auto answer = zqDecodeArchiveAnswer(m_input.piece());
        *end = answer && answer->kind == ZQArchiveAnswer::Kind::End ? answer->end
                                                                    : ZQArchiveEnd{ZQArchiveEnd::Kind::Stopped, {}};
        return answer && answer->kind == wanted ? answer : std::nullopt;
    }

    FuzzedInput &m_input;
    const QByteArray m_area;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    zqDecodeArchiveQuestion(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    const QString archive = fuzzedFolder().filePath(QStringLiteral("fuzzed.zip"));
    if (!QFile::exists(archive)) {
        fuzzedWrite(archive, "PK", 2);
    }
    FuzzedInput input(data, size);
    HostileSource source(input);
    fuzzExtraction(source, archive);
    return 0;
}
