#include "Classes/Tags/TagFileJournal.h"
#include "Tests/Support/Skip.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

QSet<quint64> flushedFileSystems;

struct Journal : testing::Test
{
    qint64 size() const { return QFileInfo(path).size(); }
    QStringList afterKill() const { return TagFileJournal(path).interrupted(); }
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("pending-tags"));
    const QString a = QStringLiteral("A");
    const QString b = QStringLiteral("B");
};

} // namespace

// The linker takes a program's own function before the C library's.
extern "C" int syncfs(int file) noexcept
{
    struct stat status = {};
    if (fstat(file, &status) == 0) {
        flushedFileSystems.insert(status.st_dev);
    }
    return int(syscall(SYS_syncfs, file));
}

TEST_F(Journal, AKilledProcessLeavesWhatIsNotBothWrittenAndSaved)
{
    TagFileJournal journal(path);
    EXPECT_TRUE(journal.interrupted().isEmpty());
    journal.willWrite(a);
    EXPECT_EQ(afterKill(), QStringList{a});
    journal.willWrite(b);
    journal.willWrite(a);
    EXPECT_EQ(afterKill(), (QStringList{a, b}));
    journal.didWrite();
    journal.didWrite();
    journal.didSave();
    EXPECT_EQ(afterKill(), (QStringList{a, b})); // one write is left
    journal.didWrite();
    EXPECT_EQ(size(), 0);
    journal.willWrite(b);
    journal.didWrite();
    EXPECT_EQ(afterKill(), QStringList{b}); // written, and not saved
    journal.didSave();
    journal.emptyIfSettled();
    EXPECT_EQ(size(), 0);
}

TEST_F(Journal, IsEmptiedOnceEveryDiskThatWasWrittenToHasIt)
{
    const QTemporaryDir elsewhere(QStringLiteral("/dev/shm/journal-XXXXXX"));
    const auto deviceOf = [](const QString &file) {
        struct stat status = {};
        return ::stat(QFile::encodeName(file).constData(), &status) == 0 ? quint64(status.st_dev) : 0;
    };
    if (!elsewhere.isValid() || deviceOf(elsewhere.path()) == deviceOf(folder.path())) {
        return skipWithout("a second file system at /dev/shm");
    }
    TagFileJournal journal(path);
    flushedFileSystems.clear();
    journal.willWrite(a, true);
    journal.willWrite(b, true);
    journal.didWrite(folder.filePath(QStringLiteral("a.png")));
    EXPECT_TRUE(flushedFileSystems.isEmpty()); // one write is left
    journal.didWrite(elsewhere.filePath(QStringLiteral("b.png")));
    EXPECT_EQ(flushedFileSystems, (QSet<quint64>{deviceOf(folder.path()), deviceOf(elsewhere.path())}));
    EXPECT_EQ(size(), 0);
    flushedFileSystems.clear();
    journal.willWrite(a, true);
    journal.didWrite(folder.filePath(QStringLiteral("gone/a.png"))); // with its folder
    EXPECT_TRUE(flushedFileSystems.isEmpty());
    EXPECT_EQ(size(), 0);
}

TEST_F(Journal, TagsThatTheStoreHasWaitForNoSave)
{
    TagFileJournal journal(path);
    journal.willWrite(a, true);
    EXPECT_EQ(afterKill(), QStringList{a});
    journal.didWrite();
    EXPECT_EQ(size(), 0);
    journal.willWrite(b);
    journal.willWrite(a, true);
    journal.didWrite();
    journal.didWrite();
    EXPECT_EQ(afterKill(), (QStringList{b, a})); // one of them does
}

TEST_F(Journal, WhatWasInterruptedStaysUntilItIsDoneAgain)
{
    TagFileJournal(path).willWrite(a);
    {
        TagFileJournal second(path);
        EXPECT_EQ(second.interrupted(), QStringList{a});
        second.willWrite(a);
    }
    TagFileJournal third(path);
    EXPECT_EQ(third.interrupted(), QStringList{a});
    third.willWrite(a);
    third.didWrite();
    third.didSave();
    third.emptyIfSettled();
    EXPECT_TRUE(afterKill().isEmpty());
}

TEST_F(Journal, ALineCutShortHidesNoOther)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("A\n\nB\nHA");
    file.close();
    TagFileJournal journal(path);
    EXPECT_EQ(journal.interrupted().mid(0, 2), (QStringList{a, b}));
}

TEST_F(Journal, WithoutAPlaceToWriteItStillCounts)
{
    TagFileJournal journal(folder.filePath(QStringLiteral("missing/pending-tags")));
    journal.willWrite(a);
    journal.didWrite();
    journal.didSave();
    EXPECT_TRUE(journal.interrupted().isEmpty());
}

TEST(TagFileJournal, WhatIsNoPlainFileInItsPlaceIsNeitherReadNorWritten)
{
    const QTemporaryDir folder;
    const QString journal = folder.filePath(QStringLiteral("pending-tags"));
    const QString victim = folder.filePath(QStringLiteral("victim"));
    QFile file(victim);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("ITEM\n") == 5);
    file.close();
    const auto use = [&journal] {
        TagFileJournal opened(journal);
        opened.willWrite(QStringLiteral("OTHER"), true);
        opened.didWrite();
        return opened.interrupted();
    };
    ASSERT_TRUE(QFile::link(victim, journal));
    EXPECT_TRUE(use().isEmpty());
    EXPECT_EQ(QFileInfo(victim).size(), 5);
    ASSERT_TRUE(QFile::remove(journal));
    ASSERT_EQ(::mkfifo(QFile::encodeName(journal).constData(), 0600), 0); // opening it would wait for ever
    EXPECT_TRUE(use().isEmpty());
}
