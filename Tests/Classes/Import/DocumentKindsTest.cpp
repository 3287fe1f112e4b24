#include "Classes/Import/ImportedFile.h"
#include "Classes/Import/KindImportOperations.h"
#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibrarySketch.h"
#include "Tests/Classes/Import/ImportFixture.h"
#include "Tools/samples/SampleArchives.h"
#include "Tools/samples/SampleFormats.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <cerrno>
#include <unistd.h>

namespace {

class DocumentKindsTest : public ImportFixture
{
protected:
    // A package with a picture "p.png", and one outside that it must not reach.
    QString snap(const QString &name, const QByteArray &info) const
    {
        writeImage(name + QStringLiteral("/p.png"), {40, 30});
        writeImage(name + QStringLiteral("/In/q.png"), {41, 30});
        writeFile(name + QStringLiteral("/Info.plist"), info);
        return path(name);
    }
    static QByteArray info(const QVariantMap &values)
    {
        return ZQPropertyList::toBinary(values).value_or(QByteArray());
    }
};

// Remembers what a file's operation says.
class Listener : public ImportBatch
{
public:
    void fileDidDrop(const DroppedFile &file) override { dropped.append(file); }
    void fileDidFinish() override { ++finished; }
    QString refusal() const override { return {}; }
    void setRefusal(const QString &reason) override { refused = reason; }
    void archiveDidUnfold(const UnfoldedArchive &) override {}

    QList<DroppedFile> dropped;
    QString refused; // why no further file is to be tried
    int finished = 0;
};

// Meets an error when it puts the picture of the document into its item directory.
class FailingImport : public BaseImportOperation
{
public:
    FailingImport(const QString &file, int code) : BaseImportOperation(file), m_code(code) {}

protected:
    QString itemClass() const override { return QStringLiteral("ZQLibraryEPS"); }
    void createRepresentationBitmap() override { dropForError(ZQError::posix(m_code, filePath())); }

private:
    int m_code;
};

// Something stands in its item directory where the picture of the document belongs.
class ObstructedImport : public BaseImportOperation
{
public:
    using BaseImportOperation::BaseImportOperation;

protected:
    QString itemClass() const override { return QStringLiteral("ZQLibraryEPS"); }
    void createRepresentationBitmap() override
    {
        QFileInfo(filePath()).dir().mkpath(ZQLibraryBaseItem::representationBitmapName + QStringLiteral("/inside"));
        QImage image(8, 8, QImage::Format_RGBA8888);
        image.fill(Qt::red);
        writeRepresentationBitmap(ZQBitmap(image), "EPS %@ is not a valid image", {});
    }
};

} // namespace

TEST_F(DocumentKindsTest, ASnapGivesItsPictureWithTagsAndAddress)
{
    const QVariantMap values{
        {QStringLiteral("imageGrabPath"), QStringLiteral("In/q.png")},
        {QStringLiteral("tags"), QVariantList{QStringLiteral("harbour"), 7, QStringLiteral(" été ")}},
        {QStringLiteral("url"), QStringLiteral("http://page")}};
    for (const QByteArray &form : {info(values), ZQPropertyList::toXML(values).value_or(QByteArray())}) {
        const auto operation = import({snap(QStringLiteral("Shot.snap"), form)});
        ASSERT_EQ(operation->report().imported().size(), 1);
        const auto made = item(QStringLiteral("q"));
        ASSERT_TRUE(made);
        EXPECT_EQ(made->entity()->name, QStringLiteral("ZQLibraryImage"));
        EXPECT_EQ(made->webPageURL(), QStringLiteral("http://page"));
        EXPECT_EQ(made->pixelWidth(), 41);
        EXPECT_EQ(made->extension(), QStringLiteral("png"));
        EXPECT_TRUE(QFileInfo(made->itemURL()).isFile());
        EXPECT_TRUE(tagTitles(*made).contains(QStringLiteral("harbour")));
        EXPECT_TRUE(tagTitles(*made).contains(QStringLiteral("été")));
        EXPECT_FALSE(tagTitles(*made).contains(QStringLiteral("7")));
        EXPECT_TRUE(QFileInfo::exists(path(QStringLiteral("Shot.snap/In/q.png")))); // copied
        made->deletePermanently();
        delegate->saveAction();
    }
}

TEST_F(DocumentKindsTest, ASnapWithoutMoreThanItsPictureIsTakenAndTheRequestHasTheLastWord)
{
    import({snap(QStringLiteral("Bare.snap"), info({{QStringLiteral("imageGrabPath"), QStringLiteral("p.png")},
                                                    {QStringLiteral("tags"), 3},
                                                    { QStringLiteral("url"),
                                                      QVariantList {} }}))},
           nullptr, ZQSidebarBaseItem::appendIndex,
           {{ QStringLiteral("webPageURL"),
              QStringLiteral("http://mine") }});
    ASSERT_TRUE(item(QStringLiteral("p")));
    EXPECT_EQ(item(QStringLiteral("p"))->webPageURL(), QStringLiteral("http://mine"));
}

TEST_F(DocumentKindsTest, ASnapThatIsDamagedOrReachesOutIsRefusedWithAReason)
{
    const QString outside = writeImage(QStringLiteral("outside.png"), {50, 30});
    const auto naming = [](const QVariant &value) { return info({{QStringLiteral("imageGrabPath"), value}}); };
    struct Case
    {
        QByteArray info;
        const char *said;
    };
    const Case cases[] = {
        {"", "Info.plist"},
        {"no property list", "Info.plist"},
        {ZQPropertyList::toBinary(QStringLiteral("a text")).value_or(QByteArray()), "Info.plist"},
        {info({}), "imageGrabPath"},
        {naming(17), "imageGrabPath"},
        {naming(QString()), "imageGrabPath"},
        {naming(QStringLiteral("../outside.png")), "does not lie in the package"},
        {naming(QStringLiteral("In/../../outside.png")), "does not lie in the package"},
        {naming(outside), "does not lie in the package"},
        {naming(QStringLiteral("link.png")), "does not lie in the package"},
        {naming(QStringLiteral("dir/outside.png")), "does not lie in the package"},
        {naming(QStringLiteral("gone.png")), "missing"},
        {naming(QStringLiteral("In")), "missing"},
        {naming(QStringLiteral("Info.plist")), "kind"},
    };
    for (const Case &row : cases) {
        const QString package = snap(QStringLiteral("Bad.snap"), row.info);
        ::symlink("../outside.png", QFile::encodeName(package + QStringLiteral("/link.png")).constData());
        ::symlink("..", QFile::encodeName(package + QStringLiteral("/dir")).constData());
        const auto operation = import({package});
        EXPECT_EQ(droppedPaths(operation->report()), QStringList{package}) << row.said;
        ASSERT_EQ(operation->report().dropped().size(), 1);
        const QString reason = operation->report().dropped().first().reason;
        EXPECT_TRUE(reason.contains(QLatin1String(row.said))) << reason.toStdString();
        EXPECT_TRUE(itemDirectories().isEmpty());
    }
}

TEST_F(DocumentKindsTest, ASketchFileBecomesAnItemWithItsPreviewAndOneWithoutIsExplained)
{
    QFile picture(writeImage(QStringLiteral("p.png"), {1200, 800}));
    ASSERT_TRUE(picture.open(QIODevice::ReadOnly));
    const QByteArray content =
        SampleArchives::zipFile({{"document.json", "{}"}, {"previews/preview.png", picture.readAll()}});
    const QString good = writeFile(QStringLiteral("Page.sketch"), content);
    const QString bad = writeFile(QStringLiteral("Bare.sketch"), SampleArchives::zipFile({{"document.json", "{}"}}));
    const auto operation = import({good, bad});
    const auto made = item(QStringLiteral("Page"));
    ASSERT_TRUE(made);
    EXPECT_NE(dynamic_cast<ZQLibrarySketch *>(made.get()), nullptr);
    EXPECT_EQ(made->SHA1().toLatin1(), QCryptographicHash::hash(content, QCryptographicHash::Sha1).toHex());
    EXPECT_EQ(made->byteSize(), content.size());
    EXPECT_EQ(made->detailItemURL(), made->itemURL());
    EXPECT_EQ(made->exportImageRep().size(), QSize(1200, 800));
    EXPECT_EQ(QImage(made->thumbURL()).size(), QSize(512, 341));
    EXPECT_TRUE(tagTitles(*made).contains(QStringLiteral("vector")));
    EXPECT_EQ(droppedPaths(operation->report()), QStringList{bad});
    EXPECT_TRUE(operation->report().dropped().first().reason.contains(QStringLiteral("holds no preview")));
    EXPECT_EQ(itemDirectories().size(), 1);
}

TEST_F(DocumentKindsTest, ASketchPackageIsTakenWholeAndASingleFileIsExplainedWhereItIsNotWanted)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(false, QStringLiteral("ImportModernImages"));
    writeImage(QStringLiteral("Old.sketch/QuickLook/Preview.png"), {60, 40});
    writeFile(QStringLiteral("Old.sketch/Data"), "data");
    const QString file = writeFile(QStringLiteral("In/New.Sketch"), "PK\3\4");
    for (const bool isFolder : {false, true}) { // alone, and in a folder
        user.notifications.clear();
        const auto operation = isFolder ? import({path(QStringLiteral("In"))}, projectsLabel().get())
                                        : import({path(QStringLiteral("Old.sketch")), file});
        bool isExplained = false;
        for (const DroppedFile &dropped : operation->report().dropped()) {
            isExplained =
                isExplained || (dropped.path == file && dropped.reason.contains(QStringLiteral("newer Sketch")) &&
                                dropped.reason.contains(QStringLiteral("PNG")));
        }
        EXPECT_TRUE(isExplained) << isFolder;
        const QString shown = user.notificationTexts().join(u'\n');
        EXPECT_TRUE(shown.contains(QStringLiteral("New.Sketch")) && shown.contains(QStringLiteral("newer Sketch")))
            << shown.toStdString();
    }
    const auto made = item(QStringLiteral("Old"));
    ASSERT_TRUE(made);
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(QStringLiteral("ImportModernImages"));
    EXPECT_TRUE(QFileInfo(made->itemURL() + QStringLiteral("/Data")).isFile());
    EXPECT_TRUE(tagTitles(*made).contains(QStringLiteral("vector")));
}

TEST_F(DocumentKindsTest, AnEPSFileIsRefusedThoughItsImporterDrawsItAtItsBoundingBox)
{
    const QByteArray drawing("0.9 0.5 0.1 setrgbcolor 5 5 20 10 rectfill");
    const QString refused = writeFile(QStringLiteral("a.eps"), SampleFormats::epsFile({280, 180}, drawing));
    EXPECT_EQ(droppedPaths(import({refused})->report()), QStringList{refused});

    for (const QSize size : {QSize(280, 180), QSize(40, 600), QSize(700, 30)}) {
        const QString file = writeFile(QStringLiteral("drawing.eps"), SampleFormats::epsFile(size, drawing));
        Listener listener;
        ImportedFile made;
        const auto operation = std::make_shared<EPSImportOperation>(file);
        operation->setImportData(&made);
        operation->setFatherOperation(&listener);
        operation->start();
        ASSERT_TRUE(listener.dropped.isEmpty()) << listener.dropped.first().reason.toStdString();
        EXPECT_EQ(made.fileData.value(QStringLiteral("itemClass")), QStringLiteral("ZQLibraryEPS"));
        EXPECT_EQ(made.fileData.value(QStringLiteral("pixelWidth")).toInt(), size.width());
        EXPECT_EQ(made.fileData.value(QStringLiteral("pixelHeight")).toInt(), size.height());
        const QDir bundle = QFileInfo(made.filePath).dir();
        EXPECT_EQ(QImage(bundle.filePath(ZQLibraryBaseItem::representationBitmapName)).size(), size);
        const QImage thumb(bundle.filePath(made.fileData.value(QStringLiteral("thumbName")).toString()));
        EXPECT_LE(std::max(thumb.width(), thumb.height()), 512);
        EXPECT_FALSE(thumb.isNull());
        EXPECT_EQ(listener.finished, 1);
    }
}

TEST_F(DocumentKindsTest, AnErrorIsSaidInWordsAndAFullDiskEndsTheWholeImport)
{
    const QString full = QStringLiteral("The disk is full. Free some space and import it again.");
    const QString locked =
        QStringLiteral("You have no permission to read it. Change its permissions and import it again.");
    const std::pair<int, QString> cases[] = {
        {ENOSPC, full},
        {EDQUOT, full},
        {EACCES, locked},
        {EPERM, locked},
        {ENOENT, QStringLiteral("It is not there any more. Look where it went and import it from there.")},
        {EIO, QStringLiteral("Its disk cannot read it. Check the disk, or import it from a copy.")},
    };
    for (const auto &[code, said] : cases) {
        SCOPED_TRACE(code);
        Listener listener;
        ImportedFile made;
        const auto operation = std::make_shared<FailingImport>(writeFile(QStringLiteral("a.eps"), "drawing"), code);
        operation->setImportData(&made);
        operation->setFatherOperation(&listener);
        operation->start();
        EXPECT_TRUE(made.fileData.isEmpty() && itemDirectories().isEmpty());
        ASSERT_EQ(listener.dropped.size(), 1);
        EXPECT_EQ(listener.dropped.first().reason, said);
        EXPECT_EQ(listener.refused, said == full ? full : QString());
        EXPECT_EQ(listener.finished, 1);
    }
}

TEST_F(DocumentKindsTest, ADocumentWhosePictureCannotBeKeptIsNoItem)
{
    const QString file = writeImage(QStringLiteral("drawing.png"), {28, 18});
    Listener listener;
    ImportedFile made;
    const auto operation = std::make_shared<ObstructedImport>(file);
    operation->setImportData(&made);
    operation->setFatherOperation(&listener);
    operation->start();
    EXPECT_TRUE(made.fileData.isEmpty());
    ASSERT_EQ(listener.dropped.size(), 1);
    EXPECT_EQ(listener.dropped.first().path, file);
    EXPECT_FALSE(listener.dropped.first().reason.isEmpty());
    EXPECT_TRUE(QFile::exists(file));
}

TEST_F(DocumentKindsTest, AnEPSFileThatIsNonePleadsItsReasonAndLeavesNothing)
{
    const QByteArray wrongs[] = {"no drawing", SampleFormats::epsFile({0, 0}, ""), "%!PS-Adobe-3.0 EPSF-3.0\n"};
    for (const QByteArray &wrong : wrongs) {
        const QString file = writeFile(QStringLiteral("wrong.eps"), wrong);
        Listener listener;
        ImportedFile made;
        const auto operation = std::make_shared<EPSImportOperation>(file);
        operation->setImportData(&made);
        operation->setFatherOperation(&listener);
        testing::internal::CaptureStderr();
        operation->start();
        const std::string log = testing::internal::GetCapturedStderr();
        EXPECT_NE(log.find("EPS "), std::string::npos) << log;
        EXPECT_NE(log.find(" is not a valid image"), std::string::npos) << log;
        EXPECT_TRUE(made.fileData.isEmpty()) << wrong.constData();
        ASSERT_EQ(listener.dropped.size(), 1) << wrong.constData();
        EXPECT_EQ(listener.dropped.first().path, file);
        EXPECT_FALSE(listener.dropped.first().reason.isEmpty());
        EXPECT_TRUE(itemDirectories().isEmpty());
    }
}

// The last thing a quitting application does is to stop serving other threads; no import may wait on after that.
TEST_F(DocumentKindsTest, AnImportThatWaitsForAnAnswerEndsWhenTheApplicationDoes)
{
    const QString known = writeImage(QStringLiteral("known.png"), {30, 30});
    import({known});
    ASSERT_EQ(items().size(), 1);
    bool isAsked = false;
    user.answerUnreadableFiles = [&](QList<FileConflict> &) { return isAsked = true; };
    user.answerDuplicates = [&](const QList<DuplicatePair> &pairs) {
        isAsked = true;
        return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::KeepBoth);
    };
    const QList<QStringList> requests{
        {known},                                                                             // a duplicate
        {writeImage(QStringLiteral("new.png"), {31, 30}), path(QStringLiteral("gone.png"))}, // one unreadable
    };
    for (const QStringList &paths : requests) {
        const auto operation = AImportManager::sharedAImportManager().startImport({paths});
        zqStopMainThreadCalls(); // no event was served since; the question is still to come or waits
        operation->waitUntilFinished();
        zqResumeMainThreadCalls();
        EXPECT_FALSE(isAsked);
        EXPECT_TRUE(operation->isCancelled());
        EXPECT_TRUE(operation->report().imported().isEmpty());
        EXPECT_EQ(itemDirectories().size(), 1);
    }
    EXPECT_EQ(items().size(), 1);
}
