// What becomes of files, targets and places that are not there any more when their turn comes, and what is said then.

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Application/TemporaryArea.h"
#include "Classes/Import/DirectoryContent.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/PasteboardFiles.h"
#include "Classes/Import/PendingImport.h"
#include "Classes/Import/TemporaryFolder.h"
#include "Classes/Import/ThumbGenerator.h"
#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Import/ImportFixture.h"
#include "Tests/Support/DamagedStore.h"
#include "Tests/Support/FileSizeLimit.h"
#include "Tools/samples/SampleArchives.h"
#include "Tools/samples/SampleFormats.h"
#include "Tools/samples/SampleRaw.h"
#include "Tools/samples/SampleScenes.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

#include <cstring>
#include <fcntl.h>
#include <functional>
#include <optional>

namespace {

class ImportFaults : public ImportFixture
{
protected:
    // What was said of `path`; empty: nothing.
    static QString reasonOf(const ImportOperation &operation, const QString &path)
    {
        for (const DroppedFile &file : operation.report().dropped()) {
            if (file.path == path) {
                return file.reason;
            }
        }
        return {};
    }
    QString zip(const QString &name, const QList<SampleArchives::Entry> &entries) const
    {
        return writeFile(name, SampleArchives::zipFile(entries));
    }
    QByteArray picture(int width) const
    {
        QFile file(writeImage(QStringLiteral("made/picture.png"), {width, 20}));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QString storePath() const { return delegate->persistentStoreCoordinator()->path(); }
};

} // namespace

TEST_F(ImportFaults, WhatChangedBeforeItsTurnIsSaid)
{
    const QString library = delegate->libraryDirectory();
    const QString source = path(QStringLiteral("in/a.png"));
    struct Case
    {
        std::function<void()> change;
        std::function<void()> restore;
        const char *said;
    };
    const Case cases[] = {
        {[&] { QFile::remove(source); }, [] {},
         "It is not there any more. Look where it went and import it from there."},
        {[&] {
             QFile::remove(source);
             QDir().mkpath(source);
         },
         [&] { QDir().rmdir(source); }, "It is a folder. Import it into a folder of the sidebar, or into PROJECTS."},
        {[&] { ::truncate(QFile::encodeName(source).constData(), 0); }, [] {},
         "The file is empty. Save it again in the program that made it."},
        {[&] { QDir().rename(library, library + u'~'); }, [&] { QDir().rename(library + u'~', library); },
         "No item directory can be made in the library. Check that the library can be written and has space left."},
    };
    for (const Case &each : cases) {
        SCOPED_TRACE(each.said);
        writeImage(QStringLiteral("in/a.png"), {20, 20});
        user.notifications.clear();
        user.onBeginProgress = [&each](const std::function<void()> &) { each.change(); };
        const auto operation = import({source});
        user.onBeginProgress = {};
        each.restore();
        EXPECT_EQ(reasonOf(*operation, source), QLatin1String(each.said));
        EXPECT_EQ(droppedPaths(operation->report()), QStringList{source}) << "once";
        EXPECT_TRUE(items().isEmpty() && itemDirectories().isEmpty());
        QFile::remove(source);
    }
}

TEST_F(ImportFaults, ATargetThatIsGoneAndNamesThatAreNoneAreSaid)
{
    const QString source = writeImage(QStringLiteral("in/a.png"), {20, 20});
    const auto project = addProject(QStringLiteral("P"));
    const ZQObjectID id = project->objectID();
    project->deletePermanently();
    delegate->saveAction();
    const auto operation = AImportManager::sharedAImportManager().startImport({{source}, id, 0, {}});
    zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
    EXPECT_EQ(reasonOf(*operation, source),
              QStringLiteral("The sidebar item it was to go to does not exist any more. Import it into another one."));
    const auto recent = ZQSidebarBaseItem::recentProjectInManagedObjectContext(context());
    EXPECT_EQ(
        reasonOf(*import({source}, recent.get()), source),
        QStringLiteral("“%1” takes no files. Import it into the library, a project or a tag.").arg(recent->title()));
    const QString gone = path(QStringLiteral("in/gone.txt"));
    EXPECT_EQ(reasonOf(*import({gone}), gone), QStringLiteral("There is no such file. Check its name."));
    EXPECT_EQ(reasonOf(*import({gone}, projectsLabel().get()), gone),
              QStringLiteral("There is no such file. Check its name."));
    const QByteArray broken = QFile::encodeName(path(QStringLiteral("in/"))) + "broken\xff.png";
    const int file = ::open(broken.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    ASSERT_GE(file, 0);
    ::close(file);
    const auto folder = import({path(QStringLiteral("in"))}, projectsLabel().get());
    ASSERT_EQ(folder->report().dropped().size(), 1);
    EXPECT_EQ(folder->report().dropped().first().reason,
              QStringLiteral("Its name is not valid text. Rename it and import it again."));
    EXPECT_EQ(titles(items()), QStringList{QStringLiteral("a")});
    ::unlink(broken.constData());
}

TEST_F(ImportFaults, FoldersAreNotMadeOfAStoreThatTakesNone)
{
    const QString source = writeImage(QStringLiteral("in/Top/a.png"), {20, 20});
    const qsizetype before = projectsLabel()->numberofChilds();
    std::shared_ptr<ImportOperation> operation;
    {
        const RefusingStore refusing(storePath(), {QStringLiteral("ZQSidebarBaseItem")});
        operation = import({path(QStringLiteral("in/Top"))}, projectsLabel().get());
    }
    EXPECT_TRUE(reasonOf(*operation, source).startsWith(QStringLiteral("The library could not be saved: ")))
        << reasonOf(*operation, source).toStdString();
    EXPECT_TRUE(items().isEmpty() && itemDirectories().isEmpty());
    EXPECT_EQ(projectsLabel()->numberofChilds(), before);
    EXPECT_EQ(PendingImportFile::cutOff(path(QStringLiteral("Zelto.ztlibrary/pending-imports"))), QStringList());
}

TEST_F(ImportFaults, ImportsGoOnWhereTheyCannotBeNoted)
{
    writeFile(QStringLiteral("Zelto.ztlibrary/pending-imports"), "in the way");
    const QString archive = zip(QStringLiteral("in/Set.zip"), {{"b.png", picture(21)}});
    user.answerDuplicates = [](const QList<DuplicatePair> &pairs) {
        return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::KeepBoth);
    };
    EXPECT_EQ(import({writeImage(QStringLiteral("in/a.png"), {20, 20})})->report().imported().size(), 1);
    EXPECT_EQ(import({path(QStringLiteral("in"))}, projectsLabel().get())->report().imported().size(), 1);
    EXPECT_EQ(items().size(), 3);
    EXPECT_TRUE(user.errors.isEmpty());
}

TEST_F(ImportFaults, WithoutALibraryNothingIsImported)
{
    delegate.reset();
    ApplicationParts parts;
    parts.userInteraction = &user;
    parts.importManager = &AImportManager::sharedAImportManager();
    delegate = std::make_unique<tamberin_AppDelegate>(parts);
    delegate->setLibraryBundleDirectory(path(QStringLiteral("missing/None.ztlibrary")));
    AImportManager &manager = AImportManager::sharedAImportManager();
    EXPECT_EQ(manager.importFilesAtPaths({writeImage(QStringLiteral("in/a.png"), {20, 20})}, nullptr), nullptr);
    QCoreApplication::processEvents();
    ASSERT_FALSE(user.errors.isEmpty());
    EXPECT_EQ(user.errors.last().localizedDescription(),
              QStringLiteral("There is no library to import into. Open or create a library first."));
    EXPECT_TRUE(manager.pendingImports().resume().isEmpty());
    EXPECT_FALSE(manager.libraryOnPath(QStringLiteral("/")));
}

TEST_F(ImportFaults, WhatWasDroppedIsToldInOneSentence)
{
    const QString unreadable = QStringLiteral("The file is empty. Save it again in the program that made it.");
    const QString a = writeFile(QStringLiteral("in/a.png"), "");
    const QString b = writeFile(QStringLiteral("in/b.png"), "");
    const QString fifo = path(QStringLiteral("in/c.png"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const QString good = writeImage(QStringLiteral("in/good.png"), {20, 20});
    const std::pair<QStringList, QString> cases[] = {
        {{good, a}, QStringLiteral("“a.png” could not be imported: ") + unreadable},
        {{good, a, b}, QStringLiteral("2 files could not be imported: ") + unreadable},
        {{good, fifo, a}, QStringLiteral("2 files could not be imported. The first is “")},
    };
    user.answerDuplicates = [](const QList<DuplicatePair> &pairs) {
        return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::KeepBoth);
    };
    for (const auto &[paths, said] : cases) {
        user.notifications.clear();
        const auto operation = import(paths);
        ASSERT_EQ(user.notifications.size(), 1);
        EXPECT_TRUE(user.notifications.first().text.startsWith(said)) << user.notifications.first().text.toStdString();
        EXPECT_EQ(user.notifications.first().position, NotificationPlace::Browser);
        EXPECT_EQ(user.notifications.first().time, std::chrono::seconds(6));
        EXPECT_EQ(operation->report().notifications(), user.notificationTexts());
        ASSERT_FALSE(user.progresses.isEmpty());
        EXPECT_EQ(user.progresses.last()->text, QStringLiteral("Importing…"));
        EXPECT_EQ(user.progresses.last()->maximum, paths.size());
        EXPECT_TRUE(user.progresses.last()->isOver);
    }
}

TEST_F(ImportFaults, AnArchiveSaysWhatIsWrongWithItAndHowMuchOfItIsLeftOut)
{
    const QString archive = path(QStringLiteral("in/Set.zip"));
    const auto said = [&](const std::function<void()> &change) {
        zip(QStringLiteral("in/Set.zip"), {{"a.png", picture(21)}});
        user.onBeginProgress = [&change](const std::function<void()> &) { change(); };
        const QString reason = reasonOf(*import({archive}), archive);
        user.onBeginProgress = {};
        QFile::remove(archive);
        return reason;
    };
    EXPECT_EQ(said([&] { QFile::remove(archive); }),
              QStringLiteral("It is not there any more. Look where it went and import it from there."));
    EXPECT_EQ(said([&] {
                  QFile::remove(archive);
                  ::mkfifo(QFile::encodeName(archive).constData(), 0600);
              }),
              QStringLiteral("It is no regular file. Import a copy of what it gives."));
    const QByteArray temporary = qgetenv("TMPDIR");
    EXPECT_TRUE(said([&] {
                    qputenv("TMPDIR", QFile::encodeName(path(QStringLiteral("missing"))));
                }).startsWith(QStringLiteral("It cannot be unpacked, since no temporary folder can be made.")));
    qputenv("TMPDIR", temporary);
    EXPECT_TRUE(items().isEmpty() && itemDirectories().isEmpty());

    zip(QStringLiteral("in/Set.zip"), {{"a.png", picture(21)}, {"../x.png", picture(22)}});
    EXPECT_TRUE(reasonOf(*import({archive}), archive).startsWith(QStringLiteral("Left out was “../x.png”: ")))
        << reasonOf(*import({archive}), archive).toStdString();
    user.answerDuplicates = [](const QList<DuplicatePair> &pairs) {
        return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::KeepBoth);
    };
    zip(QStringLiteral("in/Set.zip"), {{"a.png", picture(23)}, {"../x.png", picture(22)}, {"../y.png", picture(22)}});
    EXPECT_TRUE(reasonOf(*import({archive}), archive)
                    .startsWith(QStringLiteral("2 of its entries were left out, the first is “../x.png”: ")));
}

TEST_F(ImportFaults, AFileThatCannotBeCopiedWholeSaysWhyAndLeavesNothing)
{
    const QString source = writeFile(QStringLiteral("in/a.png"), picture(21) + QByteArray(12 << 20, 'x'));
    std::optional<FileSizeLimit> limit;
    user.onBeginProgress = [&limit](const std::function<void()> &) {
        if (!limit) {
            limit.emplace(8 << 20);
        }
    };
    const auto operation = import({source});
    limit.reset();
    user.onBeginProgress = {};
    EXPECT_TRUE(reasonOf(*operation, source).contains(QString::fromLocal8Bit(std::strerror(EFBIG))))
        << reasonOf(*operation, source).toStdString();
    EXPECT_TRUE(items().isEmpty() && itemDirectories().isEmpty());
    EXPECT_TRUE(QFile::exists(source));
}

TEST_F(ImportFaults, EveryKindBecomesAnItemOfItsOwn)
{
    const QImage scene = SampleScenes::asymmetricScene({60, 40});
    const QString acorn = path(QStringLiteral("drawing.acorn"));
    QFile png(writeImage(QStringLiteral("made/acorn.png"), {700, 350}));
    ASSERT_TRUE(png.open(QIODevice::ReadOnly) && SampleFormats::writeAcorn(png.readAll(), acorn));
    const QString unknown = writeFile(QStringLiteral("sketchy.pxm"), "no such program is here");
    const auto operation = import(
        {acorn, unknown, writeFile(QStringLiteral("page.pdf"), SampleFormats::pdfFile({200, 100}, "0 0 50 50 re f")),
         writeFile(QStringLiteral("photo.dng"), dngFile(scene)),
         writeFile(QStringLiteral("targa.tga"), SampleFormats::tgaFile(scene, SampleFormats::Packing::None))});
    const std::tuple<const char *, const char *, QSize> made[] = {
        {"drawing", "ZQLibraryAcorn", {700, 350}},
        {"page", "ZQLibraryPDF", {0, 0}},
        {"photo", "ZQLibraryImage", {60, 40}},
        {"targa", "ZQLibraryImage", {60, 40}},
    };
    for (const auto &[title, entity, size] : made) {
        const auto found = item(QLatin1String(title));
        ASSERT_TRUE(found) << title;
        EXPECT_EQ(found->entity()->name, QLatin1String(entity));
        EXPECT_EQ(QSize(found->pixelWidth(), found->pixelHeight()), size) << title;
    }
    EXPECT_TRUE(QFile::exists(item(QStringLiteral("drawing"))->bundleURL() + u'/' +
                              ZQLibraryBaseItem::representationBitmapName));
    EXPECT_EQ(droppedPaths(operation->report()), QStringList{unknown});
    EXPECT_EQ(itemDirectories().size(), 4);
    EXPECT_FALSE(ThumbGenerator::newThumbForRawFileAtURL(path(QStringLiteral("photo.dng"))).isNull());
    EXPECT_TRUE(ThumbGenerator::newThumbForRawFileAtURL(unknown).isNull());
}

TEST_F(ImportFaults, ASnapsDescriptionIsAFileOfItsOwnAndNotEndless)
{
    constexpr qsizetype largest = 4 * 1024 * 1024;
    const QByteArray info =
        "<plist version=\"1.0\"><dict><key>imageGrabPath</key><string>p.png</string></dict></plist>";
    const QString package = path(QStringLiteral("Shot.snap"));
    for (const qsizetype size : {largest, largest + 1}) {
        writeImage(QStringLiteral("Shot.snap/p.png"), {40, int(20 + size % 2)});
        writeFile(QStringLiteral("Shot.snap/Info.plist"), info + QByteArray(size - info.size(), ' '));
        const auto operation = import({package});
        EXPECT_EQ(operation->report().imported().size(), size == largest ? 1 : 0);
        EXPECT_EQ(reasonOf(*operation, package),
                  size == largest
                      ? QString()
                      : QStringLiteral("Its Info.plist is missing or cannot be read. Get the snap once more, "
                                       "or import the picture in it alone."));
    }
    const QString description = package + QStringLiteral("/Info.plist");
    ASSERT_TRUE(QFile::remove(description) &&
                QFile::link(writeFile(QStringLiteral("elsewhere.plist"), info), description));
    EXPECT_TRUE(import({package})->report().imported().isEmpty());
    ASSERT_TRUE(QFile::remove(description));
    EXPECT_TRUE(import({package})->report().imported().isEmpty());
    EXPECT_EQ(items().size(), 1);
}

TEST_F(ImportFaults, WhatCannotBeReadIsNamedWithAllItHolds)
{
    const QString good = writeImage(QStringLiteral("in/Sub/good.png"), {20, 20});
    const QString folder = path(QStringLiteral("in"));
    const QString gone = path(QStringLiteral("gone.png"));
    ASSERT_TRUE(QFile::link(gone, path(QStringLiteral("in/Sub/link.png"))));
    EXPECT_EQ(ImportQueries::unreadableFilesForFilePaths({gone, good, folder}), QStringList{gone});
    EXPECT_EQ(ImportQueries::unreadableFilesForDirectory(gone), QStringList{gone});
    const DirectoryContent ofNone = DirectoryContent::ofDirectory(gone);
    ASSERT_EQ(ofNone.dropped.size(), 1);
    EXPECT_EQ(ofNone.dropped.first().path, gone);
    EXPECT_TRUE(ofNone.dropped.first().reason.contains(QStringLiteral("The folder cannot be opened")));
    EXPECT_TRUE(ofNone.subfolders.isEmpty() && ofNone.files.isEmpty() && ofNone.archives.isEmpty());
    EXPECT_TRUE(ImportQueries::isFileReadableAtPath(folder));
    EXPECT_EQ(ImportQueries::getActualPath(good), good);
    EXPECT_EQ(ImportQueries::getActualPath(gone), gone);
    EXPECT_TRUE(QFileInfo(TemporaryFolder::temporaryURL().toLocalFile()).isDir());
}

TEST_F(ImportFaults, TheClipboardBecomesItemsWhereItIsPasted)
{
    const auto project = addProject(QStringLiteral("P"));
    import({writeImage(QStringLiteral("first.png"), {20, 20})}, project.get());
    QMimeData data;
    data.setData(QStringLiteral("image/png"), picture(33));
    data.setUrls({QUrl(QStringLiteral("https://example.org/logo.png"))});
    AImportManager &manager = AImportManager::sharedAImportManager();
    ASSERT_TRUE(manager.importItemsFromPasteboard(&data, project.get(), 0));
    zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
    EXPECT_EQ(titles(project->items()), (QStringList{QStringLiteral("logo"), QStringLiteral("first")}));
    EXPECT_EQ(item(QStringLiteral("logo"))->webURL(), QStringLiteral("https://example.org/logo.png"));
    const QMimeData nothing;
    EXPECT_EQ(manager.importItemsFromPasteboard(&nothing, project.get(), 0), nullptr);
    EXPECT_EQ(manager.importItemsFromPasteboard(nullptr, nullptr, 0), nullptr);
}

TEST_F(ImportFaults, WhatIsPastedHasANameThatAFileCanHave)
{
    const QString folder = path(QStringLiteral("pasted"));
    ASSERT_TRUE(QDir().mkpath(folder));
    const auto makeFolder = [&folder] { return folder; };
    const auto pasted = [&](const QList<QUrl> &urls, bool hasPicture = true) {
        QMimeData data;
        data.setUrls(urls);
        if (hasPicture) {
            data.setData(QStringLiteral("image/png"), "x");
        }
        const PasteboardFiles files = PasteboardFiles::filesFromMimeData(&data, makeFolder);
        QStringList names;
        for (const QString &file : files.paths) {
            names.append(QFileInfo(file).fileName());
            if (file.startsWith(folder)) {
                QFile::remove(file);
            }
        }
        return names;
    };
    const auto web = [](const QString &name) { return QUrl(QStringLiteral("https://example.org/") + name); };
    const QStringList unnamed{QStringLiteral("Pasted image.png")};
    EXPECT_EQ(pasted({}), unnamed);
    EXPECT_EQ(pasted({web(QStringLiteral("..hidden.png"))}), QStringList{QStringLiteral("hidden.png")});
    EXPECT_EQ(pasted({web(QString())}), unnamed);
    EXPECT_EQ(pasted({QUrl(QStringLiteral("ftp://example.org/a.png"))}), unnamed);
    for (const int length : {200, 201}) {
        EXPECT_EQ(pasted({web(QString(length, u'n') + QStringLiteral(".gif"))}),
                  QStringList{QString(200, u'n') + QStringLiteral(".png")});
    }
    EXPECT_EQ(pasted({QUrl(QStringLiteral("data:image/gif,%47%49%46"))}, false),
              QStringList{QStringLiteral("Pasted image.gif")});
    EXPECT_EQ(pasted({QUrl(QStringLiteral("data:IMAGE/GIF;x=y;base64,R0lG"))}, false),
              QStringList{QStringLiteral("Pasted image.gif")});
    for (const char *none : {"data:image/gif", "data:image/gif,", "data:x-no/type,abc", "date:image/gif,abc"}) {
        EXPECT_EQ(pasted({QUrl(QLatin1String(none))}, false), QStringList()) << none;
    }
    EXPECT_EQ(pasted({QUrl::fromLocalFile(QStringLiteral("/a.png")), QUrl::fromLocalFile(QStringLiteral("/b.png"))}),
              (QStringList{QStringLiteral("a.png"), QStringLiteral("b.png")}))
        << "files come as they are";
    writeFile(QStringLiteral("pasted/Pasted image.png"), "there");
    writeFile(QStringLiteral("pasted/Pasted image 1.png"), "there");
    EXPECT_EQ(pasted({}), QStringList{QStringLiteral("Pasted image 2.png")});

    QMimeData data;
    data.setData(QStringLiteral("image/png"), "");
    data.setData(QStringLiteral("image/gif"), "x");
    EXPECT_EQ(QFileInfo(PasteboardFiles::filesFromMimeData(&data, makeFolder).paths.value(0)).fileName(),
              QStringLiteral("Pasted image.gif"))
        << "an empty one is none";
    EXPECT_TRUE(PasteboardFiles::filesFromMimeData(&data, [] { return QString(); }).paths.isEmpty());
    EXPECT_TRUE(PasteboardFiles::filesFromMimeData(&data, [this] {
                    return path(QStringLiteral("missing/folder"));
                }).paths.isEmpty());
}

TEST_F(ImportFaults, TagsThatCameTwiceAreOneAfterAnImport)
{
    const auto one = addTag(QStringLiteral("Twice"));
    const std::pair<const char *, std::function<void()>> ends[] = {
        {"at the end of an import",
         [this] {
             import({writeImage(QStringLiteral("a.png"), {20, 20})});
         }},
        {"when a batch of it was saved", [] { AImportManager::sharedAImportManager().mergeChanges({}); }},
    };
    for (const auto &[when, end] : ends) {
        SCOPED_TRACE(when);
        const auto other = addTag(QStringLiteral("Once"));
        other->setTitle(QStringLiteral("Twice"));
        delegate->saveAction();
        end();
        EXPECT_FALSE(context().hasChanges());
        EXPECT_EQ(zqCount(context(), {ZQSidebarTag::entityName(), ZQPredicate::predicateWithFormat(QStringLiteral(
                                                                      "title == 'Twice' && active == YES"))}),
                  1);
    }
}

TEST_F(ImportFaults, AThumbnailOfWhatIsGoneIsNoBodysBusiness)
{
    import({writeImage(QStringLiteral("a.png"), {20, 20})});
    AImportManager &manager = AImportManager::sharedAImportManager();
    const auto made = item(QStringLiteral("a"));
    ASSERT_TRUE(made);
    manager.thumbForLibraryItem(made.get());
    manager.thumbsGenerationQueue().waitUntilAllOperationsAreFinished();
    made->deletePermanently();
    delegate->saveAction();
    QCoreApplication::processEvents();
    EXPECT_TRUE(items().isEmpty());
    const auto without =
        zqCast<ZQLibraryBaseItem>(context().insertNewObjectForEntityForName(QStringLiteral("ZQLibraryImage")));
    manager.thumbForLibraryItem(without.get());
    EXPECT_EQ(manager.thumbsGenerationQueue().operationCount(), 0);
    EXPECT_EQ(without->thumbVersion(), 0);
    context().rollback();
}
