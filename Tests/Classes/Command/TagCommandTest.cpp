#include "Classes/Application/FileTagAdoption.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Tags/DesktopMirror.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/OpenMetaBackup.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Classes/Command/CommandFixture.h"
#include "Tests/Support/FlushWatch.h"
#include "Tests/Support/Skip.h"

class TagCommandTest : public CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (HasFatalFailure()) {
            return;
        }
        picture(QStringLiteral("in/red.png"), qRgb(220, 20, 20));
        ASSERT_EQ(run("import in/red.png"), 0);
        item = firstItem();
        if (!OpenMeta::setString(QStringLiteral("probe"), QStringLiteral("probe"), path()).isNull()) {
            return skipWithout("extended attributes");
        }
    }
    QJsonObject firstItem()
    {
        EXPECT_EQ(run("items --json"), 0);
        return array().first().toObject();
    }
    QString path() const { return item.value(QStringLiteral("itemPath")).toString(); }
    QString bundleID() const { return item.value(QStringLiteral("bundleID")).toString(); }
    QStringList storedTags()
    {
        QStringList tags = firstItem().value(QStringLiteral("tags")).toVariant().toStringList();
        tags.sort();
        return tags;
    }
    QStringList fileTags() const
    {
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
        QStringList tags = OpenMeta::getUserTagsNoRestore(path()).value_or(QStringList());
        tags.sort();
        return tags;
    }
    QString journal() const { return world.filePath(QStringLiteral("Test.ztlibrary/pending-tags")); }
    void reopen()
    {
        delegate.reset();
        open();
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    }

    ZQRef<ZQLibraryBaseItem> storedItem()
    {
        return ZQLibraryBaseItem::libraryItemsForBundleID(bundleID(), *delegate->managedObjectContext());
    }
    // Lets what background threads found come into the store and back to the files.
    void takeIn()
    {
        for (int i = 0; i < 20; ++i) {
            zqRunMainLoopFor(std::chrono::milliseconds(10));
            TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
        }
    }

    QJsonObject item;
};

TEST_F(TagCommandTest, TheFileIsWrittenAlsoWhereTheStoreNeedsNoChange)
{
    const auto write = [](bool writes) {
        ZQUserDefaults::standardUserDefaults().setObjectForKey(writes, QStringLiteral("ImportOpenMetaTags"));
    };
    write(false);
    ASSERT_EQ(run({QStringLiteral("rate"), path(), QStringLiteral("5")}), 0);
    ASSERT_EQ(run({QStringLiteral("note"), path(), QStringLiteral("said")}), 0);
    ASSERT_EQ(run({QStringLiteral("tag"), path(), QStringLiteral("--add"), QStringLiteral("foo")}), 0);
    EXPECT_EQ(OpenMeta::getRating(path()), 0);
    write(true);
    ASSERT_EQ(run({QStringLiteral("rate"), path(), QStringLiteral("5")}), 0);
    EXPECT_EQ(OpenMeta::getRating(path()), 5);
    ASSERT_EQ(run({QStringLiteral("note"), path(), QStringLiteral("said")}), 0);
    EXPECT_EQ(OpenMeta::getString(OpenMeta::finderCommentKey, path()), QStringLiteral("said"));
    EXPECT_TRUE(fileTags().contains(QStringLiteral("foo")));
}

TEST_F(TagCommandTest, ATagThatIsAddedAndRemovedIsThere)
{
    for (int round = 0; round < 2; ++round) { // it was not there, and then it was
        ASSERT_EQ(
            run({QStringLiteral("tag"), path(), QStringLiteral("--remove"), QStringLiteral("both"),
                 QStringLiteral("--add"), QStringLiteral("both"), QStringLiteral("--add"), QStringLiteral("other")}),
            round == 0 ? 2 : 0)
            << "a tag that nobody has cannot be removed";
        ASSERT_EQ(run({QStringLiteral("tag"), path(), QStringLiteral("--add"), QStringLiteral("both")}), 0);
    }
    EXPECT_TRUE(storedTags().contains(QStringLiteral("both")));
    EXPECT_TRUE(fileTags().contains(QStringLiteral("both")));
}

TEST_F(TagCommandTest, AFailingCommandTakesNothingOfTheWindowsWithIt)
{
    const auto shown = storedItem();
    shown->setLicense(QStringLiteral("not saved yet"));
    {
        const auto connection = delegate->persistentStoreCoordinator()->newConnection();
        ASSERT_TRUE(connection->execute(QStringLiteral("CREATE TRIGGER refuse BEFORE UPDATE ON ZQLibraryBaseItem "
                                                       "BEGIN SELECT RAISE(ABORT, 'full'); END")));
        EXPECT_EQ(run({QStringLiteral("rate"), path(), QStringLiteral("3")}), 2);
        ASSERT_TRUE(connection->execute(QStringLiteral("DROP TRIGGER refuse")));
    }
    EXPECT_FALSE(context.errors.isEmpty());
    EXPECT_EQ(shown->rating(), 0);
    EXPECT_EQ(shown->license(), QStringLiteral("not saved yet"));
    delegate->saveAction();
    EXPECT_EQ(run({QStringLiteral("rate"), path(), QStringLiteral("3")}), 0);
    EXPECT_EQ(shown->rating(), 3) << "the window's object follows";
    EXPECT_EQ(shown->license(), QStringLiteral("not saved yet"));
}

TEST_F(TagCommandTest, TagsGoToTheStoreAndToTheFileBeforeTheCommandEnds)
{
    const QStringList before = storedTags();
    ASSERT_EQ(run({QStringLiteral("tag"), path(), QStringLiteral("--add"), QStringLiteral("Client X"),
                   QStringLiteral("--add"), QStringLiteral("logo")}),
              0)
        << context.errors.constData();
    EXPECT_EQ(context.output, "1 item tagged\n");
    QStringList expected = before + QStringList{QStringLiteral("Client X"), QStringLiteral("logo")};
    expected.sort();
    EXPECT_EQ(fileTags(), expected);
    EXPECT_EQ(storedTags(), expected);
    EXPECT_TRUE(ZQExtendedAttributes::get(path(), DesktopMirror::tagsName).value_or("").contains("Client X"));

    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--remove"), QStringLiteral("logo"),
                   QStringLiteral("--remove"), QStringLiteral("Client X")}),
              0);
    EXPECT_EQ(fileTags(), before);
    EXPECT_EQ(storedTags(), before);
    EXPECT_EQ(QFileInfo(journal()).size(), 0);
}

TEST_F(TagCommandTest, NotesAndRatingsReachTheFile)
{
    ASSERT_EQ(run({QStringLiteral("note"), bundleID(), QStringLiteral("for the\nbrochure")}), 0);
    EXPECT_EQ(OpenMeta::getFinderComment(path()), QStringLiteral("for the\nbrochure"));
    EXPECT_EQ(firstItem().value(QStringLiteral("notes")).toString(), QStringLiteral("for the\nbrochure"));
    ASSERT_EQ(run({QStringLiteral("note"), bundleID(), QString()}), 0);
    EXPECT_EQ(OpenMeta::getFinderComment(path()), QString());
    EXPECT_EQ(firstItem().value(QStringLiteral("notes")).toString(), QString());

    ASSERT_EQ(run({QStringLiteral("rate"), bundleID(), QStringLiteral("3.5")}), 0);
    EXPECT_EQ(OpenMeta::getRating(path()), 3.5);
    EXPECT_EQ(firstItem().value(QStringLiteral("rating")), 4);
    ASSERT_EQ(run({QStringLiteral("note"), bundleID(), QStringLiteral("other")}), 0);
    EXPECT_EQ(OpenMeta::getRating(path()), 3.5); // another write leaves the fraction
    ASSERT_EQ(run({QStringLiteral("rate"), item.value(QStringLiteral("SHA1")).toString(), QStringLiteral("0")}), 0);
    EXPECT_EQ(OpenMeta::getRating(path()), 0);
    EXPECT_EQ(firstItem().value(QStringLiteral("rating")), 0);
}

TEST_F(TagCommandTest, AMistakeChangesNothing)
{
    const QStringList before = storedTags();
    const QString id = bundleID();
    struct Case
    {
        QStringList arguments;
        const char *error;
    };
    const auto words = [](const char *text) { return QString::fromUtf8(text).split(u' '); };
    const Case cases[] = {
        {{QStringLiteral("tag"), id, QStringLiteral("nothing"), QStringLiteral("--add"), QStringLiteral("x")},
         "nothing"},
        {{QStringLiteral("tag"), id, QStringLiteral("--add"), QStringLiteral("x"), QStringLiteral("--remove"),
          QStringLiteral("unknown")},
         "there is no tag “unknown”"},
        {{QStringLiteral("tag"), id}, "--add TAG"},
        {{QStringLiteral("tag"), id, QStringLiteral("--add"), QStringLiteral(" ")}, "a tag needs a name"},
        {{QStringLiteral("rate"), id, QStringLiteral("6")}, "“6” is no rating"},
        {{QStringLiteral("rate"), id, QStringLiteral("nan")}, "“nan” is no rating"},
        {{QStringLiteral("rate"), id}, "a rating"},
        {words("rate nothing 3"), "nothing"},
        {{QStringLiteral("note"), id}, "the text"},
        {words("note nothing text"), "nothing"},
        {words("attributes missing.png"), "missing.png"},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(run(c.arguments), 2) << qPrintable(c.arguments.join(u' '));
        EXPECT_TRUE(context.errors.contains(c.error)) << context.errors.constData();
        EXPECT_TRUE(context.output.isEmpty());
    }
    EXPECT_EQ(storedTags(), before);
    EXPECT_EQ(fileTags(), before);
    EXPECT_FALSE(ZQSidebarTag::tagWithTagName(QStringLiteral("x"), *delegate->managedObjectContext()));
    ASSERT_EQ(run(QStringList{QStringLiteral("delete"), id}), 0);
    EXPECT_EQ(run({QStringLiteral("tag"), id, QStringLiteral("--add"), QStringLiteral("x")}), 2);
    EXPECT_TRUE(context.errors.contains("restore"));
}

TEST_F(TagCommandTest, TagsAndSidebarAreCountedTogetherOrByTheWindowsIndex)
{
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), QStringLiteral("mine")}), 0);
    ZQManagedObjectContext &store = *delegate->managedObjectContext();
    const auto projects = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(store);
    for (int i = 0; i < 40; ++i) {
        ASSERT_TRUE(ZQSidebarTag::addNewTagWithName(QStringLiteral("tag %1").arg(i), store));
        const auto project = store.insertNewObject<ZQSidebarProject>();
        project->setTitle(QStringLiteral("project %1").arg(i));
        projects->appendChild(project.get());
        project->addItem(storedItem().get());
    }
    ASSERT_TRUE(store.save());
    const ZQSQLiteConnection *connection = ZQObjectAccess::connection(store);
    QHash<QByteArray, QByteArray> answers;
    for (const char *command : {"tags", "tags --json", "sidebar", "sidebar --json"}) {
        const int before = connection->preparedUses();
        ASSERT_EQ(run(command), 0) << context.errors.constData();
        EXPECT_LE(connection->preparedUses() - before, 12) << command;
        answers.insert(command, context.output);
    }
    EXPECT_TRUE(answers.value("tags").contains("mine\t1\n"));
    EXPECT_TRUE(answers.value("tags").contains("tag 7\t0\n"));
    EXPECT_TRUE(answers.value("sidebar").contains("\n  project 7  (1)\n  project 8  (1)\n"));

    index = std::make_shared<LibraryIndex>(delegate->persistentStoreCoordinator());
    index->follow(store);
    for (const bool isReady : {false, true}) {
        ASSERT_EQ(run("tags"), 0);
        EXPECT_EQ(context.output, answers.value("tags"));
        EXPECT_EQ(index->isReady(), isReady) << "nobody waits until it is built";
        ASSERT_TRUE(index->waitUntilCurrent());
    }
    const auto other = delegate->persistentStoreCoordinator()->newConnection();
    const auto rename = [&](const char *from, const char *to) {
        ASSERT_TRUE(other->execute(QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE %1 RENAME TO %2")
                                       .arg(QLatin1String(from), QLatin1String(to))));
    };
    rename("ZQLibraryBaseItem", "away"); // the items are not asked for
    for (const char *command : {"tags", "tags --json", "sidebar", "sidebar --json"}) {
        EXPECT_EQ(run(command), 0) << context.errors.constData();
        EXPECT_EQ(context.output, answers.value(command)) << command;
    }
    EXPECT_EQ(run("search red --count"), 0) << context.errors.constData();
    rename("away", "ZQLibraryBaseItem");
    storedItem()->setActive(false);
    ASSERT_EQ(run("tags"), 0);
    EXPECT_TRUE(context.output.contains("mine\t0\n")) << "what is not saved yet counts";
    store.rollback();
    ASSERT_EQ(run("tags"), 0);
    EXPECT_EQ(context.output, answers.value("tags"));
}

TEST_F(TagCommandTest, TagsAndAttributesAreListed)
{
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), QStringLiteral("mine")}), 0);
    ASSERT_EQ(run("tags --json"), 0);
    bool found = false;
    for (const QJsonValue &tag : array()) {
        if (tag[QStringLiteral("title")] == QStringLiteral("mine")) {
            found = true;
            EXPECT_EQ(tag[QStringLiteral("numberOfItems")].toInt(), 1);
            EXPECT_FALSE(tag[QStringLiteral("generated")].toBool());
        }
    }
    EXPECT_TRUE(found);
    ASSERT_EQ(run("tags"), 0);
    EXPECT_TRUE(context.output.contains("mine\t1\n"));

    ZQExtendedAttributes::set(path(), QStringLiteral("xdg.origin.url"), "https://example.org/red.png");
    ASSERT_EQ(run({QStringLiteral("rate"), bundleID(), QStringLiteral("4")}), 0);
    ASSERT_EQ(run({QStringLiteral("attributes"), path(), QStringLiteral("--json")}), 0);
    const QJsonObject carried = array().first().toObject();
    EXPECT_TRUE(carried.value(QStringLiteral("tags")).toArray().contains(QStringLiteral("mine")));
    EXPECT_EQ(carried.value(QStringLiteral("rating")).toDouble(), 4);
    EXPECT_EQ(carried.value(QStringLiteral("baloo.rating")).toString(), QStringLiteral("8"));
    EXPECT_EQ(carried.value(QStringLiteral("webURL")).toString(), QStringLiteral("https://example.org/red.png"));
    ASSERT_EQ(run({QStringLiteral("attributes"), path()}), 0);
    EXPECT_TRUE(context.output.contains("  rating\t4\n"));
}

TEST_F(TagCommandTest, ADecomposedNameOfAFileIsTheTagThatWasTyped)
{
    const QString typed = QStringLiteral("Caf\u00e9");
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), typed}), 0);
    ZQManagedObjectContext &store = *delegate->managedObjectContext();
    const auto object = ZQSidebarTag::tagWithTagName(typed, store)->taggedItems().first();
    EXPECT_FALSE(object->readOpenMetaFromDisk());
    ASSERT_TRUE(OpenMeta::addUserTags(QStringList{QStringLiteral("new")}, path()).isNull());
    EXPECT_TRUE(object->readOpenMetaFromDisk());
    delegate->saveAction();
    EXPECT_TRUE(storedTags().contains(typed) && storedTags().contains(QStringLiteral("new")));
    const qsizetype known = storedTags().size();
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), QStringLiteral("Cafe\u0301"),
                   QStringLiteral("--add"), QStringLiteral("n\tew\n")}),
              0);
    EXPECT_EQ(storedTags().size(), known);
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--remove"), QStringLiteral("Cafe\u0301")}), 0);
    EXPECT_FALSE(storedTags().contains(typed));
}

TEST_F(TagCommandTest, WhatAFileManagerWroteReachesTheStore)
{
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), QStringLiteral("ours")}), 0);
    ASSERT_TRUE(ZQExtendedAttributes::set(path(), DesktopMirror::tagsName, "theirs"));
    ASSERT_TRUE(ZQExtendedAttributes::set(path(), DesktopMirror::commentName, "said"));
    ZQManagedObjectContext &store = *delegate->managedObjectContext();
    const auto object = ZQSidebarTag::tagWithTagName(QStringLiteral("ours"), store)->taggedItems().first();
    EXPECT_TRUE(object->readOpenMetaFromDisk());
    delegate->saveAction();
    EXPECT_EQ(storedTags(), QStringList{QStringLiteral("theirs")});
    EXPECT_EQ(object->notes(), QStringLiteral("said"));
}

TEST_F(TagCommandTest, TheNextLaunchRepairsFilesWhoseWritesWereInterrupted)
{
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), QStringLiteral("first")}), 0);
    QMap<QString, QByteArray> attributes;
    for (const QString &name : ZQExtendedAttributes::list(path())) {
        attributes.insert(name, *ZQExtendedAttributes::get(path(), name));
    }
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), QStringLiteral("kept"),
                   QStringLiteral("--remove"), QStringLiteral("first")}),
              0);
    QStringList expected = storedTags();
    ASSERT_EQ(run({QStringLiteral("rate"), bundleID(), QStringLiteral("4")}), 0);
    delegate.reset();
    OpenMetaBackup::waitUntilAllWritten();
    // The store has it, the file is as before, and the journal was not emptied; another program tagged the file since.
    for (const QString &name : ZQExtendedAttributes::list(path())) {
        ASSERT_TRUE(ZQExtendedAttributes::remove(path(), name));
    }
    for (auto it = attributes.cbegin(); it != attributes.cend(); ++it) {
        ASSERT_TRUE(ZQExtendedAttributes::set(path(), it.key(), it.value()));
    }
    ASSERT_TRUE(OpenMeta::addUserTags(QStringList{QStringLiteral("theirs")}, path()).isNull());
    QFile pending(journal());
    ASSERT_TRUE(pending.open(QIODevice::WriteOnly));
    pending.write(bundleID().toUtf8() + "\nof-no-item\n");
    pending.close();
    reopen();
    takeIn();
    expected.append(QStringLiteral("theirs"));
    expected.sort();
    EXPECT_EQ(fileTags(), expected);
    EXPECT_EQ(storedTags(), expected);
    EXPECT_EQ(OpenMeta::getRating(path()), 4);
    EXPECT_EQ(QFileInfo(journal()).size(), 0);

    // Without a journal a file's own tags are left alone.
    ASSERT_TRUE(OpenMeta::setUserTags(QStringList{QStringLiteral("own")}, path()).isNull());
    reopen();
    EXPECT_EQ(fileTags(), QStringList{QStringLiteral("own")});
}

TEST_F(TagCommandTest, WhatAnotherProgramGaveAFileOutlivesOurNextWriteAndReachesTheStore)
{
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), QStringLiteral("a"),
                   QStringLiteral("--add"), QStringLiteral("b")}),
              0);
    ASSERT_TRUE(OpenMeta::clearUserTags(QStringList{QStringLiteral("b")}, path()).isNull());
    ASSERT_TRUE(OpenMeta::addUserTags(QStringList{QStringLiteral("x")}, path()).isNull());
    ASSERT_TRUE(OpenMeta::setFinderComment(QStringLiteral("said"), path()).isNull());
    ASSERT_TRUE(OpenMeta::setRating(2.6, path()).isNull());
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), QStringLiteral("c")}), 0);
    EXPECT_EQ(fileTags(), storedTags());
    for (const char *tag : {"a", "c", "x"}) {
        EXPECT_TRUE(storedTags().contains(QLatin1String(tag))) << tag;
    }
    EXPECT_FALSE(storedTags().contains(QStringLiteral("b")));
    EXPECT_EQ(firstItem().value(QStringLiteral("notes")), QStringLiteral("said"));
    EXPECT_EQ(firstItem().value(QStringLiteral("rating")), 3);
    EXPECT_EQ(OpenMeta::getRating(path()), 2.6);
    EXPECT_EQ(QFileInfo(journal()).size(), 0);
}

TEST_F(TagCommandTest, AnotherSpellingByAnotherProgramIsAnotherTag)
{
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), QStringLiteral("Logo")}), 0);
    QStringList expected = storedTags();
    expected.replace(expected.indexOf(QStringLiteral("Logo")), QStringLiteral("logo"));
    expected.sort();
    ASSERT_TRUE(OpenMeta::setUserTags(expected, path()).isNull());
    ZQLibraryEnvironment::current().takeInTagsOfFiles({storedItem()});
    takeIn();
    EXPECT_EQ(storedTags(), expected);
    EXPECT_EQ(fileTags(), expected);

    // Both at once: the file holds one, and that is no removal of the other.
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), QStringLiteral("Logo")}), 0);
    ZQLibraryEnvironment::current().takeInTagsOfFiles({storedItem()});
    takeIn();
    EXPECT_TRUE(storedTags().contains(QStringLiteral("Logo")) && storedTags().contains(QStringLiteral("logo")));
    EXPECT_EQ(fileTags(), expected);
}

TEST_F(TagCommandTest, AnotherProgramsListOfTagsTakesNoMeasuredOneAway)
{
    const QStringList measured = storedTags();
    ASSERT_FALSE(measured.isEmpty());
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), QStringLiteral("ours")}), 0);
    // The second list lacks what the first brought, and is nothing but a removal.
    for (const char *theirs : {"outside", ""}) {
        ASSERT_TRUE(ZQExtendedAttributes::set(path(), DesktopMirror::tagsName, theirs));
        ZQLibraryEnvironment::current().takeInTagsOfFiles({storedItem()});
        takeIn();
        QStringList expected = measured;
        if (*theirs) {
            expected.append(QLatin1String(theirs));
        }
        expected.sort();
        EXPECT_EQ(storedTags(), expected) << theirs;
        EXPECT_EQ(fileTags(), expected) << theirs;
        ASSERT_EQ(run({QStringLiteral("attributes"), path(), QStringLiteral("--json")}), 0);
        const QJsonObject carried = array().first().toObject();
        QStringList mirrored =
            QString::fromUtf8(ZQExtendedAttributes::get(path(), DesktopMirror::tagsName).value_or("")).split(u',');
        QStringList listed = carried.value(QStringLiteral("tags")).toVariant().toStringList();
        mirrored.sort();
        listed.sort();
        EXPECT_EQ(mirrored, expected) << theirs;
        EXPECT_EQ(listed, expected) << theirs;
    }

    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--remove"), measured.first()}), 0);
    EXPECT_EQ(storedTags(), measured.mid(1)); // the person's own removal counts
    EXPECT_EQ(fileTags(), measured.mid(1));
}

TEST_F(TagCommandTest, ALookAtTheFileTakesInADifferenceAndAnnouncesIt)
{
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), QStringLiteral("a")}), 0);
    const auto object = storedItem();
    int announced = 0;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        ZQLibraryBaseItem::dataDidUpdateNotification, nullptr, [&announced](const ZQNotification &) { ++announced; });
    const auto look = [&] {
        ZQLibraryEnvironment::current().takeInTagsOfFiles({object});
        takeIn();
    };
    look();
    EXPECT_EQ(announced, 0);
    ASSERT_TRUE(ZQExtendedAttributes::set(path(), DesktopMirror::tagsName, "a,x"));
    ASSERT_TRUE(ZQExtendedAttributes::set(path(), DesktopMirror::ratingName, "6"));
    look();
    EXPECT_EQ(announced, 1);
    EXPECT_TRUE(storedTags().contains(QStringLiteral("x")));
    EXPECT_EQ(object->rating(), 3);
    ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--remove"), QStringLiteral("x")}), 0);
    EXPECT_FALSE(fileTags().contains(QStringLiteral("x"))); // what was taken in can be taken away

    for (const QString &name : ZQExtendedAttributes::list(path())) {
        ASSERT_TRUE(ZQExtendedAttributes::remove(path(), name));
    }
    const QStringList stored = storedTags();
    look();
    EXPECT_EQ(storedTags(), stored);
    EXPECT_EQ(fileTags(), stored);
    EXPECT_EQ(OpenMeta::getRating(path()), 3);
}

TEST_F(TagCommandTest, TheJournalIsOnTheDiskBeforeTheFileIsTouched)
{
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten(); // the import's, whose line would do for ours too
    ASSERT_EQ(QFileInfo(journal()).size(), 0);
    const QString path = QFileInfo(journal()).canonicalFilePath();
    int flushes = 0;
    QByteArray noted;
    QStringList tagsThen;
    {
        const FlushWatch watch([&](const QString &flushed) {
            if (flushed == path && flushes++ == 0) {
                QFile file(path);
                EXPECT_TRUE(file.open(QIODevice::ReadOnly));
                noted = file.readAll();
                tagsThen = OpenMeta::getUserTagsNoRestore(this->path()).value_or(QStringList()); // waits for nobody
            }
        });
        ASSERT_EQ(run({QStringLiteral("tag"), bundleID(), QStringLiteral("--add"), QStringLiteral("new")}), 0);
    }
    EXPECT_EQ(flushes, 1);
    EXPECT_EQ(noted, bundleID().toUtf8() + '\n');
    EXPECT_FALSE(tagsThen.contains(QStringLiteral("new")));
    EXPECT_TRUE(fileTags().contains(QStringLiteral("new")));
}

TEST_F(TagCommandTest, WhatCannotBeBroughtIntoTheStoreIsLoggedAndStaysInTheFile)
{
    static QStringList logged;
    logged.clear();
    ASSERT_TRUE(OpenMeta::addUserTags(QStringList{QStringLiteral("theirs")}, path()).isNull());
    const QStringList found = fileTags();
    const auto adoption = std::make_shared<FileTagAdoption>(delegate->libraryStore());
    FileTagsChange change;
    change.added = QStringList{QStringLiteral("theirs")};
    const auto connection = delegate->persistentStoreCoordinator()->newConnection();
    const auto rename = [&](const char *from, const char *to) {
        ASSERT_TRUE(connection->execute(QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE %1 RENAME TO %2")
                                            .arg(QLatin1String(from), QLatin1String(to))));
    };
    rename("ZQLibraryBaseItem", "away");
    adoption->add(bundleID(), change);
    const auto before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &text) { logged.append(text); });
    EXPECT_FALSE(adoption->apply());
    qInstallMessageHandler(before);
    EXPECT_FALSE(logged.filter(QStringLiteral("other programs tagged")).isEmpty());
    rename("away", "ZQLibraryBaseItem");
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    EXPECT_EQ(fileTags(), found);

    ZQLibraryEnvironment::current().takeInTagsOfFiles({storedItem()});
    takeIn();
    EXPECT_TRUE(storedTags().contains(QStringLiteral("theirs")));
    adoption->add(bundleID(), change);
    EXPECT_TRUE(adoption->apply());
}

TEST_F(TagCommandTest, AChangeThatWasWrittenAndNeverSavedIsTakenBack)
{
    const QStringList stored = storedTags();
    ZQManagedObjectContext &store = *delegate->managedObjectContext();
    const auto object = storedItem();
    ZQSidebarTag::getOrCreateTagWithName(QStringLiteral("unsaved"), store)->addItems({object});
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    EXPECT_TRUE(fileTags().contains(QStringLiteral("unsaved")));
    QFile left(journal());
    ASSERT_TRUE(left.open(QIODevice::ReadOnly));
    EXPECT_EQ(left.readAll(), bundleID().toUtf8() + '\n');
    store.rollback();
    object->copyOpenMetaToPath(world.filePath(QStringLiteral("in/exported.png"))); // no item's own file
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    EXPECT_EQ(left.size(), bundleID().size() + 1);
    reopen();
    EXPECT_EQ(fileTags(), stored);
}
