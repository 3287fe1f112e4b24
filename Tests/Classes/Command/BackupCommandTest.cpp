#include "Classes/Application/BackupFolder.h"
#include "Classes/Application/BackupRoom.h"
#include "Classes/Application/BackupSchedule.h"
#include "Classes/Application/LibraryBackup.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQFolderIdentity.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"
#include "Tests/Classes/Command/CommandFixture.h"
#include "Tests/Support/FileSizeLimit.h"

#include <QSet>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

nlink_t linksOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_nlink : 0;
}

QMap<QString, QByteArray> attributesOf(const QString &path)
{
    QMap<QString, QByteArray> attributes;
    for (const QString &name : ZQExtendedAttributes::list(path)) {
        attributes.insert(name, ZQExtendedAttributes::get(path, name).value_or(QByteArray()));
    }
    return attributes;
}

} // namespace

class BackupTest : public CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        ASSERT_TRUE(QDir().mkpath(backups()));
        ASSERT_EQ(run({"import", picture(QStringLiteral("in/red.png"), qRgb(200, 0, 0)),
                       picture(QStringLiteral("in/blue.png"), qRgb(0, 0, 200))}),
                  0)
            << context.errors.toStdString();
    }

    QString backups() const { return world.filePath(QStringLiteral("backups")); }
    QString folder() const { return backups() + QStringLiteral("/Test"); }
    QUuid store() const { return delegate->persistentStoreCoordinator()->storeUUID(); }
    // The bundle's path; empty for none.
    QString backUp(const QStringList &more = {})
    {
        status = run(QStringList{QStringLiteral("backup"), backups(), QStringLiteral("--json")} + more);
        return object().value(QStringLiteral("path")).toString();
    }
    void makeDelegate(const QString &bundle)
    {
        delegate.reset();
        ApplicationParts parts;
        parts.userInteraction = &user;
        parts.importManager = &AImportManager::sharedAImportManager();
        parts.liveFolderManager = &liveFolders;
        delegate = std::make_unique<tamberin_AppDelegate>(parts);
        delegate->setLibraryBundleDirectory(bundle);
    }
    void openLibrary(const QString &bundle)
    {
        makeDelegate(bundle);
        ZQError error;
        ASSERT_TRUE(delegate->openLibraryForCommand(&error)) << qPrintable(error.localizedDescription());
    }
    ZQRef<ZQLibraryBaseItem> item(const QString &title)
    {
        const auto ids = delegate->managedObjectContext()->fetchObjectIDs({ZQLibraryBaseItem::entityName()});
        for (const auto &id : *ids) {
            const auto found = ZQLibraryBaseItem::itemsWithIDs({id}, *delegate->managedObjectContext());
            if (found.size() == 1 && found.first()->title() == title) {
                return found.first();
            }
        }
        return {};
    }
    // Where a file of the library lies in a backup.
    QString in(const QString &backup, const QString &title)
    {
        const auto found = item(title);
        return backup + found->itemURL().mid(delegate->libraryBundleDirectory().size());
    }
    QString makeFolder(const QString &name, const QUuid &of, bool isWhole)
    {
        const QString path = folder() + u'/' + name;
        EXPECT_TRUE(QDir().mkpath(path + QStringLiteral("/Library/x")));
        BackupRecord record;
        record.store = of;
        record.began = QDateTime::fromMSecsSinceEpoch(1000);
        record.ended = isWhole ? record.began : QDateTime();
        EXPECT_TRUE(of.isNull() || record.write(path, nullptr));
        return path;
    }

    int status = 0;
};

TEST_F(BackupTest, SharesWhatDidNotChangeWithTheOneBeforeAndNothingWithTheLibrary)
{
    const QString first = backUp();
    ASSERT_EQ(status, 0) << context.errors.toStdString();
    EXPECT_EQ(object().value(QStringLiteral("items")).toInt(), 2);
    EXPECT_EQ(object().value(QStringLiteral("bytes")), object().value(QStringLiteral("newBytes")));
    ASSERT_EQ(run({"tag", "--add", "warm", item(QStringLiteral("red"))->bundleID()}), 0);
    const QString second = backUp({QStringLiteral("--verify-all")});
    ASSERT_EQ(status, 0) << context.output.toStdString() << context.errors.toStdString();
    EXPECT_EQ(linksOf(in(second, QStringLiteral("blue"))), 2u);
    EXPECT_EQ(linksOf(in(second, QStringLiteral("red"))), 1u) << "its tags are other ones now";
    EXPECT_NE(attributesOf(in(first, QStringLiteral("red"))), attributesOf(in(second, QStringLiteral("red"))));
    EXPECT_EQ(linksOf(item(QStringLiteral("blue"))->itemURL()), 1u);
    EXPECT_LT(object().value(QStringLiteral("newBytes")).toInt(), object().value(QStringLiteral("bytes")).toInt());

    // The same size and time, as some programs leave them, and other contents.
    const QString blue = item(QStringLiteral("blue"))->itemURL();
    struct stat before = {};
    ASSERT_EQ(::stat(QFile::encodeName(blue).constData(), &before), 0);
    QFile file(blue);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(file.size() - 1) && file.write("!") == 1);
    file.close();
    const timespec times[] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(blue).constData(), times, 0), 0);
    const QString third = backUp();
    EXPECT_EQ(linksOf(in(third, QStringLiteral("blue"))), 1u);
    EXPECT_EQ(linksOf(in(third, QStringLiteral("red"))), 2u);
}

TEST_F(BackupTest, OpenedAsALibraryItChangesNoOtherOne)
{
    const QString first = backUp();
    const QString second = backUp();
    ASSERT_EQ(status, 0) << context.errors.toStdString();
    const QString red = in(first, QStringLiteral("red"));
    const QString other = in(second, QStringLiteral("red"));
    const QString bundleID = item(QStringLiteral("red"))->bundleID();
    ASSERT_EQ(linksOf(red), 2u);
    const auto before = attributesOf(red);

    openLibrary(second);
    EXPECT_EQ(run("verify --deep"), 0) << context.output.toStdString();
    ASSERT_EQ(run({"tag", "--add", "mine", bundleID}), 0) << context.errors.toStdString();
    EXPECT_EQ(attributesOf(red), before);
    EXPECT_NE(attributesOf(other), before);
    EXPECT_EQ(linksOf(red), 1u);
    EXPECT_EQ(run("verify --deep"), 0) << context.output.toStdString();
    EXPECT_EQ(run({"backup", backups()}), 2) << "of a backup, beside itself";
}

TEST_F(BackupTest, OpenedAsALibraryItStaysWithWhatWasDoneInIt)
{
    const QString main = delegate->libraryBundleDirectory();
    const QString opened = backUp();
    const QString later = backUp();
    ASSERT_EQ(status, 0) << context.errors.toStdString();
    openLibrary(opened);
    ASSERT_EQ(run({"import", picture(QStringLiteral("new.png"), qRgb(0, 200, 0))}), 0) << context.errors.toStdString();
    ASSERT_TRUE(QDir().mkpath(world.filePath(QStringLiteral("elsewhere"))));
    EXPECT_EQ(run({"backup", world.filePath(QStringLiteral("elsewhere"))}), 0) << context.errors.toStdString();

    openLibrary(main);
    const QString newest = backUp({"--keep", "1"});
    ASSERT_EQ(status, 0) << context.errors.toStdString();
    EXPECT_EQ(object().value(QStringLiteral("removed")).toArray(), QJsonArray{later});
    const QJsonArray notes = object().value(QStringLiteral("notes")).toArray();
    ASSERT_EQ(notes.size(), 1);
    EXPECT_TRUE(notes.first().toString().contains(opened));
    EXPECT_FALSE(QFile::exists(later));
    openLibrary(opened);
    EXPECT_EQ(run("statistics --quick --json"), 0);
    EXPECT_EQ(object().value(QStringLiteral("items")).toInt(), 3);
    EXPECT_EQ(run("verify --deep"), 0) << context.output.toStdString();

    // Nothing is shared with it either.
    openLibrary(main);
    ASSERT_TRUE(QDir(newest).removeRecursively());
    EXPECT_EQ(linksOf(in(backUp(), QStringLiteral("blue"))), 1u);
}

TEST_F(BackupTest, WhereNothingCanBeNotedItIsNotOpened)
{
    const QString backup = backUp();
    ASSERT_EQ(status, 0) << context.errors.toStdString();
    makeDelegate(backup);
    ZQError error;
    bool isOpen = false;
    {
        const FileSizeLimit full(1);
        isOpen = delegate->openLibraryForCommand(&error);
    }
    EXPECT_FALSE(isOpen);
    EXPECT_TRUE(error.localizedDescription().contains(backup)) << qPrintable(error.localizedDescription());
    EXPECT_FALSE(BackupRecord::of(backup)->isLibrary());
}

TEST_F(BackupTest, WhatIsPurgedOrRenamedMeanwhileIsAsTheStoreSays)
{
    bool isChanged = false;
    const auto change = [&](LibraryBackup::Stage stage, qint64, qint64) {
        if (stage != LibraryBackup::Stage::Measuring || std::exchange(isChanged, true)) {
            return;
        }
        item(QStringLiteral("blue"))->setNewTitle(QStringLiteral("azure"));
        delegate->saveAction();
        EXPECT_EQ(run({"delete", item(QStringLiteral("red"))->bundleID()}), 0);
        EXPECT_EQ(run("purge"), 0);
    };
    const QString blue = item(QStringLiteral("blue"))->bundleID();
    const BackupResult result =
        LibraryBackup(delegate->persistentStoreCoordinator(), delegate->libraryBundleDirectory())
            .run({backups(), 0, true}, {}, change);
    ASSERT_TRUE(isChanged);
    ASSERT_FALSE(result.path.isEmpty()) << qPrintable(result.error.localizedDescription());
    EXPECT_EQ(result.problems, QStringList());
    ASSERT_EQ(result.notes.size(), 1);
    EXPECT_TRUE(result.notes.first().contains(QStringLiteral("red.png")));
    EXPECT_TRUE(
        QFile::exists(result.path + QStringLiteral("/Library/") + blue + QStringLiteral(".ztlibraryitem/blue.png")));
}

TEST_F(BackupTest, FoldersKeepTheirAttributesAndWhatCannotBeReadInThemIsTold)
{
    const QString red = QFileInfo(item(QStringLiteral("red"))->itemURL()).path();
    ASSERT_TRUE(ZQExtendedAttributes::set(red, QStringLiteral("mine"), "kept"));
    const timespec times[] = {{1000, 0}, {2000, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(red).constData(), times, 0), 0);
    const QString first = backUp();
    ASSERT_EQ(status, 0) << context.errors.toStdString();
    const QString copy = QFileInfo(in(first, QStringLiteral("red"))).path();
    EXPECT_EQ(ZQExtendedAttributes::get(copy, QStringLiteral("mine")), QByteArray("kept"));
    EXPECT_EQ(QFileInfo(copy).lastModified().toSecsSinceEpoch(), 2000);

    const QByteArray undecodable = QFile::encodeName(red) + "/\xff.txt";
    const ZQFileDescriptor made(::open(undecodable.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_TRUE(made.isOpen());
    const QString second = backUp({"--keep", "1"});
    EXPECT_EQ(status, 1);
    EXPECT_EQ(object().value(QStringLiteral("problems")).toArray().size(), 1);
    EXPECT_TRUE(QFile::exists(first) && QFile::exists(in(second, QStringLiteral("red"))));
}

TEST_F(BackupTest, TheOldestGoOnceTheNewOneIsWhole)
{
    const QString stranger = makeFolder(QStringLiteral("2020-01-01T000000Z.ztlibrary"), QUuid::createUuid(), true);
    const QString nobodys = makeFolder(QStringLiteral("2020-01-02T000000Z.ztlibrary"), {}, true);
    const QString named = makeFolder(QStringLiteral("My copy.ztlibrary"), store(), true);
    const QString first = backUp();
    const QString second = backUp();
    const QString third = backUp({"--keep", "2"});
    EXPECT_EQ(object().value(QStringLiteral("removed")).toArray(), QJsonArray{first});
    EXPECT_FALSE(QFile::exists(first));
    for (const QString &path : {stranger, nobodys, named, second, third}) {
        EXPECT_TRUE(QFile::exists(path + QStringLiteral("/Library"))) << path.toStdString();
    }

    ASSERT_TRUE(QFile::remove(item(QStringLiteral("red"))->itemURL()));
    const QString lacking = backUp({"--keep", "1"});
    EXPECT_EQ(status, 1);
    EXPECT_EQ(object().value(QStringLiteral("problems")).toArray().size(), 1);
    for (const QString &path : {second, third, lacking}) {
        EXPECT_TRUE(QFile::exists(path)) << "what lacks something replaces nothing: " << path.toStdString();
    }
}

TEST_F(BackupTest, WhatWasCutOffGoesAndNothingElse)
{
    const QString ending = QStringLiteral(".unfinished");
    const QString ours = makeFolder(QStringLiteral("2020-01-01T000000Z.ztlibrary") + ending, store(), false);
    const QString anothers =
        makeFolder(QStringLiteral("2020-01-02T000000Z.ztlibrary") + ending, QUuid::createUuid(), false);
    const QString nobodys = makeFolder(QStringLiteral("2020-01-03T000000Z.ztlibrary") + ending, {}, false);
    const QString named = makeFolder(QStringLiteral("Work.ztlibrary") + ending, store(), false);
    const QString empty = folder() + QStringLiteral("/2020-01-04T000000Z.ztlibrary") + ending;
    const QString begun = folder() + QStringLiteral("/2020-01-06T000000Z.ztlibrary") + ending;
    const QString others = folder() + QStringLiteral("/2020-01-07T000000Z.ztlibrary") + ending;
    for (const QString &path : {empty, begun, others}) {
        ASSERT_TRUE(QDir().mkpath(path));
    }
    for (const QString &path : {begun + QStringLiteral("/.zelto-1x"), others + QStringLiteral("/mine")}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    const QString elsewhere = world.filePath(QStringLiteral("elsewhere"));
    ASSERT_TRUE(QDir().rename(makeFolder(QStringLiteral("x"), store(), false), elsewhere));
    const QString link = folder() + QStringLiteral("/2020-01-05T000000Z.ztlibrary") + ending;
    ASSERT_TRUE(QFile::link(elsewhere, link));
    backUp();
    ASSERT_EQ(status, 0) << context.errors.toStdString();
    EXPECT_FALSE(QFile::exists(ours));
    EXPECT_FALSE(QFile::exists(empty) || QFile::exists(begun));
    EXPECT_TRUE(QFile::exists(others + QStringLiteral("/mine")));
    for (const QString &path : {anothers, nobodys, named, elsewhere, link}) {
        EXPECT_TRUE(QFile::exists(path + QStringLiteral("/Library/x"))) << path.toStdString();
    }
}

TEST_F(BackupTest, StoppedItLeavesWhatWasThere)
{
    const QString first = backUp();
    std::stop_source stop;
    for (const auto at :
         {LibraryBackup::Stage::Measuring, LibraryBackup::Stage::Copying, LibraryBackup::Stage::Verifying}) {
        stop = {};
        const BackupResult result =
            LibraryBackup(delegate->persistentStoreCoordinator(), delegate->libraryBundleDirectory())
                .run({backups(), 1, true}, stop.get_token(), [&](LibraryBackup::Stage stage, qint64, qint64) {
                    if (stage == at) {
                        stop.request_stop();
                    }
                });
        EXPECT_TRUE(result.isCancelled) << int(at);
        EXPECT_TRUE(result.path.isEmpty());
        EXPECT_EQ(QDir(folder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                  QStringList{QFileInfo(first).fileName()});
    }
}

TEST_F(BackupTest, RefusesPlacesThatCannotHoldIt)
{
    const QString library = delegate->libraryBundleDirectory();
    ASSERT_TRUE(QDir().mkpath(world.filePath(QStringLiteral("Other.ztlibrary/in"))));
    const QString link = world.filePath(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(library, link));
    for (const QString &place :
         {library, library + QStringLiteral("/Library"), world.path(), link,
          world.filePath(QStringLiteral("Other.ztlibrary/in")), world.filePath(QStringLiteral("nowhere"))}) {
        EXPECT_EQ(run({"backup", place}), 2) << place.toStdString();
        EXPECT_TRUE(context.errors.contains("Choose another folder")) << context.errors.toStdString();
    }
    ZQError error;
    const auto held = BackupFolder::open(backups(), QStringLiteral("Test"), store(), &error);
    ASSERT_TRUE(held);
    EXPECT_EQ(run({"backup", backups()}), 2) << "while another one works there";
}

TEST_F(BackupTest, OfTwoCopiesOfALibraryEachKeepsItsOwnInTheOrderTheyWereMade)
{
    const QString ahead = backUp();
    auto record = BackupRecord::of(ahead);
    ASSERT_TRUE(record);
    record->began = record->ended = QDateTime::currentDateTimeUtc().addYears(3);
    ASSERT_TRUE(record->write(ahead, nullptr));
    const QString of = makeFolder(QStringLiteral("2020-01-01T000000Z.ztlibrary"), store(), true);
    record = BackupRecord::of(of);
    auto elsewhere = ZQFolderIdentity::read(delegate->libraryBundleDirectory());
    ASSERT_TRUE(elsewhere);
    ++elsewhere->type;
    record->place = elsewhere->toString();
    ASSERT_TRUE(record->write(of, nullptr));
    const QString second = backUp();
    EXPECT_EQ(linksOf(in(second, QStringLiteral("red"))), 2u) << "dates tell nothing, contents do";
    const QString third = backUp({"--keep", "2"});
    EXPECT_EQ(object().value(QStringLiteral("removed")).toArray(), QJsonArray{ahead});
    EXPECT_TRUE(QFile::exists(of) && QFile::exists(second) && QFile::exists(third));
}

TEST_F(BackupTest, BeginsByItselfOnlyWhereItsFolderIs)
{
    const auto isAbsent = [this](const QString &directory, const QString &madeIn) {
        return BackupLook::read({directory, delegate->libraryBundleDirectory(), store(), madeIn}).isAbsent;
    };
    EXPECT_FALSE(isAbsent(backups(), {})) << "the first one makes it";
    EXPECT_TRUE(isAbsent(backups(), folder()));
    EXPECT_FALSE(isAbsent(world.path(), folder())) << "another one was chosen";
    ASSERT_TRUE(QDir().mkpath(folder()));
    EXPECT_FALSE(isAbsent(backups(), folder()));
}

TEST_F(BackupTest, SaysWhyNoneBeginsWhereThePersonAsksForOne)
{
    auto &defaults = ZQUserDefaults::standardUserDefaults();
    BackupSchedule schedule(*delegate);
    EXPECT_FALSE(schedule.backUpNow().isNull()) << "no folder was chosen";
    defaults.setObjectForKey(backups(), BackupSchedule::directoryKey);
    for (const auto &[set, kept] : {std::pair(-3, 0), std::pair(2, 2), std::pair(1 << 30, BackupSchedule::mostKept)}) {
        defaults.setObjectForKey(set, BackupSchedule::keepKey);
        EXPECT_EQ(BackupSchedule::keptCount(), kept);
    }
    const ZQError error = schedule.backUpNow();
    EXPECT_TRUE(error.isNull()) << error.localizedDescription().toStdString();
    EXPECT_EQ(schedule.backUpNow().code, EBUSY);
    zqRunMainLoopUntil([&schedule] { return !schedule.work().isRunning(); });
    EXPECT_FALSE(schedule.work().result().path.isEmpty());
    for (const QString &key : {BackupSchedule::directoryKey, BackupSchedule::keepKey, BackupSchedule::madeInKey}) {
        defaults.removeObjectForKey(key);
    }
}

TEST_F(BackupTest, LeavesRoomForOthersOnItsDisk)
{
    constexpr qint64 million = 1'000'000;
    const struct
    {
        BackupRoom room;
        qint64 bytes;
        bool isHeld;
    } cases[] = {{{100 * million, 1000 * million}, 50 * million, true},
                 {{100 * million, 1000 * million}, 51 * million, false},
                 {{0, 1000 * million}, 0, false},
                 {{1 << 30, 4'000'000 * million}, 0, true},
                 {{1 << 30, 4'000'000 * million}, 1, false},
                 {{0, 0}, million, true}};
    for (const auto &each : cases) {
        EXPECT_EQ(each.room.holds(each.bytes), each.isHeld) << each.room.available << ' ' << each.bytes;
    }
    const BackupRoom here = BackupRoom::at(backups());
    EXPECT_TRUE(here.available > 0 && here.total >= here.available);
    BackupRoom::isShared(backups(), backups());
    EXPECT_TRUE(QDir(backups()).isEmpty());
}

TEST_F(BackupTest, IsDueByItsIntervalWhateverTheClockDid)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const struct
    {
        QDateTime ended;
        qint64 days;
        bool isDue;
    } cases[] = {{{}, 1, true},
                 {{}, 0, false},
                 {now.addDays(-2), 0, false},
                 {now.addSecs(-3600), 1, false},
                 {now.addDays(-1), 1, true},
                 {now.addDays(-6), 7, false},
                 {now.addDays(300), 7, true}};
    for (const auto &each : cases) {
        EXPECT_EQ(BackupSchedule::isDue(each.ended, now, each.days), each.isDue)
            << each.ended.toString(Qt::ISODate).toStdString() << ' ' << each.days;
    }
}

TEST_F(CommandTest, StatisticsCountItemsAndTheirFiles)
{
    const QString red = picture(QStringLiteral("red.png"), qRgb(200, 0, 0));
    ASSERT_TRUE(QFile::copy(red, world.filePath(QStringLiteral("again.png"))));
    ASSERT_EQ(run({"import", red, world.filePath(QStringLiteral("again.png")), picture("blue.png", qRgb(0, 0, 200)),
                   "--duplicates", "keep"}),
              0);
    ASSERT_EQ(run({"import", picture("set/green.png", qRgb(0, 200, 0)).section(u'/', 0, -2)}), 0);
    ASSERT_EQ(run("items --json"), 0);
    const QString first = array().first().toObject().value(QStringLiteral("bundleID")).toString();
    ASSERT_EQ(run({"tag", "--add", "warm", first}), 0);
    ASSERT_EQ(run({"rate", first, "4"}), 0);
    ASSERT_EQ(run("statistics --json"), 0) << context.errors.toStdString();
    const QJsonObject numbers = object();
    const QHash<QString, int> expected{{"items", 4},   {"deleted", 0},    {"managed", 4}, {"untagged", 3},
                                       {"unrated", 3}, {"duplicates", 1}, {"missing", 0}, {"duplicateGroups", 1}};
    for (auto it = expected.begin(); it != expected.end(); ++it) {
        EXPECT_EQ(numbers.value(it.key()).toInt(-1), it.value()) << it.key().toStdString();
    }
    qint64 bytes = 0;
    for (const char *name : {"red.png", "again.png", "blue.png", "set/green.png"}) {
        bytes += QFileInfo(world.filePath(QLatin1StringView(name))).size();
    }
    EXPECT_EQ(numbers.value(QStringLiteral("bytes")).toInteger(), bytes);
    EXPECT_EQ(numbers.value(QStringLiteral("kinds")).toArray().size(), 1);
    EXPECT_EQ(numbers.value(QStringLiteral("largest")).toArray().size(), 4);
    const QJsonObject set = numbers.value(QStringLiteral("folders")).toArray().first().toObject();
    EXPECT_EQ(set.value(QStringLiteral("name")).toString(), QStringLiteral("set"));
    EXPECT_EQ(set.value(QStringLiteral("items")).toInt(), 1);

    ASSERT_EQ(run({"delete", first}), 0);
    ASSERT_EQ(run("statistics --quick --json"), 0);
    EXPECT_EQ(object().value(QStringLiteral("items")).toInt(), 3);
    EXPECT_EQ(object().value(QStringLiteral("deleted")).toInt(), 1);
    EXPECT_FALSE(object().contains(QStringLiteral("bytes")));
}
