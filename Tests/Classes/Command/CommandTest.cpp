#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/PendingImport.h"
#include "Tests/Classes/Command/CommandFixture.h"
#include "Tests/Support/FileSizeLimit.h"
#include "Tools/samples/SampleArchives.h"

TEST_F(CommandTest, AnImportedPictureIsListedWithItsAttributes)
{
    picture(QStringLiteral("in/red.png"), qRgb(220, 20, 20));
    ASSERT_EQ(run("import in/red.png --set license=CC0 --json"), 0) << context.errors.constData();
    ASSERT_EQ(object().value(QStringLiteral("imported")).toArray().size(), 1);
    const QString bundleID = object().value(QStringLiteral("imported")).toArray().first().toString();

    ASSERT_EQ(run("items --json"), 0);
    const QJsonObject item = array().first().toObject();
    EXPECT_EQ(item.value(QStringLiteral("bundleID")).toString(), bundleID);
    EXPECT_EQ(item.value(QStringLiteral("entity")).toString(), QStringLiteral("ZQLibraryImage"));
    EXPECT_EQ(item.value(QStringLiteral("license")).toString(), QStringLiteral("CC0"));
    EXPECT_EQ(item.value(QStringLiteral("pixelWidth")).toInt(), 300);
    const QVariantList tags = item.value(QStringLiteral("tags")).toArray().toVariantList();
    EXPECT_EQ(tags.size(), 2);
    EXPECT_TRUE(tags.contains(QStringLiteral("red")) && tags.contains(QStringLiteral("medium")));
    EXPECT_TRUE(item.value(QStringLiteral("webURL")).isNull());
    EXPECT_TRUE(QFileInfo::exists(item.value(QStringLiteral("itemPath")).toString()));
    EXPECT_EQ(run("verify --deep"), 0);
}

TEST_F(CommandTest, ReferencesFollowTitlesEvenThoseWithSlashesAndIdentifiers)
{
    ZQManagedObjectContext &store = *delegate->managedObjectContext();
    const auto projects = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(store);
    const auto project = store.insertNewObject<ZQSidebarProject>();
    project->setTitle(QStringLiteral("Logos/2026"));
    project->setActive(true);
    projects->appendChild(project.get());
    delegate->saveAction();

    EXPECT_EQ(run(QStringList{QStringLiteral("items"), QStringLiteral("--in"), QStringLiteral("PROJECTS/Logos/2026")}),
              0);
    EXPECT_EQ(run(QStringList{QStringLiteral("items"), QStringLiteral("--in"), project->UUID()}), 0);
    for (const char *unknown : {"PROJECTS/Logos", "Logos/2026", "x-zelto://nowhere/ZQSidebarProject/p1"}) {
        EXPECT_EQ(run(QStringList{QStringLiteral("items"), QStringLiteral("--in"), QLatin1String(unknown)}), 2)
            << unknown;
        EXPECT_TRUE(context.output.isEmpty());
        EXPECT_TRUE(context.errors.contains(unknown));
    }
}

TEST_F(CommandTest, ItemsAreDeletedAndRestoredByAnyOfTheirNames)
{
    picture(QStringLiteral("in/blue.png"), qRgb(20, 20, 220));
    ASSERT_EQ(run("import in/blue.png"), 0);
    ASSERT_EQ(run("items --json"), 0);
    const QJsonObject item = array().first().toObject();
    for (const char *key : {"bundleID", "SHA1", "itemPath"}) {
        const QString name = item.value(QLatin1String(key)).toString();
        EXPECT_EQ(run(QStringList{QStringLiteral("delete"), name}), 0) << key;
        EXPECT_EQ((run("items --json"), array().size()), 0) << key;
        EXPECT_EQ((run("items --deleted --json"), array().size()), 1) << key;
        EXPECT_EQ(run(QStringList{QStringLiteral("restore"), name}), 0) << key;
    }
    // One name that is unknown, and nothing is changed.
    EXPECT_EQ(run(QStringList{QStringLiteral("delete"), item.value(QStringLiteral("SHA1")).toString(),
                              QStringLiteral("nothing")}),
              2);
    EXPECT_EQ((run("items --json"), array().size()), 1);
}

TEST_F(CommandTest, PurgingRemovesDeletedItemsAndTheirFiles)
{
    picture(QStringLiteral("in/a.png"), qRgb(20, 220, 20));
    picture(QStringLiteral("in/b.png"), qRgb(220, 220, 20));
    ASSERT_EQ(run("import in/a.png in/b.png"), 0);
    ASSERT_EQ(run("items --json"), 0);
    const QString path = array().first().toObject().value(QStringLiteral("itemPath")).toString();
    ASSERT_EQ(run(QStringList{QStringLiteral("delete"), path}), 0);
    EXPECT_TRUE(QFileInfo::exists(path));
    EXPECT_EQ(run("purge"), 0);
    EXPECT_FALSE(QFileInfo::exists(QFileInfo(path).path()));
    EXPECT_EQ((run("items --deleted --json"), array().size()), 0);
    EXPECT_EQ((run("items --json"), array().size()), 1);
}

TEST_F(CommandTest, VerifyNamesWhatIsMissingChangedOrNobodys)
{
    picture(QStringLiteral("in/a.png"), qRgb(200, 100, 20));
    picture(QStringLiteral("in/b.png"), qRgb(100, 20, 200));
    ASSERT_EQ(run("import in/a.png in/b.png"), 0);
    QDir().mkpath(delegate->libraryDirectory() + QStringLiteral("/ORPHAN.ztlibraryitem"));
    EXPECT_EQ(run("verify --deep --json"), 0);
    EXPECT_EQ(object().value(QStringLiteral("orphans")).toArray(), QJsonArray{QStringLiteral("ORPHAN.ztlibraryitem")});

    ASSERT_EQ(run("items --json"), 0);
    const QJsonArray items = array();
    QFile::remove(items.at(0).toObject().value(QStringLiteral("itemPath")).toString());
    QFile changed(items.at(1).toObject().value(QStringLiteral("itemPath")).toString());
    ASSERT_TRUE(changed.open(QIODevice::Append));
    changed.write("x");
    changed.close();
    EXPECT_EQ(run("verify --json"), 1);
    EXPECT_EQ(object().value(QStringLiteral("problems")).toArray().size(), 1);
    EXPECT_EQ(run("verify --deep --json"), 1);
    EXPECT_EQ(object().value(QStringLiteral("problems")).toArray().size(), 2);
    EXPECT_EQ(object().value(QStringLiteral("items")).toInt(), 2);
}

TEST_F(CommandTest, VerifySaysWhatNoLaunchTouches)
{
    picture(QStringLiteral("in/a.png"), qRgb(200, 100, 20));
    picture(QStringLiteral("in/b.png"), qRgb(100, 20, 200));
    picture(QStringLiteral("in/c.png"), qRgb(20, 100, 200));
    ASSERT_EQ(run("import in/a.png in/b.png in/c.png"), 0);
    const QString library = delegate->libraryDirectory();
    const QStringList names = QDir(library).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    ASSERT_EQ(names.size(), 3);
    const QString large = names.at(1).toUpper();
    ASSERT_TRUE(QDir(library).rename(names.at(1), large));
    const QString small = names.first().toLower();
    ASSERT_TRUE(QDir(library).rename(names.first(), small));
    // That of an item may lie elsewhere.
    ASSERT_TRUE(QDir(library).rename(names.last(), world.filePath(QStringLiteral("elsewhere"))));
    ASSERT_TRUE(QFile::link(world.filePath(QStringLiteral("elsewhere")), library + u'/' + names.last()));
    ASSERT_TRUE(QFile::link(world.path(), library + QStringLiteral("/LINK.ztlibraryitem")));
    QDir().mkpath(library + QStringLiteral("/ORPHAN.ztlibraryitem"));

    run("verify --json");
    EXPECT_EQ(object().value(QStringLiteral("orphans")).toArray(), QJsonArray{QStringLiteral("ORPHAN.ztlibraryitem")});
    EXPECT_EQ(object().value(QStringLiteral("otherNames")).toArray(),
              (QJsonArray{std::min(large, small), std::max(large, small)}));
    EXPECT_EQ(object().value(QStringLiteral("links")).toArray(), QJsonArray{QStringLiteral("LINK.ztlibraryitem")});
    run("verify");
    for (const QString &line :
         {QStringLiteral("belongs to no item; the next launch takes it back or removes it: ORPHAN.ztlibraryitem\n"),
          QStringLiteral("is named like the folder of an item, in other letters, and stays as it is: ") + small + u'\n',
          QStringLiteral("is a link and no folder of an item, and stays as it is: LINK.ztlibraryitem\n")}) {
        EXPECT_EQ(context.output.count(line.toUtf8()), 1) << qPrintable(line);
    }
}

TEST_F(CommandTest, DuplicatesAreKeptUnlessTheFlagSaysOtherwise)
{
    picture(QStringLiteral("in/a.png"), qRgb(1, 100, 20));
    ASSERT_EQ(run("import in/a.png"), 0);
    ASSERT_EQ(run("import in/a.png"), 0);
    EXPECT_EQ((run("items --json"), array().size()), 2);
    ASSERT_EQ(run("import in/a.png --duplicates discard --json"), 0);
    EXPECT_EQ(object().value(QStringLiteral("dropped")).toArray().size(), 1);
    EXPECT_EQ((run("items --json"), array().size()), 2);
    EXPECT_EQ(QDir(delegate->libraryDirectory()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 2);
}

TEST_F(CommandTest, WhatCannotBeUnderstoodChangesNothingAndSaysWhy)
{
    for (const char *wrong :
         {"import", "import missing.png", "items --nonsense", "delete", "import missing.png --set pixelWidth=wide",
          "snapshot x.png --size big", "defaults write UseDarkUI maybe", "defaults delete NeverSet",
          "defaults read NoSuchKey"}) {
        EXPECT_EQ(run(wrong), 2) << wrong;
        EXPECT_FALSE(context.errors.isEmpty()) << wrong;
        EXPECT_TRUE(context.output.isEmpty()) << wrong;
    }
    EXPECT_EQ((run("items --json"), array().size()), 0);
}

TEST_F(CommandTest, PreferencesThatCannotBeWrittenAreAFailure)
{
    ASSERT_EQ(run("defaults write UseDarkUI false"), 0);
    QFile file(preferencesPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    file.close();
    static QStringList logged;
    logged.clear();
    const auto fails = [&](const char *arguments) {
        const auto handler = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &text) { logged.append(text); });
        EXPECT_EQ(run(arguments), 2) << arguments;
        qInstallMessageHandler(handler);
        EXPECT_EQ(logged.filter(file.fileName()), QStringList()) << "it is said once";
        EXPECT_EQ(context.errors.count(QFile::encodeName(file.fileName())), 1) << context.errors.constData();
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), before) << arguments;
        file.close();
    };
    ASSERT_TRUE(file.setPermissions(QFileDevice::ReadOwner));
    fails("defaults write UseDarkUI true");
    fails("defaults delete UseDarkUI");
    ASSERT_TRUE(file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    {
        const FileSizeLimit full(0);
        fails("defaults write UseDarkUI true");
    }
    EXPECT_EQ(run("defaults delete UseDarkUI"), 0) << context.errors.constData();
}

TEST_F(CommandTest, WhatIsQuotedOfLongTextsIsShort)
{
    const QString endless = QString(100'000, u'x');
    const QList<QStringList> wrong{
        {QStringLiteral("defaults"), QStringLiteral("read"), endless},
        {QStringLiteral("defaults"), QStringLiteral("write"), QStringLiteral("UseDarkUI"), endless},
        {QStringLiteral("items"), QStringLiteral("--in"), endless},
        {QStringLiteral("items"), QStringLiteral("--") + endless},
        {QStringLiteral("tag"), endless, QStringLiteral("--add"), QStringLiteral("a")},
        {QStringLiteral("search"), QStringLiteral("#date=") + endless},
        {QStringLiteral("search"), QStringLiteral("#") + endless},
        {QStringLiteral("import"), endless},
        {endless}};
    for (const QStringList &arguments : wrong) {
        EXPECT_EQ(run(arguments), 2) << qPrintable(arguments.first().left(20));
        EXPECT_FALSE(context.errors.isEmpty());
        EXPECT_LT(context.errors.size(), 1500) << qPrintable(arguments.first().left(20));
        EXPECT_TRUE(context.errors.contains("…") || !context.errors.contains("xxx"));
    }
}

TEST_F(CommandTest, WithoutATargetFoldersBecomeProjectsAndFilesGoIntoTheLibrary)
{
    picture(QStringLiteral("in/Brand/logo.png"), qRgb(20, 20, 220));
    picture(QStringLiteral("in/loose.png"), qRgb(20, 220, 20));
    ASSERT_EQ(run("import in/loose.png in/Brand --json"), 0) << context.errors.constData();
    EXPECT_EQ(object().value(QStringLiteral("imported")).toArray().size(), 2);
    ASSERT_EQ(run("items --in PROJECTS/Brand --json"), 0) << context.errors.constData();
    ASSERT_EQ(array().size(), 1);
    EXPECT_EQ(array().first().toObject().value(QStringLiteral("title")).toString(), QStringLiteral("logo"));
    EXPECT_EQ((run("items --json"), array().size()), 2);
    const auto projects = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(*delegate->managedObjectContext());
    for (const auto &child : projects->orderedChildren()) {
        EXPECT_NE(child->title(), QStringLiteral("New Project")); // the loose file is in no project
    }
}

TEST_F(CommandTest, ImportsThatWereCutOffAreSpokenOfAndGoOnOrAreForgotten)
{
    const QString a = picture(QStringLiteral("in/a.png"), qRgb(20, 20, 220));
    const QString folder = world.filePath(QStringLiteral("Test.ztlibrary/pending-imports"));
    const auto cutOff = [&] {
        return PendingImportFile::create(folder, {.paths = {a},
                                                  .target = {},
                                                  .index = ImportOperation::appendIndex,
                                                  .metadata = {},
                                                  .archivePath = {},
                                                  .archiveRoot = {},
                                                  .groups = {}}) != nullptr;
    };
    ASSERT_TRUE(cutOff());
    EXPECT_EQ(run("items --json"), 0);
    EXPECT_TRUE(array().isEmpty());
    EXPECT_TRUE(context.errors.contains("zelto import --resume"));
    EXPECT_TRUE(context.errors.contains("“a.png”, 0 of 1 in the library")) << context.errors.constData();
    EXPECT_EQ(run("import --resume --json"), 0) << context.errors.constData();
    EXPECT_EQ(object().value(QStringLiteral("imported")).toArray().size(), 1);
    EXPECT_EQ((run("items --json"), array().size()), 1);
    EXPECT_TRUE(context.errors.isEmpty());

    ASSERT_TRUE(cutOff() && QFile::rename(a, a + QStringLiteral(".away")));
    EXPECT_EQ(run("import --resume"), 1);
    EXPECT_EQ(context.output.count("cannot be found"), 1);
    EXPECT_EQ(PendingImportFile::cutOff(folder).size(), 1);
    QFile unreadable(folder + QStringLiteral("/1000-X.plist"));
    ASSERT_TRUE(unreadable.open(QIODevice::WriteOnly));
    EXPECT_EQ(run("import --resume"), 2);
    EXPECT_EQ(run("import --forget"), 0);
    EXPECT_TRUE(PendingImportFile::cutOff(folder).isEmpty());
    EXPECT_EQ((run("items --json"), array().size()), 1);
    EXPECT_EQ(run("import"), 2);
    EXPECT_EQ(run("import --resume --forget"), 2);
}

TEST_F(CommandTest, TheAnswerAboutDuplicatesHoldsForAnImportThatGoesOn)
{
    const QString a = picture(QStringLiteral("in/a.png"), qRgb(20, 20, 220));
    ASSERT_EQ(run("import in/a.png"), 0);
    struct Case
    {
        QString kept;
        const char *arguments;
        qsizetype items;
    };
    for (const Case &each : {Case{QStringLiteral("discard"), "import --resume", 1},
                             {QStringLiteral("discard"), "import --resume --duplicates keep", 2},
                             {QString(), "import --resume --duplicates discard", 2},
                             {QStringLiteral("no answer"), "import --resume", 3}}) {
        ASSERT_TRUE(PendingImportFile::create(world.filePath(QStringLiteral("Test.ztlibrary/pending-imports")),
                                              {.paths = {a},
                                               .target = {},
                                               .index = ImportOperation::appendIndex,
                                               .metadata = {},
                                               .archivePath = {},
                                               .archiveRoot = {},
                                               .groups = {},
                                               .ungrouped = {},
                                               .duplicates = each.kept}));
        EXPECT_EQ(run(each.arguments), 0) << context.errors.constData();
        EXPECT_EQ((run("items --json"), array().size()), each.items) << each.arguments;
    }
}

TEST_F(CommandTest, AnArchiveIsReportedTogetherWithAllItHeld)
{
    using SampleArchives::Entry;
    const auto bytes = [this](const char *name, QRgb color) {
        QFile file(picture(QString::fromLatin1(name), color));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const auto write = [this](const char *name, const QByteArray &archive) {
        QFile file(world.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(archive) == archive.size());
    };
    const QByteArray red = bytes("in/red.png", qRgb(220, 20, 20));
    const QByteArray blue = bytes("in/blue.png", qRgb(20, 20, 220));
    write("set.zip",
          SampleArchives::zipFile(
              {{"a.png", red}, {"Sub/note.txt", "text"}, {"inner.zip", SampleArchives::zipFile({{"b.png", blue}})}}));
    write("secret.zip", SampleArchives::zipFile({{"hidden.png", red, Entry::Kind::File, true}}));

    ASSERT_EQ(run("import set.zip secret.zip in/red.png --into PROJECTS --set license=CC0 --json"), 0)
        << context.errors.constData();
    EXPECT_EQ(object().value(QStringLiteral("imported")).toArray().size(), 3);
    QStringList dropped;
    for (const QJsonValue &file : object().value(QStringLiteral("dropped")).toArray()) {
        dropped.append(file.toObject().value(QStringLiteral("path")).toString());
        EXPECT_FALSE(file.toObject().value(QStringLiteral("reason")).toString().isEmpty());
    }
    dropped.sort();
    EXPECT_EQ(dropped, (QStringList{world.filePath(QStringLiteral("secret.zip")),
                                    world.filePath(QStringLiteral("set.zip/Sub/note.txt"))}));
    ASSERT_EQ(run("items --json"), 0);
    EXPECT_EQ(array().size(), 3); // nothing comes after the answer
    for (const QJsonValue &item : array()) {
        EXPECT_EQ(item.toObject().value(QStringLiteral("license")).toString(), QStringLiteral("CC0"));
    }
    EXPECT_EQ(run(QStringList{QStringLiteral("items"), QStringLiteral("--in"), QStringLiteral("PROJECTS/set/inner")}),
              0);
    EXPECT_EQ(run("verify --deep"), 0);
    EXPECT_EQ(delegate->backgroundOperationQueue().operationCount(), 0);
}
