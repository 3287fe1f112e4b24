// What the decoders share, and those that leave the drawing to a library or another program.

#include "Kit/Imaging/Decoders/ZQChildProcess.h"
#include "Kit/Imaging/Decoders/ZQThumbnailers.h"
#include "Kit/Imaging/Decoders/ZQVipsPixels.h"
#include "Kit/Imaging/ZQImagingLibraries.h"
#include "Tests/Kit/Imaging/Decoders/Bytes.h"
#include "Tools/samples/SampleFormats.h"

#include <QBuffer>
#include <QDir>
#include <QTemporaryDir>

#include <exiv2/exiv2.hpp>
#include <fcntl.h>
#include <gtest/gtest.h>

namespace {

QImage gradient(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            image.setPixelColor(x, y, QColor(40 * x % 256, 30 * y % 256, 100));
        }
    }
    return image;
}

QByteArray encoded(const QImage &image, const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format, 95));
    return bytes;
}

// What the file says of its drawing's size, and with what that is drawn.
QSize sizeSaid(const ZQDecoder &decoder, const QByteArray &bytes, const char *name)
{
    const auto properties = decoder.properties(fileOf(bytes, name), nullptr);
    return properties ? QSize(properties->pixelWidth, properties->pixelHeight) : QSize();
}

class Folder : public testing::Test
{
protected:
    QString path(const char *name) const { return m_folder.filePath(QString::fromUtf8(name)); }
    QString file(const char *name, const QByteArray &content, bool isProgram = false) const
    {
        EXPECT_TRUE(SampleFormats::writeBytes(content, path(name)));
        if (isProgram) {
            EXPECT_TRUE(QFile::setPermissions(path(name), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        }
        return path(name);
    }
    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
    }

private:
    QTemporaryDir m_folder;
};

using ChildProcessTest = Folder;

class ThumbnailerTest : public Folder
{
protected:
    ThumbnailerTest() { qputenv("XDG_DATA_HOME", path("data").toUtf8()); }
    ~ThumbnailerTest() override
    {
        m_before.isEmpty() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", m_before);
    }
    void registerAs(const char *name, const QByteArray &entry) const
    {
        EXPECT_TRUE(QDir().mkpath(path("data/thumbnailers")));
        file((QByteArray("data/thumbnailers/") + name).constData(), entry);
    }

private:
    const QByteArray m_before = qgetenv("XDG_DATA_HOME");
};

} // namespace

TEST(DecodingTest, SizesAreFittedAndCheckedAtTheirBorders)
{
    struct Fit
    {
        QSize size;
        QSize box;
        QSize fitted;
    };
    for (const Fit &row :
         {Fit{{10, 10}, {10, 10}, {10, 10}}, Fit{{11, 5}, {10, 10}, {10, 4}}, Fit{{5, 11}, {10, 10}, {4, 10}},
          Fit{{10, 5}, {10, 10}, {10, 5}}, Fit{{5, 10}, {10, 10}, {5, 10}}, Fit{{1000, 1}, {10, 10}, {10, 1}},
          Fit{{1000, 900}, {}, {1000, 900}}, Fit{{20, 10}, {10, 10}, {10, 5}}}) {
        EXPECT_EQ(zqFittedSize(row.size, {{}, row.box}), row.fitted) << row.size.width() << 'x' << row.size.height();
    }
    struct Check
    {
        qint64 width;
        qint64 height;
        const char *reason; // null: it may be decoded
    };
    for (const Check &row :
         {Check{10, 10, nullptr}, Check{1, 100, nullptr}, Check{1, 101, "Its size of 1 x 101 pixels is too big."},
          Check{101, 1, "Its size of 101 x 1 pixels is too big."},
          Check{10, 11, "Its size of 10 x 11 pixels is too big."}, Check{0, 1, damaged}, Check{1, 0, damaged},
          Check{-1, 5, damaged}, Check{1, 1, nullptr}}) {
        ZQError error;
        EXPECT_EQ(zqCheckSize(QStringLiteral("a.png"), row.width, row.height, 100, &error), !row.reason);
        EXPECT_EQ(error.userInfo.value(ZQError::failureReasonKey).toString(), QString::fromLatin1(row.reason));
        EXPECT_EQ(error.userInfo.value(ZQError::descriptionKey).toString(),
                  row.reason ? QStringLiteral("The picture \"a.png\" can't be opened.") : QString());
    }
    EXPECT_TRUE(zqIsPartOfPicture(1, 100));
    EXPECT_FALSE(zqIsPartOfPicture(1, 101));
    EXPECT_FALSE(zqIsPartOfPicture(0, 0));
    EXPECT_EQ(zqPaperOfName(QStringLiteral("a.AI")), ZQPaper::Transparent);
    EXPECT_EQ(zqPaperOfName(QStringLiteral("a.ai.pdf")), ZQPaper::White);
}

TEST(DecodingTest, AFileIsDecodedByWhatItIs)
{
    const ZQSourceFile png = fileOf(encoded(gradient({30, 20}), "PNG"), "a.jpg");
    ZQError error;
    EXPECT_EQ(zqDecodeFile({png, {}}, &error).image().convertToFormat(QImage::Format_RGB32), gradient({30, 20}));
    EXPECT_TRUE(zqDecodeFile({png, {}, -1}, &error).isNull());
    EXPECT_EQ(error.userInfo.value(ZQError::failureReasonKey).toString(), QStringLiteral("It has no frame -1."));
    for (const bool isPreview : {false, true}) {
        error = {};
        const ZQSourceFile text = fileOf("some text", "a.png");
        EXPECT_TRUE((isPreview ? zqPreviewOfFile(text, {9, 9}, 0, &error) : zqDecodeFile({text, {}}, &error)).isNull());
        EXPECT_EQ(error.userInfo.value(ZQError::failureReasonKey).toString(),
                  QStringLiteral("It is not a picture of a known kind."));
        EXPECT_FALSE(zqPropertiesOfFile(text, &error));
        EXPECT_EQ(error.code, int(ZQImagingErrorCode::UnknownFormat));
    }
    EXPECT_FALSE(zqPropertiesOfFile(fileOf("8BPS", "a.psd"), &error));
    EXPECT_EQ(error.code, int(ZQImagingErrorCode::Damaged));
    const QByteArray drawing("<?xml version='1.0'?><svg xmlns='http://www.w3.org/2000/svg' width='40' height='20'/>");
    const QByteArray prefixed("<s:svg xmlns:s='http://www.w3.org/2000/svg' width='40' height='20'/>");
    const QByteArray filler = "<!--" + QByteArray(4096, ' ') + "-->";
    struct Row
    {
        QByteArray bytes;
        bool isDrawing;
    };
    for (const Row &row :
         {Row{drawing, true}, Row{prefixed, true}, Row{filler + prefixed, false}, Row{"<html/>", false}}) {
        const ZQSourceFile file = fileOf(row.bytes, "a.svg");
        EXPECT_EQ(zqPropertiesOfFile(file, nullptr).has_value(), row.isDrawing);
        EXPECT_EQ(zqPreviewOfFile(file, {80, 80}, 0, nullptr).size(), row.isDrawing ? QSize(80, 40) : QSize(0, 0));
        EXPECT_TRUE(zqDecodeFile({file, {80, 80}}, nullptr).isNull()) << "previews only";
    }
    const auto svg = zqPropertiesOfFile(fileOf(drawing, "a"), nullptr);
    EXPECT_TRUE(svg->isVector && svg->hasAlpha);
    EXPECT_EQ(svg->dpi, 72);
    EXPECT_EQ(svg->pixelWidth, 40);
}

TEST(DecodingTest, DrawingsComeAtTheSizeThatIsWanted)
{
    const QByteArray pdf = SampleFormats::pdfFile({100, 50}, "1 0 0 rg 0 0 50 50 re f");
    struct Row
    {
        QSize box;
        bool fills;
        QSize size;
    };
    for (const Row &row : {Row{{}, false, {100, 50}}, Row{{}, true, {100, 50}}, Row{{50, 50}, false, {50, 25}},
                           Row{{100, 50}, false, {100, 50}}, Row{{200, 200}, false, {100, 50}},
                           Row{{200, 200}, true, {200, 100}}, Row{{400, 25}, true, {50, 25}}}) {
        const ZQBitmap bitmap = zqPDFDecoder.decode({fileOf(pdf, "a.pdf"), row.box, 0, row.fills}, nullptr);
        EXPECT_EQ(bitmap.size(), row.size) << row.box.width() << ' ' << row.fills;
        EXPECT_EQ(bitmap.image().pixelColor(1, 1), QColor(255, 0, 0));
        EXPECT_EQ(bitmap.image().pixelColor(bitmap.width() - 2, 1), QColor(255, 255, 255));
    }
    const ZQDecodeRequest onNothing{fileOf(pdf, "a.ai"), {}, 0, false, ZQPaper::Transparent};
    EXPECT_EQ(zqPDFDecoder.decode(onNothing, nullptr).image().pixelColor(98, 1).alpha(), 0);
    EXPECT_EQ(drawn(zqPDFDecoder, {fileOf(pdf, "a.pdf"), {}, 1}), "It has no frame 1.");
    EXPECT_EQ(drawn(zqPDFDecoder, {fileOf("%PDF-1.4 and no more", "a.pdf"), {}}), damaged);
    EXPECT_EQ(described(zqPDFDecoder, fileOf("%PDF-1.4 and no more", "a.pdf")), damaged);
    EXPECT_EQ(described(zqPDFDecoder, ZQSourceFile()), damaged);
    EXPECT_EQ(described(zqPDFDecoder, fileOf(pdf, "a.pdf")), "100x50 8 bits RGB alpha");
    const QByteArray huge("<svg xmlns='http://www.w3.org/2000/svg' width='20' height='10'/>");
    EXPECT_EQ(drawn(zqSVGDecoder, {fileOf(huge, "a.svg"), {60000, 60000}, 0, true}),
              "Its size of 60001 x 30001 pixels is too big.");
}

TEST(DecodingTest, TheBoxOfPostScriptIsTheLastOneThatIsSaid)
{
    const auto boxed = [](const QByteArray &comments) { return "%!PS-Adobe-3.0 EPSF-3.0\n" + comments + "\n"; };
    const QByteArray plain = boxed("%%BoundingBox: 0 0 30 20");
    const auto wrapped = [&](quint32 offset, quint32 length) {
        return QByteArray::fromHex("c5d0d3c6") + little(offset) + little(length) + QByteArray(20, '\0') + plain +
               "tail";
    };
    struct Row
    {
        const char *what;
        QByteArray bytes;
        QSize size; // invalid: none
    };
    for (const Row &row : {
             Row{"plain", plain, {30, 20}},
             Row{"parts of points", boxed("%%BoundingBox: 0.5 0.5 30.6 20.4"), {31, 20}},
             Row{"at the end", boxed("%%BoundingBox: (atend)\n%%BoundingBox: -10 -5 20 15"), {30, 20}},
             Row{"a last one without numbers", boxed("%%BoundingBox: 1 1 5 4\n%%BoundingBox: x"), {4, 3}},
             Row{"old ends of lines", "%!PS EPSF\r%%BoundingBox: 0 0 3 2\r5 6 7 8", {3, 2}},
             Row{"numbers of the next line are none of it", boxed("%%BoundingBox: 0 0 3\n2"), {}},
             Row{"more numbers", boxed("%%BoundingBox: 0 0 3 2 9"), {3, 2}},
             Row{"endless", boxed("%%BoundingBox: 0 0 inf nan"), {}},
             Row{"empty", boxed("%%BoundingBox: 0 0 0 2"), {}},
             Row{"turned", boxed("%%BoundingBox: 0 5 3 2"), {}},
             Row{"none said", boxed(""), {}},
             Row{"a page", "%!PS\nshowpage", {612, 792}},
             Row{"immense", boxed("%%BoundingBox: 0 0 9e9 2"), {1000000, 2}},
             Row{"said at once", "%%BoundingBox: 0 0 3 2 EPSF", {3, 2}},
             Row{"wrapped", wrapped(32, quint32(plain.size())), {30, 20}},
             Row{"wrapped, cut", wrapped(32, quint32(plain.size()) - 4), {}},
             Row{"wrapped, of no length", wrapped(32, 0), {}},
             Row{"half a wrapping", QByteArray::fromHex("c5d0d3c6 0000"), {612, 792}},
             Row{"nothing", {}, {}},
         }) {
        EXPECT_EQ(sizeSaid(zqPostScriptDecoder, row.bytes, "a.eps"), row.size) << row.what;
    }
    EXPECT_EQ(described(zqPostScriptDecoder, fileOf({}, "a.eps")), damaged);
    EXPECT_EQ(described(zqPostScriptDecoder, fileOf(boxed(""), "a.eps")), "Its bounding box is empty.");
    EXPECT_EQ(drawn(zqPostScriptDecoder, {fileOf(plain, "a.eps"), {}, 1}), "It has no frame 1.");
    EXPECT_EQ(drawn(zqPostScriptDecoder, {fileOf(boxed("%%BoundingBox: 0 0 16384 8193"), "a.eps"), {}}),
              "Its size of 16384 x 8193 pixels is too big.");
}

TEST(DecodingTest, APictureIsTurnedAsItsOrientationSays)
{
    QImage image(3, 2, QImage::Format_RGBA8888);
    image.fill(Qt::black);
    image.setPixelColor(0, 0, Qt::red);
    struct Row
    {
        int orientation;
        QPoint red;
    };
    for (const Row &row : {Row{0, {0, 0}}, Row{1, {0, 0}}, Row{2, {2, 0}}, Row{3, {2, 1}}, Row{4, {0, 1}},
                           Row{5, {0, 0}}, Row{6, {1, 0}}, Row{7, {1, 2}}, Row{8, {0, 2}}, Row{9, {0, 0}}}) {
        const QImage turned = zqOrientedImage(image, row.orientation);
        EXPECT_EQ(turned.size(), row.orientation >= 5 && row.orientation <= 8 ? QSize(2, 3) : QSize(3, 2));
        EXPECT_EQ(turned.pixelColor(row.red), QColor(Qt::red)) << row.orientation;
        const QByteArray png = encoded(image, "PNG");
        EXPECT_EQ(zqDecodeBytes(png, {}, row.orientation).image().pixelColor(row.red), QColor(Qt::red));
    }
    const QByteArray jpeg = encoded(gradient({40, 20}), "JPEG");
    EXPECT_EQ(zqDecodeBytes(jpeg, {10, 10}, std::nullopt).size(), QSize(10, 5));
    EXPECT_EQ(zqDecodeBytes(jpeg, {10, 10}, 6).size(), QSize(5, 10));
    EXPECT_EQ(zqDecodeBytes(jpeg, {}, std::nullopt).size(), QSize(40, 20));
    EXPECT_TRUE(zqDecodeBytes("no picture", {}, std::nullopt).isNull());
    EXPECT_TRUE(zqDecodeBytes(SampleFormats::lyingPNG(40000, 40000), {}, std::nullopt).isNull());
    EXPECT_TRUE(zqBitmapOfCMYK(QByteArray(15, '\0'), {2, 2}).isNull());
    EXPECT_TRUE(zqBitmapOfLab(QByteArray(11, '\0'), {2, 2}).isNull());
    EXPECT_EQ(zqBitmapOfCMYK(QByteArray(16, '\0'), {2, 2}).image().pixelColor(1, 1), QColor(Qt::white));
    EXPECT_EQ(zqBitmapOfLab(QByteArray("\0\x80\x80", 3), {1, 1}).image().pixelColor(0, 0), QColor(Qt::black));
}

TEST(DecodingTest, AnyNumberOfBandsOfAnyKindBecomesFourBytesAPixel)
{
    zqEnterVips();
    struct Row
    {
        const char *what;
        int bands;
        VipsBandFormat format;
        VipsInterpretation interpretation;
        QColor color;
    };
    const float floats[] = {10, 20, 300, 128, 7};
    const uchar bytes[] = {10, 20, 30, 128, 7};
    const quint16 words[] = {10 * 257, 20 * 257, 30 * 257, 128 * 257, 7};
    for (const Row &row : {
             Row{"grey", 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W, QColor(10, 10, 10)},
             Row{"grey with transparency", 2, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W, QColor(10, 10, 10, 20)},
             Row{"colours", 3, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_sRGB, QColor(10, 20, 30)},
             Row{"colours with transparency", 4, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_sRGB, QColor(10, 20, 30, 128)},
             Row{"and one more", 5, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_sRGB, QColor(10, 20, 30, 128)},
             Row{"fractions", 3, VIPS_FORMAT_FLOAT, VIPS_INTERPRETATION_sRGB, QColor(10, 20, 255)},
             Row{"words", 4, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_RGB16, QColor(10, 20, 30, 128)},
         }) {
        const void *const data = row.format == VIPS_FORMAT_FLOAT    ? static_cast<const void *>(floats)
                                 : row.format == VIPS_FORMAT_USHORT ? static_cast<const void *>(words)
                                                                    : bytes;
        const ZQVipsImage raw(vips_image_new_from_memory(data, sizeof floats, 1, 1, row.bands, row.format));
        VipsImage *tagged = nullptr;
        ASSERT_EQ(vips_copy(raw.get(), &tagged, "interpretation", row.interpretation, nullptr), 0) << row.what;
        const ZQVipsImage image(tagged);
        EXPECT_EQ(zqBitmapOfVips(image.get()).image().pixelColor(0, 0), row.color) << row.what;
    }
}

TEST(DecodingTest, WhatHasNoColoursIsNoPicture)
{
    zqEnterVips();
    const double numbers[] = {1, 2};
    const ZQVipsImage waves(vips_image_new_from_memory(numbers, sizeof numbers, 1, 1, 1, VIPS_FORMAT_DPCOMPLEX));
    VipsImage *tagged = nullptr;
    ASSERT_EQ(vips_copy(waves.get(), &tagged, "interpretation", VIPS_INTERPRETATION_FOURIER, nullptr), 0);
    const ZQVipsImage image(tagged);
    EXPECT_TRUE(zqBitmapOfVips(image.get()).isNull());
    zqLogVipsError({});
}

TEST(DecodingTest, FramesThatSayNextToNothingOfTheirTimeAreShownAsLongAsUsual)
{
    const auto gifOf = [](const QList<int> &hundredths, qsizetype cut = 0) {
        QByteArray out = "GIF89a" + QByteArray::fromHex("0100 0100 80 00 00  ff0000 0000ff");
        for (const int delay : hundredths) {
            out += QByteArray::fromHex("21f904 00") + little(quint16(delay)) + QByteArray::fromHex("00 00") +
                   QByteArray::fromHex("2c 0000 0000 0100 0100 00  02 02 4401 00");
        }
        return fileOf((out + ';').chopped(cut), "a.gif");
    };
    const auto several = zqVipsDecoder.properties(gifOf({0, 1, 2, 5}), nullptr);
    ASSERT_TRUE(several);
    EXPECT_EQ(several->frameCount, 4);
    EXPECT_EQ(several->frameDurations, (QList<int>{100, 100, 20, 50}));
    EXPECT_EQ(zqVipsDecoder.properties(gifOf({5, 5}), nullptr)->frameDurations, (QList<int>{50, 50}));
    EXPECT_EQ(zqVipsDecoder.properties(gifOf({5}), nullptr)->frameDurations, QList<int>());
    EXPECT_EQ(drawn(zqVipsDecoder, {gifOf({5, 5}), {}, 1}), "1x1 ff0000ff");
    EXPECT_EQ(drawn(zqVipsDecoder, {gifOf({5, 5}), {}, 2}), "It has no frame 2.");
    EXPECT_EQ(drawn(zqVipsDecoder, {fileOf("GIF89a", "a.gif"), {}}), damaged);
    EXPECT_EQ(drawn(zqVipsDecoder, {gifOf({5}, 3), {}}), damaged) << "cut within its first frame";
    EXPECT_EQ(drawn(zqVipsDecoder, {ZQSourceFile(), {}}), damaged);
    EXPECT_EQ(described(zqVipsDecoder, ZQSourceFile()), damaged);
}

TEST(DecodingTest, AResolutionThatNobodyMeansIsNotSaid)
{
    const auto dpiOf = [](int dotsPerMetre) {
        QImage image = gradient({4, 4});
        image.setDotsPerMeterX(dotsPerMetre);
        image.setDotsPerMeterY(dotsPerMetre);
        const auto properties = zqVipsDecoder.properties(fileOf(encoded(image, "PNG"), "a.png"), nullptr);
        return properties ? properties->dpi : -1;
    };
    EXPECT_EQ(dpiOf(11811), 300);
    EXPECT_EQ(dpiOf(1000), 0) << "stands for none";
    EXPECT_EQ(dpiOf(1'000'000'000), 0);
}

TEST_F(Folder, AJPEG2000PictureWithoutSmallerSizesOfItselfIsDrawnFromItsOnlyOne)
{
    const QString name = path("a.jp2");
    ASSERT_TRUE(SampleFormats::writeJPEG2000(gradient({40, 40}), name));
    const ZQBitmap bitmap = zqVipsDecoder.decode({ZQSourceFile::open(name), {10, 10}}, nullptr);
    EXPECT_EQ(bitmap.size(), QSize(10, 10));
    EXPECT_FALSE(bitmap.isIncomplete());
}

TEST_F(Folder, OfACutWebPPictureThereIsItsFirstFrameAlone)
{
    const QString name = path("a.webp");
    ASSERT_TRUE(SampleFormats::writeWebP(gradient({200, 200}), name));
    const QByteArray whole = read(name);
    const ZQSourceFile cut = fileOf(whole.left(whole.size() * 3 / 4), "a.webp");
    EXPECT_TRUE(zqVipsDecoder.decode({cut, {}}, nullptr).isIncomplete());
    EXPECT_EQ(drawn(zqVipsDecoder, {cut, {}, 1}), damaged);
}

TEST(SourceFileTest, ReadsTheStartOnceAndEveryReaderFromTheBeginning)
{
    for (const auto &[size, start] :
         {std::pair(0, 0), std::pair(1, 1), std::pair(262144, 262144), std::pair(262145, 4096)}) {
        QByteArray bytes(size, 'b');
        const ZQSourceFile file = fileOf(bytes, "a");
        EXPECT_EQ(file.size(), size);
        EXPECT_EQ(file.start(), bytes.left(start));
        for (int i = 0; i < 2; ++i) {
            QFile device;
            ASSERT_TRUE(file.openIn(device));
            EXPECT_EQ(device.readAll(), bytes);
        }
        ZQSourceFile::Bytes mapped(file);
        EXPECT_EQ(mapped.size(), size_t(size));
        EXPECT_EQ(mapped.data() != nullptr, size > 0);
        const ZQSourceFile::Bytes taken(std::move(mapped));
        EXPECT_EQ(taken.size(), size_t(size));
        EXPECT_EQ(taken.data() != nullptr, size > 0);
    }
    const ZQSourceFile missing = ZQSourceFile::open(QStringLiteral("/no/such/file"));
    QFile device;
    EXPECT_FALSE(missing.isOpen() || missing.openIn(device) || missing.makeVipsSource());
    EXPECT_EQ(missing.size(), 0);
    EXPECT_TRUE(missing.start().isEmpty());
    EXPECT_EQ(ZQSourceFile::Bytes(missing).data(), nullptr);
}

TEST_F(Folder, KeywordsAreTheOnesOfThePressInTheirOrder)
{
    const QString tagged = file("a.jpg", encoded(gradient({8, 8}), "JPEG"));
    const auto image = Exiv2::ImageFactory::open(tagged.toStdString());
    image->readMetadata();
    const auto add = [&](const char *key, const std::string &text) {
        const auto value = Exiv2::Value::create(Exiv2::string);
        value->read(text);
        image->iptcData().add(Exiv2::IptcKey(key), value.get());
    };
    add("Iptc.Application2.Keywords", "harbour");
    add("Iptc.Application2.Caption", "a caption");
    add("Iptc.Application2.Keywords", " \xC3\xA9t\xC3\xA9 ");
    add("Iptc.Application2.Keywords", "harbour");
    add("Iptc.Application2.Keywords", "  ");
    add("Iptc.Application2.Keywords", "caf\xE9");
    image->writeMetadata();
    EXPECT_EQ(zqKeywordsOfFile(ZQSourceFile::open(tagged)),
              (QStringList{QStringLiteral("harbour"), QStringLiteral("été"), QStringLiteral("café")}));
    EXPECT_EQ(zqKeywordsOfFile(fileOf("no picture", "a.jpg")), QStringList());
    EXPECT_EQ(zqKeywordsOfFile(ZQSourceFile()), QStringList());
    const ZQSourceFile unreadable(ZQFileDescriptor(::open(qPrintable(tagged), O_WRONLY | O_CLOEXEC)), tagged);
    EXPECT_EQ(zqKeywordsOfFile(unreadable), QStringList());
}

TEST_F(ChildProcessTest, RunsWithinItsFolderAndItsLimits)
{
    const QString said = path("said");
    const QString program =
        file("draw",
             "#!/bin/sh\n{ pwd; echo $TMPDIR $TEMP $TMP; ulimit -t; ulimit -v; ulimit -c; cat; } > \"$1\"\n"
             "echo noise; echo noise >&2\n",
             true);
    ASSERT_TRUE(QDir().mkpath(path("folder")));
    const QString folder = QDir(path("folder")).canonicalPath();
    EXPECT_TRUE(zqRunDrawingProgram(program, {said}, folder, std::chrono::milliseconds(20'000)));
    EXPECT_EQ(QString::fromUtf8(read(said)), QStringLiteral("%1\n%1 %1 %1\n21\n2097152\n0\n").arg(folder));
    EXPECT_FALSE(zqRunDrawingProgram(QStringLiteral("/no/such/program"), {}, folder, std::chrono::seconds(20)));
    EXPECT_FALSE(zqRunDrawingProgram(QStringLiteral("/bin/false"), {}, folder, std::chrono::seconds(20)));
    EXPECT_FALSE(zqRunDrawingProgram(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("kill -9 $$")},
                                     folder, std::chrono::seconds(20)));
    EXPECT_FALSE(zqRunDrawingProgram(QStringLiteral("/bin/sleep"), {QStringLiteral("1000")}, folder,
                                     std::chrono::milliseconds(0)))
        << "its alarm ends it";
    EXPECT_TRUE(zqMayRunDrawingPrograms());
}

TEST_F(ThumbnailerTest, IsGivenWhatItsCommandAsksFor)
{
    const QString source = file("a b.xpm", "/* XPM */ none");
    const QString picture = file("picture.png", encoded(gradient({60, 30}), "PNG"));
    const QByteArray script =
        "#!/bin/sh\nprintf '%s|' \"$@\" > '" + path("said").toUtf8() + "'\ncp '" + picture.toUtf8() + "' \"$6\"\n";
    const QByteArray program = file("draw", script, true).toUtf8();
    const auto entry = [](const QByteArray &exec, const QByteArray &more = {}) {
        return "[Thumbnailer Entry]\nExec=" + exec + "\nMimeType=image/x-none;image/x-xpixmap;\n=no key\nno value\n" +
               more;
    };
    registerAs("b.thumbnailer", entry(program + " %s %u %% %x \"%i\" %o 100%"));
    registerAs("c.thumbnailer", entry("/bin/false"));
    registerAs("a1.thumbnailer", entry("/bin/false", "TryExec=/no/such/program\n"));
    registerAs("a2.thumbnailer", entry("/bin/false", QByteArray((1 << 20) + 1, '\n')));
    registerAs("a3.thumbnailer", "[Thumbnailer Entry]\nExec=/bin/false\nMimeType=image/x-none;\n");
    registerAs("a0.thumbnailer",
               "[Thumbnailer Entry]\nExec=/usr/bin/zelto thumbnail %i %o\nMimeType=image/x-xpixmap;\n");
    registerAs("a4.other", entry("/bin/false"));
    EXPECT_TRUE(zqHasThumbnailer(ZQSourceFile::open(source)));
    EXPECT_EQ(zqThumbnailerPreview(source, {40, 10}).size(), QSize(20, 10));
    const QList<QByteArray> said = read(path("said")).split('|');
    ASSERT_EQ(said.size(), 8);
    EXPECT_EQ(said.at(0), "40");
    EXPECT_EQ(said.at(1), "file://" + source.toUtf8().replace(' ', "%20"));
    EXPECT_EQ(said.at(2), "%");
    EXPECT_EQ(said.at(3), "%x");
    EXPECT_EQ(said.at(4), source.toUtf8());
    EXPECT_EQ(said.at(6), "100%");
    registerAs("b.thumbnailer", entry("/bin/false", "TryExec=sh\n"));
    EXPECT_TRUE(zqThumbnailerPreview(source, {40, 10}).isNull());
    const QString unknown = file("a.zzz", QByteArray("\0\1\2", 3));
    EXPECT_FALSE(zqHasThumbnailer(ZQSourceFile::open(unknown)));
    EXPECT_TRUE(zqThumbnailerPreview(unknown, {40, 10}).isNull());
    EXPECT_FALSE(zqHasThumbnailer(ZQSourceFile()));
}

TEST(RawDecoder, SaysOfWhatIsNeitherRawNorAPlainPictureThatItIsDamaged)
{
    ZQError error;
    EXPECT_FALSE(zqRawDecoder.properties(fileOf("neither of them", "a.nef"), &error));
    EXPECT_EQ(error.code, int(ZQImagingErrorCode::Damaged));
    error = {};
    const auto plain = zqRawDecoder.properties(fileOf(encoded(gradient({30, 20}), "PNG"), "a.nef"), &error);
    ASSERT_TRUE(plain);
    EXPECT_EQ(QSize(plain->pixelWidth, plain->pixelHeight), QSize(30, 20));
    EXPECT_TRUE(error.isNull()) << qPrintable(error.localizedDescription());
}
