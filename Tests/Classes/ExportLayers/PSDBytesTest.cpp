// Packed rows and integers of PSD documents, byte by byte.

#include "Classes/Export/PSDBytes.h"
#include "Kit/Imaging/ZQPackBits.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <deque>
#include <utility>
#include <vector>

namespace {

QByteArray packed(const QByteArray &samples)
{
    return PSDBytes::packedBitsForRange(samples, {0, samples.size()}, 1);
}

QByteArray counting(int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i) {
        bytes.append(char(i % 2 == 0 ? i : 255 - i));
    }
    return bytes;
}

void putLiteral(QByteArray &out, QByteArray &literal, qsizetype count)
{
    out += char(count - 1) + literal.left(count);
    literal.remove(0, count);
}

// One sample after the other through a buffer of literals, as the format's packer is described.
QByteArray packedSlowly(const QByteArray &samples)
{
    QByteArray out;
    QByteArray literal;
    for (qsizetype i = 0; i < samples.size();) {
        literal += samples[i++];
        if (literal.size() >= 3 && literal.right(3) == QByteArray(3, literal.back())) {
            const char value = literal.back();
            literal.chop(3);
            if (!literal.isEmpty()) {
                putLiteral(out, literal, literal.size());
            }
            int length = 3;
            for (; length < 127 && i < samples.size() && samples[i] == value; ++i) {
                ++length;
            }
            out += QByteArray(1, char(1 - length)) + value;
        } else if (literal.size() == 130) {
            putLiteral(out, literal, 128);
        }
    }
    if (literal.size() > 128) {
        putLiteral(out, literal, 128);
    }
    if (!literal.isEmpty()) {
        putLiteral(out, literal, literal.size());
    }
    return out;
}

QByteArray unpackedByTheBook(const QByteArray &packed)
{
    std::deque<char> rest(packed.begin(), packed.end());
    const auto take = [&rest] {
        const char byte = rest.front();
        rest.pop_front();
        return byte;
    };
    QByteArray out;
    while (!rest.empty()) {
        const int header = static_cast<signed char>(take());
        if (header < 0) {
            out += QByteArray(1 - header, take());
            continue;
        }
        for (int i = 0; i <= header; ++i) {
            out += take();
        }
    }
    return out;
}

} // namespace

TEST(PSDBytes, IntegersAreBigEndian)
{
    struct
    {
        qint64 value;
        int length;
        const char *expected;
    } cases[] = {{1, 2, "0001"},
                 {0x12345678, 4, "12345678"},
                 {0x12345678, 2, "5678"},
                 {-1, 2, "ffff"},
                 {-2, 1, "fe"},
                 {300, 1, "2c"},
                 {-1, 8, "ffffffffffffffff"},
                 {5, 0, ""}};
    for (const auto &test : cases) {
        QByteArray data("x");
        PSDBytes::appendValue(data, test.value, test.length);
        EXPECT_EQ(data.mid(1).toHex(), test.expected) << test.value;
    }
}

TEST(PSDBytes, PacketsHaveTheirLimits)
{
    const QByteArray many = counting(300);
    const QByteArray a3(3, 'a');
    struct
    {
        QByteArray samples;
        QByteArray expected;
    } cases[] = {
        {{}, {}},
        {"a", QByteArray("\0a", 2)},
        {"aa", "\1aa"},
        {"aaa", "\xfe\x61"},
        {"aabb", "\3aabb"},
        {"baaa", QByteArray("\0b\xfe\x61", 4)},
        {"aaab", QByteArray("\xfe\x61\0b", 4)},
        {QByteArray(127, 'a'), "\x82\x61"},
        {QByteArray(128, 'a'), QByteArray("\x82\x61\0a", 4)},
        {QByteArray(129, 'a'), "\x82\x61\1aa"},
        {QByteArray(200, 'a'), "\x82\x61\xb8\x61"},
        {many.left(128), '\x7f' + many.left(128)},
        {many.left(129), '\x7f' + many.left(128) + '\0' + many[128]},
        {many.left(130), '\x7f' + many.left(128) + '\1' + many.mid(128, 2)},
        {many.left(257), '\x7f' + many.left(128) + '\x7f' + many.mid(128, 128) + '\0' + many[256]},
        {many.left(126) + a3, '\x7d' + many.left(126) + "\xfe\x61"},
        {many.left(127) + a3, '\x7e' + many.left(127) + "\xfe\x61"},
        {many.left(128) + a3, '\x7f' + many.left(128) + "\xfe\x61"},
        {many.left(129) + a3, '\x7f' + many.left(128) + '\0' + many[128] + "\xfe\x61"},
    };
    for (const auto &test : cases) {
        EXPECT_EQ(packed(test.samples).toHex(' '), test.expected.toHex(' ')) << test.samples.toHex().constData();
    }
}

TEST(PSDBytes, ARangeIsPackedByItself)
{
    const QByteArray data("abcdabcdabcdxyz");
    const auto part = [&data](qsizetype location, qsizetype length, qsizetype skip) {
        return PSDBytes::packedBitsForRange(data, {location, length}, skip);
    };
    EXPECT_EQ(part(0, 12, 4), "\xfe\x61");
    EXPECT_EQ(part(1, 9, 4), "\xfe\x62");
    EXPECT_EQ(part(2, 5, 4), "\1cc");
    EXPECT_EQ(part(12, 100, 1), "\2xyz");
    for (const QByteArray &nothing : {part(0, 0, 1), part(0, 12, 0), part(-1, 4, 1), part(15, 4, 1), part(0, -4, 1)}) {
        EXPECT_TRUE(nothing.isEmpty());
    }
}

RC_GTEST_PROP(PSDBytes, RowsArePackedAsDescribedAndComeBack, ())
{
    // Few values and lengths about the limits, so that runs begin and end everywhere.
    const auto length = rc::gen::oneOf(rc::gen::inRange(0, 5), rc::gen::inRange(124, 133), rc::gen::inRange(0, 300));
    const auto parts =
        *rc::gen::container<std::vector<std::pair<int, int>>>(rc::gen::pair(rc::gen::inRange(0, 4), length));
    QByteArray samples;
    for (const auto &[value, count] : parts) {
        samples += value == 0 ? counting(count) : QByteArray(count, char(value));
    }
    const QByteArray bytes = packed(samples);
    RC_ASSERT(bytes == packedSlowly(samples));
    RC_ASSERT(bytes.size() <= ZQPackBits::mostPacked(samples.size()));
    RC_ASSERT(unpackedByTheBook(bytes) == samples);
    std::vector<uchar> ours(std::size_t(samples.size()) + 1, 7);
    ZQPackBits::unpack(bytes.constData(), bytes.constData() + bytes.size(), ours);
    RC_ASSERT(std::equal(samples.begin(), samples.end(), ours.begin(),
                         [](char a, uchar b) { return static_cast<uchar>(a) == b; }));
    RC_ASSERT(ours.back() == 0);
}
