// What the application and its workers say to each other: everything comes over as it was said, and what cannot be true
// is no message at all.

#include "Kit/Imaging/ZQArchiveProtocol.h"
#include "Kit/Imaging/ZQRenderNotice.h"
#include "Kit/Imaging/ZQRenderProtocol.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

ZQImageProperties someProperties()
{
    ZQImageProperties out;
    out.pixelWidth = 7;
    out.pixelHeight = 8;
    out.orientation = 3;
    out.bitsPerSample = 16;
    out.dpi = 300;
    out.frameCount = 2;
    out.hasAlpha = true;
    out.isVector = true;
    out.colorModel = QStringLiteral("Lab");
    out.frameDurations = {20, 30};
    out.keywords = QStringList{QStringLiteral("été"), QStringLiteral("harbour")};
    return out;
}

ZQRenderAnswer someAnswer()
{
    ZQRenderAnswer out;
    out.kind = ZQRenderAnswer::Kind::Properties;
    out.properties = someProperties();
    return out;
}

void expectEqual(const ZQImageProperties &found, const ZQImageProperties &expected)
{
    EXPECT_EQ(found.pixelWidth, expected.pixelWidth);
    EXPECT_EQ(found.pixelHeight, expected.pixelHeight);
    EXPECT_EQ(found.orientation, expected.orientation);
    EXPECT_EQ(found.bitsPerSample, expected.bitsPerSample);
    EXPECT_EQ(found.dpi, expected.dpi);
    EXPECT_EQ(found.frameCount, expected.frameCount);
    EXPECT_EQ(found.hasAlpha, expected.hasAlpha);
    EXPECT_EQ(found.isVector, expected.isVector);
    EXPECT_EQ(found.colorModel, expected.colorModel);
    EXPECT_EQ(found.frameDurations, expected.frameDurations);
    EXPECT_EQ(found.keywords, expected.keywords);
}

template <class Decode>
void expectOnlyWhole(const QByteArray &message, Decode decode)
{
    EXPECT_TRUE(decode(message));
    EXPECT_FALSE(decode(message + 'x'));
    for (qsizetype size = 0; size < message.size(); ++size) {
        EXPECT_FALSE(decode(message.left(size))) << size;
    }
    for (qsizetype i = 0; i < 4; ++i) {
        QByteArray other = message;
        other[i] = char(other.at(i) ^ 1);
        EXPECT_FALSE(decode(other)) << i;
    }
}

struct Sockets
{
    Sockets() { EXPECT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0); }
    ~Sockets()
    {
        ::close(ends[0]);
        ::close(ends[1]);
    }
    int ends[2];
};

} // namespace

TEST(RenderProtocolTest, ARequestComesOverWhole)
{
    const ZQRenderRequest request{
        ZQRenderRequest::Kind::Thumbnailer, {300, 200}, 4, QStringLiteral("a\nb é.png"), true};
    const auto found = zqDecodeRequestMessage(zqEncode(request));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->kind, request.kind);
    EXPECT_EQ(found->box, request.box);
    EXPECT_EQ(found->frame, 4);
    EXPECT_EQ(found->name, request.name);
    EXPECT_TRUE(found->withProperties);
    EXPECT_FALSE(zqDecodeRequestMessage(zqEncode(ZQRenderRequest()))->withProperties);
    EXPECT_FALSE(zqDecodeRequestMessage(zqEncode(ZQRenderRequest()))->box.isValid());
    expectOnlyWhole(zqEncode(request), zqDecodeRequestMessage);
    ZQRenderRequest longest;
    longest.name = QString(4096, u'n');
    EXPECT_EQ(zqDecodeRequestMessage(zqEncode(longest))->name.size(), 4096);
    longest.name += u'n';
    EXPECT_EQ(zqDecodeRequestMessage(zqEncode(longest))->name.size(), 4096);
}

TEST(RenderProtocolTest, WhatIsToBeExportedComesOverWhole)
{
    ZQRenderRequest request;
    request.kind = ZQRenderRequest::Kind::Export;
    for (const ZQExportEncoding &encoding :
         {ZQExportEncoding{AVIF, 70, {12.5, {}}}, ZQExportEncoding{TIFF, {}, {{}, QSizeF(800, 0)}},
          ZQExportEncoding{PNG, {}, {}}}) {
        request.encoding = encoding;
        const auto found = zqDecodeRequestMessage(zqEncode(request));
        ASSERT_TRUE(found);
        EXPECT_EQ(found->encoding.fileType, encoding.fileType);
        EXPECT_EQ(found->encoding.quality, encoding.quality);
        EXPECT_EQ(found->encoding.size.percentage, encoding.size.percentage);
        EXPECT_EQ(found->encoding.size.size, encoding.size.size);
        expectOnlyWhole(zqEncode(request), zqDecodeRequestMessage);
    }
    ZQRenderAnswer answer = someAnswer();
    answer.kind = ZQRenderAnswer::Kind::CannotWrite;
    answer.systemError = ENOSPC;
    EXPECT_EQ(zqDecodeAnswerMessage(zqEncode(answer))->systemError, ENOSPC);
    expectOnlyWhole(zqEncode(answer), zqDecodeAnswerMessage);
}

TEST(RenderProtocolTest, AnAnswerComesOverWhole)
{
    ZQRenderAnswer answer = someAnswer();
    for (bool ZQRenderAnswer::*flag :
         {&ZQRenderAnswer::hasThumbnailer, &ZQRenderAnswer::restrictsFiles, &ZQRenderAnswer::restrictsCalls,
          &ZQRenderAnswer::isIncomplete, &ZQRenderAnswer::isFirstOfSeveral, &ZQRenderAnswer::isReduced,
          &ZQRenderAnswer::hasProperties}) {
        for (const bool value : {true, false}) {
            answer.*flag = value;
            EXPECT_EQ((*zqDecodeAnswerMessage(zqEncode(answer))).*flag, value);
        }
    }
    answer.kind = ZQRenderAnswer::Kind::PixelsInFile;
    answer.size = {640, 480};
    answer.code = ZQImagingErrorCode::TooBig;
    answer.reason = QStringLiteral("one\nline\tonly é");
    const auto found = zqDecodeAnswerMessage(zqEncode(answer));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->kind, answer.kind);
    EXPECT_EQ(found->size, answer.size);
    EXPECT_EQ(found->code, answer.code);
    EXPECT_EQ(found->reason, QStringLiteral("onelineonly é"));
    expectEqual(found->properties, answer.properties);
    expectOnlyWhole(zqEncode(answer), zqDecodeAnswerMessage);
}

TEST(RenderProtocolTest, WhatIsTooMuchIsLeftOutOfAnAnswer)
{
    ZQRenderAnswer answer = someAnswer();
    ZQImageProperties &properties = answer.properties;
    properties.frameCount = 6000;
    properties.frameDurations = QList<int>(5001, 40);
    properties.keywords = QStringList(1001, QStringLiteral("k"));
    properties.dpi = -3;
    const auto most = zqDecodeAnswerMessage(zqEncode(answer));
    ASSERT_TRUE(most);
    EXPECT_EQ(most->properties.frameDurations.size(), 5000);
    EXPECT_EQ(most->properties.keywords.size(), 1000);
    EXPECT_EQ(most->properties.dpi, 0);
    properties.keywords = QStringList(100, QString(4096, u'k'));
    const QByteArray message = zqEncode(answer);
    EXPECT_LE(message.size(), zqRenderMaximumMessage);
    EXPECT_GT(message.size(), zqRenderMaximumMessage - 2 * 4104);
    EXPECT_GT(zqDecodeAnswerMessage(message)->properties.keywords.size(), 5);
    properties.keywords = QStringList{QStringLiteral("a\x01"
                                                     "b"),
                                      QString(), QStringLiteral("\n"), QStringLiteral("c")};
    properties.frameCount = 3;
    properties.frameDurations = {0, -5, std::numeric_limits<int>::max(), 9};
    const auto cleaned = zqDecodeAnswerMessage(zqEncode(answer))->properties;
    EXPECT_EQ(cleaned.keywords, (QStringList{QStringLiteral("ab"), QStringLiteral("c")}));
    EXPECT_EQ(cleaned.frameDurations, (QList<int>{1, 1, 3600'000}));
}

TEST(RenderProtocolTest, AnAnswerThatCannotBeTrueIsNone)
{
    using Kind = ZQRenderAnswer::Kind;
    struct Row
    {
        const char *what;
        void (*change)(ZQRenderAnswer &answer);
        bool isPossible;
    };
    for (const Row &row : {
             Row{"the widest", [](ZQRenderAnswer &a) { a.properties.pixelWidth = 10'000'000; }, true},
             Row{"too wide", [](ZQRenderAnswer &a) { a.properties.pixelWidth = 10'000'001; }, false},
             Row{"no width", [](ZQRenderAnswer &a) { a.properties.pixelWidth = 0; }, false},
             Row{"one pixel", [](ZQRenderAnswer &a) { a.properties.pixelWidth = a.properties.pixelHeight = 1; }, true},
             Row{"no height", [](ZQRenderAnswer &a) { a.properties.pixelHeight = 0; }, false},
             Row{"orientation 0", [](ZQRenderAnswer &a) { a.properties.orientation = 0; }, true},
             Row{"orientation 8", [](ZQRenderAnswer &a) { a.properties.orientation = 8; }, true},
             Row{"orientation 9", [](ZQRenderAnswer &a) { a.properties.orientation = 9; }, false},
             Row{"orientation -1", [](ZQRenderAnswer &a) { a.properties.orientation = -1; }, false},
             Row{"128 bits", [](ZQRenderAnswer &a) { a.properties.bitsPerSample = 128; }, true},
             Row{"129 bits", [](ZQRenderAnswer &a) { a.properties.bitsPerSample = 129; }, false},
             Row{"1 bit", [](ZQRenderAnswer &a) { a.properties.bitsPerSample = 1; }, true},
             Row{"0 bits", [](ZQRenderAnswer &a) { a.properties.bitsPerSample = 0; }, false},
             Row{"1 frame", [](ZQRenderAnswer &a) { a.properties.frameCount = 1; }, true},
             Row{"0 frames", [](ZQRenderAnswer &a) { a.properties.frameCount = 0; }, false},
             Row{"another model", [](ZQRenderAnswer &a) { a.properties.colorModel = QStringLiteral("XYZ"); }, false},
             Row{"CMYK", [](ZQRenderAnswer &a) { a.properties.colorModel = QStringLiteral("CMYK"); }, true},
             Row{"Gray", [](ZQRenderAnswer &a) { a.properties.colorModel = QStringLiteral("Gray"); }, true},
             Row{"a greeting of any size",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::Hello;
                     a.properties.frameCount = 0;
                 },
                 true},
             Row{"with properties that cannot be",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::BytesInFile;
                     a.hasProperties = true;
                     a.properties.frameCount = 0;
                 },
                 false},
             Row{"bytes", [](ZQRenderAnswer &a) { a.kind = Kind::BytesInFile; }, true},
             Row{"all of the area",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::PixelsInArea;
                     a.size = {1024, 1024};
                 },
                 true},
             Row{"more than the area",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::PixelsInArea;
                     a.size = {1024, 1025};
                 },
                 false},
             Row{"nothing of the area",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::PixelsInArea;
                     a.size = {0, 5};
                 },
                 false},
             Row{"the largest",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::PixelsInFile;
                     a.size = {1 << 15, 1 << 14};
                 },
                 true},
             Row{"too large",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::PixelsInFile;
                     a.size = {(1 << 15) + 1, 1 << 14};
                 },
                 false},
             Row{"one pixel in a file",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::PixelsInFile;
                     a.size = {1, 1};
                 },
                 true},
             Row{"no row in a file",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::PixelsInFile;
                     a.size = {1, 0};
                 },
                 false},
             Row{"the first error",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::Error;
                     a.code = ZQImagingErrorCode::CannotRead;
                 },
                 true},
             Row{"no error",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::Error;
                     a.code = ZQImagingErrorCode(0);
                 },
                 false},
             Row{"the last error that a worker tells",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::Error;
                     a.code = ZQImagingErrorCode::TooMuchMemory;
                 },
                 true},
             Row{"an error of this side",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::Error;
                     a.code = ZQImagingErrorCode::NoRenderer;
                 },
                 false},
             Row{"an export of no size",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::Exported;
                     a.size = {0, 5};
                 },
                 false},
             Row{"the system's last error",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::CannotWrite;
                     a.systemError = 4095;
                 },
                 true},
             Row{"more than the system has",
                 [](ZQRenderAnswer &a) {
                     a.kind = Kind::CannotWrite;
                     a.systemError = 4096;
                 },
                 false},
             Row{"no error of the system", [](ZQRenderAnswer &a) { a.kind = Kind::CannotWrite; }, false},
             Row{"an unknown kind", [](ZQRenderAnswer &a) { a.kind = Kind(8); }, false},
         }) {
        ZQRenderAnswer answer = someAnswer();
        row.change(answer);
        EXPECT_EQ(zqDecodeAnswerMessage(zqEncode(answer)).has_value(), row.isPossible) << row.what;
    }
}

TEST(RenderProtocolTest, MessagesStayApartAndBringTheirDescriptors)
{
    Sockets sockets;
    const QByteArray longest(zqRenderMaximumMessage, 'm');
    ASSERT_TRUE(zqSendMessage(sockets.ends[0], "with a file", STDIN_FILENO));
    ASSERT_TRUE(zqSendMessage(sockets.ends[0], "without"));
    ASSERT_TRUE(zqSendMessage(sockets.ends[0], longest));
    ASSERT_TRUE(zqSendMessage(sockets.ends[0], longest + 'm'));
    const ZQRenderMessage first = zqReceiveMessage(sockets.ends[1]);
    EXPECT_EQ(first.bytes, "with a file");
    ASSERT_TRUE(first.descriptor.isOpen());
    EXPECT_NE(::fcntl(first.descriptor.get(), F_GETFD) & FD_CLOEXEC, 0);
    const ZQRenderMessage second = zqReceiveMessage(sockets.ends[1]);
    EXPECT_EQ(second.bytes, "without");
    EXPECT_FALSE(second.descriptor.isOpen());
    EXPECT_FALSE(first.second.isOpen());
    EXPECT_EQ(zqReceiveMessage(sockets.ends[1]).bytes, longest);
    EXPECT_TRUE(zqReceiveMessage(sockets.ends[1]).bytes.isEmpty()) << "cut";
    ASSERT_TRUE(zqSendMessage(sockets.ends[0], "two", STDIN_FILENO, STDERR_FILENO));
    const ZQRenderMessage two = zqReceiveMessage(sockets.ends[1]);
    struct stat sent = {};
    struct stat received = {};
    EXPECT_TRUE(two.descriptor.isOpen());
    ASSERT_EQ(::fstat(STDERR_FILENO, &sent), 0);
    ASSERT_EQ(::fstat(two.second.get(), &received), 0);
    EXPECT_EQ(received.st_ino, sent.st_ino);
    ::shutdown(sockets.ends[0], SHUT_RDWR);
    errno = EINTR; // left behind by an earlier call
    EXPECT_TRUE(zqReceiveMessage(sockets.ends[1]).bytes.isEmpty());
    EXPECT_FALSE(zqSendMessage(sockets.ends[1], "to nobody"));
    EXPECT_TRUE(zqReceiveMessage(-1).bytes.isEmpty());
}

TEST(ArchiveProtocolTest, QuestionsAndAnswersComeOverWhole)
{
    using Kind = ZQArchiveQuestion::Kind;
    for (const Kind kind : {Kind::Open, Kind::Entry, Kind::Block}) {
        const auto found = zqDecodeArchiveQuestion(zqEncode(ZQArchiveQuestion{kind}));
        ASSERT_TRUE(found);
        EXPECT_EQ(found->kind, kind);
    }
    expectOnlyWhole(zqEncode(ZQArchiveQuestion{Kind::Entry}), zqDecodeArchiveQuestion);
    EXPECT_FALSE(zqDecodeArchiveQuestion(zqEncode(ZQArchiveQuestion{Kind(3)})));
    EXPECT_FALSE(zqDecodeArchiveQuestion(zqEncode(ZQArchiveQuestion{Kind(-1)})));

    ZQArchiveAnswer answer;
    answer.kind = ZQArchiveAnswer::Kind::Entry;
    answer.size = 5;
    answer.isLast = true;
    answer.end = {ZQArchiveEnd::Kind::CutOff, QStringLiteral("a\nb") + QString(600, u'x')};
    answer.entry.kind = ZQArchiveEntry::Kind::Link;
    answer.entry.name = QByteArray("a\0b\xff", 4);
    answer.entry.isEncrypted = true;
    answer.entry.isListed = true;
    answer.entry.size = 0;
    answer.entry.time = -7;
    answer.entry.timeNanoseconds = 999'999'999;
    const auto found = zqDecodeArchiveAnswer(zqEncode(answer));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->kind, answer.kind);
    EXPECT_EQ(found->size, 5);
    EXPECT_TRUE(found->isLast);
    EXPECT_EQ(found->end.kind, answer.end.kind);
    EXPECT_EQ(found->end.text, QStringLiteral("ab") + QString(498, u'x'));
    EXPECT_EQ(found->entry.kind, answer.entry.kind);
    EXPECT_EQ(found->entry.name, answer.entry.name);
    EXPECT_TRUE(found->entry.isEncrypted && found->entry.isListed);
    EXPECT_EQ(found->entry.size, 0);
    EXPECT_EQ(found->entry.time, -7);
    EXPECT_EQ(found->entry.timeNanoseconds, 999'999'999);
    expectOnlyWhole(zqEncode(answer), zqDecodeArchiveAnswer);
    const auto plain = zqDecodeArchiveAnswer(zqEncode(ZQArchiveAnswer()));
    ASSERT_TRUE(plain);
    EXPECT_TRUE(plain->entry.name.isNull());
    EXPECT_FALSE(plain->entry.isEncrypted || plain->entry.isListed || plain->isLast);
    EXPECT_FALSE(plain->entry.size || plain->entry.time);
}

TEST(ArchiveProtocolTest, AnAnswerThatCannotBeTrueIsNone)
{
    using Answer = ZQArchiveAnswer;
    struct Row
    {
        const char *what;
        void (*change)(Answer &answer);
        bool isPossible;
        bool isNamed = true;
    };
    for (const Row &row : {
             Row{"the longest name", [](Answer &a) { a.entry.name = QByteArray(32 * 1024, 'n'); }, true},
             Row{"a longer name", [](Answer &a) { a.entry.name = QByteArray(32 * 1024 + 1, 'n'); }, true, false},
             Row{"a name that is empty", [](Answer &a) { a.entry.name = QByteArray(""); }, true},
             Row{"an unknown kind of entry", [](Answer &a) { a.entry.kind = ZQArchiveEntry::Kind(99); }, false},
             Row{"the last kind of entry", [](Answer &a) { a.entry.kind = ZQArchiveEntry::Kind::Other; }, true},
             Row{"a negative size", [](Answer &a) { a.entry.size = -1; }, false},
             Row{"a second of nanoseconds", [](Answer &a) { a.entry.timeNanoseconds = 1'000'000'000; }, false},
             Row{"negative nanoseconds", [](Answer &a) { a.entry.timeNanoseconds = -1; }, false},
             Row{"an unknown kind", [](Answer &a) { a.kind = Answer::Kind(4); }, false},
             Row{"a negative kind", [](Answer &a) { a.kind = Answer::Kind(-1); }, false},
             Row{"the last end that is said", [](Answer &a) { a.end.kind = ZQArchiveEnd::Kind::Damaged; }, true},
             Row{"an end that is seen", [](Answer &a) { a.end.kind = ZQArchiveEnd::Kind::Stopped; }, false},
             Row{"the largest block", [](Answer &a) { a.size = zqArchiveBlockBytes; }, true},
             Row{"a larger block", [](Answer &a) { a.size = zqArchiveBlockBytes + 1; }, false},
             Row{"a negative block", [](Answer &a) { a.size = -1; }, false},
             Row{"the last block, empty",
                 [](Answer &a) {
                     a.kind = Answer::Kind::Block;
                     a.isLast = true;
                 },
                 true},
             Row{"a block of one byte",
                 [](Answer &a) {
                     a.kind = Answer::Kind::Block;
                     a.size = 1;
                 },
                 true},
             Row{"nothing and no end", [](Answer &a) { a.kind = Answer::Kind::Block; }, false},
             Row{"another answer of no size", [](Answer &a) { a.kind = Answer::Kind::Opened; }, true},
         }) {
        Answer answer;
        answer.entry.name = "name";
        row.change(answer);
        const auto found = zqDecodeArchiveAnswer(zqEncode(answer));
        EXPECT_EQ(found.has_value(), row.isPossible) << row.what;
        EXPECT_TRUE(!found || found->entry.name.isNull() != row.isNamed) << row.what;
    }
}

TEST(RenderNoticeTest, OnlyAWorkerThatIsNotConfinedIsSpokenOf)
{
    int told = 0;
    zqSetUnconfinedHandler([&] { ++told; });
    ZQRenderAnswer hello;
    zqNoteRestrictions(hello);
    EXPECT_EQ(told, 0);
    hello.restrictsCalls = false;
    zqNoteRestrictions(hello);
    zqNoteRestrictions(hello); // once is enough
    EXPECT_EQ(told, 1);
    zqSetUnconfinedHandler([&] { told += 10; });
    EXPECT_EQ(told, 11) << "one who asks later is told at once";
    zqSetUnconfinedHandler({});
    hello.restrictsCalls = true;
    hello.restrictsFiles = false;
    zqNoteRestrictions(hello);
    EXPECT_EQ(told, 11);
}
