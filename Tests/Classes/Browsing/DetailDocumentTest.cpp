#include "Classes/Browsing/Content/DetailDocument.h"
#include "Kit/Imaging/ZQRenderPool.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

namespace {

// With workers that misbehave on files of certain names; see FaultyRenderer.
class DetailDocumentTest : public testing::Test
{
protected:
    DetailDocumentTest()
    {
        qputenv("ZELTO_RENDER", ZELTO_FAULTY_RENDERER);
        endWorkers();
    }
    ~DetailDocumentTest() override
    {
        qunsetenv("ZELTO_RENDER");
        endWorkers();
    }
    static void endWorkers() // those that are warm are of another kind
    {
        for (const pid_t worker : ZQRenderPool::shared().processIDs()) {
            ::kill(worker, SIGKILL);
        }
    }
    QString pictureNamed(const QString &name, QSize size = {20, 10}) const
    {
        QImage image(size, QImage::Format_RGBA8888);
        image.fill(Qt::green);
        EXPECT_TRUE(image.save(m_folder.filePath(name)));
        return m_folder.filePath(name);
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(DetailDocumentTest, AnAnimationThatPromisesFramesItDoesNotHaveGoesRoundInThoseItHas)
{
    DetailDocument document;
    document.open({pictureNamed(QStringLiteral("boast.png")), {}, {20, 10}, {}}, 100);
    zqRunMainLoopUntil([&] { return document.state() != DetailDocument::State::Loading; });
    ASSERT_EQ(document.state(), DetailDocument::State::Shown) << document.reason().toStdString();
    ASSERT_TRUE(document.isAnimation());
    EXPECT_LE(document.pageCount(), 1 << 14);
    zqRunMainLoopUntil([&] { return document.pageCount() == 1; });
    EXPECT_EQ(document.image().size(), QSize(20, 10));
}

TEST_F(DetailDocumentTest, OneAmongSeveralIsReadNoLargerThanItIsSeen)
{
    DetailDocument document;
    const QSize size(400, 200);
    const DetailDocument::Source all{pictureNamed(QStringLiteral("plain.png"), size), {}, size, {}, 1'000'000};
    document.open(all, 100);
    zqRunMainLoopUntil([&] { return document.state() != DetailDocument::State::Loading; });
    EXPECT_EQ(document.image().size(), QSize(100, 50));
    EXPECT_EQ(document.naturalSize(), QSizeF(size));
    EXPECT_FALSE(document.isWhole());
    document.setWantedSide(101);
    zqRunMainLoopUntil([&] { return document.image().width() > 100; });
    EXPECT_EQ(document.image().size(), QSize(202, 101)) << "the next steps of a zoom take no other reading";
    document.readWhole();
    zqRunMainLoopUntil([&] { return document.isWhole(); });
    EXPECT_EQ(document.image().size(), size);

    DetailDocument::Source some = all;
    some.mostPixels = 20'000; // a quarter
    document.open(some, 100);
    zqRunMainLoopUntil([&] { return document.state() != DetailDocument::State::Loading; });
    document.readWhole();
    zqRunMainLoopUntil([&] { return document.isWhole(); });
    EXPECT_EQ(document.image().size(), QSize(200, 100));
}
