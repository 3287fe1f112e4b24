#include "Classes/Tags/TagFileJournal.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

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
