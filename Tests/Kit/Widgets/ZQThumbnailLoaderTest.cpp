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

TEST(ZQThumbnailLoader, ReadsAPictureWithinTheAskedSizeThroughItsDecoderOnly)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.png"));
    ASSERT_TRUE(plain({}, 800).save(path));
    ZQThumbnailLoader bare;
    bare.image({path, 1, false}, 200);
    ASSERT_TRUE(loadAll(bare));
    EXPECT_TRUE(bare.hasFailed({path, 1, false})) << "it decodes nothing by itself";
    ZQThumbnailLoader loader;
    loader.setDecoder([](const ZQThumbnailRequest &, int pixels) {
        QImage image(pixels, pixels / 2, QImage::Format_RGBA8888);
        image.fill(QColor(10, 20, 30));
        return image;
    });
    EXPECT_TRUE(loader.image({path, 1, false}, 200).isNull());
    ASSERT_TRUE(loadAll(loader));
    const QImage image = loader.image({path, 1, false}, 200);
    EXPECT_EQ(image.size(), QSize(256, 128));
    EXPECT_EQ(image.format(), QImage::Format_RGB32) << "alpha that hides nothing";
    EXPECT_EQ(image.pixelColor(0, 0), QColor(10, 20, 30));
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
    int opened = 0;
    QStringList read;
    ZQThumbnailLoader loader;
    loader.setDecoder([&](const ZQThumbnailRequest &asked, int pixels) {
        std::unique_lock guard(lock);
        const int held = asked.path == request(1000).path ? 1 : asked.path.contains(QStringLiteral("100")) ? 2 : 0;
        open.wait(guard, [&] { return opened >= held; });
        read.append(asked.path);
        return plain(asked, pixels);
    });
    for (int i = 1000; i < 1003; ++i) {
        loader.image(request(i), 100);
    }
    // The threads hold one picture each before the others are asked for.
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
    const auto release = [&](int count) {
        const std::lock_guard guard(lock);
        opened = count;
        open.notify_all();
    };
    release(1); // one thread alone reads what is left, so that the order is known
    ASSERT_TRUE(QTest::qWaitFor([&loader] { return loader.pendingCount() == 2; }, 20000));
    release(2);
    ASSERT_TRUE(loadAll(loader));
    for (int i = 0; i < 18; ++i) {
        EXPECT_FALSE(read.contains(request(i).path)) << i;
    }
    for (int i = 18; i < 24; ++i) {
        EXPECT_TRUE(read.contains(request(i).path)) << i;
    }
    EXPECT_LT(read.indexOf(request(23).path), read.indexOf(request(18).path));
}

TEST(ZQThumbnailLoader, ShowsTheVersionBeforeUntilTheNewOneIsThere)
{
    std::atomic<bool> isThere = true;
    std::atomic<int> readsOfLast = 0;
    ZQThumbnailLoader loader;
    loader.setDecoder([&](const ZQThumbnailRequest &wanted, int pixels) {
        readsOfLast += wanted.version == 3 ? 1 : 0;
        QImage image(pixels, pixels, QImage::Format_RGB32);
        image.fill(wanted.version == 1 ? Qt::red : Qt::blue);
        return isThere ? image : QImage();
    });
    const auto color = [&loader](qint64 version) {
        const QImage image = loader.thumbnail(request(1, version), 100).image;
        return image.isNull() ? QColor() : image.pixelColor(0, 0);
    };
    color(1);
    ASSERT_TRUE(loadAll(loader));
    EXPECT_EQ(color(1), QColor(Qt::red));
    isThere = false; // as while a program replaces it
    EXPECT_EQ(color(2), QColor(Qt::red));
    EXPECT_TRUE(loader.image(request(1, 2), 100).isNull()) << "who wants that version gets no other";
    ASSERT_TRUE(loadAll(loader));
    EXPECT_EQ(color(2), QColor(Qt::red)) << "one failure is none";
    isThere = true;
    EXPECT_TRUE(QTest::qWaitFor([&] { return color(2) == QColor(Qt::blue); }, 20000));

    isThere = false;
    EXPECT_TRUE(QTest::qWaitFor([&] { return !color(3).isValid(); }, 20000)) << "in the end it is gone";
    EXPECT_TRUE(loader.hasFailed(request(1, 3)));
    EXPECT_EQ(readsOfLast, 3) << "though it was asked for all the time";
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
