#include "Classes/Import/ThumbGenerator.h"

#include "Kit/Imaging/ZQImageDestination.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Tools/samples/SampleFormats.h"
#include "Tools/samples/SampleScenes.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class ThumbGeneratorTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(QDir().mkpath(thumbs())); }
    QString path(const char *name) const { return m_folder.filePath(QString::fromUtf8(name)); }
    QString thumbs() const { return m_folder.filePath(QStringLiteral("thumbs")); }

    QByteArray png(QSize size) const
    {
        const QString file = path("made.png");
        EXPECT_TRUE(SampleFormats::writePNG(SampleScenes::asymmetricScene(size), file));
        QFile made(file);
        EXPECT_TRUE(made.open(QIODevice::ReadOnly));
        return made.readAll();
    }

private:
    QTemporaryDir m_folder;
};

const QByteArray drawing("1 0 0 rg 10 10 50 50 re f");

TEST_F(ThumbGeneratorTest, KnowsWhatTheDesktopShowsByItself)
{
    for (const char *name :
         {"a.jpg", "a.JPEG", "a.jp2", "a.tif", "a.gif", "a.png", "a.icns", "a.bmp", "a.ico", "a.psd", "a.tga"}) {
        EXPECT_TRUE(ThumbGenerator::willUseNativeQuicklookThumbnailForURL(path(name))) << name;
    }
    for (const char *name : {"a.ai", "a.svg", "a.eps", "a.sketch", "a.nosuchkind", "a"}) {
        EXPECT_FALSE(ThumbGenerator::willUseNativeQuicklookThumbnailForURL(path(name))) << name;
    }
}

TEST_F(ThumbGeneratorTest, NamesAndEncodesByTheSourcesKind)
{
    const QImage scene = SampleScenes::asymmetricScene({1024, 768});
    ASSERT_TRUE(SampleFormats::writeJPEG(scene, path("My photo.v2.jpg")));
    ASSERT_TRUE(SampleFormats::writePNG(scene, path("drawing.png")));
    ASSERT_TRUE(SampleFormats::writeBytes(SampleFormats::pdfFile({300, 200}, drawing), path("art.ai")));
    for (const auto &[source, thumb, mark] :
         std::initializer_list<std::tuple<const char *, const char *, const char *>>{
             {"My photo.v2.jpg", "thumbs/My photo.v2_thumb.jpg", "\xff\xd8"},
             {"drawing.png", "thumbs/drawing_thumb.png", "\x89PNG"},
             {"art.ai", "thumbs/art_thumb.png", "\x89PNG"}}) {
        SCOPED_TRACE(source);
        ZQBitmap made;
        const QString answered = ThumbGenerator::thumbPathForImageURL(path(source), thumbs(), &made);
        EXPECT_EQ(answered, path(thumb));
        QFile file(answered);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_TRUE(file.readAll().startsWith(mark));
        EXPECT_EQ(ZQImageSource::bitmapOfFile(answered).size(), made.size());
        EXPECT_LE(qMax(made.width(), made.height()), 512);
    }
    EXPECT_EQ(ZQImageSource::bitmapOfFile(path("thumbs/drawing_thumb.png")).size(), QSize(512, 384));
}

TEST_F(ThumbGeneratorTest, LeavesNothingForAFileWithoutPicture)
{
    ASSERT_TRUE(SampleFormats::writeBytes("no picture\n", path("a.png")));
    ZQError error;
    EXPECT_EQ(ThumbGenerator::thumbPathForImageURL(path("a.png"), thumbs(), nullptr, &error), QString());
    EXPECT_FALSE(error.isNull());
    EXPECT_TRUE(QDir(thumbs()).isEmpty());
}

TEST_F(ThumbGeneratorTest, AnswersThePathEvenWhenItCannotWrite)
{
    ASSERT_TRUE(SampleFormats::writePNG(SampleScenes::asymmetricScene({20, 10}), path("a.png")));
    ZQError error;
    const QString answered = ThumbGenerator::thumbPathForImageURL(path("a.png"), path("nowhere"), nullptr, &error);
    EXPECT_EQ(answered, path("nowhere/a_thumb.png"));
    EXPECT_FALSE(QFile::exists(answered));
    EXPECT_FALSE(error.isNull());
}

TEST_F(ThumbGeneratorTest, RefusesOnlyArtworkTooBigBothWays)
{
    for (const auto &[size, expected] : std::initializer_list<std::pair<QSize, QSize>>{{{12000, 12000}, {}},
                                                                                       {{10000, 10000}, {}},
                                                                                       {{12000, 9000}, {512, 384}},
                                                                                       {{512, 512}, {512, 512}},
                                                                                       {{600, 300}, {512, 256}}}) {
        SCOPED_TRACE(size.width());
        ASSERT_TRUE(SampleFormats::writeBytes(SampleFormats::pdfFile(size, drawing), path("a.ai")));
        ZQError error;
        const ZQBitmap bitmap = ThumbGenerator::newThumbForAIFileAtURL(path("a.ai"), &error);
        EXPECT_EQ(bitmap.isNull(), expected.isEmpty());
        if (expected.isEmpty()) {
            EXPECT_EQ(error.localizedDescription(), QStringLiteral("AI %1 is too big to import").arg(path("a.ai")));
        } else {
            EXPECT_NEAR(bitmap.width(), expected.width(), 1);
            EXPECT_NEAR(bitmap.height(), expected.height(), 1);
        }
    }
}

TEST_F(ThumbGeneratorTest, ShowsTheCompositeOfAnAcornDocument)
{
    for (const auto &[size, expected] :
         std::initializer_list<std::pair<QSize, QSize>>{{{400, 400}, {400, 400}}, {{600, 300}, {512, 256}}}) {
        const QByteArray composite = png(size);
        ASSERT_TRUE(SampleFormats::writeAcorn(composite, path("a 100%?#.acorn")));
        EXPECT_EQ(ThumbGenerator::grabAcornCompositeDataAtPath(path("a 100%?#.acorn")), composite);
        EXPECT_EQ(ThumbGenerator::grabAcornBitmapImageRepAtPath(path("a 100%?#.acorn")).size(), size);
        EXPECT_EQ(ThumbGenerator::newThumbForAcornFileAtURL(path("a 100%?#.acorn")).size(), expected);
    }
    ASSERT_TRUE(SampleFormats::writeBytes("no database, but long enough to be looked at", path("b.acorn")));
    ZQError error;
    EXPECT_TRUE(ThumbGenerator::newThumbForAcornFileAtURL(path("b.acorn"), &error).isNull());
    EXPECT_FALSE(error.isNull());
    EXPECT_TRUE(ThumbGenerator::grabAcornCompositeDataAtPath(path("none.acorn")).isEmpty());
    EXPECT_FALSE(QFile::exists(path("none.acorn")));
}

TEST_F(ThumbGeneratorTest, ShowsThePreviewOfASketchPackage)
{
    ASSERT_TRUE(QDir().mkpath(path("a.sketch/QuickLook")));
    ASSERT_TRUE(SampleFormats::writeBytes(png({700, 350}), path("a.sketch/QuickLook/Preview.png")));
    EXPECT_EQ(ThumbGenerator::sketchBitmapImageRepAtPath(path("a.sketch")).size(), QSize(700, 350));
    EXPECT_EQ(ThumbGenerator::newThumbForSketchFileAtURL(path("a.sketch")).size(), QSize(512, 256));
    EXPECT_EQ(ThumbGenerator::thumbPathForImageURL(path("a.sketch"), thumbs()), path("thumbs/a_thumb.png"));
}

TEST_F(ThumbGeneratorTest, DrawsEncapsulatedPostScriptAtItsSize)
{
    const QByteArray content("1 0 0 setrgbcolor 0 0 50 50 rectfill");
    ASSERT_TRUE(SampleFormats::writeBytes(SampleFormats::epsFile({280, 180}, content), path("a.eps")));
    EXPECT_EQ(ThumbGenerator::newThumbForEPSFileAtURL(path("a.eps")).size(), QSize(280, 180));
    ASSERT_TRUE(SampleFormats::writeBytes(SampleFormats::epsFile({1024, 512}, content), path("b.eps")));
    EXPECT_EQ(ThumbGenerator::newThumbForEPSFileAtURL(path("b.eps")).size(), QSize(512, 256));
    ASSERT_TRUE(SampleFormats::writeBytes(SampleFormats::epsFile({100, 0}, content), path("c.eps")));
    EXPECT_TRUE(ThumbGenerator::newThumbForEPSFileAtURL(path("c.eps")).isNull());
}

} // namespace
