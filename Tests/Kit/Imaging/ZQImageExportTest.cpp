#include "Kit/Imaging/ZQImageExport.h"
#include "Kit/Files/ZQNewFile.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQImagingError.h"
#include "Kit/Imaging/ZQRenderPool.h"
#include "Tests/Kit/Imaging/ImagingSupport.h"
#include "Tests/Support/FileSizeLimit.h"
#include "Tools/samples/SampleCollection.h"
#include "Tools/samples/SampleScenes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QProcess>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <thread>

namespace {

using namespace std::chrono_literals;

class ExportTest : public ImagingTest
{
protected:
    static void SetUpTestSuite()
    {
        s_samples = new QTemporaryDir;
        ASSERT_EQ(SampleCollection::write(s_samples->path(), SampleCollection::Huge::Without), QString());
    }
    static void TearDownTestSuite()
    {
        delete s_samples;
        s_samples = nullptr;
    }
    static QString sample(const char *name) { return s_samples->filePath(QString::fromUtf8(name)); }

    QString target() const { return path(QStringLiteral("out")); }
    // What lies in the test's folder.
    QStringList files() const
    {
        return QDir(path(QString())).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    static QByteArray run(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForFinished(60'000));
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        return process.readAllStandardOutput().trimmed();
    }
    // A written file as another program draws it.
    QImage shown(const QString &file) const
    {
        const QString drawn = path(QStringLiteral("shown.png"));
        run(QStringLiteral("convert"), {file, QStringLiteral("png32:") + drawn});
        return QImage(drawn).convertToFormat(QImage::Format_RGBA8888);
    }

    ZQError error;

private:
    static inline QTemporaryDir *s_samples = nullptr;
};

QImage onWhite(const QImage &image)
{
    QImage out(image.size(), QImage::Format_RGB32);
    out.fill(Qt::white);
    QPainter(&out).drawImage(0, 0, image);
    return out;
}

struct EncodedType
{
    int fileType;
    const char *extension;
    const char *format; // as the other program calls it
    double tolerance;
    bool hasAlpha;
};

constexpr std::initializer_list<EncodedType> encodedTypes{
    {TIFF, "tif", "TIFF", 0, true},  {BMP, "bmp", "BMP3", 0, false},  {GIF, "gif", "GIF", 8, true},
    {JPEG, "jpg", "JPEG", 5, false}, {PNG, "png", "PNG", 0, true},    {JPEG2000, "jp2", "JP2", 6, true},
    {WebP, "webp", "WEBP", 6, true}, {AVIF, "avif", "HEIC", 8, true}, {TIFFWithExtension, "tif", "TIFF", 0, true}};

} // namespace

TEST(ExportSizeTest, FollowsTheRule)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const auto percent = [](double value) { return ZQExportSize{value, {}}; };
    const auto within = [](double width, double height) { return ZQExportSize{{}, QSizeF(width, height)}; };
    struct Row
    {
        const char *what;
        QSize pixels;
        ZQExportSize asked;
        std::optional<QSize> size;
    };
    for (const Row &row : {
             Row{"nothing asked", {1600, 1200}, {}, {}},
             Row{"half", {1600, 1200}, percent(50), QSize(800, 600)},
             Row{"half of odd sides", {1601, 1201}, percent(50), QSize(800, 600)},
             Row{"what rounding errors must not shorten", {1000, 300}, percent(29), QSize(290, 87)},
             Row{"twice", {30, 20}, percent(200), QSize(60, 40)},
             Row{"all of it", {30, 20}, percent(100), {}},
             Row{"no side vanishes", {1000, 3}, percent(10), QSize(100, 1)},
             Row{"zero percent", {1000, 3}, percent(0), QSize(1, 1)},
             Row{"less than nothing", {1000, 3}, percent(-5), QSize(1, 1)},
             Row{"no number", {1000, 3}, percent(nan), {}},
             Row{"more than there can be", {1000, 3}, percent(1e300), QSize(10'000'000, 10'000'000)},
             Row{"the percentage goes first", {100, 100}, {50.0, QSizeF(10, 10)}, QSize(50, 50)},
             Row{"a width", {1600, 1200}, within(800, 0), QSize(800, 600)},
             Row{"a height", {1600, 1200}, within(0, 300), QSize(400, 300)},
             Row{"both, the width decides", {1600, 1200}, within(400, 2000), QSize(400, 300)},
             Row{"both, the height decides", {1600, 1200}, within(1599, 300), QSize(400, 300)},
             Row{"a width that does not divide", {1920, 1080}, within(799, 0), QSize(799, 449)},
             Row{"never larger", {640, 480}, within(800, 0), {}},
             Row{"exactly as large", {640, 480}, within(640, 480), {}},
             Row{"neither side", {1600, 1200}, within(0, 0), QSize(1, 1)},
             Row{"a line", {1000, 1}, within(100, 0), QSize(100, 1)},
             Row{"no number to fit", {640, 480}, within(nan, 10), {}},
             Row{"no picture", {0, 480}, percent(50), {}},
         }) {
        EXPECT_EQ(zqExportPixelSize(row.pixels, row.asked), row.size) << row.what;
    }
}

TEST_F(ExportTest, OtherProgramsReadEveryType)
{
    const QImage scene = ZQImageSource::bitmapOfFile(sample("Formats/deep.png")).scaledToFit({320, 240}).image();
    const ZQBitmap whole = ZQImageSource::bitmapOfFile(sample("Formats/deep.png"));
    for (const EncodedType &type : encodedTypes) {
        SCOPED_TRACE(type.fileType);
        EXPECT_TRUE(zqCanEncode(type.fileType));
        EXPECT_EQ(zqExtensionOfFileType(type.fileType), QLatin1String(type.extension));
        const ZQExportEncoding encoding{type.fileType, {}, {50.0, {}}};
        for (const bool isFile : {true, false}) {
            const QString out =
                path(QStringLiteral("%1%2.").arg(type.fileType).arg(isFile) + QLatin1String(type.extension));
            const auto written = isFile ? zqExportImageFile(sample("Formats/deep.png"), encoding, out, &error)
                                        : zqExportBitmap(whole, encoding, out, &error);
            ASSERT_TRUE(written) << error.localizedDescription().toStdString();
            EXPECT_EQ(written->pixelSize, QSize(320, 240));
            EXPECT_EQ(run(QStringLiteral("identify"), {QStringLiteral("-format"), QStringLiteral("%m %wx%h"), out}),
                      QByteArray(type.format) + " 320x240");
            EXPECT_LE(distance(shown(out), scene), type.tolerance + 3); // filters differ
        }
    }
    EXPECT_EQ(zqFileTypes().size(), qsizetype(encodedTypes.size()));
    EXPECT_FALSE(zqCanEncode(6));
    EXPECT_EQ(zqExtensionOfFileType(-1), QString());
    EXPECT_FALSE(zqFileTypeNamesItself(104));
}

TEST_F(ExportTest, KeepsTransparencyOrPutsItOnWhite)
{
    for (const EncodedType &type : encodedTypes) {
        SCOPED_TRACE(type.fileType);
        const QString out = path(QStringLiteral("%1.").arg(type.fileType) + QLatin1String(type.extension));
        ASSERT_TRUE(zqExportImageFile(sample("Brand 2026/Logos/Coin.png"), {type.fileType, {}, {}}, out, &error))
            << error.localizedDescription().toStdString();
        if (type.fileType == AVIF) {
            continue; // the other program does not look at what is transparent in it
        }
        const QColor corner = shown(out).pixelColor(0, 0);
        EXPECT_NEAR(corner.alpha(), type.hasAlpha ? 0 : 255, 2);
        if (!type.hasAlpha) {
            EXPECT_GT(qMin(qMin(corner.red(), corner.green()), corner.blue()), 250);
        }
    }
}

TEST_F(ExportTest, WritesWhatIsSeenOfEveryKind)
{
    for (const char *name :
         {"Orientations/orientation-2.jpg", "Orientations/orientation-5.jpg", "Orientations/orientation-6.jpg",
          "Orientations/orientation-8.jpg", "Formats/cmyk.jpg", "Formats/cmyk.tiff", "Formats/gray.png",
          "Formats/wavelet.jp2", "Formats/web.webp", "Formats/animated.gif", "Formats/plain.bmp", "Formats/icon.icns",
          "Formats/runs.tga", "Formats/layered.psd", "Brand 2026/Artwork.ai", "Brand 2026/Stamp.eps"}) {
        SCOPED_TRACE(name);
        QFile::remove(target());
        const ZQBitmap seen = ZQImageSource::bitmapOfFile(sample(name));
        for (const QSize wanted : {seen.size(), QSize(seen.width() / 3, seen.height() / 4)}) {
            QFile::remove(target());
            const ZQExportEncoding encoding{PNG, {}, {{}, QSizeF(wanted)}};
            const auto written = zqExportImageFile(sample(name), encoding, target(), &error);
            ASSERT_TRUE(written) << error.localizedDescription().toStdString();
            EXPECT_EQ(written->pixelSize, zqExportPixelSize(seen.size(), encoding.size).value_or(seen.size()));
            const QImage out = shown(target());
            EXPECT_EQ(out.size(), written->pixelSize);
            EXPECT_LE(distance(onWhite(out), onWhite(seen.scaled(out.size(), ZQBitmap::Quality::High).image())),
                      wanted == seen.size() ? 1 : 6);
        }
    }
}

TEST_F(ExportTest, QualityCounts)
{
    for (const int fileType : {JPEG, WebP, AVIF, JPEG2000}) {
        qint64 before = 0;
        for (const int quality : {10, 60, 95}) {
            const QString out = path(QStringLiteral("%1-%2").arg(fileType).arg(quality));
            ASSERT_TRUE(zqExportImageFile(sample("Formats/deep.png"), {fileType, quality, {}}, out, &error));
            EXPECT_GT(QFileInfo(out).size(), before) << fileType << ' ' << quality;
            before = QFileInfo(out).size();
        }
    }
}

TEST_F(ExportTest, WhatCannotBeWrittenLeavesNothing)
{
    const QString good = sample("Formats/deep.png");
    const QString missing = path(QStringLiteral("not/there.png"));
    struct Row
    {
        const char *what;
        QString source;
        ZQExportEncoding encoding;
        QString path;
        const char *words;
    };
    for (const Row &row : {
             Row{"no picture", sample("Broken/text.jpg"), {}, target(), "not a picture"},
             Row{"an empty one", sample("Broken/empty.png"), {}, target(), "empty"},
             Row{"too damaged", sample("Broken/hardly-there.jpg"), {JPEG, {}, {50.0, {}}}, target(), "damaged"},
             Row{"no file", path(QStringLiteral("none")), {}, target(), "does not exist"},
             Row{"no such type", good, {6, {}, {}}, target(), "no format with the number 6"},
             Row{"too wide for the type", good, {WebP, {}, {3000.0, {}}}, target(), "19200 x 14400"},
             Row{"too large for any", good, {PNG, {}, {1e9, {}}}, target(), "too big"},
             Row{"no folder", good, {}, missing, "there.png"},
         }) {
        SCOPED_TRACE(row.what);
        error = {};
        EXPECT_FALSE(zqExportImageFile(row.source, row.encoding, row.path, &error));
        EXPECT_TRUE(error.localizedDescription().contains(QLatin1String(row.words)))
            << error.localizedDescription().toStdString();
        EXPECT_EQ(files(), QStringList());
    }
    EXPECT_FALSE(zqExportBitmap({}, {}, target(), &error));
    EXPECT_FALSE(zqExportBitmap(ZQImageSource::bitmapOfFile(good), {WebP, {}, {3000.0, {}}}, target(), &error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("19200 x 14400")));
    EXPECT_EQ(files(), QStringList());
}

TEST_F(ExportTest, NeverOverAFileThatIsThere)
{
    QFile taken(target());
    ASSERT_TRUE(taken.open(QIODevice::WriteOnly) && taken.write("somebody's") == 10);
    taken.close();
    const QString good = sample("Formats/deep.png");
    EXPECT_FALSE(zqExportImageFile(good, {}, target(), &error));
    EXPECT_EQ(error.domain, ZQError::posixDomain);
    EXPECT_EQ(error.code, EEXIST);
    EXPECT_FALSE(zqExportBitmap(ZQImageSource::bitmapOfFile(good), {}, target(), &error));
    EXPECT_EQ(error.code, EEXIST);
    ASSERT_TRUE(taken.open(QIODevice::ReadOnly));
    EXPECT_EQ(taken.readAll(), "somebody's");
    EXPECT_EQ(files(), QStringList{QStringLiteral("out")});
}

TEST_F(ExportTest, AFullDiskIsSaid)
{
    const QString good = sample("Formats/deep.png");
    const ZQBitmap bitmap = ZQImageSource::bitmapOfFile(good);
    {
        const FileSizeLimit limit(4096);
        for (const EncodedType &type : encodedTypes) {
            SCOPED_TRACE(type.fileType);
            error = {};
            EXPECT_FALSE(zqExportBitmap(bitmap, {type.fileType, 95, {}}, target(), &error));
            EXPECT_EQ(error.domain, ZQError::posixDomain);
            EXPECT_EQ(error.code, EFBIG);
            EXPECT_TRUE(error.localizedDescription().contains(target()));
            EXPECT_EQ(files(), QStringList());
        }
    }
    // What the system tells the worker comes over as well: here that its file cannot be written.
    const ZQFileDescriptor readOnly(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    ZQRenderPool pool({.processes = 1});
    EXPECT_FALSE(pool.exportFile(good, {TIFF, {}, {}}, readOnly.get(), &error));
    EXPECT_EQ(error.domain, ZQError::posixDomain);
    EXPECT_EQ(error.code, EINVAL);
}

TEST_F(ExportTest, APictureThatEndsTooEarlyComesAsFarAsItGoes)
{
    QFile whole(sample("Formats/keywords.jpg"));
    QFile part(path(QStringLiteral("part.jpg")));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly) && part.open(QIODevice::WriteOnly));
    part.write(whole.read(whole.size() / 2));
    part.close();
    const auto written = zqExportImageFile(part.fileName(), {PNG, {}, {50.0, {}}}, target(), &error);
    ASSERT_TRUE(written) << error.localizedDescription().toStdString();
    EXPECT_TRUE(written->isIncomplete);
    EXPECT_EQ(shown(target()).size(), QSize(320, 240));
    EXPECT_FALSE(zqExportImageFile(whole.fileName(), {}, path(QStringLiteral("whole")), &error)->isIncomplete);
}

TEST_F(ExportTest, SixteenBitsStayWhereTheTypeHasThemAndWhatIsLostIsTold)
{
    const struct
    {
        const char *sample;
        int fileType;
        ZQExportSize size;
        const char *bits;
        bool isFirstOfSeveral;
        bool isReduced;
    } rows[] = {
        {"Formats/deep.png", PNG, {}, "16", false, false},
        {"Formats/deep.png", TIFF, {50.0, {}}, "16", false, false},
        {"Formats/deep.png", JPEG, {}, "8", false, true},
        {"Formats/deep.psd", PNG, {}, "8", false, true},
        {"Formats/animated.gif", PNG, {50.0, {}}, "8", true, false},
        {"Formats/keywords.jpg", PNG, {}, "8", false, false},
    };
    int number = 0;
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << row.sample << ' ' << row.fileType);
        const QString out = path(QStringLiteral("deep%1").arg(++number));
        const auto written = zqExportImageFile(sample(row.sample), {row.fileType, {}, row.size}, out, &error);
        ASSERT_TRUE(written) << error.localizedDescription().toStdString();
        EXPECT_EQ(written->isFirstOfSeveral, row.isFirstOfSeveral);
        EXPECT_EQ(written->isReduced, row.isReduced);
        EXPECT_EQ(run(QStringLiteral("identify"), {QStringLiteral("-format"), QStringLiteral("%z"), out}), row.bits);
        const QSize whole = ZQImageSource::bitmapOfFile(sample(row.sample)).size();
        EXPECT_EQ(written->pixelSize, zqExportPixelSize(whole, row.size).value_or(whole));
    }
    // Every bit of them, and the colours in both ways.
    const QByteArray before =
        run(QStringLiteral("identify"), {QStringLiteral("-format"), QStringLiteral("%#"), sample("Formats/deep.png")});
    EXPECT_EQ(run(QStringLiteral("identify"),
                  {QStringLiteral("-format"), QStringLiteral("%#"), path(QStringLiteral("deep1"))}),
              before);
    const QImage half = shown(path(QStringLiteral("deep2")));
    const QImage whole = ZQImageSource::bitmapOfFile(sample("Formats/deep.png")).image();
    EXPECT_LE(distance(half, whole.scaled(half.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)), 3);
}

TEST_F(ExportTest, ACancelLeavesNoFile)
{
    const auto cancellation = std::make_shared<ZQCancellation>();
    cancellation->cancel();
    const ZQCancellation::Scope scope(cancellation);
    const ZQExportEncoding slow{AVIF, 100, {800.0, {}}}; // longer than what a cancel still waits for
    EXPECT_FALSE(zqExportImageFile(sample("Formats/deep.png"), slow, target(), &error));
    EXPECT_EQ(error.code, int(ZQImagingErrorCode::Cancelled));
    QImage pixel(1, 1, QImage::Format_RGBA8888);
    pixel.fill(Qt::red);
    EXPECT_FALSE(zqExportBitmap(ZQBitmap(pixel), {}, target(), &error));
    EXPECT_EQ(error.code, int(ZQImagingErrorCode::Cancelled));
    EXPECT_EQ(files(), QStringList());
}

TEST_F(ExportTest, AWorkerThatFailsOrLiesWritesNothingThatIsBelieved)
{
    qputenv("ZELTO_RENDER", ZELTO_FAULTY_RENDERER);
    ZQRenderPool pool({.time = 500ms, .processes = 1}); // four times that for an export
    struct Row
    {
        const char *name;
        ZQImagingErrorCode code;
    };
    for (const Row &row :
         {Row{"crash.png", ZQImagingErrorCode::RendererStopped},
          Row{"garbage.png", ZQImagingErrorCode::RendererStopped},
          Row{"lie-kind.png", ZQImagingErrorCode::RendererStopped},
          Row{"fits.png", ZQImagingErrorCode::RendererStopped},
          Row{"lie-exported.png", ZQImagingErrorCode::RendererStopped},
          Row{"hang.png", ZQImagingErrorCode::TookTooLong}, Row{"no-memory.png", ZQImagingErrorCode::TooMuchMemory}}) {
        SCOPED_TRACE(row.name);
        QFile bad(path(QLatin1String(row.name)));
        ASSERT_TRUE(bad.open(QIODevice::WriteOnly) && bad.write("x") == 1);
        bad.close();
        auto file = ZQNewFile::make(target(), &error);
        ASSERT_TRUE(file);
        EXPECT_FALSE(pool.exportFile(bad.fileName(), {}, file->descriptor(), &error));
        EXPECT_EQ(error.code, int(row.code)) << error.localizedDescription().toStdString();
    }
    qunsetenv("ZELTO_RENDER");
    EXPECT_FALSE(QFile::exists(target()));
}

TEST_F(ExportTest, SeveralAtOnce)
{
    std::vector<std::thread> threads;
    std::array<std::optional<ZQExportedImage>, 8> written;
    for (size_t i = 0; i < written.size(); ++i) {
        threads.emplace_back([this, &written, i] {
            written[i] = zqExportImageFile(sample("Formats/deep.png"), {JPEG, {}, {double(10 + i), {}}},
                                           path(QString::number(i)));
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (size_t i = 0; i < written.size(); ++i) {
        ASSERT_TRUE(written[i]);
        EXPECT_EQ(shown(path(QString::number(i))).size(), written[i]->pixelSize);
    }
}
