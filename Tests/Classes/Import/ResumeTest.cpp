// Imports that an earlier process did not end.

#include "Classes/Import/PendingImport.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Import/ImportFixture.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr int continueButton = 0;
constexpr int forgetButton = 1;

class ResumeTest : public ImportFixture
{
protected:
    QString folder() const { return path(QStringLiteral("Zelto.ztlibrary/pending-imports")); }
    QStringList pendingFiles() const { return QDir(folder()).entryList(QDir::Files); }

    // What a killed process leaves: a request, and the sources among `saved` that are items already, by title.
    void cutOff(const PendingImport &request, const QStringList &saved, const QString &moved = {})
    {
        const auto file = PendingImportFile::create(folder(), request);
        ASSERT_TRUE(file);
        QList<PendingImportFile::Source> sources;
        for (const QString &source : saved) {
            const auto made = item(QFileInfo(source).completeBaseName());
            sources.append({made ? made->bundleID() : QStringLiteral("NEVER-SAVED"), source,
                            source == moved ? moved : QString(), QFileInfo(source).lastModified().toMSecsSinceEpoch()});
        }
        file->addSources(sources);
        QFile torn(QDir(folder()).filePath(QDir(folder()).entryList({QStringLiteral("*.sources")}).value(0)));
        EXPECT_TRUE(torn.open(QIODevice::Append) && torn.write("[\"HALF A LI") > 0);
    }

    void offer(int button)
    {
        user.answerQuestion = [button](const UserQuestion &question) {
            return button < 0 ? int(question.buttons.size()) - 1 : button;
        };
        AImportManager::sharedAImportManager().offerToResumeImports();
        zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
        QCoreApplication::processEvents();
    }
};

} // namespace

TEST_F(ResumeTest, WhatIsMissingIsImportedAndWhatIsInIsLeftAlone)
{
    const auto project = addProject(QStringLiteral("P"));
    const QString last = writeImage(QStringLiteral("in/last.png"), {20, 20});
    const QString a = writeImage(QStringLiteral("in/a.png"), {20, 20});
    const QString temporary = writeImage(QStringLiteral("ZeltoTemporaryFolder/t.1/b.png"), {21, 20});
    const QString missing = writeImage(QStringLiteral("in/c.png"), {22, 20});
    const QString unsaved = writeImage(QStringLiteral("in/d.png"), {23, 20});
    const QString vanished = writeImage(QStringLiteral("ZeltoTemporaryFolder/t.1/e.png"), {24, 20});
    import({last}, project.get());
    import({a, temporary, vanished}, project.get(), 0);
    ASSERT_TRUE(QFile::copy(item(QStringLiteral("b"))->itemURL(), temporary)); // the kill came before it was removed
    cutOff({.paths = {a, temporary, vanished, missing, unsaved},
            .target = project->UUID(),
            .index = 0,
            .metadata = {{QStringLiteral("license"), QStringLiteral("CC0")},
                         {QStringLiteral("tags"), QStringList{QStringLiteral("harbour")}}},
            .archivePath = {},
            .archiveRoot = {},
            .groups = {}},
           {a, temporary, vanished, unsaved}, temporary);

    offer(continueButton);
    ASSERT_EQ(user.questions.size(), 1);
    EXPECT_TRUE(user.duplicates.isEmpty());
    EXPECT_TRUE(user.notificationTexts().isEmpty());
    QStringList members;
    for (const auto &member : project->pItems()) {
        members.append(member->item()->title());
    }
    EXPECT_EQ(members, (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("e"), QStringLiteral("c"),
                                    QStringLiteral("d"), QStringLiteral("last")}));
    EXPECT_EQ(items().size(), 6);
    EXPECT_EQ(item(QStringLiteral("c"))->license(), QStringLiteral("CC0"));
    EXPECT_TRUE(tagTitles(*item(QStringLiteral("c"))).contains(QStringLiteral("harbour")));
    EXPECT_FALSE(QFile::exists(temporary));
    EXPECT_TRUE(pendingFiles().isEmpty());
    offer(continueButton);
    EXPECT_EQ(user.questions.size(), 1); // there is nothing more to offer
}

TEST_F(ResumeTest, FoldersGoOnInTheProjectsThatWereMadeOfThem)
{
    const QString a = writeImage(QStringLiteral("in/Top/a.png"), {20, 20});
    const QString b = writeImage(QStringLiteral("in/Top/b.png"), {21, 20});
    const QString c = writeImage(QStringLiteral("in/Top/c.png"), {22, 20});
    const auto top = addProject(QStringLiteral("Top"));
    const auto gone = addProject(QStringLiteral("Gone"));
    import({a}, top.get());
    cutOff({.paths = {path(QStringLiteral("in/Top"))},
            .target = projectsLabel()->UUID(),
            .index = ImportOperation::appendIndex,
            .metadata = {},
            .archivePath = {},
            .archiveRoot = {},
            .groups = {{top->UUID(), {a, b}}, {gone->UUID(), {c}}}},
           {a});
    gone->deletePermanently();
    const qsizetype children = projectsLabel()->numberofChilds();
    delegate->saveAction();
    offer(continueButton);
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    EXPECT_EQ(top->numberOfItems(), 2);
    EXPECT_EQ(projectsLabel()->numberofChilds(), children);
}

TEST_F(ResumeTest, WithoutAnAnswerItIsKeptAndForgettingRemovesOnlyTheRequest)
{
    const QString a = writeImage(QStringLiteral("in/a.png"), {20, 20});
    const QString b = writeImage(QStringLiteral("in/b.png"), {21, 20});
    import({a});
    cutOff({.paths = {a, b},
            .target = {},
            .index = ImportOperation::appendIndex,
            .metadata = {},
            .archivePath = {},
            .archiveRoot = {},
            .groups = {}},
           {a});
    const QStringList files = pendingFiles();
    writeFile(QStringLiteral("Zelto.ztlibrary/pending-imports/1000-ended.sources"), "[]"); // the kill came at its end
    offer(-1);
    EXPECT_EQ(pendingFiles(), files);
    EXPECT_EQ(items().size(), 1);
    offer(forgetButton);
    EXPECT_TRUE(pendingFiles().isEmpty());
    EXPECT_EQ(items().size(), 1);
    EXPECT_TRUE(QFile::exists(b));
}

TEST_F(ResumeTest, ABatchIsKeptWhileItRunsAndWhenOnlyTheProcessEnds)
{
    const QString a = writeImage(QStringLiteral("in/Top/a.png"), {20, 20});
    QStringList whileRunning;
    bool isCancelling = false;
    user.onBeginProgress = [&](const std::function<void()> &cancel) {
        whileRunning = pendingFiles();
        if (isCancelling) {
            cancel();
        }
    };
    import({path(QStringLiteral("in/Top"))}, projectsLabel().get());
    EXPECT_EQ(whileRunning.size(), 1);
    EXPECT_TRUE(pendingFiles().isEmpty());

    isCancelling = true;
    const QString b = writeImage(QStringLiteral("in/Next/b.png"), {21, 20});
    import({path(QStringLiteral("in/Next"))}, projectsLabel().get());
    EXPECT_TRUE(pendingFiles().isEmpty()); // the person's decision
    AImportManager::sharedAImportManager().setKeepsCancelledImports(true);
    import({path(QStringLiteral("in/Next"))}, projectsLabel().get());
    AImportManager::sharedAImportManager().setKeepsCancelledImports(false);
    EXPECT_FALSE(pendingFiles().isEmpty());
    EXPECT_EQ(items().size(), 1);

    isCancelling = false;
    offer(continueButton);
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    QStringList projects;
    for (const auto &child : projectsLabel()->orderedChildren()) {
        projects.append(child->title());
    }
    EXPECT_EQ(projects.count(QStringLiteral("Next")), 1);
    EXPECT_TRUE(pendingFiles().isEmpty());
}

TEST_F(ResumeTest, ARequestThatCannotBeReadIsSaidAndLeft)
{
    writeFile(QStringLiteral("Zelto.ztlibrary/pending-imports/1000-X.plist"), "bplist00 and no more");
    offer(continueButton);
    EXPECT_EQ(user.errors.size(), 1);
    EXPECT_EQ(pendingFiles().size(), 1);
}
