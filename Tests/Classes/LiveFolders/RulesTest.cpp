#include "Classes/LiveFolders/FolderListing.h"
#include "Classes/LiveFolders/FolderPlace.h"
#include "Classes/LiveFolders/FolderRemovals.h"
#include "Classes/LiveFolders/LiveFolderNames.h"
#include "Classes/LiveFolders/LiveFolderPlaces.h"
#include "Classes/LiveFolders/LiveFolderRecord.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

TEST(LiveFolderNames, SayWhichEntriesAreTaken)
{
    struct Case
    {
        const char *name;
        EntryKind asFile;
        EntryKind asFolder;
    };
    constexpr EntryKind nothing = EntryKind::Nothing;
    const Case cases[] = {
        {"a.webp", EntryKind::File, EntryKind::Folder},
        {"a.png", EntryKind::File, EntryKind::Folder},
        {"A.JPG", EntryKind::File, EntryKind::Folder},
        {"plan.pdf", EntryKind::File, EntryKind::Folder},
        {"drawing.eps", nothing, EntryKind::Folder},
        {"bundle.zip", nothing, EntryKind::Folder},
        {"bundle.RAR", nothing, EntryKind::Folder},
        {"notes.txt", nothing, EntryKind::Folder},
        {"folder", nothing, EntryKind::Folder},
        {"design.sketch", EntryKind::File, EntryKind::Package},
        {"Mine.ztlibrary", nothing, nothing},
        {"letter.zttemplate", nothing, nothing},
        {"Tool.app", nothing, nothing},
    };
    for (const Case &each : cases) {
        EXPECT_EQ(LiveFolderNames::kindOfFile(each.name), each.asFile) << each.name;
        EXPECT_EQ(LiveFolderNames::kindOfDirectory(each.name), each.asFolder) << each.name;
        EXPECT_FALSE(LiveFolderNames::isLeftAlone(each.name)) << each.name;
    }
    for (const char *name : {".hidden.png", "a.png~", "~$a.png", ".#a.png", "a.png.part", "a.png.CRDOWNLOAD", "a.tmp",
                             ".~lock.a.png#", ".git", ""}) {
        EXPECT_TRUE(LiveFolderNames::isLeftAlone(name)) << name;
    }
    EXPECT_TRUE(LiveFolderNames::isText("caf\xc3\xa9.png"));
    EXPECT_FALSE(LiveFolderNames::isText("caf\xe9.png"));
}

namespace {
FolderEntries entriesOf(std::initializer_list<std::pair<const char *, qint64>> files)
{
    FolderEntries entries;
    for (const auto &[name, size] : files) {
        FolderEntry entry;
        entry.kind = size < 0 ? EntryKind::Folder : EntryKind::File;
        entry.size = std::max<qint64>(size, 0);
        entry.inode = std::hash<std::string_view>()(name);
        entries.add(name, entry);
    }
    entries.sort();
    return entries;
}

LiveFolderRecord recordOfThree()
{
    LiveFolderRecord record(7);
    record.setStamp(1234);
    RecordedFolder root;
    root.key = 7;
    root.path = "/pictures";
    root.device = 3;
    root.inode = 4;
    root.place.emplace();
    root.place->fileSystem = 5;
    root.place->volume = QStringLiteral("A CARD");
    root.isKnown = true;
    root.entries = entriesOf({{"a.png", 10}, {"b", -1}});
    record.put(root);
    RecordedFolder below;
    below.key = 8;
    below.father = 7;
    below.path = "/pictures/b";
    below.isMissing = true;
    record.put(below);
    below.key = 9;
    below.father = 8;
    below.path = "/pictures/b/c";
    record.put(below);
    return record;
}
} // namespace

TEST(LiveFolderRecord, ComesBackAsItWasWritten)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("7.folder"));
    ZQError error;
    ASSERT_TRUE(recordOfThree().writeTo(file, "store", &error));
    auto read = LiveFolderRecord::readFrom(file, "store", 7);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->stamp(), 1234);
    EXPECT_TRUE(read->root()->isKnown);
    EXPECT_TRUE(read->root()->entries.isAs(entriesOf({{"a.png", 10}, {"b", -1}})));
    EXPECT_TRUE(read->folder(8)->isMissing);
    EXPECT_EQ(read->below(7), (QList<qint64>{8, 9}));
    EXPECT_FALSE(LiveFolderRecord::readFrom(file, "other", 7)) << "of another store";
    EXPECT_FALSE(LiveFolderRecord::readFrom(file, "store", 8)) << "of another root";
}

TEST(LiveFolderRecord, IsNoneWhenItIsDamaged)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("7.folder"));
    ZQError error;
    ASSERT_TRUE(recordOfThree().writeTo(path, "store", &error));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    file.close();
    const auto reads = [&path](const QByteArray &bytes) {
        QFile out(path);
        EXPECT_TRUE(out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size());
        out.close();
        return LiveFolderRecord::readFrom(path, "store", 7).has_value();
    };
    for (qsizetype i = 0; i < whole.size(); ++i) {
        QByteArray bytes = whole;
        bytes[i] = char(bytes[i] ^ 0x10);
        EXPECT_FALSE(reads(bytes)) << "byte " << i;
        EXPECT_FALSE(reads(whole.left(i))) << "cut at " << i;
    }
    EXPECT_TRUE(reads(whole));
}

TEST(LiveFolderRecord, FollowsFoldersThatMove)
{
    LiveFolderRecord record = recordOfThree();
    record.move(8, "/pictures/new/b", 7);
    ASSERT_TRUE(record.folderAtPath("/pictures/new/b/c"));
    EXPECT_EQ(record.folderAtPath("/pictures/new/b/c")->key, 9);
    EXPECT_FALSE(record.folderAtPath("/pictures/b"));
    EXPECT_EQ(record.children(7), QList<qint64>{8});
    record.remove(8);
    EXPECT_FALSE(record.folder(9));
    EXPECT_FALSE(record.folderAtPath("/pictures/new/b/c"));
    EXPECT_TRUE(record.children(7).isEmpty());
}

TEST(FolderPlace, TellsAVanishedPlaceFromAChangedOne)
{
    RecordedFolder was;
    was.device = 1;
    was.inode = 2;
    const auto placeWith = [](quint64 inode, quint64 fileSystem, const char *volume) {
        ZQFolderIdentity place;
        place.inode = inode;
        place.fileSystem = fileSystem;
        place.volume = QString::fromLatin1(volume);
        return place;
    };
    was.place = placeWith(2, 3, "A");
    was.isKnown = true;
    was.entries = entriesOf({{"a.png", 1}, {"b.png", 2}, {"c.png", 3}, {"d", -1}});
    struct Case
    {
        const char *what;
        quint64 device, inode, fileSystem;
        const char *volume;
        std::initializer_list<std::pair<const char *, qint64>> now;
        FolderPlace place;
    };
    const Case cases[] = {
        {"as it was", 1, 2, 3, "A", {{"a.png", 1}, {"b.png", 2}}, FolderPlace::Here},
        {"other files in the same folder", 1, 2, 3, "A", {{"x.png", 9}}, FolderPlace::Here},
        {"emptied, the same folder", 1, 2, 3, "A", {}, FolderPlace::Emptied},
        {"unmounted", 8, 9, 4, "", {}, FolderPlace::Emptied},
        {"another disk of the same number", 1, 2, 4, "", {{"x.png", 9}}, FolderPlace::Another},
        {"another card, all of whose numbers are the same", 1, 2, 3, "B", {{"x.png", 9}}, FolderPlace::Another},
        {"another disk", 8, 2, 4, "", {{"x.png", 9}}, FolderPlace::Another},
        {"the same disk under another number", 8, 2, 4, "A", {{"x.png", 9}}, FolderPlace::Here},
        {"less than half of it", 8, 7, 3, "A", {{"a.png", 1}, {"b.png", 7}}, FolderPlace::Another},
        {"made anew with what was in it",
         1,
         7,
         3,
         "A",
         {{"a.png", 1}, {"b.png", 2}, {"y.png", 2}},
         FolderPlace::HereAnew},
    };
    for (const Case &each : cases) {
        FolderListing now;
        now.status = FolderListing::Status::Whole;
        now.device = each.device;
        now.inode = each.inode;
        now.entries = entriesOf(each.now);
        EXPECT_EQ(placeOf(was, now, placeWith(each.inode, each.fileSystem, each.volume)), each.place) << each.what;
    }
}

TEST(FolderRemovals, AskAboutMuchAtOnceOnly)
{
    EXPECT_FALSE(FolderRemovals::isMuch(50, 50));
    EXPECT_TRUE(FolderRemovals::isMuch(51, 51));
    EXPECT_TRUE(FolderRemovals::isMuch(51, 101));
    EXPECT_FALSE(FolderRemovals::isMuch(51, 102));
}

TEST(RecentRemovals, SumUpTheLastMinuteOfEachFolder)
{
    RecentRemovals recent;
    const QDateTime start(QDate(2024, 1, 1), QTime(12, 0), Qt::UTC);
    const auto sum = [&](qint64 folder, qsizetype gone, qsizetype known, int second) {
        const auto all = recent.with(folder, {gone, known}, start.addSecs(second));
        return QList<qsizetype>{all.gone, all.known};
    };
    EXPECT_EQ(sum(0, 40, 100, 0), (QList<qsizetype>{40, 100}));
    EXPECT_FALSE(recent.since(0, start));
    recent.add(0, {40, 100}, start);
    recent.add(0, {0, 60}, start.addSecs(1)); // says nothing
    recent.add(0, {10, 60}, start.addSecs(50));
    EXPECT_EQ(sum(0, 20, 50, 60), (QList<qsizetype>{70, 100}));
    EXPECT_EQ(sum(7, 20, 50, 60), (QList<qsizetype>{20, 50}));
    EXPECT_EQ(sum(0, 20, 50, 61), (QList<qsizetype>{30, 60})) << "the first is longer ago";
    EXPECT_EQ(recent.since(0, start.addSecs(61)), start.addSecs(50));
    EXPECT_EQ(sum(0, 20, 50, -3600), (QList<qsizetype>{20, 50})) << "the clock was put back";
}

TEST(FolderListing, TakesNeitherLinksNorWhatIsNoFile)
{
    const QTemporaryDir folder;
    const auto file = [&folder](const char *name) {
        QFile out(folder.filePath(QString::fromUtf8(name)));
        EXPECT_TRUE(out.open(QIODevice::WriteOnly) && out.write("x") == 1);
    };
    file("a.png");
    file("line\nbreak.png");
    file(std::string(251, 'x').append(".png").c_str());
    const QByteArray base = QFile::encodeName(folder.path());
    ASSERT_EQ(::symlink("a.png", (base + "/link.png").constData()), 0);
    ASSERT_EQ(::symlink(".", (base + "/linked").constData()), 0);
    ASSERT_EQ(::mkfifo((base + "/pipe.png").constData(), 0600), 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    qstrncpy(address.sun_path, (base + "/s.png").constData(), sizeof address.sun_path);
    ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    ::close(listener);
    ASSERT_EQ(::close(::creat((base + "/caf\xe9.png").constData(), 0600)), 0);
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("sub")));

    const FolderListing listing = FolderListing::ofFolder(base);
    ASSERT_EQ(listing.status, FolderListing::Status::Whole);
    QStringList names;
    for (const FolderEntry &entry : listing.entries.all()) {
        names.append(QString::fromStdString(std::string(listing.entries.name(entry))));
    }
    EXPECT_EQ(names, (QStringList{QStringLiteral("a.png"), QStringLiteral("line\nbreak.png"), QStringLiteral("sub"),
                                  QString(251, u'x') + QStringLiteral(".png")}));
    EXPECT_EQ(listing.unheldNames, 1);

    EXPECT_EQ(FolderListing::ofFolder(base + "/linked").status, FolderListing::Status::Gone);
    EXPECT_EQ(FolderListing::ofFolder(base + "/linked", FolderListing::Links::Followed).inode, listing.inode);
    EXPECT_EQ(FolderListing::ofFolder(base + "/a.png").status, FolderListing::Status::Gone);
    EXPECT_EQ(FolderListing::ofFolder(base + "/none").status, FolderListing::Status::Gone);
}

TEST(LiveFolderPlaces, RefuseWhatNobodyWantsMirrored)
{
    const QTemporaryDir world;
    const auto make = [&world](const char *name) {
        const QString path = world.filePath(QString::fromUtf8(name));
        EXPECT_TRUE(QDir().mkpath(path));
        return path;
    };
    const QString bundle = make("Mine.ztlibrary");
    const QString inBundle = make("Mine.ztlibrary/Library");
    QFile file(world.filePath(QStringLiteral("a.png")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(::symlink(inBundle.toUtf8().constData(), world.filePath(QStringLiteral("way")).toUtf8().constData()), 0);
    const QString refused[] = {QStringLiteral("/"),
                               QStringLiteral("/proc/self"),
                               QDir::homePath(),
                               world.filePath(QStringLiteral("none")),
                               file.fileName(),
                               bundle,
                               inBundle,
                               world.filePath(QStringLiteral("way")),
                               make(".Trash-1000/files/pictures"),
                               make("design.sketch")};
    for (const QString &path : refused) {
        EXPECT_FALSE(LiveFolderPlaces::refusal(path, bundle).isEmpty()) << qPrintable(path);
    }
    EXPECT_FALSE(LiveFolderPlaces::refusal(world.path(), make("Unmarked")).isEmpty()) << "it would show the library";
    for (const QString &path : {make("pictures"), make("with a Mine.ztlibrary in it"), world.path()}) {
        EXPECT_EQ(LiveFolderPlaces::refusal(path, bundle), QString()) << qPrintable(path);
    }
}
