// What another program gets of the library's files.

#include "Classes/Interface/Browser/AssetFiles.h"
#include "Tests/Support/UserWorld.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

class AssetFilesTest : public testing::Test
{
protected:
    QString file(const QString &relative, const QByteArray &content)
    {
        QFile made(world.filePath(relative));
        QDir().mkpath(QFileInfo(made.fileName()).path());
        EXPECT_TRUE(made.open(QIODevice::WriteOnly) && made.write(content) == content.size());
        return made.fileName();
    }
    static QByteArray contentOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
    }

    UserWorld world{"assets"};
};

} // namespace

TEST_F(AssetFilesTest, FilesAreCalledAsTheirTitlesAre)
{
    const QList<Asset> assets = {
        {file(QStringLiteral("1/sky.png"), "one"), QStringLiteral("sky")},
        {file(QStringLiteral("2/sky.png"), "two"), QStringLiteral("sky")},
        {file(QStringLiteral("3/DSC_1.JPG"), "three"), QStringLiteral("../bad/name")},
        {file(QStringLiteral("4/plain"), "four"), QStringLiteral("named")},
        {world.filePath(QStringLiteral("5/gone.png")), QStringLiteral("renamed")},
        {file(QStringLiteral("6/.profile"), "six"), QStringLiteral("dot")},
        {file(QStringLiteral("7/long.png"), "seven"), QString(300, u'x')},
    };
    int looks = 0;
    AssetFiles files([&] {
        ++looks;
        return assets;
    });
    EXPECT_TRUE(files.hasUrls());
    EXPECT_EQ(looks, 0) << "nobody asked";
    const QStringList paths = files.paths();
    ASSERT_EQ(paths.size(), assets.size());
    EXPECT_EQ(paths[0], assets[0].path);
    EXPECT_EQ(QFileInfo(paths[1]).fileName(), QStringLiteral("sky 1.png"));
    EXPECT_EQ(QFileInfo(paths[3]).fileName(), QStringLiteral("named"));
    EXPECT_EQ(paths[4], assets[4].path) << "there is nothing to give a name";
    EXPECT_EQ(QFileInfo(paths[1]).path(), QFileInfo(paths[2]).path()) << "and nowhere outside the folder";
    EXPECT_TRUE(paths[2].endsWith(QStringLiteral(".JPG")));
    EXPECT_EQ(QFileInfo(paths[5]).fileName(), QStringLiteral("dot")) << "what is behind the first dot is no extension";
    EXPECT_EQ(QFileInfo(paths[6]).fileName(), QString(251, u'x') + QStringLiteral(".png"));
    EXPECT_EQ(contentOf(paths[1]), "two");
    EXPECT_EQ(contentOf(paths[2]), "three");
    EXPECT_EQ(files.urls().size(), paths.size());
    EXPECT_EQ(looks, 1);

    ASSERT_TRUE(QFile::remove(paths[1])); // as a program that moves does it
    QFile changed(paths[2]);
    ASSERT_TRUE(changed.open(QIODevice::WriteOnly) && changed.write("other") == 5);
    changed.close();
    EXPECT_EQ(contentOf(assets[1].path), "two");
    EXPECT_EQ(contentOf(assets[2].path), "three");
}

TEST_F(AssetFilesTest, WhatABackupSharesWithAnotherIsPartedFromItFirst)
{
    file(QStringLiteral("b/backup.json"), "{}");
    const QString flat = file(QStringLiteral("b/Library/1/sky.png"), "one");
    const QString inFolder = file(QStringLiteral("b/Library/2/set/in/a.png"), "two");
    const QString alone = file(QStringLiteral("c/Library/1/sea.png"), "three");
    int others = 0;
    for (const QString &each : {flat, inFolder, alone}) {
        const QString away = world.filePath(QStringLiteral("other%1").arg(++others));
        ASSERT_EQ(::link(QFile::encodeName(each).constData(), QFile::encodeName(away).constData()), 0);
    }
    const auto isShared = [](const QString &path) {
        struct stat status = {};
        return ::stat(QFile::encodeName(path).constData(), &status) == 0 && status.st_nlink > 1;
    };
    AssetFiles files([&] {
        return QList<Asset>{{flat, QStringLiteral("sky")},
                            {world.filePath(QStringLiteral("b/Library/2/set")), QStringLiteral("set")},
                            {alone, QStringLiteral("sea")}};
    });
    ASSERT_EQ(files.paths().size(), 3);
    EXPECT_EQ(files.paths().first(), flat);
    EXPECT_FALSE(isShared(flat));
    EXPECT_FALSE(isShared(inFolder));
    EXPECT_TRUE(isShared(alone)) << "links of other folders are meant";
    EXPECT_EQ(contentOf(flat) + contentOf(inFolder), "onetwo");
}

TEST_F(AssetFilesTest, TheClipboardSaysThatTheyAreCopiedAndMakesThePictureWhenAsked)
{
    const QString path = file(QStringLiteral("a b.png"), "one");
    AssetFiles files([&] { return QList<Asset>{{path, QStringLiteral("a b")}}; });
    EXPECT_FALSE(files.hasFormat(AssetFiles::copiedFilesType)) << "in a drag";
    EXPECT_FALSE(files.hasImage());
    files.setForClipboard();
    int made = 0;
    files.setPicture([&] {
        ++made;
        QImage image(3, 2, QImage::Format_RGB32);
        image.fill(Qt::red);
        return image;
    });
    EXPECT_TRUE(files.hasImage());
    EXPECT_EQ(made, 0);
    EXPECT_EQ(files.imageData().value<QImage>().size(), QSize(3, 2));
    EXPECT_EQ(files.imageData().value<QImage>().size(), QSize(3, 2));
    EXPECT_EQ(made, 1);
    EXPECT_EQ(files.data(AssetFiles::copiedFilesType), "copy\n" + QUrl::fromLocalFile(path).toEncoded());
}

TEST_F(AssetFilesTest, ThousandsOfOneTitleAreNumbered)
{
    QList<Asset> assets;
    const QString path = file(QStringLiteral("DSC_1.jpg"), "one");
    for (int i = 0; i < 3000; ++i) {
        assets.append({path, QStringLiteral("sky")});
    }
    const QStringList paths = AssetFiles([&] { return assets; }).paths();
    EXPECT_EQ(QSet<QString>(paths.begin(), paths.end()).size(), 3000);
    EXPECT_EQ(QFileInfo(paths.last()).fileName(), QStringLiteral("sky 2999.jpg"));
}
