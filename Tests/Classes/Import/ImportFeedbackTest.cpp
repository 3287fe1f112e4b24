// What is seen of an import while it runs, and said of it at the end.

#include "Classes/Import/ImportKind.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/ImportReport.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Tests/Classes/Import/ImportFixture.h"

#include <QFile>

namespace {

// Everything that is there is saved before the next is looked at.
class ImportFeedbackTest : public ImportFixture
{
protected:
    void SetUp() override
    {
        ImportFixture::SetUp();
        ZQUserDefaults::standardUserDefaults().setObjectForKey(0, showsAfter);
    }
    ~ImportFeedbackTest() override { ZQUserDefaults::standardUserDefaults().removeObjectForKey(showsAfter); }

    QStringList writeSome(int count, const QString &folder = QStringLiteral("some")) const
    {
        QStringList sources;
        for (int i = 0; i < count; ++i) {
            sources.append(writeImage(folder + QStringLiteral("/%1.png").arg(i), {20 + i, 20}));
        }
        return sources;
    }
    static QStringList titlesOf(const ZQSidebarBaseItem &project)
    {
        QStringList result;
        for (const auto &member : project.pItems()) {
            result.append(member->item()->title());
        }
        return result;
    }

    const QString showsAfter = QStringLiteral("ImportShowsAfter");
};

} // namespace

TEST_F(ImportFeedbackTest, TheFirstItemsAreThereBeforeTheLastWasReadAndInTheirPlaces)
{
    const auto project = addProject(QStringLiteral("P"));
    import(writeSome(3, QStringLiteral("before")), project.get());
    for (const quint32 index : {ZQSidebarBaseItem::appendIndex, quint32(1)}) {
        SCOPED_TRACE(index);
        QStringList expected = titlesOf(*project);
        const auto folder = QStringLiteral("at%1").arg(index);
        const QStringList sources = writeSome(6, folder);
        QList<qint64> seen;
        const auto token = ZQNotificationCenter::defaultCenter().addObserver(
            AImportManager::didFinishImportOperation, nullptr, [&](const ZQNotification &) {
                seen.append(project->numberOfItems() - expected.size());
                for (const auto &member : project->pItems()) {
                    EXPECT_TRUE(QFile::exists(member->item()->itemURL())) << "what is shown is on the disk";
                }
            });
        import(sources, project.get(), index);
        EXPECT_TRUE(std::any_of(seen.begin(), seen.end(), [](qint64 count) { return count > 0 && count < 6; }));
        const qsizetype place = index == ZQSidebarBaseItem::appendIndex ? expected.size() : qsizetype(index);
        for (int i = 0; i < 6; ++i) {
            expected.insert(place + i, QString::number(i));
        }
        EXPECT_EQ(titlesOf(*project), expected);
    }
}

TEST_F(ImportFeedbackTest, ACancelTakesBackWhatWasShownAlready)
{
    std::function<void()> cancel;
    user.onBeginProgress = [&](const std::function<void()> &block) { cancel = block; };
    qint64 shown = 0;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        AImportManager::didFinishImportOperation, nullptr, [&](const ZQNotification &) {
            shown = std::max<qint64>(shown, items().size());
            cancel();
        });
    const auto operation = import(writeSome(60));
    EXPECT_GT(shown, 0);
    EXPECT_TRUE(items().isEmpty());
    EXPECT_TRUE(itemDirectories().isEmpty());
    EXPECT_TRUE(operation->report().imported().isEmpty());
}

TEST_F(ImportFeedbackTest, DuplicatesOfWhatWasSavedOnTheWayAreAskedAboutOnceAtTheEnd)
{
    const QStringList sources = writeSome(5);
    import(sources);
    int questions = 0;
    double doneWhenAsked = 0;
    user.answerDuplicates = [&](const QList<DuplicatePair> &pairs) {
        ++questions;
        EXPECT_EQ(pairs.size(), 5);
        doneWhenAsked = user.progresses.last()->done;
        return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::Discard);
    };
    import(sources + writeSome(2, QStringLiteral("new")));
    EXPECT_EQ(questions, 1);
    EXPECT_EQ(doneWhenAsked, 7) << "the line does not stop short of the end";
    EXPECT_EQ(items().size(), 7);
    EXPECT_EQ(itemDirectories().size(), 7);
    EXPECT_EQ(user.progresses.last()->countText, QStringLiteral("Importing %@ of %@"));
}

TEST_F(ImportFeedbackTest, TheEndSaysHowManyCameAndWhyTheOthersDidNot)
{
    const QStringList good = writeSome(2);
    const QString text = writeFile(QStringLiteral("text.txt"), "x");
    const QString broken = writeFile(QStringLiteral("broken.pdf"), "not a document");
    const QString empty = writeFile(QStringLiteral("empty.png"), "");
    const auto inFolder = writeFile(QStringLiteral("Top/notes.txt"), "x");
    writeImage(QStringLiteral("Top/a.png"), {9, 9});
    struct Case
    {
        const char *what;
        QStringList paths;
        const ZQSidebarBaseItem *into;
        qsizetype imported;
        QStringList refused;
        const char *summary;
        const char *text; // begins so
    };
    const auto label = projectsLabel();
    for (const Case &each :
         {Case{"all well", good, nullptr, 2, {}, "", ""},
          {"one of several",
           {writeSome(2, QStringLiteral("a")) + QStringList{broken}},
           nullptr,
           2,
           {broken},
           "",
           "“broken.pdf”"},
          {"several",
           {writeSome(1, QStringLiteral("b")) + QStringList{broken, empty, text}},
           nullptr,
           1,
           {broken, empty, text},
           "1 imported, 3 not",
           "2 files could not be imported"},
          {"a kind that is not taken",
           {writeSome(1, QStringLiteral("c")) + QStringList{text}},
           nullptr,
           1,
           {text},
           "1 imported, 1 not",
           ""},
          {"nothing", {text}, nullptr, 0, {text}, "", "Nothing to import!"},
          {"nothing, with a reason", {broken}, nullptr, 0, {broken}, "", "“broken.pdf”"},
          {"a folder with other files", {path(QStringLiteral("Top"))}, label.get(), 1, {}, "", ""}}) {
        SCOPED_TRACE(each.what);
        user.notifications.clear();
        user.outcomes.clear();
        import(each.paths, each.into);
        ASSERT_EQ(user.outcomes.size(), 1);
        const ImportOutcome &outcome = user.outcomes.first();
        EXPECT_EQ(outcome.imported.size(), each.imported);
        QStringList refused;
        for (const RefusedFile &file : outcome.refused) {
            refused.append(file.path);
            EXPECT_FALSE(file.reason.isEmpty());
        }
        refused.sort();
        EXPECT_EQ(refused, each.refused);
        EXPECT_EQ(outcome.summary, QString::fromUtf8(each.summary));
        EXPECT_EQ(outcome.text().left(QString::fromUtf8(each.text).size()), QString::fromUtf8(each.text));
        EXPECT_EQ(outcome.text().isEmpty(), each.text[0] == '\0');
        for (const ZQObjectID &id : outcome.imported) {
            EXPECT_TRUE(context().existingObjectWithID(id));
        }
    }
    EXPECT_EQ(user.notificationTexts(), QStringList()) << "all went well";
}

TEST(ImportReport, WhatIsSaidLastOfAnIncompletePictureCounts)
{
    using Telling = DroppedFile::Telling;
    ImportReport report;
    const QString part = QStringLiteral("/part.png");
    report.addDropped({part, QStringLiteral("incomplete"), Telling::InWindowIncomplete});
    report.addDropped({QStringLiteral("/other.png"), QStringLiteral("incomplete"), Telling::InWindowIncomplete});
    report.addDropped({part, QStringLiteral("the disk is full"), Telling::InWindow});
    const QList<DroppedFile> dropped = report.dropped();
    ASSERT_EQ(dropped.size(), 2);
    EXPECT_EQ(dropped.first().path, QStringLiteral("/other.png"));
    EXPECT_EQ(dropped.last().path, part);
    EXPECT_EQ(dropped.last().reason, QStringLiteral("the disk is full"));
    EXPECT_FALSE(dropped.last().isImportedInPart());
}

TEST_F(ImportFeedbackTest, ADialogueOffersWhatIsTakenAndNothingElse)
{
    const QStringList offered = importableExtensions();
    for (const QString &extension : offered) {
        EXPECT_TRUE(ImportQueries::fileAtPathIsSupported(path(QStringLiteral("file.") + extension)))
            << extension.toStdString();
    }
    for (const char *extension : {"png", "jpg", "psd", "ai", "svg", "pdf", "zip", "rar", "tga", "acorn", "pxm", "nef",
                                  "webp", "heic", "avif", "jxl", "sketch"}) {
        EXPECT_TRUE(offered.contains(QLatin1StringView(extension))) << extension;
    }
    for (const char *extension : {"eps", "snap", "txt"}) {
        EXPECT_FALSE(offered.contains(QLatin1StringView(extension))) << extension;
    }
}
