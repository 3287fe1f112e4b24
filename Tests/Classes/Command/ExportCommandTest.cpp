#include "Classes/Command/Commands.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Tests/Classes/Command/CommandFixture.h"

#include <future>

class ExportCommandTest : public CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (HasFatalFailure()) {
            return;
        }
        picture(QStringLiteral("in/red.png"), qRgb(220, 20, 20));
        picture(QStringLiteral("in/green.png"), qRgb(20, 220, 20));
        ASSERT_EQ(run("import in/red.png in/green.png"), 0);
        ASSERT_EQ(run("items --json"), 0);
        const QJsonArray items = array();
        for (const QJsonValue item : items) {
            bundleIDs.insert(item[QStringLiteral("title")].toString(), item[QStringLiteral("bundleID")].toString());
            paths.insert(item[QStringLiteral("title")].toString(), item[QStringLiteral("itemPath")].toString());
        }
        ASSERT_TRUE(QDir().mkpath(out));
    }
    QStringList written() const
    {
        return QDir(out).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    QString red() const { return bundleIDs.value(QStringLiteral("red")); }

    QHash<QString, QString> bundleIDs; // by title
    QHash<QString, QString> paths;
    const QString out = world.filePath(QStringLiteral("out"));
};

TEST_F(ExportCommandTest, FormatsSizesPresetsAndArchives)
{
    const struct
    {
        const char *options;
        QStringList names;
        QSize size;
    } cases[] = {
        {"", {QStringLiteral("red.png")}, {300, 200}},
        {"--format jpeg --percent 50", {QStringLiteral("red.jpg")}, {150, 100}},
        {"--format gif --width 30", {QStringLiteral("red.gif")}, {30, 20}},
        {"--format png --height 20 --name {index}-{title}-{width}x{height}",
         {QStringLiteral("1-red-30x20.png")},
         {30, 20}},
        {"--preset 1", {QStringLiteral("red.jpg")}, {150, 100}},
    };
    for (const auto &each : cases) {
        ASSERT_TRUE(QDir(out).removeRecursively() && QDir().mkpath(out));
        const QStringList options = QString::fromLatin1(each.options).split(u' ', Qt::SkipEmptyParts);
        EXPECT_EQ(
            run(QStringList{QStringLiteral("export"), red(), QStringLiteral("--to"), QStringLiteral("out")} + options),
            0)
            << each.options << context.errors.constData();
        EXPECT_EQ(written(), each.names) << each.options;
        EXPECT_EQ(ZQImageSource::bitmapOfFile(out + u'/' + each.names[0]).size(), each.size) << each.options;
    }
    ASSERT_EQ(
        run({QStringLiteral("export"), QStringLiteral("--in"), QStringLiteral("LIBRARY/Library"),
             QStringLiteral("--to"), QStringLiteral("out"), QStringLiteral("--zip"), QStringLiteral("--json"), red()}),
        0)
        << context.errors.constData();
    EXPECT_EQ(object().value(QStringLiteral("count")), 2) << "an item is exported once, however often it is named";
    EXPECT_EQ(object().value(QStringLiteral("written")).toArray().first(), out + QStringLiteral("/Archive.zip"));
}

TEST_F(ExportCommandTest, WhatCannotBeMeantIsRefusedAndWritesNothing)
{
    for (const char *options :
         {"--to out", "nobody --to out", "ITEM --to nowhere", "ITEM --to out --width 10",
          "ITEM --to out --format png --percent 5 --width 10", "ITEM --to out --format png --quality 5",
          "ITEM --to out --name a/b", "ITEM --to out --name {nobody}", "ITEM --to in/red.png",
          "ITEM --to out --preset 99", "ITEM --to out --preset 1 --format png", "ITEM --to out --format bitmap",
          "ITEM --to out --in PROJECTS/None"}) {
        QStringList arguments = QStringLiteral("export %1").arg(QLatin1String(options)).split(u' ');
        arguments.replaceInStrings(QStringLiteral("ITEM"), red());
        EXPECT_EQ(run(arguments), 2) << options;
        EXPECT_FALSE(context.errors.isEmpty()) << options;
    }
    EXPECT_TRUE(written().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(world.filePath(QStringLiteral("nowhere"))));
}

TEST_F(ExportCommandTest, AFileIsNoPlaceToExportTo)
{
    EXPECT_EQ(run({QStringLiteral("export"), red(), QStringLiteral("--to"), QStringLiteral("in/red.png")}), 2);
    EXPECT_TRUE(context.errors.contains("is a file; give a folder")) << context.errors.constData();
}

TEST_F(ExportCommandTest, WhatAConversionLeavesOutIsListed)
{
    // Two frames of one pixel.
    const QByteArray frame("\x2c\0\0\0\0\1\0\1\0\0\2\2\x44\1\0", 15);
    QFile file(world.filePath(QStringLiteral("in/moving.gif")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("GIF89a\1\0\1\0\x80\0\0\xff\0\0\0\0\xff", 19) + frame + frame + ';');
    file.close();
    ASSERT_EQ(run("import in/moving.gif --json"), 0);
    QStringList arguments = {QStringLiteral("export"), QStringLiteral("--in"), QStringLiteral("LIBRARY/Library"),
                             QStringLiteral("--to"),   QStringLiteral("out"),  QStringLiteral("--format"),
                             QStringLiteral("png")};
    EXPECT_EQ(run(arguments), 0) << context.errors.constData();
    EXPECT_EQ(context.output.count("note: "), 1) << context.output.constData();
    EXPECT_TRUE(context.output.contains("note: moving: Only the first frame")) << context.output.constData();
    EXPECT_EQ(run(arguments + QStringList{QStringLiteral("--json")}), 0);
    const QJsonArray notes = object().value(QStringLiteral("notes")).toArray();
    ASSERT_EQ(notes.size(), 1);
    EXPECT_EQ(notes[0][QStringLiteral("title")].toString(), QStringLiteral("moving"));
    arguments.last() = QStringLiteral("keep");
    EXPECT_EQ(run(arguments), 0);
    EXPECT_FALSE(context.output.contains("note: ")) << "nothing is lost";
}

TEST_F(ExportCommandTest, WhatIsMissingIsListed)
{
    ASSERT_TRUE(QFile::remove(paths.value(QStringLiteral("red"))));
    const QStringList arguments = {QStringLiteral("export"), bundleIDs.value(QStringLiteral("green")), red(),
                                   QStringLiteral("--to"), QStringLiteral("out")};
    EXPECT_EQ(run(arguments), 1);
    EXPECT_TRUE(context.output.contains("1 file exported\n")) << context.output.constData();
    EXPECT_TRUE(context.output.contains("missing: red: ")) << context.output.constData();
    EXPECT_EQ(written(), QStringList{QStringLiteral("green.png")});
    EXPECT_EQ(run(arguments + QStringList{QStringLiteral("--json")}), 1);
    const QJsonObject missing = object().value(QStringLiteral("missing")).toArray().first().toObject();
    EXPECT_EQ(missing.value(QStringLiteral("bundleID")), red());
}

TEST_F(ExportCommandTest, NobodyWaitingForTheAnswerCancelsIt)
{
    context = {};
    context.delegate = delegate.get();
    context.workingDirectory = world.path();
    std::promise<void> open;
    delegate->backgroundOperationQueue().addOperationWithBlock([opened = open.get_future().share()] { opened.wait(); });
    int asked = 0;
    context.isAbandoned = [&] {
        if (++asked == 5) { // by then it was cancelled
            open.set_value();
        }
        return true;
    };
    EXPECT_EQ(zqRunExport({.items = {red()}, .to = out}, context), 2);
    EXPECT_TRUE(context.errors.contains("cancelled")) << context.errors.constData();
    EXPECT_TRUE(written().isEmpty());
}
