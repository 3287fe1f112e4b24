// An import and what came out of its archives, which is told, and asked about, as one.

#include "Classes/Import/TemporaryFolder.h"
#include "Tests/Classes/Import/ResumeFixture.h"
#include "Tools/samples/SampleArchives.h"

namespace {

class ImportPartsTest : public ResumeTest
{
protected:
    QByteArray picture(int width) const
    {
        QFile file(writeImage(QStringLiteral("made/picture.png"), {width, 20}));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QString zip(const QString &name, const QList<SampleArchives::Entry> &entries) const
    {
        return writeFile(name, SampleArchives::zipFile(entries));
    }
};

ImportOutcome outcome(const QStringList &texts, bool saysNothingCame = false, const QList<ZQObjectID> &imported = {})
{
    ImportOutcome made;
    made.texts = texts;
    made.saysNothingCame = saysNothingCame;
    made.imported = imported;
    return made;
}

} // namespace

TEST_F(ImportPartsTest, WhatAnArchiveHeldIsTheSameImportAsTheArchiveThatGoesOn)
{
    for (const bool isUnpacked : {true, false}) {
        SCOPED_TRACE(isUnpacked);
        const QString holder = isUnpacked ? TemporaryFolder::temporaryDirectory() : path(QStringLiteral("gone/t.1"));
        PendingImport pending = request({holder + QStringLiteral("/Set")}, projectsLabel()->UUID());
        pending.archivePath = path(QStringLiteral("disk/Set.zip"));
        pending.archiveRoot = pending.paths.first();
        if (isUnpacked) {
            ASSERT_TRUE(QDir().mkpath(pending.archiveRoot));
            for (const auto &[name, contents] :
                 {std::pair("a.png", picture(30)),
                  std::pair("Inner.zip", SampleArchives::zipFile({{"b.png", picture(31)}}))}) {
                QFile file(pending.archiveRoot + u'/' + QLatin1StringView(name));
                ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size());
            }
        } else {
            zip(QStringLiteral("disk/Set.zip"), {{"c.png", picture(32)}});
        }
        cutOff(pending, {});
        user.outcomes.clear();
        const qsizetype before = items().size();
        offer(continueButton);
        EXPECT_EQ(items().size(), before + (isUnpacked ? 2 : 1));
        ASSERT_EQ(user.outcomes.size(), 2);
        EXPECT_TRUE(user.outcomes[0].hasMore);
        EXPECT_FALSE(user.outcomes[1].hasMore);
        EXPECT_EQ(user.outcomes[0].import, user.outcomes[1].import);
    }
}

TEST_F(ImportPartsTest, AnAnswerForTheRestHoldsForAnArchiveThatGoesOnLater)
{
    const QByteArray one = picture(30);
    const QByteArray two = picture(31);
    import({writeFile(QStringLiteral("one.png"), one), writeFile(QStringLiteral("two.png"), two)});
    PendingImports &pending = AImportManager::sharedAImportManager().pendingImports();
    int asked = 0;
    user.answerDuplicates = [&](const QList<DuplicatePair> &pairs) {
        ++asked;
        EXPECT_TRUE(user.archivesFollow);
        user.onBeginProgress = [&](const std::function<void()> &cancel) {
            pending.setKeepsCancelled(true); // the second archive, as when Zelto is quit
            cancel();
        };
        const QList<DuplicateChoice> discarded(pairs.size(), DuplicateChoice::Discard);
        return DuplicateAnswers(discarded, DuplicateChoice::Discard);
    };
    import({zip(QStringLiteral("One.zip"),
                {{ "x.png",
                   one }}),
            zip(QStringLiteral("Two.zip"),
                {{ "y.png",
                   two }})},
           projectsLabel().get());
    user.onBeginProgress = {};
    pending.setKeepsCancelled(false);
    ASSERT_EQ(pending.cutOff().size(), 1);
    ASSERT_EQ(asked, 1);
    offer(continueButton);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(items().size(), 2);
    EXPECT_TRUE(pendingFiles().isEmpty());
}

TEST_F(ImportPartsTest, OutcomesSayEachTextOnceAndThatNothingCameOnlyWhereNothingDid)
{
    const QString reason = QStringLiteral("T");
    const QString cancelled = QStringLiteral("Import cancelled");
    const QList<ZQObjectID> some{projectsLabel()->objectID()};
    struct Case
    {
        const char *what;
        QList<ImportOutcome> parts;
        QStringList text;
    };
    for (const Case &each :
         {Case{"cancelled twice", {outcome({reason}), outcome({cancelled}), outcome({cancelled})}, {reason, cancelled}},
          Case{"several in one",
               {outcome({reason, cancelled}), outcome({cancelled, QStringLiteral("U")}), outcome({reason})},
               {reason, cancelled, QStringLiteral("U")}},
          Case{"nothing twice", {outcome({}, true), outcome({}, true)}, {ImportOutcome::textForNothing()}},
          Case{"something in the end", {outcome({reason}), outcome({}, true), outcome({}, false, some)}, {reason}},
          Case{"something before", {outcome({}, false, some), outcome({}, true), outcome({}, true)}, {}},
          Case{"a reason and nothing",
               {outcome({reason}), outcome({}, true)},
               {reason, ImportOutcome::textForNothing()}}}) {
        SCOPED_TRACE(each.what);
        ImportOutcome total = each.parts.first();
        for (const ImportOutcome &part : each.parts.mid(1)) {
            total.add(part);
        }
        EXPECT_EQ(total.text(), each.text.join(u'\n'));
    }
}
