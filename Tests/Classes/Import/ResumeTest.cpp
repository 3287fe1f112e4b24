// Imports that an earlier process did not end.

#include "Classes/Import/TemporaryFolder.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Tests/Classes/Import/ResumeFixture.h"
#include "Tools/samples/SampleArchives.h"

#include <QThread>

#include <atomic>

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
    const QString ended = QStringLiteral("1000-01234567-89ab-cdef-0123-456789abcdef.sources");
    writeFile(QStringLiteral("Zelto.ztlibrary/pending-imports/") + ended, "[]"); // the kill came at its end
    AImportManager::sharedAImportManager().cutOffImportSince();
    EXPECT_TRUE(pendingFiles().contains(ended)); // who only looks removes nothing
    const QString notes = QStringLiteral("Zelto.ztlibrary/pending-imports/notes.sources");
    QFile stranger(writeFile(notes, "a person's"));
    offer(-1);
    EXPECT_TRUE(stranger.remove());
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
    EXPECT_EQ(projectTitles().count(QStringLiteral("Next")), 1);
    EXPECT_TRUE(pendingFiles().isEmpty());
}

TEST_F(ResumeTest, WhatIsInCannotBeToldSoNothingIsImportedUntilItCan)
{
    const QString a = writeImage(QStringLiteral("in/a.png"), {20, 20});
    const QString b = writeImage(QStringLiteral("in/b.png"), {21, 20});
    import({a});
    cutOff(request({a, b}), {a});
    const QString list = QDir(folder()).filePath(QDir(folder()).entryList({QStringLiteral("*.sources")}).value(0));
    ASSERT_TRUE(QFile::rename(list, list + QStringLiteral(".away")) && QDir().mkpath(list)); // nobody opens that
    offer(continueButton);
    EXPECT_EQ(items().size(), 1);
    EXPECT_EQ(user.notificationTexts().size(), 1);
    ASSERT_TRUE(QDir().rmdir(list) && QFile::rename(list + QStringLiteral(".away"), list));

    user.onBeginProgress = [this](const std::function<void()> &) { renameTable("Away", "ZQLibraryBaseItem"); };
    renameTable("ZQLibraryBaseItem", "Away");
    offer(continueButton);
    renameTable("Away", "ZQLibraryBaseItem");
    EXPECT_EQ(items().size(), 1);
    EXPECT_EQ(PendingImportFile::cutOff(folder()).size(), 1);
    user.onBeginProgress = {};
    offer(continueButton);
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_TRUE(pendingFiles().isEmpty());
}

TEST_F(ResumeTest, WhatCannotBeNotedIsNotSaved)
{
    const QString a = writeImage(QStringLiteral("in/Top/a.png"), {20, 20});
    QString blocked;
    user.onBeginProgress = [&](const std::function<void()> &) {
        blocked = QDir(folder()).filePath(pendingFiles().value(0)).chopped(6) + QStringLiteral(".sources");
        QDir().mkpath(blocked); // a file of that name cannot be written
    };
    const auto noted = import({a});
    EXPECT_TRUE(items().isEmpty());
    EXPECT_TRUE(noted->report().isUnfinished());
    EXPECT_TRUE(itemDirectories().isEmpty());
    user.onBeginProgress = {};
    ASSERT_TRUE(QDir().rmdir(blocked));
    offer(continueButton);
    EXPECT_EQ(items().size(), 1);

    const qsizetype children = projectsLabel()->numberofChilds();
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        AImportManager::didFinishImportOperation, nullptr, [&](const ZQNotification &) {
            if (!pendingFiles().isEmpty()) {
                blocked = QDir(folder()).filePath(pendingFiles().first());
                QFile::rename(blocked, blocked + QStringLiteral(".away"));
                QDir().mkpath(blocked + QStringLiteral("/full"));
            }
        });
    const auto grouped = import({path(QStringLiteral("in/Top"))}, projectsLabel().get());
    EXPECT_TRUE(grouped->report().isUnfinished());
    EXPECT_EQ(items().size(), 1);
    EXPECT_EQ(projectsLabel()->numberofChilds(), children);
}

TEST_F(ResumeTest, WithoutAnAnswerAboutDuplicatesNothingIsSaved)
{
    const QString a = writeImage(QStringLiteral("in/a.png"), {20, 20});
    import({a});
    user.onBeginProgress = [this](const std::function<void()> &) { renameTable("ZQLibraryBaseItem", "Away"); };
    const auto operation = import({a});
    user.onBeginProgress = {};
    renameTable("Away", "ZQLibraryBaseItem");
    EXPECT_TRUE(operation->report().isUnfinished());
    EXPECT_EQ(PendingImportFile::cutOff(folder()).size(), 1);
    EXPECT_EQ(items().size(), 1);
    offer(continueButton);
    EXPECT_EQ(user.duplicates.size(), 1);
    EXPECT_TRUE(pendingFiles().isEmpty());
}

TEST_F(ResumeTest, WhatIsOutOfReachStaysInTheRequest)
{
    QStringList sources;
    for (int i = 0; i < 4; ++i) {
        sources.append(writeImage(QStringLiteral("disk/%1.png").arg(i), {20 + i, 20}));
    }
    const QString here = writeImage(QStringLiteral("in/here.png"), {30, 20});
    import(sources.mid(0, 1));
    cutOff(request(sources + QStringList{here}), sources.mid(0, 1));
    ASSERT_TRUE(QDir().rename(path(QStringLiteral("disk")), path(QStringLiteral("unmounted"))));
    offer(continueButton);
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("0"), QStringLiteral("here")}));
    ASSERT_EQ(user.notificationTexts().size(), 1);
    EXPECT_TRUE(user.notificationTexts().first().contains(QStringLiteral("3 files")));
    EXPECT_TRUE(user.notificationTexts().first().contains(path(QStringLiteral("disk"))));
    item(QStringLiteral("here"))->deletePermanently(); // which is no reason to import it again
    delegate->saveAction();
    ASSERT_TRUE(QDir().rename(path(QStringLiteral("unmounted")), path(QStringLiteral("disk"))));
    offer(continueButton);
    EXPECT_EQ(titles(items()),
              (QStringList{QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3")}));
    EXPECT_TRUE(pendingFiles().isEmpty());
}

TEST_F(ResumeTest, FoldersOutOfReachBecomeProjectsOnceTheyAreBack)
{
    writeImage(QStringLiteral("disk/Far/a.png"), {20, 20});
    writeImage(QStringLiteral("in/Near/b.png"), {21, 20});
    cutOff(request({path(QStringLiteral("in/Near")), path(QStringLiteral("disk/Far"))}, projectsLabel()->UUID()), {});
    ASSERT_TRUE(QDir().rename(path(QStringLiteral("disk")), path(QStringLiteral("unmounted"))));
    offer(continueButton);
    EXPECT_EQ(titles(items()), QStringList{QStringLiteral("b")});
    offer(continueButton);
    EXPECT_EQ(items().size(), 1);
    ASSERT_TRUE(QDir().rename(path(QStringLiteral("unmounted")), path(QStringLiteral("disk"))));
    offer(continueButton);
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_EQ(projectTitles().count(QStringLiteral("Near")), 1);
    EXPECT_EQ(projectTitles().count(QStringLiteral("Far")), 1);
    EXPECT_TRUE(pendingFiles().isEmpty());
}

TEST_F(ResumeTest, TheAnswerAboutDuplicatesIsKeptWithTheRequestAndGoesOnWithWhatAnArchiveHeld)
{
    const QString a = writeImage(QStringLiteral("in/a.png"), {20, 20});
    import({a});
    QFile picture(a);
    ASSERT_TRUE(picture.open(QIODevice::ReadOnly));
    const QString archive =
        writeFile(QStringLiteral("disk/set.zip"), SampleArchives::zipFile({{"copy.png", picture.readAll()}}));
    AImportManager &manager = AImportManager::sharedAImportManager();
    const auto finish = [this] {
        zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
        QCoreApplication::processEvents();
    };
    manager.pendingImports().setKeepsCancelled(true);
    manager.startImport({.paths = {archive}, .duplicates = DuplicateChoice::Discard})->cancel();
    finish();
    manager.pendingImports().setKeepsCancelled(false);
    ASSERT_EQ(PendingImportFile::cutOff(folder()).size(), 1);
    EXPECT_EQ(PendingImportFile::open(folder(), PendingImportFile::cutOff(folder()).first())->request().duplicates,
              QStringLiteral("discard"));

    const QString root = path(QStringLiteral("ZeltoTemporaryFolder/t.1/set"));
    PendingImport unpacked = request({root}, projectsLabel()->UUID());
    unpacked.archivePath = archive;
    unpacked.archiveRoot = root;
    unpacked.duplicates = QStringLiteral("discard");
    ASSERT_TRUE(PendingImportFile::create(folder(), unpacked));
    offer(continueButton);
    EXPECT_TRUE(user.duplicates.isEmpty()) << "it was answered before";
    EXPECT_EQ(items().size(), 1);
    EXPECT_TRUE(pendingFiles().isEmpty());
}

TEST_F(ResumeTest, AnArchiveIsUnpackedAgainAndWhatIsInOfItIsNotTakenTwice)
{
    const auto bytes = [this](const char *name, int width) {
        QFile file(writeImage(QString::fromLatin1(name), {width, 20}));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const QString archive = writeFile(
        QStringLiteral("disk/set.zip"),
        SampleArchives::zipFile({{"Sub/a.png", bytes("made/a.png", 20)}, {"b.png", bytes("made/b.png", 21)}}));
    user.answerDuplicates = [](const QList<DuplicatePair> &pairs) { // the second round imports the same pictures
        return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::KeepBoth);
    };
    for (const bool isGrouped : {false, true}) {
        const QString root = path(QStringLiteral("ZeltoTemporaryFolder/t.1/set"));
        const QString a = writeImage(QStringLiteral("ZeltoTemporaryFolder/t.1/set/Sub/a.png"), {20, 20});
        const auto project = addProject(isGrouped ? QStringLiteral("Grouped") : QStringLiteral("Flat"));
        import({a}, project.get());
        PendingImport pending = request({root}, isGrouped ? projectsLabel()->UUID() : project->UUID());
        pending.archivePath = archive;
        pending.archiveRoot = root;
        if (isGrouped) {
            pending.groups = {{project->UUID(), {a, root + QStringLiteral("/b.png")}}};
        }
        cutOff(pending, {a});
        ASSERT_TRUE(QDir(path(QStringLiteral("ZeltoTemporaryFolder"))).removeRecursively());
        ASSERT_TRUE(QDir().rename(path(QStringLiteral("disk")), path(QStringLiteral("unmounted"))));
        user.notifications.clear();
        offer(continueButton);
        EXPECT_EQ(project->numberOfItems(), 1);
        ASSERT_EQ(user.notificationTexts().size(), 1);
        EXPECT_EQ(
            user.notificationTexts().first(),
            QStringLiteral("“%1” cannot be found. The import is kept: go on with it once that is mended, or forget "
                           "it.")
                .arg(archive));
        EXPECT_FALSE(user.notificationTexts().first().contains(QStringLiteral("ZeltoTemporaryFolder")));
        ASSERT_TRUE(QDir().rename(path(QStringLiteral("unmounted")), path(QStringLiteral("disk"))));
        offer(continueButton);
        QStringList members;
        for (const auto &member : project->pItems()) {
            members.append(member->item()->title());
        }
        EXPECT_EQ(members, (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
        EXPECT_TRUE(pendingFiles().isEmpty());
    }
}

TEST_F(ResumeTest, CancellingTheRestKeepsWhatWasThereAndWhereItWas)
{
    const auto top = addProject(QStringLiteral("Top"));
    const QString a = writeImage(QStringLiteral("in/Top/a.png"), {20, 20});
    const QString b = writeImage(QStringLiteral("in/Top/b.png"), {21, 20});
    import({a}, top.get());
    PendingImport pending = request({path(QStringLiteral("in/Top"))}, projectsLabel()->UUID());
    pending.groups = {{top->UUID(), {a, b}}};
    cutOff(pending, {a});
    const QString file = item(QStringLiteral("a"))->itemURL();
    user.onBeginProgress = [](const std::function<void()> &cancel) { cancel(); };
    AImportManager::sharedAImportManager().setKeepsCancelledImports(true); // Zelto is quit
    offer(continueButton);
    AImportManager::sharedAImportManager().setKeepsCancelledImports(false);
    EXPECT_EQ(titles(items()), QStringList{QStringLiteral("a")});
    EXPECT_TRUE(QFile::exists(file));
    EXPECT_EQ(PendingImportFile::cutOff(folder()).size(), 1);
    user.onBeginProgress = {};
    offer(continueButton);
    EXPECT_EQ(top->numberOfItems(), 2);
    EXPECT_EQ(projectTitles().count(QStringLiteral("Top")), 1);

    cutOff(pending, {a});
    writeImage(QStringLiteral("in/Top/b.png"), {21, 20}); // another picture of that name
    user.onBeginProgress = [](const std::function<void()> &cancel) { cancel(); };
    offer(continueButton);
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_TRUE(QFile::exists(file));
    EXPECT_TRUE(pendingFiles().isEmpty()); // the person's decision
}

TEST_F(ResumeTest, OneThatIsCancelledBeforeItsTurnEndsAndOneThatIsCancelledTooLateSeesToItself)
{
    const QString here = writeImage(QStringLiteral("in/here.png"), {20, 20});
    AImportManager &manager = AImportManager::sharedAImportManager();
    const auto wait = [this] {
        zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
        QCoreApplication::processEvents();
    };
    std::atomic<bool> isReleased = false;
    delegate->backgroundOperationQueue().addOperationWithBlock([&isReleased] {
        while (!isReleased) {
            QThread::msleep(1);
        }
    });
    const auto waiting = manager.startImport({{here}, {}, ImportOperation::appendIndex, {}});
    waiting->cancel();
    isReleased = true;
    wait();
    EXPECT_FALSE(waiting->hasStarted());
    EXPECT_TRUE(pendingFiles().isEmpty() && items().isEmpty());

    cutOff(request({here, path(QStringLiteral("in/away.png"))}), {});
    QList<std::shared_ptr<ImportOperation>> resumed;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        AImportManager::didFinishImportOperation, nullptr, [&](const ZQNotification &) { resumed.value(0)->cancel(); });
    resumed = manager.pendingImports().resume();
    wait();
    EXPECT_TRUE(resumed.first()->isCancelled());
    EXPECT_EQ(titles(items()), QStringList{QStringLiteral("here")});
    EXPECT_EQ(PendingImportFile::cutOff(folder()).size(), 1);
}

TEST_F(ResumeTest, ARecordRemovesOnlyATemporaryCopyOfWhatTheLibraryHas)
{
    const QString a = writeImage(QStringLiteral("in/a.png"), {20, 20});
    import({a});
    const auto made = item(QStringLiteral("a"));
    const QByteArray other = "a person's only copy";
    const QString folderToKeep = path(QStringLiteral("ZeltoTemporaryFolder/victim"));
    const QString inFolder = writeFile(QStringLiteral("ZeltoTemporaryFolder/victim/report.txt"), other);
    const QString different = writeFile(QStringLiteral("ZeltoTemporaryFolder/report.txt"), other);
    const QString elsewhere = path(QStringLiteral("in/copy.png"));
    const QString behindLink = path(QStringLiteral("in/ZeltoTemporaryFolder/copy.png"));
    const QString itself = made->itemURL();
    ASSERT_TRUE(QFile::copy(itself, elsewhere) &&
                QFile::link(path(QStringLiteral("in")), QFileInfo(behindLink).path()));
    const QStringList victims{folderToKeep, different, elsewhere, behindLink, itself};
    const QString temporary = path(QStringLiteral("ZeltoTemporaryFolder/a.png"));
    ASSERT_TRUE(QFile::copy(itself, temporary));

    for (const QString &named : victims + QStringList{temporary}) {
        const auto file = PendingImportFile::create(folder(), request({a}));
        const qint64 modification = QFileInfo(named).lastModified().toMSecsSinceEpoch();
        ASSERT_TRUE(file && file->addSources({{made->bundleID(), a, named, modification}}));
    }
    offer(continueButton);
    EXPECT_TRUE(pendingFiles().isEmpty());
    for (const QString &victim : victims + QStringList{inFolder}) {
        EXPECT_TRUE(QFile::exists(victim)) << victim.toStdString();
    }
    EXPECT_FALSE(QFile::exists(temporary));
}

TEST_F(ResumeTest, ADirectoryIsRemovedOnlyByAPlainName)
{
    const QString a = writeImage(QStringLiteral("in/a.png"), {20, 20});
    const QString b = path(QStringLiteral("in/b.png"));
    ASSERT_TRUE(QFile::copy(a, b));
    import({a});
    user.answerDuplicates = [](const QList<DuplicatePair> &pairs) {
        return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::KeepBoth);
    };
    import({b});
    item(QStringLiteral("b"))->setBundleID(QStringLiteral("../../victim"));
    delegate->saveAction();
    const QString victim = writeFile(
        QStringLiteral("victim") + ZQLibraryBaseItem::itemDirectoryExtension + QStringLiteral("/notes.txt"), "kept");
    cutOff(request({b}), {b});
    user.answerDuplicates = [](const QList<DuplicatePair> &pairs) {
        return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::Discard);
    };
    offer(continueButton);
    EXPECT_EQ(titles(items()), QStringList{QStringLiteral("a")});
    EXPECT_TRUE(QFile::exists(victim));
}

TEST_F(ResumeTest, WhatWasOutOfReachWhenTheOthersWereGroupedComesAfterThem)
{
    const auto top = addProject(QStringLiteral("Top"));
    const QString a = writeImage(QStringLiteral("in/Top/a.png"), {20, 20});
    const QString b = writeImage(QStringLiteral("in/Top/b.png"), {21, 20});
    const QString c = writeImage(QStringLiteral("in/Far/c.png"), {22, 20});
    import({a}, top.get());
    PendingImport pending =
        request({path(QStringLiteral("in/Top")), path(QStringLiteral("in/Far"))}, projectsLabel()->UUID());
    pending.groups = {{top->UUID(), {a, b}}};
    pending.ungrouped = {path(QStringLiteral("in/Far"))};
    cutOff(pending, {a});
    offer(continueButton);
    EXPECT_EQ(titles(top->items()), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_EQ(projectTitles().count(QStringLiteral("Far")), 1);
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    EXPECT_TRUE(pendingFiles().isEmpty());
}

TEST_F(ResumeTest, WhatComesLaterKeepsItsPlaceInTheProject)
{
    const auto project = addProject(QStringLiteral("P"));
    QStringList sources;
    for (const char *name : {"a", "b", "c"}) {
        sources.append(writeImage(QStringLiteral("in/%1.png").arg(QLatin1String(name)), {int(name[0]), 20}));
    }
    import({writeImage(QStringLiteral("last.png"), {20, 20})}, project.get());
    import(sources.mid(0, 1), project.get(), 0);
    PendingImport pending = request(sources, project->UUID());
    pending.index = 0;
    cutOff(pending, sources.mid(0, 1));
    ASSERT_TRUE(QFile::rename(sources[2], sources[2] + u'~'));
    offer(continueButton);
    EXPECT_EQ(
        user.notificationTexts().last(),
        QStringLiteral("“%1” cannot be found. The import is kept: go on with it once that is mended, or forget it.")
            .arg(sources[2]));
    ASSERT_TRUE(QFile::rename(sources[2] + u'~', sources[2]));
    offer(continueButton);
    QStringList order;
    for (const auto &member : project->pItems()) {
        order.append(member->item()->title());
    }
    EXPECT_EQ(order.join(u' '), QStringLiteral("a b c last"));
    EXPECT_TRUE(pendingFiles().isEmpty());
}

TEST_F(ResumeTest, FilesOfSeveralFoldersAreMissedInTheOneThatHoldsThem)
{
    const QString a = writeImage(QStringLiteral("disk/x/a.png"), {20, 20});
    const QString b = writeImage(QStringLiteral("disk/y/z/b.png"), {21, 20});
    cutOff(request({a, b}), {});
    ASSERT_TRUE(QDir().rename(path(QStringLiteral("disk")), path(QStringLiteral("unmounted"))));
    offer(continueButton);
    ASSERT_EQ(user.notificationTexts().size(), 1);
    EXPECT_EQ(
        user.notificationTexts().first(),
        QStringLiteral("2 files or folders cannot be found in “%1”. The import is kept: go on with it once that is "
                       "mended, or forget it.")
            .arg(path(QStringLiteral("disk"))));
    EXPECT_EQ(user.notifications.first().position, NotificationPlace::Browser);
    EXPECT_EQ(user.notifications.first().time, std::chrono::seconds(6));
    offer(forgetButton);
    cutOff(request({QStringLiteral("/gone1/a.png"), QStringLiteral("/gone2/a.png")}), {});
    offer(continueButton);
    EXPECT_TRUE(user.notificationTexts().last().contains(QStringLiteral("found in “/”")));
}

TEST_F(ResumeTest, APathThatWasAskedForTwiceIsImportedAsOften)
{
    const QString a = writeImage(QStringLiteral("in/a.png"), {20, 20});
    import({a});
    user.answerDuplicates = [](const QList<DuplicatePair> &pairs) {
        return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::KeepBoth);
    };
    cutOff(request({a, a}), {a});
    offer(continueButton);
    EXPECT_EQ(items().size(), 2);
}

TEST_F(ResumeTest, AnArchiveThatIsStillUnpackedGoesOnAndItsFolderGoesOnlyWhereItIsOurs)
{
    const QString ours = TemporaryFolder::temporaryDirectory();
    const QString stranger = path(QStringLiteral("elsewhere/t.1"));
    int width = 30;
    for (const QString &holder : {ours, stranger}) {
        const QString root = holder + QStringLiteral("/Set");
        ASSERT_TRUE(QDir().mkpath(root));
        ASSERT_TRUE(
            QFile::rename(writeImage(QStringLiteral("made/a.png"), {++width, 20}), root + QStringLiteral("/a.png")));
        ASSERT_TRUE(
            QFile::rename(writeImage(QStringLiteral("made/b.png"), {++width, 20}), root + QStringLiteral("/note.txt")));
        PendingImport pending = request({root}, projectsLabel()->UUID());
        pending.archivePath = path(QStringLiteral("disk/Set.zip")); // which is gone
        pending.archiveRoot = root;
        cutOff(pending, {});
        const qsizetype before = items().size();
        offer(continueButton);
        EXPECT_EQ(items().size(), before + 1) << root.toStdString();
        EXPECT_EQ(QFileInfo::exists(holder), holder == stranger) << holder.toStdString();
        EXPECT_TRUE(pendingFiles().isEmpty());
    }
}
