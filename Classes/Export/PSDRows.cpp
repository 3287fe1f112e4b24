#include "Classes/Export/PSDRows.h"

#include "Classes/Export/PSDBytes.h"

#include <algorithm>
#include <cstring>
#include <system_error>
#include <thread>
#include <vector>

namespace {

constexpr qsizetype bytesAtOnce = qsizetype(1) << 20; // of one thread
constexpr qsizetype worthAThread = qsizetype(1) << 16;
constexpr unsigned mostThreads = 4;

// Some rows of a strip, packed by one thread.
struct Share
{
    int from = 0;
    int to = 0;
    QByteArray packed;
    qsizetype size = 0;

    void pack(const PSDRows::Channel &channel, char *counts)
    {
        size = 0;
        if (from == to) {
            return;
        }
        const PSDRows::Packer next = channel.packerFrom(from);
        char *at = packed.data();
        for (int row = from; row < to; ++row) {
            char *const end = next(at);
            PSDBytes::putValue(counts + 2 * qsizetype(row), end - at, 2);
            at = end;
        }
        size = at - packed.constData();
    }
};

void packAll(std::vector<Share> &shares, const PSDRows::Channel &channel, char *counts)
{
    // Here rather than on each thread, whose memory would go back to the system and come anew each time.
    for (Share &share : shares) {
        share.packed.resize(std::max(share.packed.size(), (share.to - share.from) * channel.mostBytesPerRow));
    }
    std::vector<std::thread> threads;
    for (std::size_t i = 1; i < shares.size(); ++i) {
        try {
            threads.emplace_back([&share = shares[i], &channel, counts] { share.pack(channel, counts); });
        } catch (const std::system_error &) { // no more threads are to be had
            shares[i].pack(channel, counts);
        }
    }
    shares.front().pack(channel, counts);
    for (std::thread &thread : threads) {
        thread.join();
    }
}

} // namespace

bool PSDRows::append(const Channel &channel, QByteArray &document, qsizetype countsAt, qsizetype longest)
{
    const qsizetype before = document.size();
    const bool isSmall = channel.rows * channel.mostBytesPerRow < worthAThread;
    const unsigned threads = isSmall ? 1 : std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads);
    const int rowsOfOne = int(std::max<qsizetype>(1, bytesAtOnce / std::max<qsizetype>(1, channel.mostBytesPerRow)));
    std::vector<Share> shares(threads);
    for (int row = 0; row < channel.rows;) {
        const int strip = std::min(channel.rows - row, rowsOfOne * int(threads));
        const int each = (strip + int(threads) - 1) / int(threads);
        const int end = row + strip;
        for (Share &share : shares) {
            share.from = row;
            share.to = row = std::min(end, row + each);
        }
        packAll(shares, channel, document.data() + countsAt);
        for (const Share &share : shares) {
            if (document.size() + share.size > longest) {
                document.truncate(before);
                return false;
            }
            // Appending would copy the document each time it outgrows its memory; this lets it grow where it is.
            const qsizetype at = document.size();
            document.resize(at + share.size);
            std::memcpy(document.data() + at, share.packed.constData(), std::size_t(share.size));
        }
    }
    return true;
}
