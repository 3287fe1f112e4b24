// A power cut while a library moves or settings are written.

#include "Classes/Application/LibraryLocation.h"
#include "Classes/Application/LibraryMove.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Tests/Power/PowerFixture.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

namespace {

class PlacesPower : public PowerTest
{
protected:
    void makeLibrary()
    {
        ASSERT_NO_FATAL_FAILURE(open());
        for (int i = 0; i < items; ++i) {
            const auto item = context().insertNewObject<ZQLibraryImage>();
            item->setBundleID(QStringLiteral("item-%1").arg(i));
            item->setTitle(QStringLiteral("picture %1").arg(i));
            item->setOriginalExtension(QStringLiteral("png"));
            const QString file = item->managedItemURL();
            QDir().mkpath(item->bundleURL());
            ASSERT_TRUE(QFile::copy(writePicture(QStringLiteral("in/%1.png").arg(i), i), file));
            item->setSHA1(QString::fromLatin1(zqSHA1OfFile(file)));
        }
        ASSERT_TRUE(context().save());
        ASSERT_TRUE(LibraryLocation::remember(library()));
        close();
    }

    // Where it is found is up to the moment; that it is found whole is not.
    void expectLibraryIsFound(const QStringList &places)
    {
        const QString place = LibraryLocation::rememberedOrDefault();
        EXPECT_TRUE(places.contains(place)) << qPrintable(place);
        ASSERT_NO_FATAL_FAILURE(open(place));
        EXPECT_TRUE(delegate->persistentStoreCoordinator()->checkIntegrity().isEmpty());
        const auto all = zqFetch<ZQLibraryImage>(context(), QString());
        ASSERT_TRUE(all);
        EXPECT_EQ(all->size(), items);
        for (const auto &item : *all) {
            EXPECT_EQ(QString::fromLatin1(zqSHA1OfFile(item->itemURL())), item->SHA1()) << qPrintable(item->itemURL());
        }
        expectWholeCopies(moved());
        EXPECT_TRUE(LibraryLocation::notedMove().isNull());
        QDirIterator copies(path(QStringLiteral("other")), {QStringLiteral("*.moving-*")}, QDir::Dirs);
        while (copies.hasNext()) {
            EXPECT_TRUE(QDir(copies.next()).isEmpty()) << "nobody removes this copy";
        }
    }

    // What has the name of a library may be opened as one, by whoever comes across it.
    static void expectWholeCopies(const QString &bundle)
    {
        for (int i = 0; QFileInfo::exists(bundle) && i < items; ++i) {
            const QString name = QStringLiteral("/Library/item-%1.ztlibraryitem/picture %1.png").arg(i);
            EXPECT_EQ(contentOf(bundle + name), contentOf(path(QStringLiteral("in/%1.png").arg(i)))) << i;
        }
    }

    enum class Course { IsRenamed, IsCopied, CopyIsCancelled };
    void move(Course course)
    {
        QDir().mkpath(path(QStringLiteral("other")));
        ASSERT_NO_FATAL_FAILURE(makeLibrary());
        begin();
        if (course != Course::IsRenamed) {
            disk().setOwnFileSystem(path(QStringLiteral("other")).toUtf8());
        }
        const bool isCancelled = course == Course::CopyIsCancelled;
        bool isHalfDone = false;
        LibraryMove::Progress progress;
        progress.didCopy = [&](double done, double total) { isHalfDone = done * 2 >= total; };
        progress.isCancelled = [&] { return isCancelled && isHalfDone; };
        ZQError error;
        ASSERT_EQ(LibraryMove::move(library(), moved(), progress, &error), !isCancelled)
            << qPrintable(error.localizedDescription());
        report();
        ASSERT_EQ(QFileInfo::exists(library()), isCancelled);
        cutThePower([&](int reports) {
            const QStringList afterwards{isCancelled ? library() : moved()};
            expectLibraryIsFound(reports > 0 || isCancelled ? afterwards : QStringList{library(), moved()});
        });
    }

    static QString moved() { return path(QStringLiteral("other/Moved.ztlibrary")); }
    static constexpr int items = 4;
};

} // namespace

TEST_F(PlacesPower, FindsALibraryThatWasBeingRenamed)
{
    move(Course::IsRenamed);
}

TEST_F(PlacesPower, FindsALibraryThatWasBeingCopiedToAnotherFileSystem)
{
    move(Course::IsCopied);
}

TEST_F(PlacesPower, FindsALibraryWhoseCopyingWasCancelledAndLeavesNoCopy)
{
    move(Course::CopyIsCancelled);
}

TEST_F(PlacesPower, KeepsEverySettingThatWasWritten)
{
    const QString key = QStringLiteral("power");
    const QString other = QStringLiteral("written before");
    const QString text(20000, u's');
    begin();
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    defaults.setObjectForKey(text, other);
    report();
    constexpr int writings = 6;
    for (int i = 1; i <= writings; ++i) {
        defaults.setObjectForKey(i, key);
        report();
    }
    cutThePower([&](int reports) {
        EXPECT_TRUE(reports == 0 || defaults.stringForKey(other) == text);
        EXPECT_GE(defaults.integerForKey(key), reports - 1);
        EXPECT_LE(defaults.integerForKey(key), reports);
        EXPECT_TRUE(defaults.synchronize());
        EXPECT_TRUE(QDir(path(QStringLiteral("xdg_config_home/Zelto")))
                        .entryList({QStringLiteral("*.damaged")}, QDir::Files)
                        .isEmpty());
    });
}
