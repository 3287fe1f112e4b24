// What speaks for and against removing a directory that no item names, and what is known of purged ones.

#include "Classes/Tags/FileTags.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Tests/Classes/Application/ApplicationFixture.h"
#include "Tests/Support/Skip.h"

#include <algorithm>

namespace {

class LeftoverEvidence : public ApplicationTest
{
protected:
    void SetUp() override
    {
        ApplicationTest::SetUp();
        const auto delegate = launched();
        library = delegate->libraryDirectory();
        addItem(*delegate, QStringLiteral("A"));
        delegate->saveAction();
    }
    static QString named(const QString &bundleID) { return bundleID + QStringLiteral(".ztlibraryitem"); }
    QString make(const QString &bundleID, bool wasSaved) const
    {
        const QString directory = library + u'/' + named(bundleID);
        QDir().mkpath(directory);
        QFile file(directory + QStringLiteral("/a.png"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.close();
        if (wasSaved) {
            SeenFileTags::write(SeenFileTags::of({}), file.fileName(), SeenFileTags::Empty::IsWritten);
        }
        return named(bundleID);
    }
    QStringList makeMany(const QString &bundleID, bool wasSaved) const
    {
        QStringList names;
        for (int i = 10; i < 40; ++i) {
            names.append(make(bundleID + QString::number(i), wasSaved));
        }
        return names;
    }
    QStringList directories() const { return QDir(library).entryList(QDir::Dirs | QDir::NoDotAndDotDot); }
    QString notePath() const { return defaultBundle() + QStringLiteral("/pending-removals"); }
    QStringList noted() const
    {
        QFile note(notePath());
        return note.open(QIODevice::ReadOnly) ? QString::fromUtf8(note.readAll()).split(u'\n') : QStringList();
    }
    void note(const QStringList &names) const
    {
        QFile file(notePath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(names.join(u'\n').toUtf8());
    }
    qsizetype questionsWithAChoice() const
    {
        return std::count_if(user.questions.begin(), user.questions.end(),
                             [](const UserQuestion &question) { return question.buttons.size() > 1; });
    }

    QString library;
};

} // namespace

TEST_F(LeftoverEvidence, WhatWasSavedOnceComesBackThoughAnImportWasCutOff)
{
    if (!ZQExtendedAttributes::set(world.path(), QStringLiteral("org.zelto.test"), "x")) {
        return skipWithout("extended attributes");
    }
    imports.cutOff = QDateTime::currentDateTimeUtc().addSecs(-60);
    QStringList lost = makeMany(QStringLiteral("Saved"), true);
    makeMany(QStringLiteral("CutOff"), false);
    const auto delegate = launched();
    checkLeftovers(*delegate);
    delegate->waitForRemovals();
    imports.takenBack.sort();
    EXPECT_EQ(imports.takenBack, lost);
    EXPECT_EQ(directories(), QStringList{named(QStringLiteral("A"))} + lost);
    EXPECT_EQ(questionsWithAChoice(), 0);
    EXPECT_EQ(imports.lookedThrough, 1);
}

TEST_F(LeftoverEvidence, WhatACutOffImportHadSavedComesBack)
{
    imports.cutOff = QDateTime::currentDateTimeUtc().addSecs(-60);
    imports.saved = {QStringLiteral("Listed")};
    const QString listed = make(QStringLiteral("Listed"), false);
    make(QStringLiteral("CutOff"), false);
    const auto delegate = launched();
    checkLeftovers(*delegate);
    delegate->waitForRemovals();
    EXPECT_EQ(imports.takenBack, QStringList{listed});
    EXPECT_EQ(directories(), (QStringList{named(QStringLiteral("A")), listed}));
}

TEST_F(LeftoverEvidence, WhatIsLeftWhereItIsWasNotSeenTo)
{
    makeMany(QStringLiteral("Strange"), false);
    const auto delegate = launched();
    checkLeftovers(*delegate); // nobody answers
    EXPECT_EQ(questionsWithAChoice(), 1);
    EXPECT_EQ(imports.lookedThrough, 0);
    ZQLibraryBaseItem::libraryItemsForBundleID(QStringLiteral("A"), *delegate->managedObjectContext())
        ->deletePermanently();
    delegate->saveAction();
    checkLeftovers(*delegate); // and a store without items removes nothing
    EXPECT_EQ(directories().size(), 31);
    EXPECT_EQ(imports.lookedThrough, 0);
}

TEST_F(LeftoverEvidence, PurgedDirectoriesStayNotedUntilTheyAreGone)
{
    const QStringList earlier = {make(QStringLiteral("Purged1"), true), make(QStringLiteral("Purged2"), true)};
    // The process that was to remove them was killed; one went, one is an item again.
    note(earlier + QStringList{named(QStringLiteral("LongGone")), named(QStringLiteral("A"))});
    {
        const auto delegate = launched();
        const auto item = addItem(*delegate, QStringLiteral("Later"));
        item->setActive(false);
        QDir(item->bundleURL()).removeRecursively();
        const QString later = make(QStringLiteral("Later"), true);
        delegate->saveAction();
        EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
        EXPECT_EQ(noted(), earlier + QStringList{later});
    }
    EXPECT_EQ(noted(), earlier) << "that one is gone";
    const auto delegate = launched();
    checkLeftovers(*delegate);
    delegate->waitForRemovals();
    EXPECT_TRUE(imports.takenBack.isEmpty());
    EXPECT_EQ(directories(), QStringList{named(QStringLiteral("A"))});
}

TEST_F(LeftoverEvidence, TheNoteGoesWithTheLastDirectory)
{
    {
        const auto delegate = launched();
        addItem(*delegate, QStringLiteral("Deleted"))->setActive(false);
        delegate->saveAction();
        EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
        EXPECT_TRUE(QFile::exists(notePath()));
    }
    EXPECT_FALSE(QFile::exists(notePath()));
    note({make(QStringLiteral("Purged"), true)});
    {
        const auto delegate = launched();
        checkLeftovers(*delegate);
        EXPECT_TRUE(QFile::exists(notePath()));
    }
    EXPECT_FALSE(QFile::exists(notePath()));
    EXPECT_EQ(directories(), QStringList{named(QStringLiteral("A"))});
}
