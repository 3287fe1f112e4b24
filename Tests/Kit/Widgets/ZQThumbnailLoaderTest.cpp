#include "Kit/Widgets/ZQThumbnailLoader.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest/QTest>

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace {

ZQThumbnailRequest request(int number, qint64 version = 0)
{
    return {QStringLiteral("/picture/%1").arg(number), version, false};
}

bool loadAll(ZQThumbnailLoader &loader)
{
    return QTest::qWaitFor([&loader] { return loader.pendingCount() == 0; }, 20000);
}

QImage plain(const ZQThumbnailRequest &, int pixels)
{
    QImage image(pixels, pixels, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}

} // namespace

TEST(ZQThumbnailLoader, ReadsAPictureWithinTheAskedSize)
{
    QTemporaryDir folder;
    QImage picture(800, 400, QImage::Format_RGB32);
    picture.fill(Qt::green);
    const QString path = folder.filePath(QStringLiteral("wide.png"));
    ASSERT_TRUE(picture.save(path));
    ZQThumbnailLoader loader;
    EXPECT_TRUE(loader.image({path, 1, false}, 200).isNull());
    ASSERT_TRUE(loadAll(loader));
    const QImage image = loader.image({path, 1, false}, 200);
    EXPECT_EQ(image.size(), QSize(256, 128));
    EXPECT_TRUE(loader.image({path, 2, false}, 200).isNull()) << "another version is another picture";
}

TEST(ZQThumbnailLoader, KeepsWithinItsBytesAndForgetsTheOldest)
{
    const qsizetype limit = qsizetype(128) * 128 * 4 * 10;
    ZQThumbnailLoader loader(limit);
    loader.setDecoder(&plain);
    for (int i = 0; i < 50; ++i) {
        loader.image(request(i), 100);
        ASSERT_TRUE(loadAll(loader));
        EXPECT_LE(loader.cachedBytes(), limit);
    }
    EXPECT_FALSE(loader.image(request(49), 100).isNull());
    EXPECT_TRUE(loader.image(request(0), 100).isNull());
}

TEST(ZQThumbnailLoader, ShowsASmallerPictureWhileALargerOneIsRead)
{
    ZQThumbnailLoader loader;
    loader.setDecoder(&plain);
    loader.image(request(1), 100);
    ASSERT_TRUE(loadAll(loader));
    EXPECT_EQ(loader.image(request(1), 900).width(), 128);
    ASSERT_TRUE(loadAll(loader));
    EXPECT_EQ(loader.image(request(1), 900).width(), 1024);
}

TEST(ZQThumbnailLoader, DropsWhatScrolledAwayAndReadsTheLatestFirst)
{
    std::mutex lock;
    std::condition_variable open;
    bool isOpen = false;
    QStringList read;
    ZQThumbnailLoader loader;
    loader.setDecoder([&](const ZQThumbnailRequest &asked, int pixels) {
        std::unique_lock guard(lock);
        open.wait(guard, [&] { return isOpen; });
        read.append(asked.path);
        return plain(asked, pixels);
    });
    loader.image(request(1000), 100);
    loader.image(request(1001), 100);
    // Both threads hold one picture each before the others are asked for.
    QTest::qWait(50);
    loader.beginVisible();
    for (int i = 0; i < 20; ++i) {
        loader.image(request(i), 100);
    }
    loader.endVisible();
    loader.beginVisible();
    for (int i = 18; i < 24; ++i) {
        loader.image(request(i), 100);
    }
    loader.endVisible();
    {
        const std::lock_guard guard(lock);
        isOpen = true;
    }
    open.notify_all();
    ASSERT_TRUE(loadAll(loader));
    for (int i = 0; i < 18; ++i) {
        EXPECT_FALSE(read.contains(request(i).path)) << i;
    }
    for (int i = 18; i < 24; ++i) {
        EXPECT_TRUE(read.contains(request(i).path)) << i;
    }
    EXPECT_LT(read.indexOf(request(23).path), read.indexOf(request(18).path));
}

TEST(ZQThumbnailLoader, RemembersWhatCannotBeRead)
{
    std::atomic<int> attempts = 0;
    ZQThumbnailLoader loader;
    loader.setDecoder([&](const ZQThumbnailRequest &, int) {
        ++attempts;
        return QImage();
    });
    loader.image(request(1), 100);
    ASSERT_TRUE(loadAll(loader));
    loader.image(request(1), 100);
    ASSERT_TRUE(loadAll(loader));
    EXPECT_TRUE(loader.hasFailed(request(1)));
    EXPECT_EQ(attempts, 1);
}

TEST(ZQThumbnailLoader, EndsWhileWorkIsWaiting)
{
    std::atomic<int> started = 0;
    {
        ZQThumbnailLoader loader;
        loader.setDecoder([&](const ZQThumbnailRequest &asked, int pixels) {
            ++started;
            return plain(asked, pixels);
        });
        for (int i = 0; i < 500; ++i) {
            loader.image(request(i), 2000);
        }
    }
    EXPECT_LT(started, 500);
}
