#include "Classes/Export/ExportOperation.h"

#include "Classes/Tags/OpenMeta.h"
#include "Kit/Imaging/ZQImageExport.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Tests/Classes/Export/ExportFixture.h"
#include "Tests/Support/Skip.h"
#include "Tools/samples/SampleFormats.h"

#include <QStandardPaths>

using ExportOperationTest = ExportFixture;

TEST_F(ExportOperationTest, PicturesGetTheSizeThatIsAskedForAndAreNotEnlargedByASize)
{
    if (QStandardPaths::findExecutable(QStringLiteral("identify")).isEmpty()) {
        return skipWithout("identify");
    }
    const QList<ZQObjectID> items = import({writeImage(QStringLiteral("in/big.png"), {1600, 1200}),
                                            writeImage(QStringLiteral("in/small.png"), {640, 480}),
                                            writeImage(QStringLiteral("in/line.png"), {300, 2})});
    const struct
    {
        std::optional<QSizeF> size;
        std::optional<double> percentage;
        QSize big, small, line;
    } cases[] = {
        {{}, {}, {1600, 1200}, {640, 480}, {300, 2}},
        {QSizeF(800, 0), {}, {800, 600}, {640, 480}, {300, 2}},
        {QSizeF(0, 600), {}, {800, 600}, {640, 480}, {300, 2}},
        {QSizeF(400, 100), {}, {133, 100}, {133, 100}, {300, 2}},
        {QSizeF(0, 0), {}, {1, 1}, {1, 1}, {1, 1}}, // neither side is given
        {{}, 50, {800, 600}, {320, 240}, {150, 1}},
        {{}, 200, {3200, 2400}, {1280, 960}, {600, 4}},
        {QSizeF(10, 10), 50, {800, 600}, {320, 240}, {150, 1}}, // a percentage goes first
    };
    for (const auto &each : cases) {
        const auto result =
            run({.items = items, .fileFormat = JPEG, .imageSize = each.size, .imageSizePercentage = each.percentage});
        ASSERT_EQ(result.written.size(), 3);
        EXPECT_TRUE(result.isComplete());
        const QSize expected[] = {each.big, each.small, each.line};
        for (qsizetype i = 0; i < 3; ++i) {
            const QSize seen = sizeSeenByOthers(result.written[i]);
            // The encoder may round the other way.
            EXPECT_LE(std::abs(seen.width() - expected[i].width()), 1) << each.percentage.value_or(0) << " " << i;
            EXPECT_LE(std::abs(seen.height() - expected[i].height()), 1) << each.percentage.value_or(0) << " " << i;
            EXPECT_GT(seen.height(), 0);
        }
    }
}

TEST_F(ExportOperationTest, EachKindGoesOutUnderEachFormat)
{
    const QImage picture = QImage(writeImage(QStringLiteral("raw.png"), {60, 40}));
    QDir().mkpath(path(QStringLiteral("in")));
    ASSERT_TRUE(SampleFormats::writeJPEG(picture, path(QStringLiteral("in/turned.jpg")), {.orientation = 6}));
    ASSERT_TRUE(SampleFormats::writeCMYKTIFF(picture, path(QStringLiteral("in/cmyk.tif"))));
    ASSERT_TRUE(SampleFormats::writeGIF({picture, picture.mirrored()}, path(QStringLiteral("in/moving.gif"))));
    ASSERT_TRUE(SampleFormats::writeBytes(SampleFormats::pdfFile({200, 100}, "1 0 0 rg 0 0 200 100 re f"),
                                          path(QStringLiteral("in/page.pdf"))));
    ASSERT_TRUE(SampleFormats::writeBytes("<svg xmlns='http://www.w3.org/2000/svg' width='90' height='60'>"
                                          "<rect width='90' height='60' fill='red'/></svg>",
                                          path(QStringLiteral("in/drawing.svg"))));
    writeImage(QStringLiteral("in/Doc.sketch/QuickLook/Preview.png"), {50, 30});
    QStringList paths;
    for (const char *name : {"turned.jpg", "cmyk.tif", "moving.gif", "page.pdf", "drawing.svg", "Doc.sketch"}) {
        paths.append(path(QStringLiteral("in/") + QLatin1String(name)));
    }
    const QList<ZQObjectID> items = import(paths);
    for (const int type : {TIFF, BMP, GIF, JPEG, PNG, JPEG2000, WebP, AVIF, TIFFWithExtension}) {
        if (!zqCanEncode(type)) {
            continue;
        }
        const auto result = run({.items = items, .fileFormat = type, .namesByType = true});
        for (const ExportResult::Problem &problem : result.failed) {
            ADD_FAILURE() << type << " " << problem.title.toStdString() << ": " << problem.reason.toStdString();
        }
        ASSERT_EQ(result.written.size(), items.size()) << type;
        const QString extension = zqExtensionOfFileType(type);
        for (const QString &file : result.written) {
            EXPECT_TRUE(file.endsWith(extension)) << file.toStdString();
            EXPECT_GT(QFileInfo(file).size(), 0) << file.toStdString();
        }
        if (ZQImageSource::supportedExtensions().contains(extension)) {
            EXPECT_EQ(ZQImageSource::bitmapOfFile(result.written[0]).size(), QSize(40, 60)) << type << ": upright";
            for (const QString &file : result.written) {
                EXPECT_FALSE(ZQImageSource::bitmapOfFile(file).isNull()) << file.toStdString();
            }
        }
    }
    const auto kept = run({.items = items, .imageSize = QSizeF(1, 1)});
    ASSERT_EQ(kept.written.size(), items.size());
    for (qsizetype i = 0; i + 1 < items.size(); ++i) {
        EXPECT_EQ(bytes(kept.written[i]), bytes(paths[i])) << paths[i].toStdString();
    }
    EXPECT_TRUE(QFileInfo::exists(kept.written.last() + QStringLiteral("/QuickLook/Preview.png")));
}

TEST_F(ExportOperationTest, TagsRatingAndNotesTravelOntoWhatIsWritten)
{
    const QList<ZQObjectID> items = importImages(1);
    if (!OpenMeta::setString(QStringLiteral("probe"), QStringLiteral("probe"), item(items[0])->itemURL()).isNull()) {
        return skipWithout("extended attributes");
    }
    item(items[0])->changeTags({QStringLiteral("sea")}, {});
    item(items[0])->setNotes(QStringLiteral("at noon"));
    item(items[0])->setRating(4);
    item(items[0])->writeOpenMetaToDisk();
    for (const std::optional<int> type : {std::optional<int>(), std::optional<int>(JPEG)}) {
        const auto result = run({.items = items, .fileFormat = type});
        ASSERT_EQ(result.written.size(), 1);
        EXPECT_TRUE(OpenMeta::getUserTags(result.written[0]).value_or(QStringList()).contains(QStringLiteral("sea")));
        EXPECT_EQ(OpenMeta::getFinderComment(result.written[0]), QStringLiteral("at noon"));
        EXPECT_EQ(OpenMeta::starsForRating(OpenMeta::getRating(result.written[0])), 4);
    }
}

TEST_F(ExportOperationTest, BehindAMissingFileItemsTakeTheNamesOfThoseAfterThem)
{
    const QList<ZQObjectID> items = importImages(5);
    const QByteArray third = bytes(item(items[2])->itemURL());
    QFile::remove(item(items[1])->itemURL());
    QFile::remove(item(items[4])->itemURL());

    const auto result = run({.items = items});
    EXPECT_EQ(written(), (QStringList{QStringLiteral("p1.png"), QStringLiteral("p4.png")}));
    EXPECT_EQ(bytes(out + QStringLiteral("/p4.png")), third);
    ASSERT_EQ(result.missing.size(), 2);
    EXPECT_EQ(result.missing[0].title, QStringLiteral("p2"));
    ASSERT_EQ(result.failed.size(), 1) << "no name is left for the fourth, and that is said";
    EXPECT_EQ(result.failed[0].title, QStringLiteral("p4"));
    EXPECT_TRUE(user.notificationTexts().contains(QStringLiteral("Export incomplete\n2 original files are missing!")));
    EXPECT_EQ(user.progresses.last()->done, 5);
    EXPECT_EQ(user.progresses.last()->text, QStringLiteral("Export operation"));

    user.notifications.clear();
    run({.items = {items[0], items[1]}, .fileFormat = PNG});
    EXPECT_EQ(user.notificationTexts().value(0), QStringLiteral("Export incomplete\n 1 original file is missing!"));
}

TEST_F(ExportOperationTest, WhatIsMissingAtTheEndCostsNoOtherFile)
{
    const QList<ZQObjectID> items = importImages(5);
    QFile::remove(item(items[3])->itemURL());
    QFile::remove(item(items[4])->itemURL());
    EXPECT_EQ(run({.items = items}).count, 3);
    EXPECT_EQ(written().size(), 3);
}

TEST_F(ExportOperationTest, MembershipsLeadToTheirItemsAndUnknownOnesAreMissing)
{
    const QList<ZQObjectID> items = importImages(2);
    ZQManagedObjectContext &context = *delegate->managedObjectContext();
    const auto project = context.insertNewObject<ZQSidebarProject>();
    project->setTitle(QStringLiteral("P"));
    project->addItem(item(items[0]).get(), 0, true, true);
    delegate->saveAction();
    const auto membership = item(items[0])->projectItemForSidebarItem(project.get());
    ASSERT_TRUE(membership);
    ZQObjectID gone = items[1];
    gone.key += 1000;
    const auto result = run({.items = {membership->objectID(), gone, items[1]}});
    EXPECT_EQ(result.missing.size(), 1);
    EXPECT_TRUE(written().contains(QStringLiteral("p1.png")));
}

TEST_F(ExportOperationTest, AnArchiveHoldsTheFilesAndNothingElseReachesTheFolder)
{
    const QList<ZQObjectID> items = importImages(3);
    item(items[0])->setNewTitle(QStringLiteral("Straße ☀"));
    delegate->saveAction();
    for (const std::optional<int> type : {std::optional<int>(), std::optional<int>(JPEG)}) {
        const auto result = run({.items = items, .fileFormat = type, .archive = true});
        ASSERT_EQ(result.written.size(), 1);
        EXPECT_EQ(result.count, 3);
        QProcess unzip;
        unzip.start(QStringLiteral("python3"),
                    {QStringLiteral("-c"),
                     QStringLiteral("import sys,zipfile as z\na=z.ZipFile(sys.argv[1])\nassert a.testzip() is None\n"
                                    "sys.stdout.buffer.write('\\n'.join(sorted(a.namelist())).encode())"),
                     result.written[0]});
        ASSERT_TRUE(unzip.waitForFinished());
        const QString extension = type ? QStringLiteral("jpg") : QStringLiteral("png");
        QStringList names = {QStringLiteral("Straße ☀.") + extension, QStringLiteral("p2.") + extension,
                             QStringLiteral("p3.") + extension};
        names.sort();
        QStringList found = QString::fromUtf8(unzip.readAllStandardOutput()).split(u'\n');
        found.sort();
        EXPECT_EQ(found, names);
        EXPECT_EQ(user.progresses.last()->maximum, 6);
        EXPECT_EQ(user.progresses.last()->done, 6);
    }
    EXPECT_EQ(written(), (QStringList{QStringLiteral("Archive 1.zip"), QStringLiteral("Archive.zip")}));
    EXPECT_TRUE(temporaryFolders().isEmpty());
}

TEST_F(ExportOperationTest, ANameThatIsTakenMeanwhileIsNotWrittenOver)
{
    const QList<ZQObjectID> items = importImages(12);
    const QString taken = out + QStringLiteral("/p12.png");
    user.onStep = [&](int step, const auto &) {
        if (step == 1) { // at most four are begun by then
            QFile file(taken);
            EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("somebody else's") > 0);
        }
    };
    for (const std::optional<int> type : {std::optional<int>(), std::optional<int>(PNG)}) {
        QDir(out).removeRecursively();
        QDir().mkpath(out);
        const auto result = run({.items = items, .fileFormat = type});
        EXPECT_EQ(bytes(taken), "somebody else's");
        ASSERT_EQ(result.written.size(), 12);
        EXPECT_EQ(result.written.last(), out + QStringLiteral("/p12 1.png")) << "what is told is what was written";
        EXPECT_TRUE(QFileInfo::exists(result.written.last()));
    }
}

TEST_F(ExportOperationTest, HostileTitlesStayInTheFolder)
{
    const QList<ZQObjectID> items = importImages(4);
    const QString titles[] = {QStringLiteral("../../escaped"), QStringLiteral("/etc/escaped"), QString(251, u'x'),
                              QStringLiteral("a\nb")};
    for (qsizetype i = 0; i < 4; ++i) {
        const QString file = item(items[i])->itemURL();
        item(items[i])->setTitle(titles[i]); // as a damaged store, or one of another system, has it
        QDir().mkpath(QFileInfo(item(items[i])->itemURL()).path());
        ASSERT_TRUE(QFile::rename(file, item(items[i])->itemURL()));
    }
    delegate->saveAction();
    const QStringList before = namesIn(path(QString()));
    for (const std::optional<int> type : {std::optional<int>(), std::optional<int>(PNG)}) {
        EXPECT_EQ(run({.items = items, .fileFormat = type}).written.size(), 4);
    }
    EXPECT_EQ(namesIn(path(QString())), before);
    EXPECT_FALSE(QFileInfo::exists(out + QStringLiteral("/../../escaped.png")));
    EXPECT_EQ(written().size(), 8);
    for (const QString &name : written()) {
        EXPECT_TRUE(QFileInfo(out + u'/' + name).isFile()) << name.toStdString();
    }
}
