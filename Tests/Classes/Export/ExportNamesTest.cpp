#include "Classes/Export/ExportNames.h"

#include "Kit/Imaging/ZQImageExport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct Case
{
    const char *what;
    QStringList onDisk;
    QList<ExportNames::Source> sources;
    std::optional<int> format;
    QStringList names;
    QString pattern = {};
};

ExportNames::Source source(const char *title, const char *extension = "png", bool hasFile = true)
{
    return {QString::fromUtf8(title), QString::fromUtf8(extension), hasFile, QSize(640, 480),
            QDateTime(QDate(2024, 5, 6), QTime(12, 0))};
}

QStringList list(const std::initializer_list<const char *> &names)
{
    QStringList result;
    for (const char *name : names) {
        result.append(QString::fromUtf8(name));
    }
    return result;
}

} // namespace

TEST(ExportNamesTest, NamesAreFreeInTheFolderAndInTheBatch)
{
    const Case cases[] = {
        {"numbered past those there",
         list({"photo.png", "photo 1.png"}),
         {source("photo")},
         PNG,
         list({"photo 2.png"})},
        {"equal titles", {}, {source("photo"), source("photo")}, JPEG, list({"photo.jpg", "photo 1.jpg"})},
        {"the second test does not look at the disk",
         list({"a.png"}),
         {source("a 1"), source("a")},
         PNG,
         list({"a 1.png", "a 1 1.png"})},
        {"nor when its own result is there",
         list({"a.png", "a 1 1.png"}),
         {source("a 1"), source("a")},
         PNG,
         list({"a 1.png", "a 1 1.png"})},
        {"missing ones get no name",
         {},
         {source("a"), source("b", "png", false), source("c")},
         {},
         list({"a.png", "c.png"})},
        {"each its own extension", {}, {source("a", "psd"), source("a", "JPEG")}, {}, list({"a.psd", "a.JPEG"})},
        {"codes without one of their own", {}, {source("a", "psd")}, BMP, list({"a.psd"})},
        {"an unknown code", {}, {source("a", "psd")}, 77, list({"a.psd"})},
        {"codes of our own", {}, {source("a", "psd")}, WebP, list({"a.webp"})},
        {"a file without an extension", list({"a"}), {source("a", "")}, {}, list({"a 1"})},
        {"a pattern",
         {},
         {source("a"), source("a")},
         PNG,
         list({"2024-05-06 a-640x480 1.png", "2024-05-06 a-640x480 2.png"}),
         QStringLiteral("{date} {title}-{width}x{height} {index}")},
        {"braces in a title stay",
         {},
         {source("{index}")},
         PNG,
         list({"{index} {what}.png"}),
         QStringLiteral("{title} {what}")},
        {"titles that are no names",
         {},
         {source("a/b"), source("../../x"), source(".."), source(""), source(" "), source(".hidden"), source("a\nb\tc"),
          source("/")},
         PNG,
         list({"a-b.png", "_.-..-x.png", "_..png", "Untitled.png", "Untitled 1.png", "_hidden.png", "a-b-c.png",
               "-.png"})},
    };
    for (const Case &each : cases) {
        const QTemporaryDir folder;
        for (const QString &name : each.onDisk) {
            QFile(folder.filePath(name)).open(QIODevice::WriteOnly);
        }
        const ExportNames::Names names = ExportNames::filenames(each.sources, folder.path(), each.format, each.pattern);
        QStringList got;
        for (const QString &path : names.paths) {
            got.append(QFileInfo(path).fileName());
            EXPECT_EQ(QFileInfo(path).path(), folder.path()) << each.what;
        }
        EXPECT_EQ(got, each.names) << each.what << ": " << got.join(u'|').toStdString();
        EXPECT_EQ(names.missing + names.paths.size(), each.sources.size()) << each.what;
    }
}

TEST(ExportNamesTest, LongNamesAreCutBeforeTheirExtension)
{
    const QTemporaryDir folder;
    const QString title = QString(300, u'ü');
    const auto names =
        ExportNames::filenames({{title, QStringLiteral("png")}, {title, QStringLiteral("png")}}, folder.path(), PNG);
    ASSERT_EQ(names.paths.size(), 2);
    EXPECT_NE(names.paths[0], names.paths[1]);
    for (const QString &path : names.paths) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << "the file system takes it";
        EXPECT_TRUE(path.endsWith(QStringLiteral(".png")));
    }
}

TEST(ExportNamesTest, ALinkCountsAsAFileWhereverItLeads)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(QFile::link(QStringLiteral("/nowhere/at/all"), folder.filePath(QStringLiteral("Archive.zip"))));
    EXPECT_EQ(ExportNames::archiveName(folder.path()), folder.filePath(QStringLiteral("Archive 1.zip")));
    EXPECT_EQ(ExportNames::safeNameForFile(folder.filePath(QStringLiteral("Archive"))),
              folder.filePath(QStringLiteral("Archive")));
    int number = 0;
    EXPECT_EQ(ExportNames::safeNameForFile(QStringLiteral("/d/x.tar.gz"),
                                           {QStringLiteral("/d/x.tar.gz"), QStringLiteral("/d/x.tar 1.gz")}, number),
              QStringLiteral("/d/x.tar 2.gz"));
    EXPECT_EQ(number, 2);
}

TEST(ExportNamesTest, PatternsAreOneLineWithoutFoldersAndUnknownPlaceholders)
{
    const QString problem = ExportNames::problemOfPattern(QStringLiteral("{title} {name} {index}"));
    EXPECT_TRUE(problem.contains(QStringLiteral("“{name}”"))) << problem.toStdString();
    EXPECT_TRUE(problem.contains(QStringLiteral("{height}"))) << "says what there is";
    EXPECT_FALSE(ExportNames::problemOfPattern(QStringLiteral("{Title}")).isNull());
    EXPECT_FALSE(ExportNames::problemOfPattern(QStringLiteral("{}")).isNull());
    EXPECT_TRUE(ExportNames::problemOfPattern(QStringLiteral("} {title} {")).isNull());
    EXPECT_TRUE(ExportNames::problemOfPattern(QStringLiteral("{title} {index}")).isNull());
    EXPECT_FALSE(ExportNames::problemOfPattern(QStringLiteral("../{title}")).isNull());
    EXPECT_FALSE(ExportNames::problemOfPattern(QStringLiteral("{title}\n")).isNull());
}
