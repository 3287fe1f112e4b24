// HEIC, AVIF, JPEG XL, and Sketch documents in one file.

#include "Tests/Kit/Imaging/Decoders/Bytes.h"
#include "Tests/Kit/Imaging/ImagingSupport.h"
#include "Tools/samples/SampleArchives.h"
#include "Tools/samples/SampleFormats.h"
#include "Tools/samples/SampleScenes.h"

#include <QBuffer>
#include <QColorSpace>
#include <QFile>
#include <QTransform>

namespace {

using SampleFormats::ModernOptions;
using Writer = bool (*)(const QImage &, const QString &, const ModernOptions &);

class ModernFormatsTest : public ImagingTest
{
protected:
    QByteArray written(Writer write, const QImage &image, const ModernOptions &options = {}) const
    {
        const QString file = path(QStringLiteral("picture"));
        EXPECT_TRUE(write(image, file, options));
        QFile device(file);
        return device.open(QIODevice::ReadOnly) ? device.readAll() : QByteArray();
    }
};

QImage opaqueScene()
{
    return SampleScenes::asymmetricScene({400, 300}).convertToFormat(QImage::Format_RGB32);
}

QImage withHalfAlpha(const QImage &image)
{
    QImage out = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < out.height(); ++y) {
        for (int x = 0; x < out.width(); ++x) {
            QColor color = out.pixelColor(x, y);
            color.setAlpha(x < out.width() / 2 ? 255 : 0);
            out.setPixelColor(x, y, color);
        }
    }
    return out;
}

QByteArray pngOf(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "png"));
    return bytes;
}

// An EXIF block that says that the picture is to be turned, as cameras write it beside the container's own word.
const QByteArray turnedByEXIF("Exif\0\0MM\0*\0\0\0\x08\0\1\1\x12\0\3\0\0\0\1\0\6\0\0\0\0\0\0", 32);

} // namespace

TEST_F(ModernFormatsTest, ArriveUprightInTheirColoursAndDepths)
{
    const QImage scene = opaqueScene();
    const QByteArray displayP3 = QColorSpace(QColorSpace::DisplayP3).iccProfile();
    ASSERT_FALSE(displayP3.isEmpty());
    struct Row
    {
        const char *name;
        Writer write;
        const ZQDecoder &decoder;
        QList<int> depths;
    };
    for (const Row &row : {Row{"a.heic", SampleFormats::writeHEIC, zqHEIFDecoder, {8, 10}},
                           Row{"a.avif", SampleFormats::writeAVIF, zqHEIFDecoder, {8}},
                           Row{"a.jxl", SampleFormats::writeJPEGXL, zqJPEGXLDecoder, {8, 16}}}) {
        for (const int depth : row.depths) {
            SCOPED_TRACE(testing::Message() << row.name << ' ' << depth);
            const ZQSourceFile opaque = fileOf(written(row.write, scene, {.bits = depth}), row.name);
            EXPECT_EQ(described(row.decoder, opaque), QStringLiteral("400x300 %1 bits RGB").arg(depth).toStdString());
            EXPECT_LT(distance(zqDecodeFile({opaque, {}}, nullptr).image(), scene), 5);
            EXPECT_EQ(zqDecodeFile({opaque, {100, 100}}, nullptr).size(), QSize(100, 75));
            ZQError error;
            EXPECT_TRUE(zqDecodeFile({opaque, {}, 1}, &error).isNull());
            EXPECT_EQ(error.code, int(ZQImagingErrorCode::NoSuchFrame));

            const ZQBitmap clear = zqDecodeFile(
                {fileOf(written(row.write, withHalfAlpha(scene), {.bits = depth}), row.name), {}}, nullptr);
            EXPECT_EQ(colorAt(clear, 0.9, 0.5).alpha(), 0);
            EXPECT_EQ(colorAt(clear, 0.1, 0.5).alpha(), 255);
        }
        QImage wide(64, 64, QImage::Format_RGB32);
        wide.fill(QColor(0, 200, 0));
        const QByteArray tagged = written(row.write, wide, {.profile = displayP3});
        const QColor shown = colorAt(zqDecodeFile({fileOf(tagged, row.name), {}}, nullptr), 0.5, 0.5);
        EXPECT_TRUE(shown.red() < 20 && shown.green() > 200) << row.name << ' ' << shown.name().toStdString();
    }
}

// The library that writes the others cannot write these.
TEST_F(ModernFormatsTest, DeepAVIFPicturesAreReadToo)
{
    for (const auto &[depth, base64] :
         {std::pair(10, "AAAAIGZ0eXBhdmlmAAAAAGF2aWZtaWYxbWlhZk1BMUEAAADybWV0YQAAAAAAAAAoaGRscgAAAAAAAAAAcGljdAAAAA"
                        "AAAAAAAAAAAGxpYmF2aWYAAAAADnBpdG0AAAAAAAEAAAAeaWxvYwAAAABEAAABAAEAAAABAAABGgAAACEAAAAoaWlu"
                        "ZgAAAAAAAQAAABppbmZlAgAAAAABAABhdjAxQ29sb3IAAAAAamlwcnAAAABLaXBjbwAAABRpc3BlAAAAAAAAABAAAA"
                        "AQAAAAEHBpeGkAAAAAAwoKCgAAAAxhdjFDgSBAAAAAABNjb2xybmNseAABAA0ABoAAAAAXaXBtYQAAAAAAAAABAAEE"
                        "AQKDBAAAACltZGF0EgAKCDgM/9jAQ0GkMhMWQAkkkkQAOVIHkXGnWcLUEWzQ"),
          std::pair(12, "AAAAHGZ0eXBhdmlmAAAAAGF2aWZtaWYxbWlhZgAAAPJtZXRhAAAAAAAAAChoZGxyAAAAAAAAAABwaWN0AAAAAAAAAA"
                        "AAAAAAbGliYXZpZgAAAAAOcGl0bQAAAAAAAQAAAB5pbG9jAAAAAEQAAAEAAQAAAAEAAAEWAAAAIgAAAChpaW5mAAAA"
                        "AAABAAAAGmluZmUCAAAAAAEAAGF2MDFDb2xvcgAAAABqaXBycAAAAEtpcGNvAAAAFGlzcGUAAAAAAAAAEAAAABAAAA"
                        "AQcGl4aQAAAAADDAwMAAAADGF2MUOBQGAAAAAAE2NvbHJuY2x4AAEADQAGgAAAABdpcG1hAAAAAAAAAAEAAQQBAoME"
                        "AAAAKm1kYXQSAAoJWAz/2NAQ0GiAMhMWQAkkkkQAOVIHkXGnWcLUEWzQ")}) {
        const ZQSourceFile file = fileOf(QByteArray::fromBase64(base64), "a.avif");
        EXPECT_EQ(described(zqHEIFDecoder, file), QStringLiteral("16x16 %1 bits RGB").arg(depth).toStdString());
        const QColor shown = colorAt(zqDecodeFile({file, {}}, nullptr), 0.5, 0.5);
        EXPECT_TRUE(qAbs(shown.red() - 200) < 4 && qAbs(shown.green() - 40) < 4 && qAbs(shown.blue() - 20) < 4)
            << depth << ' ' << shown.name().toStdString();
    }
}

TEST_F(ModernFormatsTest, AContainersTurningHappensOnceWhateverEXIFSaysBeside)
{
    const QImage scene = opaqueScene();
    for (const Writer write : {SampleFormats::writeHEIC, SampleFormats::writeAVIF}) {
        const QByteArray stored = written(write, scene, {.metadata = turnedByEXIF});
        for (const int quarters : {0, 1, 2, 3}) {
            SCOPED_TRACE(quarters);
            const QImage expected = scene.transformed(QTransform().rotate(-90 * quarters));
            const ZQSourceFile file = fileOf(quarters ? SampleFormats::turnedHEIF(stored, quarters) : stored, "a.heic");
            const auto properties = zqPropertiesOfFile(file, nullptr);
            ASSERT_TRUE(properties);
            EXPECT_EQ(QSize(properties->pixelWidth, properties->pixelHeight), expected.size());
            EXPECT_EQ(properties->orientation, 1);
            EXPECT_LT(distance(zqDecodeFile({file, {}}, nullptr).image(), expected), 5);
        }
    }
}

TEST_F(ModernFormatsTest, OfACutJPEGXLPictureThereIsWhatWasReadAndOfTheOthersAReason)
{
    const QImage scene = SampleScenes::scene(SampleScenes::Style::Mountains,
                                             {"#cfe8ff", "#8fc1e8", "#4b83b6", "#16324f", "#ffffff"}, {900, 700}, 77);
    const QByteArray whole = written(SampleFormats::writeJPEGXL, scene);
    const ZQBitmap most = zqJPEGXLDecoder.decode({fileOf(whole.left(whole.size() * 9 / 10), "a.jxl"), {}}, nullptr);
    EXPECT_TRUE(most.isIncomplete());
    EXPECT_EQ(most.size(), scene.size());
    EXPECT_EQ(drawn(zqJPEGXLDecoder, {fileOf(whole.left(100), "a.jxl"), {}}), damaged);
    for (const Writer write : {SampleFormats::writeHEIC, SampleFormats::writeAVIF}) {
        const QByteArray other = written(write, scene);
        for (const int percent : {1, 20, 90}) {
            EXPECT_EQ(drawn(zqHEIFDecoder, {fileOf(other.left(other.size() * percent / 100), "a.heic"), {}}), damaged)
                << percent;
        }
    }
}

TEST_F(ModernFormatsTest, AHeaderThatPromisesTooMuchTakesNoMemory)
{
    // The picture's size is the first thing in it: 2^30 by 2^30 pixels of one bit more than nothing.
    const QByteArray huge = QByteArray::fromHex("ff0afcffffff0ffeffffff0f");
    EXPECT_FALSE(drawn(zqJPEGXLDecoder, {fileOf(huge, "a.jxl"), {}}).empty());
    QByteArray heic = written(SampleFormats::writeHEIC, opaqueScene());
    const qsizetype size = heic.indexOf("ispe");
    ASSERT_GT(size, 0);
    qToBigEndian(quint32(60000), heic.data() + size + 8);
    qToBigEndian(quint32(60000), heic.data() + size + 12);
    ZQError error;
    EXPECT_TRUE(zqHEIFDecoder.decode({fileOf(heic, "a.heic"), {}}, &error).isNull());
    EXPECT_FALSE(error.isNull());
}

TEST_F(ModernFormatsTest, ASketchFileShowsItsPreviewOrSaysWhyNot)
{
    const QByteArray preview = pngOf(opaqueScene());
    using SampleArchives::Entry;
    const auto document = [](const QList<Entry> &entries) { return SampleArchives::zipFile(entries); };
    const QByteArray good = document({{"document.json", "{}"}, {"previews/preview.png", preview}});
    const ZQSourceFile file = fileOf(good, "a.sketch");
    EXPECT_EQ(described(zqSketchDecoder, file), "400x300 8 bits RGB");
    EXPECT_LT(distance(zqDecodeFile({file, {}}, nullptr).image(), opaqueScene()), 0.01);
    EXPECT_EQ(zqPreviewOfFile(file, {100, 100}, 0, nullptr).size(), QSize(100, 75));
    struct Row
    {
        const char *what;
        QByteArray bytes;
        const char *said;
    };
    for (const Row &row :
         {Row{"no preview", document({{"document.json", "{}"}}), "holds no preview"},
          Row{"another place", document({{"preview.png", preview}}), "holds no preview"},
          Row{"a folder of that name", document({{"previews/preview.png/", {}, Entry::Kind::Folder}}), "no preview"},
          Row{"no PNG picture", document({{"previews/preview.png", "GIF89a and more"}}), "holds no preview"},
          Row{"itself again", document({{"previews/preview.png", good}}), "holds no preview"},
          Row{"an empty preview", document({{"previews/preview.png", {}}}), "holds no preview"},
          Row{"a preview of endless size", document({{"previews/preview.png", QByteArray(70 << 20, '\0')}}), "large"},
          Row{"a picture of a size that nobody has",
              document({{"previews/preview.png", SampleFormats::lyingPNG(400000, 400000)}}), "400000"},
          Row{"cut", good.left(good.size() / 2), "damaged"}, Row{"no archive", "text", "damaged"},
          Row{"nothing", {}, "damaged"}}) {
        const std::string said = drawn(zqSketchDecoder, {fileOf(row.bytes, "a.sketch"), {}});
        EXPECT_NE(said.find(row.said), std::string::npos) << row.what << ": " << said;
    }
    const QByteArray cutPicture = document({{"previews/preview.png", preview.left(preview.size() / 2)}});
    EXPECT_TRUE(zqDecodeFile({fileOf(cutPicture, "a.sketch"), {}}, nullptr).isIncomplete());
}
