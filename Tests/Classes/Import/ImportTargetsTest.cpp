// Where an import puts what it makes, and what stays of one that is given up.

#include "Classes/Import/GroupImport.h"
#include "Classes/Import/TemporaryFolder.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Tests/Classes/Import/ImportFixture.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>
#include <QUrl>

#include <algorithm>
#include <atomic>
#include <memory>
#include <utility>

namespace {

class ImportTargets : public ImportFixture
{
protected:
    ZQRef<ZQSidebarBaseItem> special(ZQSidebarKind kind) const
    {
        return ZQSidebarBaseItem::specialItemOfKind(kind, context());
    }
    static QStringList childTitles(const ZQSidebarBaseItem &father)
    {
        QStringList all;
        for (const auto &child : father.orderedChildren()) {
            all.append(child->title());
        }
        return all;
    }
};

} // namespace

TEST_F(ImportTargets, EachKindTakesFilesOrFoldersOrNothing)
{
    writeImage(QStringLiteral("Folder/inside.png"), {20, 20});
    const QString folder = path(QStringLiteral("Folder"));
    struct Case
    {
        const char *what;
        ZQSidebarKind kind;
        bool file, folder; // taken as such
    };
    for (const Case &each : {Case{"Library", ZQSidebarKind::Library, true, false},
                             {"Screenshots", ZQSidebarKind::Screenshots, true, false},
                             {"Recent", ZQSidebarKind::Recent, false, false},
                             {"PROJECTS", ZQSidebarKind::ProjectsLabel, true, true},
                             {"LIVE FOLDERS", ZQSidebarKind::WatchedFoldersLabel, false, false},
                             {"LIBRARY", ZQSidebarKind::LibraryLabel, false, false},
                             {"TAGS", ZQSidebarKind::TagsLabel, false, false},
                             {"COLORS", ZQSidebarKind::ColorsLabel, false, false}}) {
        SCOPED_TRACE(each.what);
        const auto target = special(each.kind);
        ASSERT_TRUE(target);
        const qint32 children = target->numberofChilds();
        const auto ofFile = import({writeImage(QStringLiteral("a.png"), {20, 20})}, target.get());
        EXPECT_EQ(ofFile->report().imported().size(), each.file ? 1 : 0);
        EXPECT_EQ(ofFile->report().dropped().size(), each.file ? 0 : 1);
        writeImage(QStringLiteral("Folder/inside.png"), {20, 20});
        const auto ofFolder = import({folder}, target.get());
        EXPECT_EQ(ofFolder->report().imported().size(), each.folder ? 1 : 0);
        EXPECT_EQ(droppedPaths(ofFolder->report()), each.folder ? QStringList() : QStringList{folder});
        EXPECT_EQ(target->numberofChilds(), children + (each.file && each.folder ? 2 : 0));
    }
    EXPECT_EQ(special(ZQSidebarKind::Screenshots)->numberOfItems(), 1);
}

TEST_F(ImportTargets, MembershipsAreNumberedOnAndTheGroupIsAnnounced)
{
    const auto project = addProject(QStringLiteral("P"));
    int announced = 0;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(GroupImport::sidebarItemDidAddItem, nullptr,
                                                                         [&](const ZQNotification &) { ++announced; });
    import({writeImage(QStringLiteral("a.png"), {20, 20}), writeImage(QStringLiteral("b.png"), {20, 20})},
           project.get());
    import({writeImage(QStringLiteral("c.png"), {20, 20})}, project.get());
    QStringList order;
    for (const auto &member : project->pItems()) {
        order.append(member->item()->title() + QString::number(member->order()));
    }
    EXPECT_EQ(order.join(u' '), QStringLiteral("a0 b1 c2"));
    EXPECT_EQ(announced, 2);
}

TEST_F(ImportTargets, FoldersKeepTheirOrderAtThePlaceOfTheDrop)
{
    for (const char *name : {"B/2.png", "B/10.png", "B/Sub 10/x.png", "B/Sub 9/x.png", "A/1.png"}) {
        writeImage(QStringLiteral("drop/") + QLatin1String(name), {20, 20});
    }
    QDir().mkpath(path(QStringLiteral("drop/Empty/in/empty")));
    addProject(QStringLiteral("first"));
    addProject(QStringLiteral("last"));
    const QStringList before = childTitles(*projectsLabel());
    const QString loose = writeImage(QStringLiteral("drop/loose.png"), {20, 20});
    const auto operation = import(
        {path(QStringLiteral("drop/Empty")), path(QStringLiteral("drop/B")), loose, path(QStringLiteral("drop/A"))},
        projectsLabel().get(), 1);
    const QStringList made{QStringLiteral("New Project"), QStringLiteral("B"), QStringLiteral("A")};
    EXPECT_EQ(childTitles(*projectsLabel()), before.mid(0, 1) + made + before.mid(1));
    const auto b = projectsLabel()->orderedChildren().at(2);
    EXPECT_EQ(childTitles(*b), (QStringList{QStringLiteral("B"), QStringLiteral("Sub 9"), QStringLiteral("Sub 10")}));
    for (qint32 i = 0; i < 3; ++i) {
        EXPECT_EQ(b->orderedChildren().at(i)->order(), i) << "a place of its own for each";
    }
    EXPECT_EQ(titles(b->orderedChildren().first()->items()), (QStringList{QStringLiteral("2"), QStringLiteral("10")}));
    EXPECT_EQ(droppedPaths(operation->report()), QStringList{path(QStringLiteral("drop/Empty"))});
    EXPECT_EQ(operation->foldersAndArchivesPathOrdered(),
              (QStringList{path(QStringLiteral("drop/B")), path(QStringLiteral("drop/A"))}));
    const ZQFetchRequest empty{.entityName = ZQSidebarBaseItem::entityName(),
                               .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("title == 'empty'"))};
    EXPECT_EQ(zqCount(context(), empty), 0);
}

TEST_F(ImportTargets, WhatAFolderIsMadeIntoComesIntoUseAtTheEnd)
{
    writeImage(QStringLiteral("drop/Top/a.png"), {20, 20});
    bool wasInUse = false;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        GroupImport::sidebarItemDidAddItem, nullptr, [&](const ZQNotification &) {
            zqOnMainThreadAndWait([&] {
                for (const auto &child : projectsLabel()->orderedChildren()) {
                    wasInUse = wasInUse || (child->title() == QStringLiteral("Top") && child->enabled());
                }
            });
        });
    import({path(QStringLiteral("drop/Top"))}, projectsLabel().get());
    EXPECT_FALSE(wasInUse);
    EXPECT_TRUE(projectsLabel()->orderedChildren().last()->enabled());
}

TEST_F(ImportTargets, AGivenUpBatchLeavesNoTagItMadeAndTakesNoneThatWasThere)
{
    addTag(QStringLiteral("known"));
    QStringList sources;
    for (int i = 0; i < 1010; ++i) { // it saves on its way
        sources.append(path(QStringLiteral("many/%1.png").arg(i)));
    }
    const QString one = writeImage(QStringLiteral("one.png"), {4, 4});
    QDir().mkpath(path(QStringLiteral("many")));
    for (const QString &source : sources) {
        ASSERT_TRUE(QFile::copy(one, source));
    }
    std::function<void()> cancel;
    user.onBeginProgress = [&](const std::function<void()> &block) { cancel = block; };
    qsizetype most = 0;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(AImportManager::didFinishImportOperation,
                                                                         nullptr, [&](const ZQNotification &) {
                                                                             most = std::max(most, items().size());
                                                                             cancel();
                                                                         });
    const auto operation =
        import(sources, nullptr, ZQSidebarBaseItem::appendIndex,
               {{QStringLiteral("tags"), QStringList{QStringLiteral("known"), QStringLiteral("fresh")}}});
    EXPECT_GT(most, 0);
    EXPECT_TRUE(items().isEmpty());
    EXPECT_TRUE(itemDirectories().isEmpty());
    EXPECT_TRUE(operation->report().imported().isEmpty());
    EXPECT_EQ(operation->report().dropped().size(), sources.size());
    EXPECT_TRUE(ZQSidebarTag::tagWithTagName(QStringLiteral("known"), context()));
    EXPECT_FALSE(ZQSidebarTag::tagWithTagName(QStringLiteral("fresh"), context()));
    EXPECT_EQ(user.notificationTexts(), QStringList{QStringLiteral("Import cancelled")});
}

TEST_F(ImportTargets, AStopEndsWhatRunsAndSaysSo)
{
    int told = 0;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        AImportManager::willFinishImportOperation, nullptr, [&](const ZQNotification &) { ++told; });
    AImportManager &manager = AImportManager::sharedAImportManager();
    std::atomic<bool> stop = false;
    delegate->backgroundOperationQueue().addOperationWithBlock([&stop] {
        while (!stop) {
            QThread::msleep(1);
        }
    });
    const auto waiting = manager.importFilesAtPaths({writeImage(QStringLiteral("a.png"), {20, 20})}, nullptr);
    manager.stopAllOperation();
    stop = true;
    zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
    EXPECT_TRUE(waiting->isCancelled());
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(items().isEmpty());
}

TEST_F(ImportTargets, AQueuedRequestIsAnnouncedByItsCountAndATemporaryFileNotAtAll)
{
    AImportManager &manager = AImportManager::sharedAImportManager();
    std::atomic<bool> stop = false;
    delegate->backgroundOperationQueue().addOperationWithBlock([&stop] {
        while (!stop) {
            QThread::msleep(1);
        }
    });
    const QString temporary = writeImage(QStringLiteral("ZeltoTemporaryFolder/t.1/a.png"), {20, 20});
    manager.importFilesAtPaths({temporary}, nullptr);
    EXPECT_TRUE(user.notifications.isEmpty());
    manager.importFileURLs({QUrl(QStringLiteral("http://example.org/c.png")),
                            QUrl::fromLocalFile(writeImage(QStringLiteral("b.png"), {20, 20}))},
                           nullptr);
    EXPECT_EQ(user.notificationTexts(), QStringList{QStringLiteral("1 item added to the import queue")});
    stop = true;
    zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
}

TEST_F(ImportTargets, AnImportThatIsCancelledBeforeItsTurnSaysSoUnlessItIsKept)
{
    AImportManager &manager = AImportManager::sharedAImportManager();
    for (const bool isKept : {true, false}) {
        SCOPED_TRACE(isKept);
        manager.setKeepsCancelledImports(isKept);
        std::atomic<bool> stop = false;
        delegate->backgroundOperationQueue().addOperationWithBlock([&stop] {
            while (!stop) {
                QThread::msleep(1);
            }
        });
        const QString folder = TemporaryFolder::temporaryDirectory();
        auto operation = manager.startImport({.paths = {writeImage(QStringLiteral("a.png"), {20, 20})},
                                              .holder = std::make_shared<TemporaryFolder>(folder)});
        ASSERT_TRUE(operation);
        user.notifications.clear();
        operation->cancel();
        bool isBehind = false; // what it says was handed to the main thread before
        delegate->backgroundOperationQueue().addOperationWithBlock(
            [&isBehind] { zqOnMainThread([&isBehind] { isBehind = true; }); });
        stop = true;
        zqRunMainLoopUntil([&isBehind] { return isBehind; });
        EXPECT_FALSE(operation->hasStarted());
        EXPECT_EQ(user.notificationTexts(), isKept ? QStringList() : QStringList{QStringLiteral("Import cancelled")});
        const std::weak_ptr<ImportOperation> gone = std::exchange(operation, nullptr);
        zqRunMainLoopUntil([&] { return gone.expired() && (isKept || !QFileInfo::exists(folder)); });
        EXPECT_EQ(QFileInfo::exists(folder), isKept) << "what was to be imported goes on later";
    }
    EXPECT_TRUE(items().isEmpty());
}

TEST_F(ImportTargets, AProjectThatWasNeverSavedIsATargetToo)
{
    auto project = context().insertNewObject<ZQSidebarProject>();
    project->setTitle(QStringLiteral("fresh"));
    projectsLabel()->appendChild(project.get());
    AImportManager::sharedAImportManager().importFilesAtPaths({writeImage(QStringLiteral("a.png"), {20, 20})},
                                                              project.get());
    zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
    EXPECT_EQ(project->numberOfItems(), 1);
}

TEST_F(ImportTargets, TheLibraryLiesOnItsVolumeAndOnNoNamesake)
{
    const AImportManager &manager = AImportManager::sharedAImportManager();
    const QString bundle = delegate->libraryBundleDirectory();
    EXPECT_TRUE(manager.libraryOnPath(QStringLiteral("/")));
    EXPECT_TRUE(manager.libraryOnPath(QFileInfo(bundle).path() + u'/'));
    EXPECT_TRUE(manager.libraryOnPath(bundle));
    EXPECT_FALSE(manager.libraryOnPath(bundle.chopped(1)));
    EXPECT_FALSE(manager.libraryOnPath(bundle + QStringLiteral("/Library")));
}
