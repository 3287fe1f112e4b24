#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQError.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Foundation/ZQText.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/wait.h>
#include <unistd.h>

TEST(Format, FillsItsPlacesInOrder)
{
    const struct
    {
        const char16_t *format;
        QVariantList arguments;
        const char16_t *expected;
    } rows[] = {
        {u"%@ %d%@", {QStringLiteral("Cat"), 2, QStringLiteral(".png")}, u"Cat 2.png"},
        {u"%ld of %d", {qlonglong(5000000000), 7}, u"5000000000 of 7"},
        {u"100%% of %@", {QStringLiteral("it")}, u"100% of it"},
        {u"%f", {0.5}, u"0.500000"},
        {u"%@ and %@", {QStringLiteral("one")}, u"one and "},
        {u"%@", {QStringLiteral("one"), QStringLiteral("two")}, u"one"},
        {u"%@", {QStringLiteral("50%@ off %d")}, u"50%@ off %d"},
        {u"no places", {1}, u"no places"},
        {u"ends in %", {}, u"ends in %"},
        {u"unknown %q kept", {1}, u"unknown %q kept"},
        {u"%s, %i, %u, %lld", {QStringLiteral("a"), -2, 3, 4}, u"a, -2, 3, 4"},
        {u"%l", {1}, u"%l"},
        {u"%ll", {1}, u"%ll"},
        {u"a %l% b %d", {1}, u"a %l% b 1"},
        {u"%%%d%%", {1}, u"%1%"},
        {u"%", {1}, u"%"},
        {u"", {}, u""},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(zqFormat(QString::fromUtf16(row.format), row.arguments), QString::fromUtf16(row.expected));
    }
}

TEST(Format, QuotesOfLongTextsTheirBeginAndEnd)
{
    const QString endless = QStringLiteral("first") + QString(100'000, u'x') + QStringLiteral("last");
    const QString quoted = zqFormat(QStringLiteral("“%@” or „%@“ or «%@»"), {endless, endless, endless});
    EXPECT_LT(quoted.size(), 3 * zqLongestQuotation + 20);
    EXPECT_EQ(quoted.count(QStringLiteral("first")), 3);
    EXPECT_EQ(quoted.count(QStringLiteral("last")), 3);
    EXPECT_EQ(zqFormat(QStringLiteral("/%@.png"), {endless}).size(), endless.size() + 5) << "a path stays one";
    EXPECT_EQ(zqFormat(QStringLiteral("a \"%@\""), {endless}).size(), endless.size() + 4);
}

TEST(Shortened, CutsNoCharacter)
{
    EXPECT_EQ(zqShortened(QStringLiteral("12345"), 5), QStringLiteral("12345"));
    EXPECT_EQ(zqShortened(QStringLiteral("123456"), 5), QStringLiteral("12…56"));
    const char16_t *const characters[] = {u"😀", u"e\u0301", u"👩\u200d👩\u200d👧", u"g\u0308\u0323", u"한"};
    for (const char16_t *each : characters) {
        const QString character = QString::fromUtf16(each);
        for (qsizetype longest = 1; longest < 24; ++longest) {
            const QString text = zqShortened(character.repeated(40), longest);
            EXPECT_LE(text.size(), longest);
            EXPECT_EQ(QString(text).remove(character), QStringLiteral("…")) << longest;
        }
    }
    const QString heap = u'a' + QString(50'000, QChar(0x0301)) + u'b';
    EXPECT_LE(zqShortened(heap, 100).size(), 100) << "one character of many marks";
}

TEST(Shortened, ALabelBreaksWithinWhatHasNoBlanks)
{
    const QString blank = QString(QChar(0x200B));
    EXPECT_EQ(zqForLabel(QStringLiteral("a few words that are as they were"), 500),
              QStringLiteral("a few words that are as they were"));
    const QString run = QStringLiteral("e\u0301").repeated(100);
    const QString label = zqForLabel(run, 500);
    EXPECT_EQ(QString(label).remove(blank), run);
    EXPECT_GE(label.count(blank), 4);
    EXPECT_FALSE(label.contains(blank + QChar(0x0301)));
}

TEST(Localized, IsTheKeyItselfWithoutATranslation)
{
    EXPECT_EQ(zqLocalized("Café %@ — “quoted”"), QStringLiteral("Café %@ — “quoted”"));
    EXPECT_EQ(zqLocalized(QStringLiteral("Ünïcode")), QStringLiteral("Ünïcode"));
}

TEST(Error, ShowsDescriptionAndReason)
{
    const QString domain = QStringLiteral("test");
    EXPECT_EQ(ZQError::with(domain, 3, QStringLiteral("It failed.")).localizedDescription(),
              QStringLiteral("It failed."));
    EXPECT_EQ(
        ZQError::with(domain, 3, QStringLiteral("It failed."), QStringLiteral("No space.")).localizedDescription(),
        QStringLiteral("It failed. No space."));
    EXPECT_EQ(ZQError::with(domain, 3, {}, QStringLiteral("No space.")).localizedDescription(),
              QStringLiteral("No space."));
    EXPECT_EQ(ZQError::with(domain, 3, QStringLiteral("It failed.")).userInfo.keys(),
              QStringList{ZQError::descriptionKey});
    EXPECT_EQ((ZQError{domain, 3, {}}).localizedDescription(), QStringLiteral("test 3"));
    EXPECT_TRUE(ZQError().isNull());
    EXPECT_FALSE((ZQError{domain, 0, {}}).isNull());
}

TEST(Error, OfTheSystemNamesWhatAndWhy)
{
    const ZQError error = ZQError::posix(ENOENT, QStringLiteral("/no/file"));
    EXPECT_EQ(error.domain, ZQError::posixDomain);
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_EQ(error.localizedDescription(), QStringLiteral("/no/file: No such file or directory"));
}

TEST(Error, IsStoredOnlyWhereSomeoneAsks)
{
    ZQError error;
    zqSetError(&error, ZQError::posix(EACCES, QStringLiteral("x")));
    EXPECT_EQ(error.code, EACCES);
    zqSetError(nullptr, error);
}

TEST(Text, IsComparedAsOneComposedLine)
{
    EXPECT_EQ(zqPlainLine(QStringLiteral("a\tb\r\nc\u0000 E\u0301")), QStringLiteral("abc\u0000 \u00c9"));
    EXPECT_NE(zqPlainLine(QStringLiteral("a")), zqPlainLine(QStringLiteral("A")));
}

TEST(Cancellation, IsTheInnermostScopesOfThisThread)
{
    const auto cancelled = std::make_shared<ZQCancellation>();
    cancelled->cancel();
    EXPECT_FALSE(ZQCancellation::isCurrentCancelled());
    {
        const ZQCancellation::Scope outer(cancelled);
        EXPECT_TRUE(ZQCancellation::isCurrentCancelled());
        {
            const ZQCancellation::Scope inner(std::make_shared<ZQCancellation>());
            EXPECT_FALSE(ZQCancellation::isCurrentCancelled());
            const ZQCancellation::Scope none(nullptr);
            EXPECT_FALSE(ZQCancellation::isCurrentCancelled());
        }
        EXPECT_TRUE(ZQCancellation::isCurrentCancelled());
    }
    EXPECT_FALSE(ZQCancellation::isCurrentCancelled());
}

// The environment is read once, so each row is a process of its own.
TEST(Trace, IsPrintedForTheSubsystemsThatTheEnvironmentNames)
{
    struct Row
    {
        const char *named;
        bool isPrinted;
    };
    for (const Row &row : {Row{"store", true}, Row{"files,store", true}, Row{"all", true}, Row{"files", false},
                           Row{"stores", false}, Row{"", false}}) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            dup2(ends[1], STDERR_FILENO);
            qputenv("ZELTO_TRACE", row.named);
            {
                const ZQTrace trace("store", "saving");
            }
            _exit(0);
        }
        close(ends[1]);
        QByteArray printed(1000, '\0');
        printed.truncate(read(ends[0], printed.data(), size_t(printed.size())));
        close(ends[0]);
        int status = 1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
        const QRegularExpression line(QStringLiteral("^store: saving took \\d+\\.\\d\\d ms\n$"));
        EXPECT_EQ(line.match(QString::fromUtf8(printed)).hasMatch(), row.isPrinted) << row.named << printed.data();
        EXPECT_EQ(printed.isEmpty(), !row.isPrinted) << row.named;
    }
}
