// What commands answer to the letter, what they take for a value, and what they do when the store cannot be read.

#include "Classes/Application/PreferencesController.h"
#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/PendingImport.h"
#include "Classes/Services/UsageCounts.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Classes/Command/CommandFixture.h"
#include "Tests/Support/DamagedStore.h"
#include "Tests/Support/FlushWatch.h"
#include "Tests/Support/Skip.h"

#include <QThread>

#include <atomic>
#include <utility>

namespace {

class AnswersTest : public CommandTest
{
protected:
    ZQManagedObjectContext &store() { return *delegate->managedObjectContext(); }
    ZQRef<ZQLibraryBaseItem> item(const QString &title)
    {
        return zqFetchFirst<ZQLibraryBaseItem>(store(), QStringLiteral("title == %@"), {title});
    }
    // The exit status; what was printed and what went wrong follow in `output()` and `errors()`.
    int answer(std::initializer_list<QString> arguments) { return run(QStringList(arguments)); }
    QString output() const { return QString::fromUtf8(context.output); }
    QString errors() const { return QString::fromUtf8(context.errors); }
    QString inWorld(const char *name) const { return world.filePath(QLatin1String(name)); }
    void importPictures()
    {
        picture(QStringLiteral("in/a.png"), qRgb(1, 2, 3));
        picture(QStringLiteral("in/b.png"), qRgb(4, 5, 6));
        ASSERT_EQ(run("import in/a.png in/b.png"), 0) << context.errors.constData();
    }
};

} // namespace

TEST_F(AnswersTest, AnImportSaysWhatCameAndWhatDidNot)
{
    importPictures();
    EXPECT_EQ(output(), QStringLiteral("2 items imported\n"));
    QFile note(inWorld("in/note.txt"));
    ASSERT_TRUE(note.open(QIODevice::WriteOnly) && note.write("x") == 1);
    note.close();
    QFile whole(picture(QStringLiteral("in/whole.bmp"), qRgb(9, 9, 9)));
    QImage noise(60, 60, QImage::Format_RGB32);
    for (int i = 0; i < 3600; ++i) {
        noise.setPixel(i % 60, i / 60, quint32(i) * 2654435761U);
    }
    ASSERT_TRUE(noise.save(whole.fileName(), "BMP") && whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    QFile part(inWorld("in/part.bmp"));
    ASSERT_TRUE(part.open(QIODevice::WriteOnly) && part.write(bytes.left(bytes.size() / 2)) > 0);
    part.close();
    ASSERT_EQ(run("import in/note.txt in/part.bmp"), 0);
    const QString partly =
        QStringLiteral("It is incomplete: only a part of it can be drawn. Import it again from where "
                       "it came.");
    const QString unknown = QStringLiteral("Files of this kind cannot be imported. Convert it to an image, a PDF or an "
                                           "SVG first.");
    const QString told = QStringLiteral("“part.bmp” is incomplete: only a part of it can be drawn");
    EXPECT_EQ(output(), QStringLiteral("1 item imported\nnot imported: %1: %2\nimported in part: %3: %4\n%5\n")
                            .arg(inWorld("in/note.txt"), unknown, inWorld("in/part.bmp"), partly, told));
    ASSERT_EQ(run("import in/note.txt in/part.bmp --json"), 0);
    const auto listed = [this](const char *key) { return object().value(QLatin1String(key)).toArray(); };
    const auto entry = [](const QString &path, const QString &reason) {
        return QJsonArray{QJsonObject{{QStringLiteral("path"), path}, {QStringLiteral("reason"), reason}}};
    };
    EXPECT_EQ(listed("imported").size(), 1);
    EXPECT_EQ(listed("dropped"), entry(inWorld("in/note.txt"), unknown));
    EXPECT_EQ(listed("incomplete"), entry(inWorld("in/part.bmp"), partly));
    EXPECT_EQ(listed("notifications"), QJsonArray{told});
}

TEST_F(AnswersTest, ASettingIsOfTheTypeOfItsAttribute)
{
    const QString file = picture(QStringLiteral("in/a.png"), qRgb(1, 2, 3));
    const std::tuple<const char *, const char *, QVariant> cases[] = {
        {"license=CC=0", "license", QStringLiteral("CC=0")},
        {"license=", "license", QString(u""_qs)},
        {"nsfw=true", "nsfw", true},
        {"rating=4", "rating", 4},
        {"pixelTotal=5000000000", "pixelTotal", qlonglong(5000000000)},
        {"creation_date=2020-02-03T04:05:06+01:00", "creation_date",
         QDateTime(QDate(2020, 2, 3), QTime(3, 5, 6), Qt::UTC)},
    };
    for (const auto &[setting, key, value] : cases) {
        ASSERT_EQ(answer({QStringLiteral("import"), file, QStringLiteral("--set"), QLatin1String(setting)}), 0)
            << context.errors.constData();
        const auto made = item(QStringLiteral("a"));
        ASSERT_TRUE(made);
        EXPECT_EQ(made->valueForKey(QLatin1String(key)).toString(), value.toString()) << setting;
        made->deletePermanently();
        delegate->saveAction();
    }
    const std::pair<const char *, const char *> wrongs[] = {
        {"=x", "“=x” sets nothing; "},
        {"license", "“license” sets nothing; "},
        {"itemURLData=x", "“itemURLData=x” sets nothing; "},
        {"nsfw=1", "“1” is no value for nsfw"},
        {"rating=4.5", "“4.5” is no value for rating"},
        {"creation_date=now", "“now” is no value for creation_date"},
    };
    for (const auto &[setting, said] : wrongs) {
        EXPECT_EQ(answer({QStringLiteral("import"), file, QStringLiteral("--set"), QLatin1String(setting)}), 2);
        EXPECT_TRUE(context.errors.startsWith(QByteArray("zelto: ") + said)) << context.errors.constData();
    }
    EXPECT_EQ(run("import in/gone.png"), 2);
    EXPECT_EQ(errors(), QStringLiteral("zelto: there is no file “%1”\n").arg(inWorld("in/gone.png")));
    EXPECT_EQ(run("import"), 2);
    EXPECT_EQ(errors(), QStringLiteral("zelto: name what to import, or write --resume or --forget\n"));
    EXPECT_EQ(run("import --resume --forget"), 2);
    EXPECT_EQ(errors(), QStringLiteral("zelto: --resume and --forget exclude each other\n"));
    EXPECT_EQ((run("items --json"), array().size()), 0);
}

TEST_F(AnswersTest, TheFirstPlaceIsNumberedNought)
{
    importPictures();
    ASSERT_EQ(answer({QStringLiteral("import"), QStringLiteral("in/a.png"), QStringLiteral("--into"),
                      QStringLiteral("PROJECTS/Sample project")}),
              0);
    ASSERT_EQ(answer({QStringLiteral("import"), QStringLiteral("in/b.png"), QStringLiteral("--into"),
                      QStringLiteral("PROJECTS/Sample project"), QStringLiteral("--index"), QStringLiteral("0")}),
              0);
    ASSERT_EQ(answer({QStringLiteral("items"), QStringLiteral("--in"), QStringLiteral("PROJECTS/Sample project")}), 0);
    EXPECT_TRUE(output().section(u'\n', 0, 0).endsWith(QStringLiteral("\tb.png"))) << context.output.constData();
}

TEST_F(AnswersTest, ImportsThatWereCutOffAreCounted)
{
    const auto cutOff = [this](const QStringList &paths) {
        ASSERT_TRUE(
            PendingImportFile::create(inWorld("Test.ztlibrary/pending-imports"), {.paths = paths,
                                                                                  .target = {},
                                                                                  .index = ImportOperation::appendIndex,
                                                                                  .metadata = {},
                                                                                  .archivePath = {},
                                                                                  .archiveRoot = {},
                                                                                  .groups = {}}));
    };
    const QString advice =
        QStringLiteral("; zelto import --resume goes on with the missing files, zelto import --forget "
                       "gives them up\n");
    cutOff({});
    ASSERT_EQ(run("items"), 0);
    EXPECT_EQ(errors(), QStringLiteral("zelto: an import was cut off") + advice);
    cutOff({inWorld("in/a.png"), inWorld("in/b.png")});
    ASSERT_EQ(run("items"), 0);
    EXPECT_EQ(errors(), QStringLiteral("zelto: 2 imports were cut off: “a.png” and one other") + advice);
    ASSERT_EQ(run("defaults read UseDarkUI"), 0);
    EXPECT_EQ(errors(), QString()) << "it is not about the library";
    ASSERT_EQ(run("import --forget"), 0);
    EXPECT_EQ(errors(), QString());
}

TEST_F(AnswersTest, ItemsAndTheSidebarAreDescribedWhole)
{
    importPictures();
    const auto a = item(QStringLiteral("a"));
    const auto project = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(store())->orderedChildren().first();
    project->addItem(a.get());
    a->setThumbName(QStringLiteral("a_thumb.png"));
    delegate->saveAction();
    ASSERT_TRUE(QFile::copy(a->itemURL(), a->bundleURL() + QStringLiteral("/a_thumb.png")));
    ASSERT_EQ(answer({QStringLiteral("items"), QStringLiteral("--in"), project->UUID(), QStringLiteral("--json")}), 0);
    ASSERT_EQ(array().size(), 1);
    const QJsonObject described = array().first().toObject();
    EXPECT_EQ(described.value(QStringLiteral("entity")), QStringLiteral("ZQLibraryImage"));
    EXPECT_EQ(described.value(QStringLiteral("itemPath")), a->itemURL());
    EXPECT_EQ(described.value(QStringLiteral("thumbPath")), a->bundleURL() + QStringLiteral("/a_thumb.png"));
    EXPECT_EQ(described.value(QStringLiteral("projects")), QJsonArray{project->title()});
    a->setThumbName({});
    delegate->saveAction();
    ASSERT_EQ(answer({QStringLiteral("items"), QStringLiteral("--in"), project->UUID(), QStringLiteral("--json")}), 0);
    EXPECT_TRUE(array().first().toObject().value(QStringLiteral("thumbPath")).isNull());

    ASSERT_EQ(run("sidebar --json"), 0);
    const QJsonObject projects = array().at(1).toObject();
    EXPECT_EQ(projects.value(QStringLiteral("children")).toArray().first().toObject(),
              (QJsonObject{{QStringLiteral("title"), project->title()},
                           {QStringLiteral("kind"), 0},
                           {QStringLiteral("order"), 0},
                           {QStringLiteral("entity"), QStringLiteral("ZQSidebarProject")},
                           {QStringLiteral("is_Label"), false},
                           {QStringLiteral("is_Special"), false},
                           {QStringLiteral("is_Tag"), false},
                           {QStringLiteral("active"), true},
                           {QStringLiteral("numberOfItems"), 1},
                           {QStringLiteral("UUID"), project->UUID()},
                           {QStringLiteral("children"), QJsonArray()}}));
    ASSERT_EQ(run("sidebar"), 0);
    EXPECT_TRUE(output().contains(QStringLiteral("\nPROJECTS\n  Sample project  (1)\n"))) << output().toStdString();
    a->setExtension({});
    delegate->saveAction();
    ASSERT_EQ(answer({QStringLiteral("items"), QStringLiteral("--in"), project->UUID()}), 0);
    EXPECT_EQ(output(), a->bundleID() + QStringLiteral("\ta\n"));

    project->deleteSelf();
    delegate->saveAction();
    EXPECT_EQ(answer({QStringLiteral("items"), QStringLiteral("--in"), project->UUID()}), 2);
    EXPECT_EQ(
        errors(),
        QStringLiteral("zelto: there is no sidebar entry “%1”; `zelto sidebar` lists them\n").arg(project->UUID()));
}

TEST_F(AnswersTest, ChangesNameHowManyItemsTheyWereMadeTo)
{
    const QString file = picture(QStringLiteral("in/a.png"), qRgb(1, 2, 3));
    ASSERT_EQ(run("import in/a.png"), 0);
    ASSERT_EQ(run("import in/a.png"), 0);
    const auto one = item(QStringLiteral("a"));
    const QString id = one->bundleID();
    const QString both = one->SHA1();
    struct Case
    {
        std::initializer_list<QString> arguments;
        const char *output;
    };
    const Case cases[] = {
        {{QStringLiteral("delete"), id, id}, "1 item deleted\n"},
        {{QStringLiteral("delete"), id, both}, "2 items deleted\n"},
        {{QStringLiteral("restore"), id}, "1 item restored\n"},
        {{QStringLiteral("restore"), both}, "2 items restored\n"},
        {{QStringLiteral("tag"), id, QStringLiteral("--add"), QStringLiteral("x")}, "1 item tagged\n"},
        {{QStringLiteral("tag"), both, QStringLiteral("--remove"), QStringLiteral("x")}, "2 items tagged\n"},
        {{QStringLiteral("note"), id, QStringLiteral("n")}, "1 item noted\n"},
        {{QStringLiteral("note"), both, QStringLiteral("n")}, "2 items noted\n"},
        {{QStringLiteral("rate"), id, QStringLiteral("5")}, "1 item rated\n"},
        {{QStringLiteral("rate"), both, QStringLiteral("0")}, "2 items rated\n"},
    };
    for (const Case &each : cases) {
        EXPECT_EQ(answer(each.arguments), 0) << each.output << context.errors.constData();
        EXPECT_EQ(context.output, each.output);
        EXPECT_EQ(context.errors, QByteArray()) << each.output;
    }
    for (const char *wrong : {"5.1", "-0.1", "x"}) {
        EXPECT_EQ(answer({QStringLiteral("rate"), id, QLatin1String(wrong)}), 2);
    }
    EXPECT_EQ(answer({QStringLiteral("delete"), QStringLiteral("nobody")}), 2);
    EXPECT_EQ(errors(), QStringLiteral("zelto: there is no item “nobody”; name it by its bundleID, its SHA1 or a path "
                                       "inside the library\n"));
    ASSERT_EQ(answer({QStringLiteral("delete"), id}), 0);
    EXPECT_EQ(answer({QStringLiteral("note"), id, QStringLiteral("n")}), 2);
    EXPECT_EQ(errors(),
              QStringLiteral("zelto: “a” is deleted; bring it back with `zelto restore %1`, then try again\n").arg(id));
}

TEST_F(AnswersTest, AChangeOfTagsThatCannotBeSavedIsTakenBackFromTheFilesToo)
{
    importPictures();
    const auto a = item(QStringLiteral("a"));
    const QString file = a->itemURL();
    if (!OpenMeta::setString(QStringLiteral("probe"), QStringLiteral("probe"), file).isNull()) {
        return skipWithout("extended attributes");
    }
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten(); // the import's
    QStringList before = OpenMeta::getUserTags(file).value_or(QStringList());
    before.sort();
    for (const auto &arguments :
         {QStringList{QStringLiteral("tag"), a->bundleID(), QStringLiteral("--add"), QStringLiteral("unsaved")},
          QStringList{QStringLiteral("note"), a->bundleID(), QStringLiteral("unsaved")},
          QStringList{QStringLiteral("rate"), a->bundleID(), QStringLiteral("3.5")}}) {
        {
            const RefusingStore refusing(delegate->persistentStoreCoordinator()->path(),
                                         {QStringLiteral("ZQLibraryBaseItem"), QStringLiteral("ZQSidebarBaseItem")});
            EXPECT_EQ(run(arguments), 2) << qPrintable(arguments.first());
        }
        EXPECT_EQ(context.errors.count("zelto: "), 1) << context.errors.constData();
        EXPECT_TRUE(context.output.isEmpty());
        EXPECT_FALSE(store().hasChanges());
        QStringList tags = OpenMeta::getUserTags(file).value_or(QStringList());
        tags.sort();
        EXPECT_EQ(tags, before);
        EXPECT_EQ(OpenMeta::getFinderComment(file).value_or(QString()), QString());
        EXPECT_EQ(OpenMeta::getRating(file), 0);
    }
}

TEST_F(AnswersTest, WhatFilesCarryIsPrintedAsFarAsItIsThere)
{
    const QString file = picture(QStringLiteral("in/a.png"), qRgb(1, 2, 3));
    if (!OpenMeta::setUserTags(QStringList{QStringLiteral("a"), QStringLiteral("b")}, file).isNull()) {
        return skipWithout("extended attributes");
    }
    ASSERT_TRUE(OpenMeta::setFinderComment(QStringLiteral("noted"), file).isNull());
    ASSERT_TRUE(OpenMeta::setRating(0.5, file).isNull());
    const QString bare = picture(QStringLiteral("in/b.png"), qRgb(1, 2, 3));
    ASSERT_EQ(run("attributes in/a.png in/b.png"), 0);
    EXPECT_EQ(output(), file +
                            QStringLiteral("\n  tags\ta, b\n  rating\t0.5\n  comment\tnoted\n  xdg.tags\ta,b\n"
                                           "  xdg.comment\tnoted\n  baloo.rating\t1\n") +
                            bare + u'\n');
    ASSERT_TRUE(ZQExtendedAttributes::set(bare, OpenMeta::spotlightKey(OpenMeta::userTagsKey), "bplist00 nonsense"));
    ASSERT_EQ(run("attributes in/b.png --json"), 0);
    EXPECT_FALSE(array().first().toObject().value(QStringLiteral("error")).toString().isEmpty());
    ASSERT_EQ(run("attributes in/b.png"), 0);
    EXPECT_TRUE(output().startsWith(bare + QStringLiteral("\n  error\t"))) << context.output.constData();
    EXPECT_EQ(run("attributes in/gone.png"), 2);
    EXPECT_EQ(errors(), QStringLiteral("zelto: there is no file “in/gone.png”\n"));
}

TEST_F(AnswersTest, VerifySaysWhatIsWrong)
{
    importPictures();
    const auto a = item(QStringLiteral("a"));
    const auto b = item(QStringLiteral("b"));
    ASSERT_EQ(run("verify --deep"), 0);
    EXPECT_EQ(output(), QStringLiteral("2 items checked\n"));
    QDir().mkpath(delegate->libraryDirectory() + QStringLiteral("/Z.ztlibraryitem"));
    QDir().mkpath(delegate->libraryDirectory() + QStringLiteral("/Y.ztlibraryitem"));
    QFile::remove(a->itemURL());
    QDir(b->itemURL()).mkpath(QStringLiteral("."));
    ASSERT_TRUE(QFile::rename(b->itemURL(), b->itemURL() + u'~') && QDir().mkpath(b->itemURL()));
    b->setThumbName(QStringLiteral("b_thumb.png"));
    delegate->saveAction();
    ASSERT_EQ(run("verify --deep"), 1);
    const QStringList lines = output().split(u'\n');
    ASSERT_EQ(lines.size(), 7) << context.output.constData();
    EXPECT_EQ(lines.at(0), QStringLiteral("2 items checked"));
    EXPECT_EQ(lines.at(1), QStringLiteral("a (%1): the file is missing").arg(a->bundleID()));
    EXPECT_EQ(lines.at(2), QStringLiteral("b (%1): the thumbnail is missing").arg(b->bundleID()));
    EXPECT_TRUE(lines.at(3).startsWith(QStringLiteral("b (%1): ").arg(b->bundleID()))) << "nothing to digest in it";
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(lines.at(4 + i), QStringLiteral("belongs to no item; the next launch takes it back or removes it: ") +
                                       QLatin1String(i ? "Z.ztlibraryitem" : "Y.ztlibraryitem"));
    }
    a->deletePermanently();
    delegate->saveAction();
    ASSERT_EQ(run("verify"), 1);
    EXPECT_TRUE(output().startsWith(QStringLiteral("1 item checked\n"))) << context.output.constData();
}

TEST_F(AnswersTest, WhateverTitleAFileIsGivenItIsFoundUnderIt)
{
    const QString file = picture(QStringLiteral("in/q.png"), qRgb(1, 2, 3));
    const std::pair<QString, QString> cases[] = {
        {QStringLiteral("A / B: c | <d>?"), QStringLiteral("A - B: c | <d>?")},
        {QStringLiteral("."), QStringLiteral("q")},
        {QStringLiteral("../../x"), QStringLiteral("-..-x")},
        {QStringLiteral("..."), QStringLiteral("q")},
        {QStringLiteral("  "), QStringLiteral("q")},
        {QString(), QStringLiteral("q")},
        {QStringLiteral("End. "), QStringLiteral("End.")},
        {QStringLiteral("a\nb"), QStringLiteral("a-b")},
        {QStringLiteral("a") + QChar() + u'b', QStringLiteral("a-b")},
        {QString(300, QChar(0xE9)), QString(120, QChar(0xE9))}, // two bytes each; with "_thumb.png.tmp" at most 255
    };
    for (const auto &[asked, title] : cases) {
        ASSERT_EQ(answer({QStringLiteral("import"), file, QStringLiteral("--set"), QStringLiteral("title=") + asked}),
                  0)
            << context.errors.constData();
        const auto made = item(title);
        ASSERT_TRUE(made) << asked.toStdString();
        EXPECT_TRUE(QFileInfo(made->itemURL()).isFile()) << made->itemURL().toStdString();
        EXPECT_TRUE(made->setNewTitle(title + u'2')) << asked.toStdString();
        EXPECT_EQ(QFileInfo(made->itemURL()).fileName(), title + QStringLiteral("2.png"));
        made->deletePermanently();
        delegate->saveAction();
    }
    EXPECT_EQ(run("import in/q.png --set originalExtension=jpg"), 2) << "no file is found under that";
}

TEST_F(AnswersTest, VerifyNamesAFileAfterItsItem)
{
    importPictures();
    const auto a = item(QStringLiteral("a"));
    const auto b = item(QStringLiteral("b"));
    const QString directory = a->bundleURL() + u'/';
    a->setTitle(QStringLiteral("A / B"));
    ASSERT_TRUE(QFile::copy(b->itemURL(), b->bundleURL() + QStringLiteral("/other.png")));
    b->setTitle(QStringLiteral("B / C")); // two files could be it
    delegate->saveAction();
    ASSERT_EQ(run("verify --json"), 1);
    EXPECT_EQ(object().value(QStringLiteral("problems")).toArray().size(), 2);
    EXPECT_TRUE(QFile::exists(directory + QStringLiteral("a.png"))) << "a look changes nothing";
    ASSERT_EQ(run("verify --repair"), 1);
    EXPECT_TRUE(output().startsWith(QStringLiteral("1 file named after its item\n"))) << context.output.constData();
    EXPECT_EQ(a->title(), QStringLiteral("A - B"));
    EXPECT_TRUE(QFile::exists(directory + QStringLiteral("A - B.png")));
    EXPECT_EQ(b->title(), QStringLiteral("B / C"));
    EXPECT_TRUE(QFile::exists(b->bundleURL() + QStringLiteral("/b.png")));
    b->deletePermanently();
    delegate->saveAction();
    EXPECT_EQ(run("verify --repair"), 0) << context.output.constData();
}

TEST_F(AnswersTest, AStoreThatCannotBeReadIsSaidByEachCommand)
{
    importPictures();
    const QString id = item(QStringLiteral("a"))->bundleID();
    const auto other = ZQSQLiteConnection::open(delegate->persistentStoreCoordinator()->path(),
                                                ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    ASSERT_TRUE(other);
    const auto rename = [&](const char *from, const char *to) {
        ASSERT_TRUE(other->execute(QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE %1 RENAME TO %2")
                                       .arg(QLatin1String(from), QLatin1String(to))));
    };
    for (const auto &[table, commands] :
         {std::pair{"ZQLibraryBaseItem",
                    QStringList{QStringLiteral("items"), QStringLiteral("delete ") + id, QStringLiteral("note x y"),
                                QStringLiteral("sidebar"), QStringLiteral("tags")}},
          {"ZQSidebarBaseItem", {QStringLiteral("sidebar"), QStringLiteral("tags")}}}) {
        rename(table, "away");
        for (const QString &command : commands) {
            EXPECT_EQ(run(command.split(u' ')), 2) << qPrintable(command);
            EXPECT_EQ(context.errors.count('\n'), 1) << qPrintable(command);
            EXPECT_TRUE(context.output.isEmpty()) << qPrintable(command);
        }
        EXPECT_EQ(run("verify --json"), QByteArray(table) == "ZQLibraryBaseItem" ? 1 : 0);
        rename("away", table);
    }
}

TEST_F(AnswersTest, PreferencesAreValuesOfTheirType)
{
    struct Case
    {
        const char *key, *written, *read; // null: refused
    };
    const Case cases[] = {
        {"UseDarkUI", "1", nullptr},
        {"UseDarkUI", "maybe", nullptr},
        {"UseDarkUI", "false", "false"},
        {"IconTagSize", "big", nullptr},
        {"IconTagSize", "\"12\"", nullptr},
        {"IconTagSize", "12", "12"},
        {"IconTagSize", "[1]", nullptr},
        {"Mine", "text", "text"},
        {"Mine", "[1,\"a\"]", "[1,\"a\"]"},
        {"Mine", "null", "null"},
        {"Mine", "{\"a\":true}", "{\"a\":true}"},
        {"Mine", "1,2", "1,2"},
    };
    EXPECT_EQ((run("defaults read UseDarkUI"), context.output), "true\n") << "the default";
    EXPECT_EQ(run("defaults write UseDarkIU true"), 0);
    EXPECT_TRUE(context.errors.contains("“UseDarkIU”")) << context.errors.constData();
    EXPECT_EQ(run("defaults delete UseDarkIU"), 0);
    EXPECT_EQ(run("defaults write UseDarkUI true"), 0);
    EXPECT_TRUE(context.errors.isEmpty()) << context.errors.constData();
    for (const Case &each : cases) {
        int flushes = 0;
        int status = 0;
        {
            const FlushWatch watch([&flushes](const QString &) { ++flushes; });
            status = answer({QStringLiteral("defaults"), QStringLiteral("write"), QLatin1String(each.key),
                             QLatin1String(each.written)});
        }
        EXPECT_EQ(status, each.read ? 0 : 2) << each.key << ' ' << each.written;
        if (!each.read) {
            EXPECT_TRUE(
                context.errors.startsWith(QByteArray("zelto: “") + each.written + "” is no value for " + each.key))
                << context.errors.constData();
            continue;
        }
        EXPECT_GT(flushes, 0) << each.key << " is on the disk";
        EXPECT_EQ(answer({QStringLiteral("defaults"), QStringLiteral("read"), QLatin1String(each.key)}), 0);
        EXPECT_EQ(context.output, QByteArray(each.read) + '\n');
    }
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    defaults.setObjectForKey(QByteArray("\1\2"), QStringLiteral("Mine"));
    EXPECT_EQ((run("defaults read Mine"), context.output), "AQI=\n");
    defaults.setObjectForKey(QDateTime(QDate(2020, 2, 3), QTime(4, 5, 6), Qt::UTC), QStringLiteral("Mine"));
    EXPECT_EQ((run("defaults read Mine"), context.output), "2020-02-03T04:05:06.000Z\n");
    EXPECT_EQ((run("defaults read Mine --json"), object()),
              (QJsonObject{{QStringLiteral("Mine"), QStringLiteral("2020-02-03T04:05:06.000Z")}}));
    ASSERT_EQ(run("defaults read --json"), 0);
    EXPECT_EQ(object().keys(), defaults.keys());
    EXPECT_EQ(object().value(QStringLiteral("IconTagSize")), 12);
    ASSERT_EQ(run("defaults read"), 0);
    EXPECT_TRUE(output().contains(QStringLiteral("\nIconTagSize = 12\n"))) << context.output.constData();
    EXPECT_EQ(output().count(u'\n'), defaults.keys().size());

    for (const char *key : {"Mine", "IconTagSize", "UseDarkUI"}) {
        int flushes = 0;
        const FlushWatch watch([&flushes](const QString &) { ++flushes; });
        EXPECT_EQ(answer({QStringLiteral("defaults"), QStringLiteral("delete"), QLatin1String(key)}), 0);
        EXPECT_GT(flushes, 0) << key;
        EXPECT_FALSE(defaults.isSet(QLatin1String(key)));
    }
    EXPECT_EQ((run("defaults read UseDarkUI"), context.output), "true\n") << "the default again";
    EXPECT_EQ(run("defaults delete Mine"), 2);
    EXPECT_EQ(errors(), QStringLiteral("zelto: the preference “Mine” is not set\n"));
    EXPECT_EQ(run("defaults read Mine"), 2);
    EXPECT_EQ(errors(), QStringLiteral("zelto: there is no preference “Mine”; `zelto defaults read` lists them\n"));
}

TEST_F(AnswersTest, WhereNothingIsToBeShownAPersonIsToldAndAScriptIsNot)
{
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(UsageCounts::countsKey);
    const std::pair<const char *, const char *> cases[] = {{"reports list", "there is no report"},
                                                           {"usage show", "CountsUsage true"}};
    for (const auto &[command, said] : cases) {
        EXPECT_EQ(run(command), 0);
        EXPECT_EQ(output(), QString()) << command;
        EXPECT_EQ(context.errors.count(said), 1) << context.errors.constData();
        EXPECT_EQ(run(QByteArray(command) + " --json"), 0);
        EXPECT_EQ(errors(), QString()) << command;
        EXPECT_FALSE(output().isEmpty()) << command;
    }
}

TEST_F(AnswersTest, PurgingIsLeftToAWindowAndToAnImportThatGoesOn)
{
    importPictures();
    const QString id = item(QStringLiteral("a"))->bundleID();
    ASSERT_EQ(answer({QStringLiteral("delete"), id}), 0);
    std::atomic<bool> stop = false;
    delegate->backgroundOperationQueue().addOperationWithBlock([&stop] {
        while (!stop) {
            QThread::msleep(1);
        }
    });
    EXPECT_EQ(run("purge"), 2);
    EXPECT_EQ(errors(), QStringLiteral("zelto: the library could not be saved, so nothing was removed\n"));
    stop = true;
    delegate->backgroundOperationQueue().waitUntilAllOperationsAreFinished();
    EXPECT_EQ((run("items --deleted --json"), array().size()), 1);
    EXPECT_EQ(run("purge"), 0);
    EXPECT_EQ((run("items --deleted --json"), array().size()), 0);
}
