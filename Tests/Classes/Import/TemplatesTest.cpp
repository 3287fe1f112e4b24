#include "Classes/Import/Templates.h"

#include "Classes/Application/TemplateFolder.h"
#include "Tests/Support/ScratchMount.h"
#include "Tests/Support/Skip.h"
#include "Tests/Support/UserWorld.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TemplatesTest : public testing::Test
{
protected:
    void SetUp() override { QDir().mkpath(directory); }
    static QString made(const QString &path, const QByteArray &content)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return path;
    }
    QString outside(const char *name, const QByteArray &content = "new")
    {
        return made(world.filePath(QString::fromUtf8(name)), content);
    }
    QStringList entries() const
    {
        return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    UserWorld world{"templates"};
    QString directory = world.filePath(QStringLiteral("Templates"));
};

TEST_F(TemplatesTest, CopiesThatWereCutOffLongAgoGoWhenTheFolderIsListed)
{
    const struct
    {
        const char *name;
        int hours; // since it was made
        bool stays;
    } cases[] = {{".copying-AbCdEf", 25, false}, {".copying-GhIjKl", 23, true}, {".copying-of-mine", 25, true}};
    for (const auto &each : cases) {
        const QString folder = directory + u'/' + QString::fromLatin1(each.name);
        made(folder + QStringLiteral("/copy"), "half");
        const timespec then{::time(nullptr) - each.hours * 3600, 0};
        const timespec times[2] = {then, then};
        ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(folder).constData(), times, 0), 0);
    }
    EXPECT_TRUE(TemplateFolder::paths(directory).isEmpty());
    for (const auto &each : cases) {
        EXPECT_EQ(entries().contains(QString::fromLatin1(each.name)), each.stays) << each.name;
    }
}

TEST_F(TemplatesTest, OneMovesInUnderItsNameAndNeverOverAnother)
{
    const QString here = directory + QStringLiteral("/A.zttemplate");
    EXPECT_TRUE(TemplateFolder::moveIn(outside("A.zttemplate", "old"), directory));
    EXPECT_FALSE(QFileInfo::exists(world.filePath(QStringLiteral("A.zttemplate"))));
    const QString other = outside("A.zttemplate");
    ZQError error;
    EXPECT_FALSE(TemplateFolder::moveIn(other, directory, &error));
    EXPECT_EQ(error.code, TemplateFolder::NameTaken);
    EXPECT_EQ(contentOf(here), "old");
    EXPECT_EQ(contentOf(other), "new");
    EXPECT_TRUE(TemplateFolder::moveIn(here, directory)); // it lies there
    EXPECT_EQ(contentOf(here), "old");

    outside("Package.zttemplate/letter.png");
    EXPECT_TRUE(TemplateFolder::moveIn(world.filePath(QStringLiteral("Package.zttemplate/")), directory));
    EXPECT_EQ(contentOf(directory + QStringLiteral("/Package.zttemplate/letter.png")), "new");

    const QString original = outside("elsewhere/B.zttemplate");
    const QString link = world.filePath(QStringLiteral("B.zttemplate"));
    ASSERT_TRUE(QFile::link(QStringLiteral("elsewhere/B.zttemplate"), link));
    EXPECT_TRUE(TemplateFolder::moveIn(link, directory));
    EXPECT_FALSE(QFileInfo(directory + QStringLiteral("/B.zttemplate")).isSymLink());
    EXPECT_EQ(contentOf(directory + QStringLiteral("/B.zttemplate")), "new");
    EXPECT_EQ(contentOf(original), "new");

    EXPECT_FALSE(TemplateFolder::moveIn(world.filePath(QStringLiteral("gone.zttemplate")), directory, &error));
    EXPECT_EQ(entries(), (QStringList{QStringLiteral("A.zttemplate"), QStringLiteral("B.zttemplate"),
                                      QStringLiteral("Package.zttemplate")}));
}

TEST_F(TemplatesTest, OneOfAnotherDiskIsCopiedWhole)
{
    const ScratchMount disk(world.filePath(QStringLiteral("disk")));
    if (!disk.isMounted()) {
        return skipWithout("a file system of its own");
    }
    const auto there = [this](const char *name) {
        return world.filePath(QStringLiteral("disk/") + QString::fromUtf8(name));
    };
    made(there("A.zttemplate/letter.png"), "new");
    EXPECT_TRUE(TemplateFolder::moveIn(there("A.zttemplate"), directory));
    EXPECT_EQ(contentOf(directory + QStringLiteral("/A.zttemplate/letter.png")), "new");
    EXPECT_FALSE(QFileInfo::exists(there("A.zttemplate")));
    made(there("again/A.zttemplate/letter.png"), "newer");
    ZQError error;
    EXPECT_FALSE(TemplateFolder::moveIn(there("again/A.zttemplate"), directory, &error));
    EXPECT_EQ(error.code, TemplateFolder::NameTaken);
    EXPECT_EQ(contentOf(there("again/A.zttemplate/letter.png")), "newer");
    EXPECT_EQ(contentOf(directory + QStringLiteral("/A.zttemplate/letter.png")), "new");
    EXPECT_EQ(entries(), QStringList{QStringLiteral("A.zttemplate")});
}

TEST_F(TemplatesTest, AddedOnesAreCopiesAndRemovedOnesGoToTheTrash)
{
    const QString file = outside("Poster.png");
    const auto first = TemplateFolder::add(file, directory);
    const auto second = TemplateFolder::add(file, directory);
    ASSERT_TRUE(first && second);
    EXPECT_EQ(entries(),
              (QStringList{QStringLiteral("Poster 1.png.zttemplate"), QStringLiteral("Poster.png.zttemplate")}));
    EXPECT_EQ(contentOf(file), "new");
    ZQError error;
    EXPECT_FALSE(TemplateFolder::add(world.filePath(QStringLiteral("gone.png")), directory, &error));
    EXPECT_FALSE(error.isNull());

    // Only what is one, and lies there.
    made(directory + QStringLiteral("/note.txt"), "kept");
    for (const QString &path :
         {file, directory, directory + QStringLiteral("/note.txt"), outside("other/X.zttemplate"),
          directory + QStringLiteral("/../Poster.png"), directory + QStringLiteral("/gone.zttemplate")}) {
        EXPECT_FALSE(TemplateFolder::remove(path, directory)) << qPrintable(path);
    }
    EXPECT_TRUE(TemplateFolder::remove(*first, directory));
    EXPECT_EQ(entries(), (QStringList{QStringLiteral("Poster 1.png.zttemplate"), QStringLiteral("note.txt")}));
    EXPECT_EQ(contentOf(file), "new");
}

TEST_F(TemplatesTest, WhatBecomesAnAssetIsFoundInFilesAndPackages)
{
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::red);
    const QString plain = directory + QStringLiteral("/Plain.zttemplate");
    ASSERT_TRUE(image.save(plain, "PNG"));
    const auto in = [this](const char *name) { return directory + u'/' + QString::fromUtf8(name); };
    made(in("Poster.psd.zttemplate"), "8BPS");
    made(in("Letter.v2.zttemplate/b.png"), "b");
    made(in("Letter.v2.zttemplate/a.svg"), "a");
    made(in("Letter.v2.zttemplate/Preview.jpg"), "p");
    made(in("Letter.v2.zttemplate/.hidden.png"), "h");
    made(in("Only.zttemplate/preview.png"), "p");
    made(in("Drawing.sketch.zttemplate/document.json"), "{}");
    made(in("Archive.zip.zttemplate"), "PK\3\4");
    made(in("Picture.png.zttemplate/inner.gif"), "g");
    made(in("Empty.zttemplate/note.txt"), "n");
    ASSERT_TRUE(QFile::link(outside("private.png"), in("Empty.zttemplate/private.png")));
    made(in("Other.txt"), "no template");

    QStringList found;
    for (const TemplateFile &each : Templates::inFolder(directory)) {
        EXPECT_TRUE(each.file.isEmpty() || each.file.startsWith(each.path));
        found.append(
            QStringList{each.title, each.file.mid(each.path.size()), each.extension, each.picture.mid(each.path.size())}
                .join(u'|'));
    }
    EXPECT_EQ(found.join(u'\n').toStdString(), "Archive.zip|||\n"
                                               "Drawing||sketch|\n"
                                               "Empty|||\n"
                                               "Letter.v2|/a.svg|svg|/Preview.jpg\n"
                                               "Only|/preview.png|png|/preview.png\n"
                                               "Picture.png|/inner.gif|gif|/inner.gif\n"
                                               "Plain||png|\n"
                                               "Poster||psd|");
    EXPECT_EQ(Templates::atPath(plain).file, plain);
    EXPECT_TRUE(Templates::atPath(in("Archive.zip.zttemplate")).file.isEmpty());

    ZQError error;
    EXPECT_EQ(Templates::named(QStringLiteral("Poster"), directory)->path, in("Poster.psd.zttemplate"));
    EXPECT_EQ(Templates::named(QStringLiteral("Only.zttemplate"), directory)->title, QStringLiteral("Only"));
    EXPECT_FALSE(Templates::named(QStringLiteral("Poste"), directory, &error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("Poster")));
}
