#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/ImportErrors.h"
#include "Classes/Import/ImportKind.h"
#include "Classes/Import/ImportSettings.h"
#include "Classes/Import/PasteboardFiles.h"
#include "Classes/Import/TemporaryFolder.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Import/ImportFixture.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QMimeData>

namespace {
class ImportQueriesTest : public ImportFixture
{
};
} // namespace

TEST_F(ImportQueriesTest, WhatCanBeImportedFollowsFromTheNameAndWhetherItIsAFolder)
{
    struct Case
    {
        const char *name;
        bool asFile;
        bool asFolder;
    };
    for (const Case &c : {Case{"photo.JPG", true, false}, {"a.jpeg", true, false},     {"a.jp2", true, false},
                          {"a.tif", true, false},         {"a.gif", true, false},      {"a.png", true, false},
                          {"a.icns", true, false},        {"a.bmp", true, false},      {"a.ico", true, false},
                          {"a.svg", true, false},         {"a.psd", true, false},      {"a.ai", true, false},
                          {"drawing.eps", false, false},  {"a.tga", true, false},      {"a.pxm", true, false},
                          {"a.pxim", true, false},        {"a.acorn", true, false},    {"a.ACORN", true, false},
                          {"design.sketch", true, true},  {"a.snap", false, true},     {"a.cr2", true, false},
                          {"a.nef", true, false},         {"a.dng", true, false},      {"a.pdf", true, false},
                          {"bundle.zip", true, false},    {"bundle.RAR", true, false}, {"a.txt", false, false},
                          {"png", false, false},          {"a.", false, false},        {"a.webp", true, false},
                          {"a.HEIC", true, false},        {"a.heif", true, false},     {"a.avif", true, false},
                          {"a.jxl", true, false}}) {
        const QString name = QString::fromLatin1(c.name);
        EXPECT_EQ(ImportQueries::fileAtPathIsSupported(writeFile(QStringLiteral("files/") + name, "x")), c.asFile)
            << c.name;
        const QString folder = path(QStringLiteral("folders/") + name);
        ASSERT_TRUE(QDir().mkpath(folder));
        EXPECT_EQ(ImportQueries::fileAtPathIsSupported(folder), c.asFolder) << c.name;
    }
}

TEST_F(ImportQueriesTest, TodaysFormatsAreTakenAsLongAsThePersonWantsThem)
{
    const QString key = QStringLiteral("ImportModernImages");
    const QStringList modern{QStringLiteral("webp"), QStringLiteral("heic"), QStringLiteral("avif"),
                             QStringLiteral("jxl"), QStringLiteral("sketch")};
    const QString package = path(QStringLiteral("folders/design.sketch"));
    ASSERT_TRUE(QDir().mkpath(package));
    for (const bool isWanted : {true, false, true}) {
        ZQUserDefaults::standardUserDefaults().setObjectForKey(isWanted, key);
        for (const QString &extension : modern) {
            const QString file = writeFile(QStringLiteral("files/a.") + extension, "x");
            EXPECT_EQ(ImportQueries::fileAtPathIsSupported(file), isWanted) << qPrintable(extension);
            EXPECT_EQ(importableExtensions().contains(extension), isWanted) << qPrintable(extension);
            const bool isExplained =
                unsupportedFile(file).reason.contains(QStringLiteral("preferences")) || extension == u"sketch";
            EXPECT_TRUE(isWanted || isExplained) << qPrintable(extension);
        }
        EXPECT_TRUE(ImportQueries::fileAtPathIsSupported(package));
        EXPECT_TRUE(ImportQueries::fileAtPathIsSupported(writeFile(QStringLiteral("files/a.png"), "x")));
    }
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(key);
}

TEST_F(ImportQueriesTest, ASidebarItemTakesTheDropsOfItsKind)
{
    const QString image = writeImage(QStringLiteral("a.png"), {1, 1});
    const QString archive = writeFile(QStringLiteral("a.zip"), "x");
    const QString text = writeFile(QStringLiteral("a.txt"), "x");
    const QString folder = path(QStringLiteral("folder"));
    ASSERT_TRUE(QDir().mkpath(folder));
    const auto liveFolder = context().insertNewObject<ZQSidebarWatchedFolder>();
    const auto sidebarFolder = context().insertNewObject<ZQSidebarFolder>();
    const auto special = [this](ZQSidebarKind kind) { return ZQSidebarBaseItem::specialItemOfKind(kind, context()); };
    struct Case
    {
        const char *what;
        ZQRef<ZQSidebarBaseItem> target;
        bool image, archive, folder, text;
    };
    for (const Case &c : {Case{"Recent", special(ZQSidebarKind::Recent), false, false, false, false},
                          {"LIVE FOLDERS", special(ZQSidebarKind::WatchedFoldersLabel), false, false, false, false},
                          {"a live folder", liveFolder, true, true, true, false},
                          {"Library", special(ZQSidebarKind::Library), true, true, false, false},
                          {"a project", addProject(QStringLiteral("p")), true, true, false, false},
                          {"a folder", sidebarFolder, false, true, true, false},
                          {"PROJECTS", projectsLabel(), false, true, true, false},
                          {"TAGS", special(ZQSidebarKind::TagsLabel), false, false, false, false},
                          {"a tag", addTag(QStringLiteral("t")), true, true, false, false}}) {
        EXPECT_EQ(ImportQueries::areFilesAtPaths({image}, c.target.get()), c.image) << c.what;
        EXPECT_EQ(ImportQueries::areFilesAtPaths({archive}, c.target.get()), c.archive) << c.what;
        EXPECT_EQ(ImportQueries::areFilesAtPaths({folder}, c.target.get()), c.folder) << c.what;
        EXPECT_EQ(ImportQueries::areFilesAtPaths({text}, c.target.get()), c.text) << c.what;
        EXPECT_EQ(ImportQueries::areFilesAtPaths({text, image, folder}, c.target.get()), c.image || c.folder) << c.what;
    }
    EXPECT_FALSE(ImportQueries::areFilesAtPaths({image}, nullptr));
    context().deleteObject(liveFolder.get());
    context().deleteObject(sidebarFolder.get());
}

TEST_F(ImportQueriesTest, PathsInsideListedPathsGoAndTheOrderStays)
{
    struct Case
    {
        QStringList paths;
        QStringList kept;
    };
    const auto list = [](const char *text) { return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts); };
    for (const Case &c : {Case{list("/a/b/c /a/b /d"), list("/a/b /d")},
                          {list("/d /a/b /a/bc"), list("/d /a/b")}, // textual
                          {list("/a/b /a/b /a/b/c"), list("/a/b /a/b")},
                          {list("/a/b-c/x /a/b /a/b-c"), list("/a/b")},
                          {{}, {}}}) {
        EXPECT_EQ(ImportQueries::removeSubFoldersFromPaths(c.paths), c.kept);
    }
}

TEST_F(ImportQueriesTest, TemporaryPlacesAreToldByText)
{
    for (const char *inside :
         {"/private/var/x", "/var/x", "/tmp/x", "/home/u/Library/Caches/x", "/data/ZeltoTemporaryFolder/t.1/x"}) {
        EXPECT_TRUE(ImportQueries::fileIsInsideTemporaryDirectory(QString::fromLatin1(inside))) << inside;
    }
    for (const char *outside : {"/home/u/var/x", "/tmpx/y", "/home/tmp/x", "var/x"}) {
        EXPECT_FALSE(ImportQueries::fileIsInsideTemporaryDirectory(QString::fromLatin1(outside))) << outside;
    }
}

TEST_F(ImportQueriesTest, EveryTemporaryDirectoryIsANewFolderInOnePlace)
{
    const QString first = TemporaryFolder::temporaryDirectory();
    const QString second = TemporaryFolder::temporaryDirectory();
    EXPECT_NE(first, second);
    EXPECT_TRUE(QFileInfo(first).isDir());
    EXPECT_TRUE(ImportQueries::fileIsInsideTemporaryDirectory(first));
    EXPECT_EQ(QFileInfo(first).path(), path(QStringLiteral("TMPDIR/ZeltoTemporaryFolder")));
}

TEST_F(ImportQueriesTest, ATemporaryDirectoryThatCannotBeMadeIsShownAsAnError)
{
    qputenv("TMPDIR", QFile::encodeName(writeFile(QStringLiteral("in-the-way"), "no folder")));
    EXPECT_TRUE(TemporaryFolder::temporaryDirectory().isEmpty());
    QCoreApplication::processEvents();
    EXPECT_EQ(user.errors.size(), 1);
}

TEST_F(ImportQueriesTest, SmallPicturesOfCommonKindsNeedNoThumbnail)
{
    const QString small = writeFile(QStringLiteral("small.png"), QByteArray(262144, 'x'));
    const QString big = writeFile(QStringLiteral("big.png"), QByteArray(262145, 'x'));
    const QString vector = writeFile(QStringLiteral("vector.svg"), "x");
    EXPECT_TRUE(ImportQueries::canSkipThumbForPath(small));
    EXPECT_FALSE(ImportQueries::canSkipThumbForPath(big));
    EXPECT_FALSE(ImportQueries::canSkipThumbForPath(vector));
    ZQUserDefaults::standardUserDefaults().setObjectForKey(true, QStringLiteral("AlwaysMakeThumbsWhileImporting"));
    EXPECT_FALSE(ImportQueries::canSkipThumbForPath(small));
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(QStringLiteral("AlwaysMakeThumbsWhileImporting"));
}

TEST_F(ImportQueriesTest, TheOpenPanelOffersWhatIsDecodedAndTheDocuments)
{
    const QStringList types = ImportQueries::supportedTypeForOpenPanel();
    EXPECT_TRUE(types.contains(QStringLiteral("png")));
    EXPECT_EQ(types.mid(types.size() - 10).join(u' '), QStringLiteral("pdf PDF zip ZIP rar RAR eps EPS svg SVG"));
}

TEST_F(ImportQueriesTest, SizeTagsFollowTheThreeLimits)
{
    struct Case
    {
        int icon, small, medium;
        int width, height;
        const char *tag;
    };
    for (const Case &c : {Case{32, 128, 512, 30, 30, "icon"},
                          {32, 128, 512, 32, 33, "small"},
                          {32, 128, 512, 32, 20, "icon"},
                          {32, 128, 512, 20, 33, "small"},
                          {32, 128, 512, 128, 100, "small"},
                          {32, 128, 512, 129, 100, "medium"},
                          {32, 128, 512, 100, 512, "medium"},
                          {32, 128, 512, 100, 513, "large"},
                          {32, 128, 512, 300, 300, "medium"},
                          {32, 128, 512, 512, 129, "medium"},
                          {32, 128, 512, 600, 300, "large"},
                          {32, 128, 0, 400, 400, "icon"},
                          {32, 0, 512, 128, 128, "icon"},
                          {0, 128, 512, 32, 32, "icon"},
                          {0, 128, 512, 33, 33, "small"}}) {
        const ImportSettings settings{.iconTagSize = c.icon, .smallTagSize = c.small, .mediumTagSize = c.medium};
        EXPECT_EQ(settings.sizeTag(c.width, c.height), QString::fromLatin1(c.tag)) << c.width << "x" << c.height;
    }
}

TEST_F(ImportQueriesTest, APictureOnTheClipboardBecomesAFileOfItsOwnFormat)
{
    const auto makeDirectory = [] { return TemporaryFolder::temporaryDirectory(); };
    // Not looked into: what is no picture at all is a file like any other, which the import refuses.
    for (const auto &[format, name] : std::initializer_list<std::pair<const char *, const char *>>{
             {"image/png", "png"}, {"image/jpeg", "jpg"}, {"image/tiff", "tiff"}, {"image/x-ms-bmp", "bmp"}}) {
        SCOPED_TRACE(format);
        QMimeData bytes;
        bytes.setData(QLatin1String(format), "no picture");
        EXPECT_TRUE(PasteboardFiles::hasPicture(bytes));
        const PasteboardFiles pasted = PasteboardFiles::filesFromMimeData(&bytes, makeDirectory);
        ASSERT_EQ(pasted.paths.size(), 1);
        EXPECT_EQ(QFileInfo(pasted.paths.first()).fileName(), QStringLiteral("Pasted image.") + QLatin1String(name));
        QFile file(pasted.paths.first());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), "no picture");
    }
    QImage image(3, 2, QImage::Format_RGB32);
    image.fill(Qt::blue);
    QMimeData pixels; // only decoding would tell what it is
    pixels.setImageData(image);
    EXPECT_FALSE(PasteboardFiles::hasPicture(pixels));
    EXPECT_TRUE(PasteboardFiles::filesFromMimeData(&pixels, makeDirectory).paths.isEmpty());

    QMimeData encoded;
    encoded.setData(QStringLiteral("image/svg+xml"), "<svg/>");
    encoded.setUrls({QUrl(QStringLiteral("https://example.org/a%2F..%2Fb/logo.svg"))});
    const PasteboardFiles fromWeb = PasteboardFiles::filesFromMimeData(&encoded, makeDirectory);
    ASSERT_EQ(fromWeb.paths.size(), 1);
    EXPECT_EQ(QFileInfo(fromWeb.paths.first()).fileName(), QStringLiteral("logo.svg"));
    EXPECT_EQ(fromWeb.metadata.value(QStringLiteral("webURL")),
              QStringLiteral("https://example.org/a%2F..%2Fb/logo.svg"));

    QMimeData inlined;
    inlined.setUrls({QUrl(QStringLiteral("data:image/gif;base64,R0lGODlhAQABAAAAACw="))});
    const PasteboardFiles fromData = PasteboardFiles::filesFromMimeData(&inlined, makeDirectory);
    ASSERT_EQ(fromData.paths.size(), 1);
    EXPECT_TRUE(fromData.paths.first().endsWith(QStringLiteral("/Pasted image.gif")));

    // A picture dragged out of a page, with the address of the link around it.
    encoded.setData(QStringLiteral("_NETSCAPE_URL"), "https://example.org/page\nA page");
    const PasteboardFiles linked = PasteboardFiles::filesFromMimeData(&encoded, makeDirectory);
    EXPECT_EQ(linked.metadata,
              (QVariantMap{{QStringLiteral("webURL"), fromWeb.metadata.value(QStringLiteral("webURL"))},
                           {QStringLiteral("webPageURL"), QStringLiteral("https://example.org/page")}}));
    encoded.setUrls({});
    const PasteboardFiles onlyLink = PasteboardFiles::filesFromMimeData(&encoded, makeDirectory);
    EXPECT_EQ(QFileInfo(onlyLink.paths.value(0)).fileName(), QStringLiteral("page.svg"));
    EXPECT_EQ(onlyLink.metadata, (QVariantMap{{QStringLiteral("webURL"), QStringLiteral("https://example.org/page")}}));
    encoded.setData(QStringLiteral("_NETSCAPE_URL"), "file:///etc/passwd\nA page");
    EXPECT_TRUE(PasteboardFiles::filesFromMimeData(&encoded, makeDirectory).metadata.isEmpty());

    QMimeData address;
    address.setUrls({QUrl(QStringLiteral("https://example.org/logo.png"))});
    EXPECT_FALSE(PasteboardFiles::hasContent(address)) << "nothing is downloaded";
    EXPECT_TRUE(PasteboardFiles::hasContent(inlined));
    EXPECT_TRUE(PasteboardFiles::hasContent(encoded));
    QMimeData local;
    local.setUrls({QUrl::fromLocalFile(QStringLiteral("/x/logo.png"))});
    EXPECT_TRUE(PasteboardFiles::hasContent(local));

    QMimeData text;
    text.setText(QStringLiteral("words"));
    EXPECT_TRUE(PasteboardFiles::filesFromMimeData(&text, makeDirectory).paths.isEmpty());
}
