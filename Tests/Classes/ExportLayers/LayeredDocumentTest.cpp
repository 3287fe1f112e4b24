// Picture files that become layers: what is written, and what is left as it was.

#include "Classes/Export/LayeredDocument.h"
#include "Classes/Export/LayeredExport.h"
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
        return {path, name, {}, 1};
    }
    LayeredPicture noPicture()
    {
        const QString path = world.filePath(QStringLiteral("note.png"));
        put(path, "no picture");
        return {path, QStringLiteral("note"), {}, 1};
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
    const QByteArray before = bytesAt(layer.path);
    out = world.path() + QStringLiteral("/./a.png");
    EXPECT_FALSE(write({layer}, {3, 2}, true));
    EXPECT_EQ(bytesAt(layer.path), before);
    out = world.filePath(QStringLiteral("out"));
    EXPECT_FALSE(write({layer}, {3, 2}, true));
    EXPECT_TRUE(QFileInfo(out).isDir());
}

TEST_F(LayeredDocumentTest, IsAsLargeAsTheLargestAndNamesWhatIsLeftOut)
{
    QList<LayeredPicture> pictures = {picture(QStringLiteral("wide"), {9, 2}), noPicture(),
                                      picture(QStringLiteral("high"), {1, 7})};
    QStringList leftOut;
    EXPECT_EQ(LayeredDocument::largestSize(pictures, &leftOut), QSize(9, 7));
    EXPECT_EQ(pictures.size(), 2);
    ASSERT_EQ(leftOut.size(), 1);
    EXPECT_TRUE(leftOut[0].startsWith(QStringLiteral("note: "))) << qPrintable(leftOut[0]);
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
    LayeredExport::begin({noPicture()}, out, false, user, queue);
    zqRunMainLoopUntil([&] { return queue.operationCount() == 0 && !user.errors.isEmpty(); });
    EXPECT_EQ(written(), QStringList{QStringLiteral("a.psd")});
}
