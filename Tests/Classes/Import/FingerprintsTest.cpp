// What pictures are known by again: as they come in, when they change, and of those that were there before.

#include "Classes/Application/FingerprintFiller.h"
#include "Classes/Application/FingerprintWork.h"
#include "Classes/Application/LibraryStore.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Imaging/ZQPalette.h"
#include "Kit/Imaging/ZQPictureHash.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Tests/Classes/Import/ImportFixture.h"

#include <QCoreApplication>
#include <QFile>
#include <QImage>

#include <cmath>

namespace {

class Fingerprints : public ImportFixture
{
protected:
    // Waves, in another direction for each `kind`.
    static QImage picture(int kind)
    {
        QImage image(300, 200, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const double phase = kind % 2 == 0 ? x / (20.0 + kind * 9) : y / (14.0 + kind * 5);
                const int value = int(127 + 120 * std::sin(phase + x * y * kind / 9000.0));
                image.setPixelColor(x, y, QColor(value, value / 2, 255 - value));
            }
        }
        return image;
    }
    QString writePicture(const QString &relative, int kind) const
    {
        const QString made = path(relative);
        EXPECT_TRUE(picture(kind).save(made));
        return made;
    }
    static void set(const char *key, bool value)
    {
        ZQUserDefaults::standardUserDefaults().setObjectForKey(value, QLatin1String(key));
    }
    static int distance(const QByteArray &hash, int kind)
    {
        const auto read = ZQPictureHash::fromBytes(hash);
        const auto made = ZQPictureHash::of(ZQBitmap(picture(kind)));
        return read && made ? read->distance(*made) : ZQPictureHash::bitCount + 1;
    }
    static bool looksLike(const ZQLibraryBaseItem &item, int kind)
    {
        return distance(item.pictureHash(), kind) <= ZQPictureHash::alikeDistance;
    }
    // A library of pictures, "0" and on, from before any was looked at.
    void makeOlderLibrary(int count)
    {
        QStringList files;
        for (int i = 0; i < count; ++i) {
            files.append(writePicture(QStringLiteral("%1.png").arg(i), i));
        }
        import(files);
        for (const auto &each : items()) {
            ZQPictureFingerprint::removeFrom(*each);
        }
        delegate->saveAction();
    }
    FingerprintFiller filler() const { return FingerprintFiller(delegate->persistentStoreCoordinator()); }
    FingerprintFiller::Result fill(
        FingerprintFiller &&filler, const std::function<bool()> &goesOn = [] { return true; })
    {
        return filler.run({goesOn, [this](const auto &saved) { delegate->libraryStore().mergeSaved(saved); }});
    }
    qsizetype countToDo() const
    {
        ZQManagedObjectContext own(delegate->persistentStoreCoordinator());
        return own.fetchObjectIDs(FingerprintFiller::request()).value_or(QList<ZQObjectID>()).size();
    }
    void write(const QString &file, const QByteArray &contents)
    {
        QFile made(file);
        ASSERT_TRUE(made.open(QIODevice::WriteOnly) && made.write(contents) == contents.size());
    }
};

TEST_F(Fingerprints, EveryPictureIsLookedAtAsItComesIn)
{
    set("UseAutoTagging", false);
    for (const bool withThumbnails : {false, true}) {
        SCOPED_TRACE(withThumbnails);
        set("AlwaysMakeThumbsWhileImporting", withThumbnails);
        const QString name = withThumbnails ? QStringLiteral("kept") : QStringLiteral("shown");
        const int kind = withThumbnails ? 3 : 1; // none of them is there twice
        const QColor color = withThumbnails ? Qt::blue : Qt::red;
        import({writePicture(name + QStringLiteral(".png"), kind),
                writePicture(name + QStringLiteral("2.jpg"), kind + 1),
                writeImage(name + QStringLiteral("3.png"), {40, 30}, color)});
        const auto first = item(name);
        const auto second = item(name + u'2');
        const auto flat = item(name + u'3');
        ASSERT_TRUE(first && second && flat);
        EXPECT_EQ(first->thumbName().isEmpty(), !withThumbnails);
        EXPECT_TRUE(looksLike(*first, kind));
        EXPECT_TRUE(looksLike(*second, kind + 1));
        EXPECT_FALSE(looksLike(*first, kind + 1));
        EXPECT_GT(ZQPalette::fromBytes(first->palette()).colors.size(), 1);
        EXPECT_TRUE(flat->pictureHash().isEmpty() && !flat->pictureHash().isNull()) << "it shows nothing";
        const ZQPalette palette = ZQPalette::fromBytes(flat->palette());
        ASSERT_EQ(palette.colors.size(), 1);
        EXPECT_EQ(QColor(palette.colors.first().rgb), color);
    }
    EXPECT_EQ(countToDo(), 0);
}

TEST_F(Fingerprints, APictureThatChangedIsLookedAtAgain)
{
    for (const bool withThumbnails : {false, true}) {
        SCOPED_TRACE(withThumbnails);
        set("AlwaysMakeThumbsWhileImporting", withThumbnails);
        const QString name = withThumbnails ? QStringLiteral("kept") : QStringLiteral("shown");
        const int kind = withThumbnails ? 3 : 1;
        import({writePicture(name + QStringLiteral(".png"), kind)});
        const auto made = item(name);
        ASSERT_TRUE(made && picture(kind + 1).save(made->itemURL()));
        QFile file(made->itemURL());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(60), QFile::FileModificationTime));
        file.close();
        made->updateItemData();
        EXPECT_TRUE(made->pictureHash().isNull()) << "until then it is still to be looked at";
        AImportManager &manager = AImportManager::sharedAImportManager();
        zqRunMainLoopUntil([&manager] { return manager.thumbsGenerationQueue().operationCount() == 0; });
        QCoreApplication::processEvents();
        EXPECT_TRUE(looksLike(*made, kind + 1));
    }
}

TEST_F(Fingerprints, APictureThatIsNotThereWhenItIsDrawnIsStillToBeLookedAt)
{
    set("AlwaysMakeThumbsWhileImporting", false);
    import({writePicture(QStringLiteral("away.png"), 1)});
    const auto made = item(QStringLiteral("away"));
    ASSERT_TRUE(made && made->thumbName().isEmpty());
    const QString file = made->itemURL();
    ZQPictureFingerprint::removeFrom(*made);
    AImportManager &manager = AImportManager::sharedAImportManager();
    ASSERT_TRUE(QFile::rename(file, file + QStringLiteral(".x")));
    manager.thumbForLibraryItem(made.get());
    zqRunMainLoopUntil([&manager] { return manager.thumbsGenerationQueue().operationCount() == 0; });
    QCoreApplication::processEvents();
    EXPECT_TRUE(made->pictureHash().isNull());
}

TEST_F(Fingerprints, WhatIsEndedGoesOnWhereItWas)
{
    makeOlderLibrary(4);
    int looks = 0;
    const auto ended = fill(filler(), [&looks] { return ++looks < 4; });
    EXPECT_EQ(ended.found, 3);
    EXPECT_FALSE(ended.isComplete);
    EXPECT_EQ(countToDo(), 1) << "what was looked at is kept";
    looks = 0;
    const auto whole = fill(filler(), [&looks] { return ++looks > 0; });
    EXPECT_EQ(whole.found, 1);
    EXPECT_EQ(looks, 1) << "nothing is looked at twice";
    EXPECT_TRUE(whole.isComplete);
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(looksLike(*item(QString::number(i)), i)) << i;
    }
}

TEST_F(Fingerprints, WhatCannotBeReadIsLookedAtOnceAndWhatIsNotThereIsLeft)
{
    set("AlwaysMakeThumbsWhileImporting", true);
    makeOlderLibrary(4);
    write(item(QStringLiteral("0"))->thumbURL(), "no picture");
    const auto away = [this](const char *title) {
        return item(QLatin1String(title))->itemURL() + QStringLiteral(".x");
    };
    for (const char *title : {"1", "2"}) { // of one the file is still there
        ASSERT_TRUE(QFile::remove(item(QLatin1String(title))->thumbURL()));
    }
    ASSERT_TRUE(QFile::rename(item(QStringLiteral("2"))->itemURL(), away("2")));
    const auto result = fill(filler());
    EXPECT_EQ(result.found, 2);
    EXPECT_EQ(result.nothing, 1);
    EXPECT_EQ(result.left, 1);
    EXPECT_TRUE(result.isComplete);
    EXPECT_FALSE(item(QStringLiteral("0"))->pictureHash().isNull());
    EXPECT_TRUE(looksLike(*item(QStringLiteral("1")), 1));
    EXPECT_EQ(countToDo(), 1);
    ASSERT_TRUE(QFile::rename(away("2"), item(QStringLiteral("2"))->itemURL()));
    EXPECT_EQ(fill(filler()).found, 1) << "it came back";
    EXPECT_TRUE(looksLike(*item(QStringLiteral("2")), 2));
}

TEST_F(Fingerprints, WhatOthersSaveMeanwhileStays)
{
    makeOlderLibrary(2);
    const ZQObjectID rated = item(QStringLiteral("0"))->objectID();
    const ZQObjectID drawn = item(QStringLiteral("1"))->objectID();
    const QByteArray newer(32, 'n');
    int looks = 0;
    const auto result = fill(filler(), [&] {
        if (++looks == 2) {
            ZQManagedObjectContext other(delegate->persistentStoreCoordinator());
            zqCast<ZQLibraryBaseItem>(other.objectWithID(rated))->setRating(5);
            zqCast<ZQLibraryBaseItem>(other.objectWithID(drawn))->setPictureHash(newer);
            EXPECT_TRUE(other.save());
        }
        return true;
    });
    EXPECT_TRUE(result.isComplete);
    ZQManagedObjectContext own(delegate->persistentStoreCoordinator());
    const auto stored = zqCast<ZQLibraryBaseItem>(own.objectWithID(rated));
    EXPECT_EQ(stored->rating(), 5);
    EXPECT_TRUE(looksLike(*stored, 0));
    EXPECT_EQ(zqCast<ZQLibraryBaseItem>(own.objectWithID(drawn))->pictureHash(), newer) << "of the picture of now";
}

TEST_F(Fingerprints, BesideTheWindowNothingIsLookedAtWhileOthersWork)
{
    makeOlderLibrary(2);
    bool isBusy = true;
    FingerprintWork work(delegate->libraryStore(), user, [&isBusy] { return isBusy; });
    work.setQuiet(std::chrono::hours(1));
    work.start();
    isBusy = false;
    zqRunMainLoopFor(std::chrono::milliseconds(700));
    EXPECT_EQ(countToDo(), 2) << "the person was there a moment ago";
    isBusy = true;
    work.setQuiet(std::chrono::milliseconds(0));
    zqRunMainLoopFor(std::chrono::milliseconds(700));
    EXPECT_EQ(countToDo(), 2);
    isBusy = false;
    zqRunMainLoopUntil([&work] { return work.isEnded(); });
    EXPECT_EQ(countToDo(), 0);
    zqRunMainLoopUntil([this] { return looksLike(*item(QStringLiteral("1")), 1); }); // the window's context has it, too
    const std::weak_ptr<ZQPersistentStoreCoordinator> store = delegate->persistentStoreCoordinator();
    work.requestStop();
    work.letGo();
    delegate.reset();
    EXPECT_TRUE(store.expired()) << "it is closed as it should be";
}

TEST_F(Fingerprints, WhatTheStoreWouldNotGiveIsAskedForAgain)
{
    makeOlderLibrary(1);
    FingerprintWork work(delegate->libraryStore(), user, [] { return false; });
    work.setQuiet(std::chrono::milliseconds(0));
    work.setUntilAgain(std::chrono::milliseconds(100));
    renameTable("ZQLibraryBaseItem", "away");
    work.start();
    zqRunMainLoopUntil([&work] { return work.isEnded(); });
    renameTable("away", "ZQLibraryBaseItem");
    zqRunMainLoopUntil([this] { return countToDo() == 0; });
    EXPECT_EQ(countToDo(), 0);
    work.requestStop();
    zqRunMainLoopUntil([&work] { return work.isEnded(); });
    work.letGo();
}

} // namespace
