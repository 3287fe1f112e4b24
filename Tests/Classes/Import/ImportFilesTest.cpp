// What an import takes from a file, and what becomes of the file.

#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Tests/Classes/Import/ImportFixture.h"
#include "Tests/Support/Skip.h"
#include "Tools/samples/SampleFormats.h"
#include "Tools/samples/SampleScenes.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QThread>
#include <QTransform>

#include <atomic>
#include <sys/stat.h>
#include <utility>

namespace {

class ImportFiles : public ImportFixture
{
protected:
    void set(const char *key, const QVariant &value)
    {
        ZQUserDefaults::standardUserDefaults().setObjectForKey(value, QLatin1String(key));
        m_keys.append(QLatin1String(key));
    }
    void TearDown() override
    {
        for (const QString &key : m_keys) {
            ZQUserDefaults::standardUserDefaults().removeObjectForKey(key);
        }
    }
    static QDateTime dateOf(qint64 milliseconds) { return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC); }

private:
    QStringList m_keys;
};

} // namespace

TEST_F(ImportFiles, EachDateIsTheOneOfTheSourceAndNotOfTheCopy)
{
    const QString source = writeImage(QStringLiteral("a.png"), {20, 20});
    QThread::msleep(20);
    QFile file(source);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTimeUtc().addYears(-1), QFileDevice::FileModificationTime));
    file.close();
    ASSERT_EQ(::chmod(QFile::encodeName(source).constData(), 0640), 0);
    const auto dates = zqFileDates(source);
    ASSERT_TRUE(dates);
    ASSERT_TRUE(dates->birth != dates->modification && dates->birth != dates->attributeModification);
    QThread::msleep(20);
    const QDateTime before = zqNow();
    import({source});
    const auto made = item(QStringLiteral("a"));
    ASSERT_TRUE(made);
    EXPECT_EQ(made->creation_date(), dateOf(dates->birth));
    EXPECT_EQ(made->modification_date(), dateOf(dates->modification));
    EXPECT_EQ(made->attributes_modification_date(), dateOf(dates->attributeModification));
    EXPECT_GE(made->import_date(), before);
    EXPECT_EQ(made->sort_date(), made->import_date());
}

TEST_F(ImportFiles, APictureIsMeasuredAsItIsShown)
{
    const QImage scene = SampleScenes::asymmetricScene({60, 40});
    struct Case
    {
        const char *name;
        int orientation;
        QSize stored;
    };
    for (const Case &each : {Case{"upright.jpeg", 1, {60, 40}},
                             {"upside down.jpeg", 3, {60, 40}},
                             {"clockwise.jpeg", 6, {40, 60}},
                             {"counterclockwise.jpeg", 8, {40, 60}}}) {
        SCOPED_TRACE(each.name);
        const QString source = path(QLatin1String(each.name));
        const QImage stored = SampleScenes::storedForOrientation(scene, each.orientation);
        ASSERT_EQ(stored.size(), each.stored);
        ASSERT_TRUE(SampleFormats::writeJPEG(stored, source, {.orientation = each.orientation}));
        import({source});
        const auto made = item(QFileInfo(source).completeBaseName());
        ASSERT_TRUE(made);
        EXPECT_EQ(QSize(made->pixelWidth(), made->pixelHeight()), QSize(60, 40));
        EXPECT_EQ(made->pixelTotal(), 2400);
        EXPECT_EQ(made->extension(), QStringLiteral("jpg"));
        EXPECT_EQ(made->originalExtension(), QStringLiteral("jpeg"));
        EXPECT_EQ(made->pixelDepth(), 8);
        EXPECT_FALSE(made->color_model().isEmpty());
        EXPECT_FALSE(made->animated());
    }
    const QString animated = path(QStringLiteral("two.gif"));
    ASSERT_TRUE(SampleFormats::writeGIF({scene, scene.mirrored()}, animated));
    const QString pages = path(QStringLiteral("page.tif"));
    ASSERT_TRUE(SampleFormats::writeTIFF({scene}, pages));
    const QString lying = writeFile(QStringLiteral("too large.png"), SampleFormats::lyingPNG(40000, 40000));
    const auto operation = import({animated, pages, lying});
    EXPECT_TRUE(item(QStringLiteral("two"))->animated());
    EXPECT_EQ(item(QStringLiteral("page"))->extension(), QStringLiteral("tiff"));
    EXPECT_EQ(droppedPaths(operation->report()), QStringList{lying});
    EXPECT_TRUE(operation->report().dropped().first().reason.contains(QStringLiteral("is damaged or incomplete")))
        << operation->report().dropped().first().reason.toStdString();
}

TEST_F(ImportFiles, TodaysFormatsAreMeasuredAsTheyAreShownAndKeepTheirDates)
{
    // A turned picture with transparency would need its transparency turned, too.
    const QImage scene = SampleScenes::asymmetricScene({96, 64}).convertToFormat(QImage::Format_RGB32);
    const QString phone = path(QStringLiteral("phone.heic"));
    ASSERT_TRUE(SampleFormats::writeHEIC(scene.transformed(QTransform().rotate(90)), phone));
    QFile stored(phone);
    ASSERT_TRUE(stored.open(QIODevice::ReadOnly));
    ASSERT_TRUE(SampleFormats::writeBytes(SampleFormats::turnedHEIF(stored.readAll(), 1), phone));
    const QStringList names{QStringLiteral("phone.heic"), QStringLiteral("web.avif"), QStringLiteral("new.jxl"),
                            QStringLiteral("moving.webp")};
    ASSERT_TRUE(SampleFormats::writeAVIF(scene, path(names.at(1))));
    ASSERT_TRUE(SampleFormats::writeJPEGXL(scene, path(names.at(2))));
    ASSERT_TRUE(SampleFormats::writeAnimatedWebP({scene, scene.mirrored()}, path(names.at(3))));
    const QDateTime taken(QDate(2021, 5, 6), QTime(7, 8, 9), Qt::UTC);
    for (const QString &name : names) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.setFileTime(taken, QFileDevice::FileModificationTime));
        file.close();
        import({path(name)});
        const auto made = item(QFileInfo(name).completeBaseName());
        ASSERT_TRUE(made) << name.toStdString();
        EXPECT_EQ(QSize(made->pixelWidth(), made->pixelHeight()), QSize(96, 64)) << name.toStdString();
        EXPECT_EQ(made->modification_date(), taken) << name.toStdString();
        EXPECT_EQ(made->extension(), QFileInfo(name).suffix());
        EXPECT_EQ(made->animated(), name == u"moving.webp");
        const QImage shown = QImage(made->thumbURL()).convertToFormat(QImage::Format_RGB32);
        ASSERT_EQ(shown.size(), QSize(96, 64)) << name.toStdString();
        EXPECT_GT(shown.pixelColor(9, 6).red(), 180) << "the corner that is red upright: " << name.toStdString();
        EXPECT_GT(shown.pixelColor(9, 54).blue(), 180) << name.toStdString();
    }
}

TEST_F(ImportFiles, KeywordsAreTakenOnceAndOnlyWhenThatIsWanted)
{
    const QString source = path(QStringLiteral("keyed.jpg"));
    ASSERT_TRUE(SampleFormats::writeJPEG(SampleScenes::asymmetricScene({60, 40}), source));
    ASSERT_TRUE(SampleFormats::setKeywords(source, {QStringLiteral("harbour"), QStringLiteral("north")}));
    set("UseAutoTagging", false);
    const QVariantMap metadata{
        {QStringLiteral("tags"),
         QStringList{QStringLiteral("north"), QString(), QStringLiteral("Caf\u00e9"), QStringLiteral("Cafe\u0301")}}};
    import({source}, nullptr, ZQSidebarBaseItem::appendIndex, metadata);
    ASSERT_TRUE(item(QStringLiteral("keyed")));
    EXPECT_EQ(tagTitles(*item(QStringLiteral("keyed"))),
              (QStringList{QStringLiteral("Caf\u00e9"), QStringLiteral("harbour"), QStringLiteral("north")}));
    item(QStringLiteral("keyed"))->deleteSelf();
    delegate->saveAction();
    set("ImportIPTCTags", false);
    ASSERT_TRUE(QFile::copy(source, path(QStringLiteral("plain.jpg"))));
    import({path(QStringLiteral("plain.jpg"))});
    ASSERT_TRUE(item(QStringLiteral("plain")));
    EXPECT_TRUE(tagTitles(*item(QStringLiteral("plain"))).isEmpty());
}

TEST_F(ImportFiles, WhatOtherProgramsWroteIsTakenOnlyWhenThatIsWanted)
{
    const QString source = writeImage(QStringLiteral("a.png"), {20, 20});
    if (!OpenMeta::setUserTags(QStringList{QStringLiteral("Client")}, source).isNull()) {
        return skipWithout("extended attributes");
    }
    ASSERT_TRUE(OpenMeta::setRating(3, source).isNull());
    OpenMeta::setXAttr(QStringList{QStringLiteral("no text")}, OpenMeta::spotlightKey(OpenMeta::finderCommentKey),
                       source);
    set("ImportOpenMetaTags", false);
    set("UseAutoTagging", false);
    import({source});
    const auto made = item(QStringLiteral("a"));
    ASSERT_TRUE(made);
    EXPECT_TRUE(tagTitles(*made).isEmpty());
    EXPECT_EQ(made->rating(), 0);
    EXPECT_TRUE(made->notes().isEmpty()) << "a list is no comment";
}

TEST_F(ImportFiles, AnAddressBecomesTheNotesOnce)
{
    struct Case
    {
        QVariantMap metadata;
        const char *notes;
    };
    const auto url = [](const char *key, const char *address) {
        return QVariantMap{{QLatin1String(key), QLatin1String(address)}};
    };
    QVariantMap both = url("webURL", "http://image");
    both.insert(url("webPageURL", "http://page"));
    QVariantMap same = url("webURL", "http://image");
    same.insert(url("notes", "http://image"));
    QVariantMap own = url("webURL", "http://image");
    own.insert(url("notes", "abc"));
    for (const Case &each : {Case{url("notes", "abc"), "abc"},
                             {url("webURL", "http://image"), "http://image"},
                             {both, "http://page"},
                             {same, "http://image"},
                             {own, "http://image\n abc"}}) {
        import({writeImage(QStringLiteral("a.png"), {20, 20})}, nullptr, ZQSidebarBaseItem::appendIndex, each.metadata);
        const auto made = item(QStringLiteral("a"));
        ASSERT_TRUE(made);
        EXPECT_EQ(made->notes(), QLatin1String(each.notes));
        made->deletePermanently();
        delegate->saveAction();
    }
}

TEST_F(ImportFiles, ALinkInTheTemporaryFolderGivesACopyAndStaysWithWhatItLeadsTo)
{
    const QString real = writeImage(QStringLiteral("ZeltoTemporaryFolder/t.1/real.png"), {20, 20});
    const QString link = path(QStringLiteral("ZeltoTemporaryFolder/t.1/link.png"));
    ASSERT_TRUE(QFile::link(real, link));
    import({link});
    const auto made = item(QStringLiteral("link"));
    ASSERT_TRUE(made);
    EXPECT_FALSE(QFileInfo(made->itemURL()).isSymLink());
    EXPECT_EQ(made->SHA1(), QString::fromLatin1(zqSHA1OfFile(real)));
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_TRUE(QFile::exists(real));
}

TEST_F(ImportFiles, WhatTookTheSourcesPlaceMeanwhileStays)
{
    const QString folder = QStringLiteral("ZeltoTemporaryFolder/t.1/");
    const QString changed = writeImage(folder + QStringLiteral("changed.png"), {20, 20});
    const QString replaced = writeImage(folder + QStringLiteral("replaced.png"), {21, 20});
    const QString other = writeImage(QStringLiteral("other.png"), {22, 20});
    const auto dates = zqFileDates(replaced);
    ASSERT_TRUE(dates);
    bool isDone = false;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        AImportManager::didFinishImportOperation, nullptr, [&](const ZQNotification &) {
            if (std::exchange(isDone, true)) {
                return;
            }
            QFile::remove(changed);
            writeFile(folder + QStringLiteral("changed.png"), "something new");
            QFile::remove(replaced);
            EXPECT_TRUE(QFile::link(other, replaced)); // as old as what was read
            QFile file(other);
            EXPECT_TRUE(file.open(QIODevice::ReadWrite));
            EXPECT_TRUE(file.setFileTime(dateOf(dates->modification), QFileDevice::FileModificationTime));
        });
    import({changed, replaced});
    EXPECT_EQ(items().size(), 2);
    EXPECT_TRUE(QFile::exists(changed));
    EXPECT_TRUE(QFileInfo(replaced).isSymLink());
    EXPECT_TRUE(QFile::exists(other));
}

TEST_F(ImportFiles, ADocumentThatIsAFolderIsMovedWhole)
{
    writeImage(QStringLiteral("ZeltoTemporaryFolder/t.1/Old.sketch/QuickLook/Preview.png"), {60, 40});
    const QString data = writeFile(QStringLiteral("ZeltoTemporaryFolder/t.1/Old.sketch/Data"), "data");
    const QString digest = QString::fromLatin1(zqSHA1OfFile(data));
    import({path(QStringLiteral("ZeltoTemporaryFolder/t.1/Old.sketch"))});
    const auto made = item(QStringLiteral("Old"));
    ASSERT_TRUE(made);
    EXPECT_EQ(made->SHA1(), digest);
    EXPECT_TRUE(QFileInfo(made->itemURL() + QStringLiteral("/Data")).isFile());
    EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("ZeltoTemporaryFolder/t.1/Old.sketch"))));
}

TEST_F(ImportFiles, SettingsAreThoseOfTheMomentOfTheRequest)
{
    std::atomic<bool> stop = false;
    delegate->backgroundOperationQueue().addOperationWithBlock([&stop] {
        while (!stop) {
            QThread::msleep(1);
        }
    });
    const QString source = writeImage(QStringLiteral("a.png"), {20, 20});
    AImportManager::sharedAImportManager().importFilesAtPaths({source}, nullptr);
    set("UseAutoTagging", false);
    stop = true;
    zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
    ASSERT_TRUE(item(QStringLiteral("a")));
    EXPECT_EQ(tagTitles(*item(QStringLiteral("a"))), (QStringList{QStringLiteral("icon"), QStringLiteral("red")}));
}

TEST_F(ImportFiles, TagsOfTheTargetAndOfTheFileReachTheFile)
{
    const auto tag = addTag(QStringLiteral("Wanted"));
    set("UseAutoTagging", false);
    const QString source = writeImage(QStringLiteral("a.png"), {20, 20});
    if (!OpenMeta::setUserTags(QStringList{QStringLiteral("Client")}, source).isNull()) {
        return skipWithout("extended attributes");
    }
    import({source}, tag.get());
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    ASSERT_TRUE(item(QStringLiteral("a")));
    QStringList tags = OpenMeta::getUserTags(item(QStringLiteral("a"))->itemURL()).value_or(QStringList());
    tags.sort();
    EXPECT_EQ(tags, (QStringList{QStringLiteral("Client"), QStringLiteral("Wanted")}));
}

TEST_F(ImportFiles, AThumbnailMadeAgainTakesThePlaceOfTheOldOneOnlyOnceItIsThere)
{
    import({writeImage(QStringLiteral("a.png"), {20, 20})});
    const auto made = item(QStringLiteral("a"));
    ASSERT_TRUE(made);
    const auto makeAgain = [&] {
        AImportManager &manager = AImportManager::sharedAImportManager();
        manager.thumbForLibraryItem(made.get());
        zqRunMainLoopUntil([&manager] { return manager.thumbsGenerationQueue().operationCount() == 0; });
        QCoreApplication::processEvents();
    };
    const QString old = made->bundleURL() + QStringLiteral("/old_thumb.png");
    ASSERT_TRUE(QFile::copy(made->itemURL(), old));
    made->setThumbName(QStringLiteral("old_thumb.png"));
    const int version = made->thumbVersion();
    set("AlwaysMakeThumbsWhileImporting", true);
    makeAgain();
    EXPECT_EQ(made->thumbName(), QStringLiteral("a_thumb.png"));
    EXPECT_EQ(made->thumbVersion(), version + 1);
    EXPECT_TRUE(QFile::exists(made->thumbURL()));
    EXPECT_FALSE(QFile::exists(old));
    makeAgain(); // under the same name
    EXPECT_TRUE(QFile::exists(made->thumbURL()));
    EXPECT_EQ(made->thumbVersion(), version + 2);

    QFile file(made->itemURL());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("no picture") > 0);
    file.close();
    made->setThumbName(QStringLiteral("kept_thumb.png"));
    ASSERT_TRUE(QFile::rename(made->bundleURL() + QStringLiteral("/a_thumb.png"), made->thumbURL()));
    makeAgain();
    EXPECT_TRUE(QFile::exists(made->thumbURL())) << "the old one is better than none";
    EXPECT_EQ(made->thumbName(), QStringLiteral("kept_thumb.png"));
}
