// Picture files that become layers: what is written, and what is left as it was.

#include "Classes/Export/LayeredDocument.h"
#include "Classes/Export/LayeredExport.h"
#include "Classes/Export/PSDWriter.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Tests/Support/ScriptedUser.h"
#include "Tests/Support/UserWorld.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <gtest/gtest.h>

namespace {

class LayeredDocumentTest : public testing::Test
{
protected:
    UserWorld world{"LayeredDocument"};
    QString out = world.filePath(QStringLiteral("out/a.psd"));
    ZQError error;

    void SetUp() override { QDir(world.path()).mkdir(QStringLiteral("out")); }
    LayeredPicture picture(const QString &name, QSize size)
    {
        QImage image(size, QImage::Format_RGBA8888);
        image.fill(Qt::red);
        const QString path = world.filePath(name + QStringLiteral(".png"));
        EXPECT_TRUE(image.save(path));
        return {{path}, name, {}, 1};
    }
    LayeredPicture noPicture()
    {
        const QString path = world.filePath(QStringLiteral("note.png"));
        put(path, "no picture");
        return {{path}, QStringLiteral("note"), {}, 1};
    }
    // With a good header and half of its rows.
    LayeredPicture cut(const QString &name)
    {
        const QString path = world.filePath(name + QStringLiteral(".png"));
        QImage noise(64, 64, QImage::Format_RGBA8888);
        for (int i = 0; i < 64 * 64; ++i) {
            noise.setPixelColor(i % 64, i / 64, QColor(i * 7919 % 251, i * 104729 % 241, i * 31 % 239));
        }
        EXPECT_TRUE(noise.save(path));
        const QByteArray whole = bytesAt(path);
        put(path, whole.left(whole.size() / 2));
        return {{path}, name, {}, 1};
    }
    LayeredPicture drawing(const QString &name, ZQExportRepresentation::Drawing drawing)
    {
        const QString path = world.filePath(name + QStringLiteral(".svg"));
        put(path,
            R"(<svg xmlns="http://www.w3.org/2000/svg" width="12" height="8"><rect width="9" height="9"/></svg>)");
        return {{path, drawing}, name, {}, 1};
    }
    static void put(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size());
    }
    static QByteArray bytesAt(const QString &path)
    {
        QFile file(path);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList written() const
    {
        return QDir(world.filePath(QStringLiteral("out")))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    bool write(const QList<LayeredPicture> &pictures, QSize canvas, bool replaces = false)
    {
        error = {};
        return LayeredDocument::write(pictures, canvas, out, replaces, {}, &error);
    }
};

} // namespace

TEST_F(LayeredDocumentTest, IsWrittenWholeAndOverNothingUnasked)
{
    const QList<LayeredPicture> pictures = {picture(QStringLiteral("a"), {3, 2})};
    ASSERT_TRUE(write(pictures, {3, 2})) << qPrintable(error.localizedDescription());
    const auto properties = ZQImageSource::propertiesOfFile(out);
    ASSERT_TRUE(properties);
    EXPECT_EQ(QSize(properties->pixelWidth, properties->pixelHeight), QSize(3, 2));
    put(out, "mine");
    EXPECT_FALSE(write(pictures, {3, 2}));
    EXPECT_EQ(error.code, LayeredDocument::AlreadyThere);
    EXPECT_EQ(bytesAt(out), "mine");
    EXPECT_TRUE(write(pictures, {3, 2}, true));
    EXPECT_TRUE(bytesAt(out).startsWith("8BPS"));
    EXPECT_EQ(written(), QStringList{QStringLiteral("a.psd")});
}

// What the processes that decode have packed is, wherever it lies, what the writer makes of the pixels.
TEST_F(LayeredDocumentTest, LayersPackedElsewhereAreTheSameBytes)
{
    constexpr QSize canvas(50, 40);
    QList<LayeredPicture> pictures;
    PSDWriter writer(canvas);
    writer.setShouldUnpremultiplyLayerData(true);
    int number = 0;
    for (const QPoint offset : {QPoint(0, 0), QPoint(-7, 3), QPoint(20, -5), QPoint(45, 38), QPoint(-30, 0),
                                QPoint(50, 0), QPoint(0, 1 << 30), QPoint(3, 4)}) {
        QImage image(30, 20, QImage::Format_RGBA8888);
        for (int i = 0; i < 30 * 20; ++i) { // rows that are alike, clear places, and runs
            const int y = i / 30 / 3;
            image.setPixelColor(i % 30, i / 30,
                                QColor(i % 30 / 4 * 9 + y, y * 40, number * 20, i % 30 < 9 ? 0 : y * 36));
        }
        LayeredPicture layer{{world.filePath(QStringLiteral("l%1.png").arg(number))}, QStringLiteral("l"), offset, 1};
        layer.opacity = float(++number) / 8;
        ASSERT_TRUE(image.save(layer.picture.path));
        writer.addLayerWithCGImage(ZQBitmap(image), layer.name, layer.opacity, offset);
        pictures.append(layer);
    }
    ASSERT_TRUE(write(pictures, canvas)) << qPrintable(error.localizedDescription());
    EXPECT_EQ(bytesAt(out), writer.createPSDData());
}

TEST_F(LayeredDocumentTest, LeavesWhatTookTheNameMeanwhile)
{
    const auto putAnother = [this] { put(out, "mine"); };
    EXPECT_FALSE(
        LayeredDocument::write({picture(QStringLiteral("a"), {3, 2})}, {3, 2}, out, false, putAnother, &error));
    EXPECT_EQ(error.domain, LayeredDocument::errorDomain);
    EXPECT_EQ(error.code, LayeredDocument::AlreadyThere);
    EXPECT_EQ(bytesAt(out), "mine");
    EXPECT_EQ(written(), QStringList{QStringLiteral("a.psd")});
}

TEST_F(LayeredDocumentTest, LeavesNothingWhenItFails)
{
    const LayeredPicture good = picture(QStringLiteral("a"), {3, 2});
    EXPECT_FALSE(write({good, noPicture()}, {3, 2}));
    EXPECT_EQ(error.code, LayeredDocument::CannotRead);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("note.png")));
    EXPECT_FALSE(write({good}, {30001, 2}));
    EXPECT_EQ(error.code, LayeredDocument::DoesNotFit);
    EXPECT_FALSE(write({}, {3, 2}));
    EXPECT_EQ(error.code, LayeredDocument::DoesNotFit);
    {
        const auto cancellation = std::make_shared<ZQCancellation>();
        const ZQCancellation::Scope scope(cancellation);
        const auto cancel = [&] { cancellation->cancel(); };
        EXPECT_FALSE(LayeredDocument::write({good, good}, {3, 2}, out, false, cancel, &error));
        EXPECT_EQ(error.code, LayeredDocument::Cancelled);
    }
    EXPECT_EQ(written(), QStringList());
    out = world.filePath(QStringLiteral("nowhere/a.psd"));
    EXPECT_FALSE(write({good}, {3, 2}));
    EXPECT_FALSE(error.localizedDescription().isEmpty());
}

TEST_F(LayeredDocumentTest, NeverReplacesALayerOrAFolder)
{
    const LayeredPicture layer = picture(QStringLiteral("a"), {3, 2});
    const QByteArray before = bytesAt(layer.picture.path);
    out = world.path() + QStringLiteral("/./a.png");
    EXPECT_FALSE(write({layer}, {3, 2}, true));
    EXPECT_EQ(bytesAt(layer.picture.path), before);
    out = world.filePath(QStringLiteral("out"));
    EXPECT_FALSE(write({layer}, {3, 2}, true));
    EXPECT_TRUE(QFileInfo(out).isDir());
}

TEST_F(LayeredDocumentTest, LeavesAloneTheAssetThatALayerIsDrawnFrom)
{
    LayeredPicture layer = picture(QStringLiteral("a"), {3, 2});
    layer.file = out;
    put(out, "mine");
    EXPECT_FALSE(write({layer}, {3, 2}, true));
    EXPECT_EQ(bytesAt(out), "mine");
}

TEST_F(LayeredDocumentTest, KeepsSoftColorsStraight)
{
    QImage image(1, 1, QImage::Format_RGBA8888);
    image.fill(QColor(255, 0, 0, 128));
    const QString path = world.filePath(QStringLiteral("soft.png"));
    ASSERT_TRUE(image.save(path));
    ASSERT_TRUE(write({{{path}, QStringLiteral("soft"), {}, 1}}, {1, 1}));
    // A compression, one count and a literal for each channel.
    EXPECT_TRUE(bytesAt(out).toHex().contains("0001000200ff00010002000000010002000000010002"
                                              "0080"));
}

TEST_F(LayeredDocumentTest, GoesOnWithoutWhatCannotBeReadWhereGapsAreTaken)
{
    using Drawing = ZQExportRepresentation::Drawing;
    const LayeredPicture good = picture(QStringLiteral("a"), {3, 2});
    const LayeredPicture part = cut(QStringLiteral("part"));
    const LayeredPicture vector = drawing(QStringLiteral("vector"), Drawing::Picture);
    for (const LayeredPicture &picture : {part, vector, noPicture()}) {
        EXPECT_FALSE(write({good, picture}, {3, 2})) << qPrintable(picture.name);
        LayeredDocument::Gaps gaps;
        out = world.filePath(QStringLiteral("out/%1.psd").arg(picture.name));
        EXPECT_TRUE(LayeredDocument::write({good, picture}, {3, 2}, out, false, {}, &error, &gaps));
        const bool isPart = picture.name == part.name;
        EXPECT_EQ(bytesAt(out).count("8BIMnorm"), isPart ? 2 : 1) << qPrintable(picture.name);
        const QStringList lines = isPart ? gaps.incomplete : gaps.leftOut;
        ASSERT_EQ(lines.size(), 1);
        EXPECT_TRUE(lines[0].startsWith(picture.name + QStringLiteral(": ")));
        EXPECT_EQ(gaps.incomplete.size() + gaps.leftOut.size(), 1);
    }
    LayeredDocument::Gaps gaps;
    out = world.filePath(QStringLiteral("out/none.psd"));
    EXPECT_FALSE(LayeredDocument::write({noPicture()}, {3, 2}, out, false, {}, &error, &gaps));
    EXPECT_EQ(error.code, LayeredDocument::CannotRead);
    EXPECT_FALSE(QFileInfo::exists(out));
}

TEST_F(LayeredDocumentTest, IsAsLargeAsTheLargestAndNamesWhatIsLeftOut)
{
    QList<LayeredPicture> pictures = {picture(QStringLiteral("wide"), {9, 2}),
                                      noPicture(),
                                      picture(QStringLiteral("high"), {1, 7}),
                                      drawing(QStringLiteral("vector"), ZQExportRepresentation::Drawing::Picture),
                                      {{}, QStringLiteral("missing"), {}, 1}};
    QStringList leftOut;
    EXPECT_EQ(LayeredDocument::largestSize(pictures, &leftOut), QSize(9, 7));
    EXPECT_EQ(pictures.size(), 2);
    ASSERT_EQ(leftOut.size(), 3);
    const QStringList names = {QStringLiteral("note: "), QStringLiteral("vector: "), QStringLiteral("missing: ")};
    for (qsizetype i = 0; i < names.size(); ++i) {
        EXPECT_TRUE(leftOut[i].startsWith(names[i]) && leftOut[i].size() > names[i].size()) << qPrintable(leftOut[i]);
    }
}

TEST_F(LayeredDocumentTest, IsAsLargeAsADrawingIsDrawn)
{
    const LayeredPicture vector = drawing(QStringLiteral("vector"), ZQExportRepresentation::Drawing::PictureOrPreview);
    QList<LayeredPicture> pictures = {vector};
    QStringList leftOut;
    const QSize size = LayeredDocument::largestSize(pictures, &leftOut);
    EXPECT_FALSE(size.isEmpty()) << qPrintable(leftOut.join(u' '));
    EXPECT_EQ(size, vector.picture.bitmap().size());
    EXPECT_TRUE(write(pictures, size)) << qPrintable(error.localizedDescription());
}

TEST_F(LayeredDocumentTest, IsExportedInTheBackground)
{
    ScriptedUser user;
    ZQOperationQueue queue;
    LayeredExport::begin({picture(QStringLiteral("wide"), {9, 2}), picture(QStringLiteral("high"), {1, 7})}, out, false,
                         user, queue);
    zqRunMainLoopUntil([&] { return queue.operationCount() == 0 && !user.notifications.isEmpty(); });
    EXPECT_EQ(user.notificationTexts().last(), QStringLiteral("“a.psd” was written with 2 layers"));
    EXPECT_TRUE(bytesAt(out).startsWith("8BPS"));

    out = world.filePath(QStringLiteral("out/b.psd"));
    LayeredExport::begin({picture(QStringLiteral("wide"), {9, 2}), cut(QStringLiteral("part"))}, out, false, user,
                         queue);
    zqRunMainLoopUntil([&] { return queue.operationCount() == 0 && !user.errors.isEmpty(); });
    EXPECT_TRUE(bytesAt(out).startsWith("8BPS"));
    EXPECT_TRUE(user.errors.last().localizedDescription().contains(QStringLiteral("part: ")));
    QFile::remove(out);
    user.errors.clear();
    LayeredExport::begin({noPicture()}, out, false, user, queue);
    zqRunMainLoopUntil([&] { return queue.operationCount() == 0 && !user.errors.isEmpty(); });
    EXPECT_EQ(written(), QStringList{QStringLiteral("a.psd")});
}
