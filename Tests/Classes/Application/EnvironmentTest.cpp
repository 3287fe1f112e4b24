// What items ask the application for, and the directories it makes.

#include "Classes/Application/LeftoverSearch.h"
#include "Classes/Application/LibraryBundleManager.h"
#include "Classes/Application/LibraryLocation.h"
#include "Classes/Application/LibraryLock.h"
#include "Classes/Application/RatingFiller.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Classes/Application/LibraryPlacesFixture.h"
#include "Tests/Support/DamagedStore.h"
#include "Tests/Support/Skip.h"

#include <QCoreApplication>
#include <QThread>

#include <sys/stat.h>

#include <cerrno>
#include <thread>

namespace {

class Environment : public LibraryPlacesTest
{
protected:
    static ZQLibraryEnvironment &environment() { return ZQLibraryEnvironment::current(); }
    bool keepsAttributes() const
    {
        return ZQExtendedAttributes::set(world.path(), QStringLiteral("org.zelto.test"), "x");
    }
    static void setWritesTags(bool writes)
    {
        ZQUserDefaults::standardUserDefaults().setObjectForKey(writes, QStringLiteral("ImportOpenMetaTags"));
    }
    static void renameItems(const QString &store, bool isAway)
    {
        const auto other = ZQSQLiteConnection::open(store, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
        ASSERT_TRUE(other && other->execute(QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE %1 RENAME TO %2")
                                                .arg(isAway ? u"ZQLibraryBaseItem"_qs : u"away"_qs,
                                                     isAway ? u"away"_qs : u"ZQLibraryBaseItem"_qs)));
    }
};

} // namespace

TEST_F(Environment, TheWorldOfATestLiesBesideItsProgramWhereverItIsStarted)
{
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(world.path()));
    const UserWorld inner("inner");
    QDir::setCurrent(before);
    EXPECT_EQ(QFileInfo(inner.path()).path(), QCoreApplication::applicationDirPath());
}

TEST_F(Environment, ReadsWhatAFileCarriesAndTellsNothingFromNone)
{
    if (!keepsAttributes()) {
        return skipWithout("extended attributes");
    }
    const auto delegate = launched();
    const QString file = written(inWorld(QStringLiteral("a.png")), "a");
    EXPECT_EQ(environment().userTagsOfFile(file), QStringList());
    EXPECT_EQ(environment().commentOfFile(file), std::nullopt);
    EXPECT_EQ(environment().ratingOfFile(file), 0);
    ASSERT_TRUE(OpenMeta::setUserTags(QStringList{QStringLiteral("a")}, file).isNull());
    ASSERT_TRUE(OpenMeta::setFinderComment(QStringLiteral("noted"), file).isNull());
    ASSERT_TRUE(OpenMeta::setRating(2.5, file).isNull());
    EXPECT_EQ(environment().userTagsOfFile(file), QStringList{QStringLiteral("a")});
    EXPECT_EQ(environment().commentOfFile(file), QStringLiteral("noted"));
    EXPECT_EQ(environment().ratingOfFile(file), 3);
    const auto read = environment().tagsAfterReadingFile(file, {});
    ASSERT_TRUE(read);
    EXPECT_EQ(read->tags, QStringList{QStringLiteral("a")});
    EXPECT_EQ(read->comment, QStringLiteral("noted"));
    EXPECT_EQ(read->rating, 3);

    const QString gone = inWorld(QStringLiteral("gone.png"));
    EXPECT_EQ(environment().userTagsOfFile(gone), std::nullopt);
    EXPECT_EQ(environment().ratingOfFile(gone), std::nullopt);
    EXPECT_FALSE(environment().tagsAfterReadingFile(gone, {}));
}

TEST_F(Environment, WritesTagsOfItemsOnlyWhereThePersonWantsThat)
{
    if (!keepsAttributes()) {
        return skipWithout("extended attributes");
    }
    const auto delegate = launched();
    const auto item = addItem(*delegate, QStringLiteral("A"));
    written(item->bundleURL() + QStringLiteral("/picture.png"), "a");
    item->setItemURLData(zqDataForPersistentURL(item->bundleURL() + QStringLiteral("/picture.png")));
    delegate->saveAction();
    const QString file = item->itemURL();
    ASSERT_FALSE(file.isEmpty());
    for (const bool writes : {false, true}) {
        setWritesTags(writes);
        EXPECT_EQ(environment().writesTagsToFiles(), writes);
        ASSERT_TRUE(OpenMeta::setUserTags(QStringList{writes ? u"two"_qs : u"one"_qs}, file).isNull());
        environment().takeInTagsOfFiles({item});
        environment().didTakeInTagsOfFile(QStringLiteral("A"), file,
                                          {.tags = {}, .comment = QStringLiteral("taken"), .rating = {}});
        EXPECT_EQ(comesTrue([&] { return !item->itemTags().isEmpty() || !writes; }), true);
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
        EXPECT_EQ(item->itemTags().size(), writes ? 1 : 0);
        EXPECT_EQ(OpenMeta::getFinderComment(file).has_value(), writes);
    }
    environment().writeTagsToFile(file, {.tags = {QStringLiteral("copy")}, .comment = {}, .rating = 2});
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    EXPECT_EQ(OpenMeta::getUserTags(file), QStringList{QStringLiteral("copy")});
    EXPECT_EQ(OpenMeta::getRating(file), 2);
}

TEST_F(Environment, MakesItemDirectoriesAndHandsOnWhatOthersAreToDo)
{
    const auto delegate = launched();
    const QString path = environment().libraryPathForFilePath(QStringLiteral("/somewhere/logo.png"));
    EXPECT_EQ(QFileInfo(path).fileName(), QStringLiteral("logo.png"));
    EXPECT_TRUE(QFileInfo(QFileInfo(path).path()).isDir());
    EXPECT_EQ(QFileInfo(QFileInfo(path).path()).path(), delegate->libraryDirectory());
    EXPECT_TRUE(path.section(u'/', -2, -2).endsWith(QStringLiteral(".ztlibraryitem")));

    const auto item = addItem(*delegate, QStringLiteral("A"));
    environment().thumbForLibraryItem(item.get());
    EXPECT_EQ(imports.thumbs, QList<ZQLibraryBaseItem *>{item.get()});

    std::thread other([] { environment().presentError(ZQError::posix(EIO, QStringLiteral("x"))); });
    EXPECT_TRUE(comesTrue([this] { return !user.errors.isEmpty(); }));
    other.join();
    EXPECT_EQ(user.errors.first().code, EIO);
    user.errors.clear();
    TagFileWriter::sharedTagFileWriter().writeTagsToFile(QStringLiteral("/proc/version"), {QStringLiteral("a")}, {});
    EXPECT_TRUE(comesTrue([this] { return !user.errors.isEmpty(); })) << "a place that keeps no tags is told";
    EXPECT_EQ(user.errors.first().domain, TagFileWriter::errorDomain);

    QString seen;
    std::thread([&] { seen = delegate->libraryDirectory(); }).join();
    EXPECT_EQ(seen, delegate->libraryDirectory());
    ASSERT_TRUE(QDir(delegate->libraryDirectory()).removeRecursively());
    EXPECT_TRUE(environment().libraryPathForFilePath(QStringLiteral("/somewhere/logo.png")).isEmpty());
    EXPECT_FALSE(QFileInfo::exists(delegate->libraryDirectory())) << "an import does not make it";
}

TEST_F(Environment, WithoutALibraryThereAreNoDirectories)
{
    const auto delegate = application();
    delegate->setLibraryBundleDirectory(inWorld(QStringLiteral("missing/New.ztlibrary")));
    EXPECT_TRUE(LibraryBundleManager::newLibraryItemBundlePath().isEmpty());
    EXPECT_TRUE(environment().libraryPathForFilePath(QStringLiteral("/a.png")).isEmpty());
    delegate->saveAction(); // there is nothing to save
    bool isDone = false;
    delegate->checkAndDeleteLibraryLeftovers([&isDone] { isDone = true; });
    EXPECT_TRUE(isDone);
    EXPECT_FALSE(delegate->isCheckingLeftovers());
    EXPECT_FALSE(delegate->migrateToModelVersion(QStringLiteral("Version6")));
    ZQError error;
    EXPECT_FALSE(delegate->openLibraryForCommand(&error));
    EXPECT_EQ(error.domain, LibraryLock::errorDomain);
    EXPECT_EQ(error.code, LibraryLock::NotWritable);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("missing/New.ztlibrary")));
    EXPECT_FALSE(delegate->recoverLibrary(&error));

    const QString inTheWay = inWorld(QStringLiteral("Half.ztlibrary"));
    written(inTheWay + QStringLiteral("/Library"), "a file");
    const auto half = application();
    half->setLibraryBundleDirectory(inTheWay);
    EXPECT_TRUE(half->libraryDirectory().isEmpty());
    EXPECT_FALSE(half->openLibraryForCommand(&error));
    EXPECT_EQ(LibraryLock::lockBundle(inWorld(QStringLiteral("nowhere")), &error), nullptr);
    EXPECT_EQ(error.code, LibraryLock::NotWritable);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("No such file or directory")));
    EXPECT_FALSE(LibraryLock::isInUse(inWorld(QStringLiteral("nowhere"))));
}

TEST_F(Environment, WhatStandsInThePlaceOfTheLockIsNamedAndNoLock)
{
    const QString bundle = inWorld(QStringLiteral("Mine.ztlibrary"));
    const QString lock = bundle + QStringLiteral("/lock");
    ASSERT_TRUE(QDir().mkpath(bundle));
    ASSERT_EQ(::mkfifo(QFile::encodeName(lock).constData(), 0600), 0);
    ZQError error;
    EXPECT_EQ(LibraryLock::lockBundle(bundle, &error), nullptr);
    EXPECT_EQ(error.code, LibraryLock::NotWritable);
    EXPECT_TRUE(error.localizedDescription().contains(u'“' + lock + QStringLiteral("” is no file")))
        << qPrintable(error.localizedDescription());
    ASSERT_TRUE(QFile::remove(lock));
    EXPECT_NE(LibraryLock::lockBundle(bundle, &error), nullptr);
}

TEST_F(Environment, DirectoriesBesideTheLibraryAreMadeWhenTheyAreAskedFor)
{
    const auto delegate = launched();
    const QString base = inWorld(QStringLiteral("xdg_data_home/Zelto/"));
    EXPECT_EQ(delegate->exportIconDirectory(), base + QStringLiteral("ExportIcons"));
    EXPECT_EQ(delegate->wallpaperDirectory(), base + QStringLiteral("Wallpapers"));
    EXPECT_EQ(delegate->templateDirectory(), base + QStringLiteral("Templates"));
    EXPECT_EQ(delegate->exportIconDirectory(), base + QStringLiteral("ExportIcons")) << "it is there";
    for (const char *made : {"ExportIcons", "Wallpapers", "Templates"}) {
        EXPECT_TRUE(QFileInfo(base + QLatin1String(made)).isDir()) << made;
    }
    // What is remembered meanwhile is for the next launch.
    const QString opened = delegate->libraryBundleDirectory();
    ASSERT_TRUE(tamberin_AppDelegate::saveNewLibraryURL(madeLibrary(inWorld(QStringLiteral("Other.ztlibrary")), 0)));
    EXPECT_EQ(delegate->libraryBundleDirectory(), opened);
    EXPECT_EQ(LibraryLocation::rememberedOrDefault(), inWorld(QStringLiteral("Other.ztlibrary")));
    QDir(inWorld(QStringLiteral("Other.ztlibrary"))).removeRecursively();
    EXPECT_EQ(LibraryLocation::rememberedOrDefault(), defaultBundle());

    const QByteArray home = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QFile::encodeName(written(inWorld(QStringLiteral("a file")), "x")));
    EXPECT_EQ(application()->applicationSupportFolder(),
              QFile::decodeName(qgetenv("TMPDIR")) + QStringLiteral("/Zelto"));
    qputenv("XDG_DATA_HOME", home);
}

TEST_F(Environment, ALibraryInUseIsOpenedForNoCommandAndNotRecovered)
{
    madeLibrary(defaultBundle(), 0);
    ZQError error;
    const auto lock = LibraryLock::lockBundle(defaultBundle(), &error);
    ASSERT_TRUE(lock);
    const auto delegate = application();
    EXPECT_FALSE(delegate->openLibraryForCommand(&error));
    EXPECT_EQ(error.code, LibraryLock::InUse);
    EXPECT_FALSE(delegate->recoverLibrary(&error));
    EXPECT_EQ(delegate->managedObjectContext(), nullptr);
}

// Files that were moved: what the store cannot take now is told again later, also when there is more than one batch.
TEST_F(Environment, MovedFilesOfAWholeLibraryAreRenewed)
{
    constexpr int count = 201;
    const auto delegate = launched();
    const QString first = inWorld(QStringLiteral("files/one/two/three"));
    QDir().mkpath(first);
    QDir().mkpath(inWorld(QStringLiteral("files/one/other")));
    QList<ZQRef<ZQLibraryImage>> items;
    for (int i = 0; i < count; ++i) {
        const QString file = written(first + QStringLiteral("/%1.png").arg(i), QByteArray::number(i));
        items.append(addItem(*delegate, QString::number(i)));
        items.last()->setManaged(false);
        items.last()->setItemURLData(zqDataForPersistentURL(file));
    }
    delegate->saveAction();
    const QString moved = inWorld(QStringLiteral("files/one/other/moved"));
    ASSERT_TRUE(QDir().rename(first, moved));
    for (const auto &item : items) {
        EXPECT_EQ(item->itemURL(), QString());
    }
    zqWaitForPersistentURLSearches();
    EXPECT_TRUE(comesTrue([&] {
        return std::all_of(items.begin(), items.end(), [&](const auto &item) {
            return item->itemURLData() ==
                   zqDataForPersistentURL(moved + QStringLiteral("/%1.png").arg(item->bundleID()));
        });
    }));
}

TEST_F(Environment, AJournalThatCannotBeSeenToStaysForTheNextLaunch)
{
    {
        const auto delegate = launched();
        addItem(*delegate, QStringLiteral("A"));
        delegate->saveAction();
    }
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    const QString journal = written(defaultBundle() + QStringLiteral("/pending-tags"), "A\n");
    const auto delegate = application();
    ASSERT_TRUE(delegate->managedObjectContext());
    renameItems(defaultBundle() + QStringLiteral("/storedata"), true);
    delegate->applicationWillFinishLaunching();
    delegate->applicationDidFinishLaunching();
    renameItems(defaultBundle() + QStringLiteral("/storedata"), false);
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    EXPECT_EQ(contentOf(journal), QByteArray("A\n"));
}

TEST_F(Environment, RatingsAreFilledInByACommandTooAndLaterWhereTheStoreCannotBeRead)
{
    const auto delegate = launched();
    const auto coordinator = delegate->persistentStoreCoordinator();
    RatingFiller filler(coordinator, [](const ZQContextDidSave &) {});
    EXPECT_TRUE(filler.run([] { return true; })) << "there is nothing to do";
    ZQError error;
    EXPECT_TRUE(delegate->openLibraryForCommand(&error)) << "it is open";
}
