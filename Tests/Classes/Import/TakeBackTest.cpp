// Item directories whose items a store has lost become items again, in place.

#include "Classes/Import/TakeBackOperation.h"
#include "Classes/Tags/OpenMeta.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"
#include "Models/DataModel/ZQModel.h"
#include "Tests/Classes/Import/ImportFixture.h"
#include "Tests/Support/DamagedStore.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <sqlite3.h>
#include <sys/stat.h>

namespace {

class TakeBackTest : public ImportFixture
{
protected:
    QString storePath() const { return path(QStringLiteral("Zelto.ztlibrary/storedata")); }
    QString itemPath(const QString &relative) const
    {
        return path(QStringLiteral("Zelto.ztlibrary/Library/")) + relative;
    }
    void loseStore()
    {
        delegate.reset();
        for (const char *ending : {"", "-wal", "-shm"}) {
            QFile::remove(storePath() + QLatin1String(ending));
        }
    }
    void reopen()
    {
        delegate.reset();
        user.errors.clear();
        user.questions.clear();
        ImportFixture::SetUp();
        QCoreApplication::processEvents();
    }
    // As the window does after its start.
    void checkLeftovers()
    {
        delegate->checkAndDeleteLibraryLeftovers();
        zqRunMainLoopUntil([this] { return !delegate->isCheckingLeftovers(); });
        delegate->waitForRemovals();
        QCoreApplication::processEvents();
    }
    QList<ZQRef<ZQSidebarBaseItem>> recoveredProjects() const
    {
        QList<ZQRef<ZQSidebarBaseItem>> found;
        for (const auto &child : projectsLabel()->orderedChildren()) {
            if (child->title() == QStringLiteral("Recovered")) {
                found.append(child);
            }
        }
        return found;
    }
};

quint64 inodeOf(const QString &file)
{
    struct stat status = {};
    EXPECT_EQ(::stat(QFile::encodeName(file).constData(), &status), 0) << file.toStdString();
    return status.st_ino;
}

} // namespace

TEST_F(TakeBackTest, AfterALostStoreEveryFileIsAnItemAgainWhereItLies)
{
    import({writeImage(QStringLiteral("a.jpeg"), {900, 600}, Qt::blue), writeImage(QStringLiteral("b.png"), {20, 20}),
            writeFile(QStringLiteral("c.svg"), "<svg xmlns='http://www.w3.org/2000/svg' width='40' height='30'>"
                                               "<rect width='40' height='30' fill='red'/></svg>")});
    ASSERT_EQ(items().size(), 3);
    const auto a = item(QStringLiteral("a"));
    const QString file = a->itemURL();
    const bool keepsAttributes = OpenMeta::setRating(4, file).isNull();
    a->addTagsObject(addTag(QStringLiteral("harbour")).get());
    a->setNotes(QStringLiteral("north side"));
    a->writeOpenMetaToDisk();
    delegate->saveAction();
    const QString bundleID = a->bundleID();
    const QString digest = a->SHA1();
    const QDateTime created = a->creation_date();
    const quint64 inode = inodeOf(file);
    const QStringList directories = itemDirectories();

    loseStore();
    reopen(); // as for a command
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    EXPECT_EQ(itemDirectories(), directories);
    ASSERT_EQ(recoveredProjects().size(), 1);
    EXPECT_EQ(recoveredProjects().first()->numberOfItems(), 3);
    EXPECT_TRUE(user.errors.isEmpty());
    ASSERT_EQ(user.questions.size(), 1);
    EXPECT_TRUE(user.questions.first().message.contains(QStringLiteral("3 files")));
    const auto again = item(QStringLiteral("a"));
    EXPECT_EQ(again->bundleID(), bundleID);
    EXPECT_EQ(again->SHA1(), digest);
    EXPECT_EQ(again->itemURL(), file);
    EXPECT_EQ(inodeOf(file), inode);
    EXPECT_EQ(again->pixelWidth(), 900);
    EXPECT_EQ(again->modification_date().date(), created.date());
    EXPECT_TRUE(QFileInfo(item(QStringLiteral("c"))->thumbURL()).isFile());
    EXPECT_TRUE(QFileInfo(item(QStringLiteral("c"))->bundleURL() + u'/' + ZQLibraryBaseItem::representationBitmapName)
                    .isFile());
    if (keepsAttributes) {
        EXPECT_TRUE(tagTitles(*again).contains(QStringLiteral("harbour")));
        EXPECT_EQ(again->notes(), QStringLiteral("north side"));
        EXPECT_EQ(again->rating(), 4);
    }

    import({writeImage(QStringLiteral("d.png"), {20, 20})});
    reopen();
    checkLeftovers();
    EXPECT_EQ(items().size(), 4);
    EXPECT_EQ(itemDirectories().size(), 4);
    EXPECT_EQ(recoveredProjects().size(), 1);
    EXPECT_TRUE(user.errors.isEmpty());
}

TEST_F(TakeBackTest, AfterARecoveryWhatIsMissingComesBackAndTheMarkGoes)
{
    import({writeImage(QStringLiteral("a.png"), {20, 20}), writeImage(QStringLiteral("b.png"), {21, 20})});
    const QString lost = item(QStringLiteral("b"))->bundleID();
    delegate.reset();
    sqlite3 *store = nullptr;
    ASSERT_EQ(sqlite3_open(storePath().toUtf8().constData(), &store), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(store, "DELETE FROM ZQLibraryBaseItem WHERE title = 'b'", nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(store);
    ZQError error;
    ASSERT_TRUE(ZQPersistentStoreCoordinator::recoverStoreAtPath(zqCurrentModel(), storePath(), &error))
        << error.localizedDescription().toStdString();
    reopen();
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_EQ(item(QStringLiteral("b"))->bundleID(), lost);
    EXPECT_FALSE(delegate->persistentStoreCoordinator()->wasRecovered());
}

TEST_F(TakeBackTest, TakingBackMayBeEndedAnywhereAndGoesOnAtTheNextLaunch)
{
    QStringList sources;
    for (int i = 0; i < 150; ++i) {
        sources.append(writeImage(QStringLiteral("in/%1.png").arg(i), {8, 8}));
    }
    import(sources);
    loseStore();
    std::function<void()> cancel;
    user.onBeginProgress = [&](const std::function<void()> &block) { cancel = block; };
    {
        const auto token = ZQNotificationCenter::defaultCenter().addObserver(
            AImportManager::didFinishImportOperation, nullptr, [&](const ZQNotification &) { cancel(); });
        reopen();
    }
    const qsizetype first = items().size();
    EXPECT_GT(first, 0);
    EXPECT_LT(first, 150);
    EXPECT_EQ(itemDirectories().size(), 150);
    reopen();
    checkLeftovers();
    EXPECT_EQ(items().size(), 150);
    EXPECT_EQ(itemDirectories().size(), 150);
    ASSERT_EQ(recoveredProjects().size(), 1);
    EXPECT_EQ(recoveredProjects().first()->numberOfItems(), 150);
}

TEST_F(TakeBackTest, ADirectoryThatGivesNoItemStaysAndIsSpokenOfOnce)
{
    import({writeImage(QStringLiteral("a.png"), {20, 20})});
    loseStore();
    QDir().mkpath(itemPath(QStringLiteral("Empty.ztlibraryitem")));
    writeImage(QStringLiteral("Zelto.ztlibrary/Library/Thumb.ztlibraryitem/x_thumb.png"), {20, 20});
    writeImage(QStringLiteral("Zelto.ztlibrary/Library/Bitmap.ztlibraryitem/___itemBitmap.png"), {20, 20});
    writeFile(QStringLiteral("Zelto.ztlibrary/Library/Kind.ztlibraryitem/letter.eps"), "%!PS");
    writeFile(QStringLiteral("Zelto.ztlibrary/Library/Archive.ztlibraryitem/a.zip"), "PK");
    writeFile(QStringLiteral("Zelto.ztlibrary/Library/Damaged.ztlibraryitem/a.png"), "no picture");
    QFile::link(path(QStringLiteral("a.png")), itemPath(QStringLiteral("Empty.ztlibraryitem/link.png")));
    const QString together = QStringLiteral("Zelto.ztlibrary/Library/Both.ztlibraryitem/");
    writeImage(together + QStringLiteral("both.png"), {20, 20});
    writeImage(together + QStringLiteral("both_thumb.jpeg"), {600, 600}, Qt::green);
    reopen();
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("both"), QStringLiteral("x_thumb")}));
    ASSERT_EQ(user.errors.size(), 1);
    EXPECT_TRUE(user.errors.first().localizedDescription().contains(QStringLiteral("5 folders")));
    const QStringList directories = itemDirectories();
    EXPECT_EQ(directories.size(), 8);
    for (int launch = 0; launch < 2; ++launch) {
        reopen();
        checkLeftovers();
        EXPECT_EQ(itemDirectories(), directories);
        EXPECT_EQ(items().size(), 3);
        EXPECT_TRUE(user.errors.isEmpty() && user.questions.isEmpty());
    }
    writeImage(QStringLiteral("Zelto.ztlibrary/Library/Empty.ztlibraryitem/found.png"), {20, 20}); // put back by hand
    reopen();
    checkLeftovers();
    EXPECT_EQ(items().size(), 4);
    EXPECT_TRUE(QFile::exists(itemPath(QStringLiteral("Damaged.ztlibraryitem/a.png"))));
}

namespace {
QStringList logged;
} // namespace

TEST_F(TakeBackTest, AnIncompletePictureIsTakenBackAndNothingElseIsSaidOfIt)
{
    import({writeImage(QStringLiteral("a.png"), {20, 20})});
    loseStore();
    QFile whole(writeImage(QStringLiteral("whole.jpg"), {400, 300}));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    writeFile(QStringLiteral("Zelto.ztlibrary/Library/Part.ztlibraryitem/part.jpg"), bytes.first(bytes.size() * 2 / 3));
    logged.clear();
    const auto before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &text) { logged.append(text); });
    reopen();
    qInstallMessageHandler(before);
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("part")}));
    EXPECT_EQ(logged.filter(QStringLiteral("part.jpg")).filter(QStringLiteral("taken back in part")).size(), 1);
    EXPECT_TRUE(logged.filter(QStringLiteral("not taken back")).isEmpty());
    EXPECT_TRUE(user.errors.isEmpty());
}

TEST_F(TakeBackTest, WhatIsTakenBackIsAsOldAsItsDirectoryAndInThatOrder)
{
    QStringList byBirth;
    for (const char *name : {"c", "a", "d", "b"}) {
        import({writeImage(QString::fromLatin1(name) + QStringLiteral(".png"), {20, 20})});
        byBirth.append(QString::fromLatin1(name));
    }
    loseStore();
    const QDateTime before = QDateTime::currentDateTimeUtc();
    reopen();
    auto found = items();
    std::sort(found.begin(), found.end(),
              [](const auto &a, const auto &b) { return a->import_date() < b->import_date(); });
    EXPECT_EQ(titles(found), byBirth);
    for (const auto &item : found) {
        EXPECT_LT(item->import_date(), before);
    }
}

TEST_F(TakeBackTest, WhatTheStoreCannotTellOrTakeIsLeftForLater)
{
    import({writeImage(QStringLiteral("a.png"), {20, 20}), writeImage(QStringLiteral("b.png"), {21, 20})});
    const QStringList directories = itemDirectories();
    for (const auto &made : items()) {
        if (made->title() == QStringLiteral("b")) {
            made->deletePermanently();
        }
    }
    delegate->saveAction();
    qsizetype count = -1;
    bool isComplete = false;
    const auto takeBack = [&](const QStringList &names) {
        count = -1;
        AImportManager::sharedAImportManager().takeBackItemDirectories(names, [&](qsizetype taken, bool complete) {
            count = taken;
            isComplete = complete;
        });
        zqRunMainLoopUntil([&] { return count >= 0; });
    };
    takeBack({});
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(isComplete);
    const auto other = ZQSQLiteConnection::open(storePath(), ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    const auto rename = [&](const char *from, const char *to) {
        EXPECT_TRUE(other->execute(QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE %1 RENAME TO %2")
                                       .arg(QLatin1String(from), QLatin1String(to))));
    };
    user.onBeginProgress = [&](const std::function<void()> &) { rename("ZQLibraryBaseItem", "away"); };
    takeBack(directories);
    EXPECT_EQ(count, 0);
    EXPECT_FALSE(isComplete);
    rename("away", "ZQLibraryBaseItem");
    user.onBeginProgress = {};
    {
        const RefusingStore refusing(storePath(), {QStringLiteral("ZQLibraryBaseItem")});
        takeBack(directories);
    }
    EXPECT_EQ(count, 0);
    EXPECT_FALSE(isComplete);
    user.onBeginProgress = [](const std::function<void()> &cancel) { cancel(); };
    takeBack(directories);
    EXPECT_FALSE(isComplete);
    user.onBeginProgress = {};
    EXPECT_EQ(titles(items()), QStringList{QStringLiteral("a")});
    EXPECT_EQ(itemDirectories(), directories);
    takeBack(directories);
    EXPECT_EQ(count, 1) << "the other one has its item";
    EXPECT_TRUE(isComplete);
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_EQ(user.progresses.last()->text, QStringLiteral("Taking files of the library back…"));
    EXPECT_EQ(user.progresses.last()->maximum, 2);
    EXPECT_EQ(user.progresses.last()->done, 1);
    EXPECT_TRUE(user.progresses.last()->isOver && user.errors.isEmpty());

    QDir().mkpath(itemPath(QStringLiteral("Empty.ztlibraryitem")));
    takeBack({QStringLiteral("Empty.ztlibraryitem")});
    QCoreApplication::processEvents();
    ASSERT_EQ(user.errors.size(), 1);
    EXPECT_TRUE(user.errors.first().localizedDescription().startsWith(
        QStringLiteral("“Empty.ztlibraryitem” in the library belongs to no item and could not be taken back. They stay "
                       "as they are in %1.")
            .arg(delegate->libraryDirectory())))
        << user.errors.first().localizedDescription().toStdString();
}
