// What the words of a command line mean, without a library.

#include "Classes/Command/CommandLine.h"
#include "Classes/Command/CommandUserInteraction.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace {

class CommandLineTest : public testing::Test
{
protected:
    // The exit status; -1 when there is something to run.
    int parse(const QStringList &arguments)
    {
        context = {};
        context.workingDirectory = QDir::rootPath();
        line = std::make_unique<CommandLine>();
        int status = -1;
        const bool isParsed = line->parse(arguments, context, &status);
        EXPECT_EQ(isParsed, status == -1) << qPrintable(arguments.join(u' '));
        return status;
    }
    int parse(const char *arguments) { return parse(QString::fromUtf8(arguments).split(u' ', Qt::SkipEmptyParts)); }

    CommandContext context;
    std::unique_ptr<CommandLine> line;
};

} // namespace

TEST_F(CommandLineTest, TheReferenceIsWhatTheCommandsSay)
{
    QFile reference(QStringLiteral(ZELTO_DOCS "/COMMANDS.md"));
    ASSERT_TRUE(reference.open(QIODevice::ReadOnly));
    ASSERT_EQ(parse("markdown"), -1);
    EXPECT_FALSE(line->needsLibrary());
    EXPECT_EQ(line->run(context), 0);
    EXPECT_EQ(context.output, reference.readAll());
}

TEST_F(CommandLineTest, AMisspeltCommandIsRecognisedByItsDistance)
{
    const std::pair<const char *, const char *> cases[] = {
        {"imprt", "import"},
        {"mport", "import"},
        {"xmport", "import"},
        {"miport", "import"},
        {"improt", "import"},
        {"xximport", "import"},
        {"importxx", "import"},
        {"xxximport", "import"},
        {"xxxximport", ""},
        {"impxxxxx", ""},
        {"tg", "tag"},
        {"ag", "tag"},
        {"atg", "tag"},
        {"tga", "tag"},
        {"tgx", ""},
        {"tagz", "tag"},
        {"pxxge", ""},
        {"pxrge", "purge"},
        {"veriyf", "verify"},
        {"verixx", "verify"},
        {"verxxx", ""},
        {"Itmes", "items"},
        {"IT", "items"},
        {"i", ""},
        {"re", "restore"},
        {"markdwn", ""},
        {"snpashto", "snapshot"},
        {"attribtuse", "attributes"},
        {"attxxxutes", "attributes"},
        {"attxxxxtes", ""},
        {"side-bar", "sidebar"},
        {"elephants", ""},
    };
    for (const auto &[word, meant] : cases) {
        EXPECT_EQ(parse(word), 2) << word;
        const QByteArray begin = QByteArray("zelto: “") + word + "” is neither a command nor a file; ";
        EXPECT_EQ(context.errors, begin + (*meant ? QByteArray("did you mean `zelto ") + meant + "`?\n"
                                                  : QByteArray("`zelto --help` lists the commands\n")));
        EXPECT_TRUE(context.output.isEmpty()) << word;
    }
    for (const char *path : {"gone/imprt", "imprt.png"}) {
        EXPECT_EQ(parse(path), 2);
        EXPECT_EQ(context.errors, QByteArray("zelto: there is no file or folder “") + path + "”\n");
    }
}

TEST_F(CommandLineTest, WhatIsAskedForIsHandedOn)
{
    EXPECT_EQ(parse(""), -1);
    EXPECT_FALSE(line->isCommand() || line->isImport() || line->isSnapshot() || context.json);
    EXPECT_TRUE(line->library().isEmpty() && line->filesToOpen().isEmpty());

    EXPECT_EQ(parse("--library imprt import tmp --json"), -1);
    EXPECT_EQ(line->library(), QStringLiteral("imprt")) << "what follows it is no command";
    EXPECT_TRUE(line->isCommand() && line->isImport() && line->needsLibrary() && context.json);
    EXPECT_FALSE(line->isSnapshot());
    EXPECT_EQ(line->duplicatePolicy(), DuplicatePolicy::Keep);
    EXPECT_EQ(line->unreadablePolicy(), UnreadablePolicy::Skip);
    EXPECT_EQ(parse("import tmp --duplicates discard --unreadable stop"), -1);
    EXPECT_EQ(line->duplicatePolicy(), DuplicatePolicy::Discard);
    EXPECT_EQ(line->unreadablePolicy(), UnreadablePolicy::Stop);
    EXPECT_EQ(parse("import tmp --duplicates relink"), -1);
    EXPECT_EQ(line->duplicatePolicy(), DuplicatePolicy::Relink);

    EXPECT_EQ(parse("items --library Mine.ztlibrary"), -1);
    EXPECT_EQ(line->library(), QStringLiteral("Mine.ztlibrary")) << "behind the command as well";
    EXPECT_FALSE(line->isImport());
    for (const char *own : {"recover", "attributes tmp", "defaults read", "defaults write A b", "defaults delete A"}) {
        EXPECT_EQ(parse(own), -1) << own;
        EXPECT_FALSE(line->needsLibrary()) << own;
    }
    for (const char *words : {"tag A B --add x --remove y C", "import a --set b=c d"}) {
        EXPECT_EQ(parse(words), -1) << words; // an option takes one word
    }
    EXPECT_EQ(parse("tmp gone.png dev gone"), -1);
    EXPECT_EQ(line->filesToOpen(), (QStringList{QStringLiteral("tmp"), QStringLiteral("dev")}));
    EXPECT_EQ(context.errors.count('\n'), 2) << context.errors.constData();
    EXPECT_EQ(parse("--library x gone.png"), 2);

    EXPECT_EQ(parse("--help"), 0);
    EXPECT_TRUE(context.output.contains("--library DIR") && context.output.contains("FILE"));
    EXPECT_FALSE(context.output.contains("markdown"));
    EXPECT_TRUE(context.errors.isEmpty());
    for (const char *wrong : {"--library", "items sidebar", "items x", "import tmp --duplicates some", "delete",
                              "restore", "import tmp --unreadable maybe", "tag", "rate", "note", "attributes",
                              "defaults", "defaults write A", "defaults delete", "items --deep", "snapshot"}) {
        EXPECT_EQ(parse(wrong), 2) << wrong;
        EXPECT_FALSE(context.errors.isEmpty()) << wrong;
        EXPECT_TRUE(context.output.isEmpty()) << wrong;
    }
}

TEST_F(CommandLineTest, ASnapshotIsDrawnAsItIsAskedFor)
{
    for (const char *wrong : {"x.png --size big", "x.png --size 1x100", "x.png --size 100x1", "x.png --size 100x100000",
                              "x.png --size 100000x100", "x.png --size a100x100", "x.png --size 100x100b",
                              "x.png --scale 0.4", "x.png --scale 4.1", "x.png --theme pink"}) {
        EXPECT_EQ(parse(QByteArray("snapshot ") + wrong), 2) << wrong;
        EXPECT_FALSE(context.errors.isEmpty()) << wrong;
    }
    ASSERT_EQ(parse("snapshot x.png"), -1);
    EXPECT_TRUE(line->isSnapshot() && line->needsLibrary());
    EXPECT_FALSE(line->isImport());
    EXPECT_EQ(line->snapshot().size, QSize(1280, 800));
    EXPECT_EQ(line->snapshot().scale, 1);
    EXPECT_EQ(line->run(context), 2);
    EXPECT_TRUE(context.errors.contains("without a window"));

    ASSERT_EQ(parse("snapshot x.png --size 10x99999 --scale 4 --select PROJECTS --theme dark"), -1);
    SnapshotRequest drawn;
    line->setSnapshotDrawer([&drawn](const SnapshotRequest &request, CommandContext &) {
        drawn = request;
        return 7;
    });
    EXPECT_EQ(line->run(context), 7);
    EXPECT_EQ(drawn.file, QStringLiteral("/x.png"));
    EXPECT_EQ(drawn.select, QStringLiteral("PROJECTS"));
    EXPECT_EQ(drawn.size, QSize(10, 99999));
    EXPECT_EQ(drawn.scale, 4);
    EXPECT_EQ(drawn.theme, QStringLiteral("dark"));
}

// Nobody is there to be asked.
TEST(CommandUserInteraction, AnswersWithWhatChangesLeastOrAsItWasTold)
{
    CommandUserInteraction user;
    EXPECT_EQ(user.ask({{}, {}, {QStringLiteral("Do"), QStringLiteral("Don't"), QStringLiteral("Later")}, {}, false}),
              2);
    EXPECT_TRUE(user.chooseFilesToOpen({}).isEmpty());
    EXPECT_FALSE(user.chooseFileToSave({}));
    testing::internal::CaptureStderr();
    user.presentError(ZQError::with(QStringLiteral("domain"), 1, QStringLiteral("it broke")));
    user.showNotificationWithText(QStringLiteral("shown"), NotificationPlace::Window, std::chrono::seconds(1));
    user.showSystemNotification(QStringLiteral("shown"), QStringLiteral("shown"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "zelto: it broke\n");

    const QList<DuplicatePair> pairs(2);
    const std::tuple<DuplicatePolicy, UnreadablePolicy, DuplicateChoice, bool> policies[] = {
        {DuplicatePolicy::Keep, UnreadablePolicy::Skip, DuplicateChoice::KeepBoth, true},
        {DuplicatePolicy::Discard, UnreadablePolicy::Stop, DuplicateChoice::Discard, false},
        {DuplicatePolicy::Relink, UnreadablePolicy::Skip, DuplicateChoice::Relink, true},
    };
    for (const auto &[duplicates, unreadable, choice, goesOn] : policies) {
        user.setPolicies(duplicates, unreadable);
        EXPECT_EQ(user.resolveDuplicates(pairs, true), DuplicateAnswers(QList<DuplicateChoice>(2, choice)));
        FileConflict good;
        good.isValid = true;
        good.isIncluded = false;
        FileConflict bad;
        bad.isValid = false;
        bad.isIncluded = true;
        QList<FileConflict> conflicts{good, bad};
        EXPECT_EQ(user.resolveUnreadableFiles(conflicts), goesOn);
        EXPECT_TRUE(conflicts.first().isIncluded);
        EXPECT_FALSE(conflicts.last().isIncluded);
    }
}

TEST(CommandUserInteraction, CtrlCEndsWhatRunsAndWhatIsJustAboutTo)
{
    CommandUserInteraction user;
    int cancelled = 0;
    user.cancelCurrentWork(); // before there is anything
    const auto first = user.beginProgress({}, 1, [&cancelled] { ++cancelled; });
    EXPECT_EQ(cancelled, 0);
    zqRunMainLoopFor(std::chrono::milliseconds(0));
    EXPECT_EQ(cancelled, 1);
    user.cancelCurrentWork();
    EXPECT_EQ(cancelled, 2);

    CommandUserInteraction other;
    auto second = other.beginProgress({}, 1, [&cancelled] { cancelled += 10; });
    zqRunMainLoopFor(std::chrono::milliseconds(0));
    EXPECT_EQ(cancelled, 2);
    other.cancelCurrentWork();
    EXPECT_EQ(cancelled, 12);
    second.reset();
    other.cancelCurrentWork();
    const auto without = other.beginProgress({}, 1, {});
    zqRunMainLoopFor(std::chrono::milliseconds(0));
    EXPECT_EQ(cancelled, 12);
}

TEST(CommandUserInteraction, ProgressIsALineOfATerminalAndOfNothingElse)
{
    const auto work = [](double amount) {
        CommandUserInteraction user;
        const auto bar = user.beginProgress(QStringLiteral("Importing…"), 1, {});
        bar->setMaximum(9);
        if (amount > 0) {
            bar->advanceBy(amount);
            bar->setText(QStringLiteral("Ending"));
            bar->advanceBy(amount);
        }
    };
    testing::internal::CaptureStderr();
    work(2);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(terminal >= 0 && ::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
    const int screen = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY);
    ASSERT_GE(screen, 0);
    const int before = ::dup(STDERR_FILENO);
    ASSERT_TRUE(before >= 0 && ::dup2(screen, STDERR_FILENO) >= 0);
    work(0); // nothing was drawn, so there is nothing to wipe
    work(2);
    ::dup2(before, STDERR_FILENO);
    ::close(before);
    ::close(screen);
    QByteArray shown;
    char piece[256];
    for (ssize_t size = 0; (size = ::read(terminal, piece, sizeof piece)) > 0;) { // what arrives, arrives in pieces
        shown.append(piece, size);
    }
    ::close(terminal);
    EXPECT_EQ(shown, "\r\033[KImporting… 2 / 9\r\033[KEnding 4 / 9\r\033[K");
}
