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
    QString pictureNamed(const QString &name) const
    {
        QImage image(20, 10, QImage::Format_RGBA8888);
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
