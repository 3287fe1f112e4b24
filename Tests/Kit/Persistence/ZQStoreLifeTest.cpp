#include "Kit/Persistence/ZQContextPrivate.h"
#include "Tests/Kit/Persistence/OlderStore.h"
#include "Tests/Kit/Persistence/TestModel.h"
#include "Tests/Support/DamagedStore.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

QStringList copiesBeside(const TestStore &store)
{
    return QDir(store.folder.path()).entryList({QStringLiteral("*.before-*")}, QDir::Files, QDir::Name);
}

} // namespace

TEST(ZQStoreLife, APipeInThePlaceOfAFileIsAnErrorAndNoWait)
{
    for (const char *ending : {"", "-wal", "-shm", "-journal"}) {
        TestStore store;
        ASSERT_TRUE(store.coordinator());
        store.close();
        const QString file = store.path + QLatin1StringView(ending);
        QFile::remove(file);
        ASSERT_EQ(::mkfifo(QFile::encodeName(file).constData(), 0600), 0) << ending;
        EXPECT_FALSE(store.coordinator()) << ending;
        EXPECT_FALSE(store.error.isNull()) << ending;
    }
}

TEST(ZQStoreLife, AnOlderStoreIsMigratedByInference)
{
    TestStore older(olderModel());
    writeOlderStore(older);
    const QUuid uuid = older.coordinator()->storeUUID();
    older.close();
    const auto metadata = ZQPersistentStoreCoordinator::metadataForStoreAtPath(older.path);
    ASSERT_TRUE(metadata);
    EXPECT_EQ(metadata->versionIdentifiers, QStringList{QStringLiteral("Version1")});

    older.model = ZQManagedObjectModel::modelFromJSON(newerModel());
    EXPECT_FALSE(ZQPersistentStoreCoordinator::isModelCompatible(*older.model, *metadata));
    const auto coordinator = older.coordinator();
    ASSERT_TRUE(coordinator) << qPrintable(older.error.localizedDescription());
    EXPECT_EQ(coordinator->storeUUID(), uuid);
    EXPECT_EQ(coordinator->pendingVersions(), QStringList{QStringLiteral("Version2")});
    const QStringList copies{QStringLiteral("storedata.before-Version1"), QStringLiteral("storedata.before-mine")};
    ASSERT_TRUE(QFile::copy(older.folder.filePath(copies.first()), older.folder.filePath(copies.last())));
    EXPECT_TRUE(coordinator->setPendingProgress(QStringLiteral("Version2"), 40));
    EXPECT_EQ(coordinator->pendingProgress(QStringLiteral("Version2")), 40);
    EXPECT_EQ(coordinator->lastKeyBeforeMigration(QStringLiteral("TestNode")), 2);
    EXPECT_EQ(coordinator->lastKeyBeforeMigration(QStringLiteral("TestNote")), 0);
    EXPECT_EQ(coordinator->lastKeyBeforeMigration(QStringLiteral("Unknown")), std::nullopt);
    EXPECT_EQ(copiesBeside(older), copies);
    EXPECT_TRUE(coordinator->clearPendingVersion(QStringLiteral("Version2")));
    EXPECT_EQ(coordinator->pendingVersions(), QStringList());
    EXPECT_EQ(coordinator->pendingProgress(QStringLiteral("Version2")), 0);
    EXPECT_EQ(copiesBeside(older), QStringList{copies.last()});
    ZQManagedObjectContext context(coordinator);
    const auto documents = context.fetch<TestDocument>({QStringLiteral("TestDocument")});
    ASSERT_EQ(documents->size(), 1);
    const auto document = documents->first();
    EXPECT_EQ(document->title(), QStringLiteral("d"));
    EXPECT_EQ(document->small(), 1) << "widened";
    EXPECT_TRUE(document->flag()) << "required now: the default where it was null";
    EXPECT_EQ(document->medium(), 7) << "new: the default";
    EXPECT_TRUE(document->author().isNull());
    EXPECT_EQ(document->parent()->title(), QStringLiteral("f"));
    ASSERT_EQ(document->tags().size(), 1);
    const auto tag = zqCast<TestTag>(document->tags().first());
    EXPECT_EQ(tag->name(), QStringLiteral("l"));
    EXPECT_EQ(tag->weight(), 4);
    // The migrated store is a store like any other: new entities, keys that go on.
    const auto note = context.insertNewObject<TestNote>();
    note->setNode(document.get());
    const auto newTag = context.insertNewObject<TestTag>();
    newTag->setName(QStringLiteral("n"));
    document->addTag(newTag.get());
    ASSERT_TRUE(context.save(&older.error)) << qPrintable(older.error.localizedDescription());
    EXPECT_GT(newTag->objectID().key, tag->objectID().key);
    EXPECT_TRUE(coordinator->checkIntegrity().isEmpty());
}

// A library of any size is opened in moments then, and a full disk is in nobody's way.
TEST(ZQStoreLife, WhereOnlyColumnsAreAddedNoRowIsWrittenAnew)
{
    constexpr int bytes = 8 << 20;
    TestStore older(QByteArray(testModelJSON)
                        .replace("Version2", "Version1")
                        .replace("{ \"name\": \"large\", \"type\": \"integer64\" },", "")
                        .replace("\"attributes\": [ { \"name\": \"author\", \"type\": \"string\" } ],", ""));
    {
        ZQManagedObjectContext context(older.coordinator());
        const auto document = context.insertNewObject<TestDocument>();
        document->setTitle(QStringLiteral("d"));
        document->setBlob(QByteArray(bytes, 'b'));
        const auto tag = context.insertNewObject<TestTag>();
        tag->setName(QStringLiteral("n"));
        document->addTag(tag.get());
        ASSERT_TRUE(context.save(&older.error)) << qPrintable(older.error.localizedDescription());
    }
    older.close();
    older.model = ZQManagedObjectModel::modelFromJSON(testModelJSON);
    const auto coordinator = older.coordinator();
    ASSERT_TRUE(coordinator) << qPrintable(older.error.localizedDescription());
    EXPECT_LT(QFileInfo(older.path + QStringLiteral("-wal")).size(), bytes / 4);
    EXPECT_EQ(coordinator->pendingVersions(), QStringList{QStringLiteral("Version2")});
    EXPECT_EQ(copiesBeside(older), QStringList{QStringLiteral("storedata.before-Version1")});
    ZQManagedObjectContext context(coordinator);
    const auto document = context.fetch<TestDocument>({QStringLiteral("TestDocument")})->first();
    EXPECT_EQ(document->title(), QStringLiteral("d"));
    EXPECT_EQ(document->blob().size(), bytes);
    EXPECT_EQ(document->tags().size(), 1);
    EXPECT_TRUE(document->author().isNull());
    EXPECT_TRUE(document->valueForKey(QStringLiteral("large")).isNull());
    document->setAuthor(QStringLiteral("a"));
    document->setValueForKey(qint64(1) << 40, QStringLiteral("large"));
    ASSERT_TRUE(context.save(&older.error)) << qPrintable(older.error.localizedDescription());
    EXPECT_TRUE(coordinator->checkIntegrity().isEmpty());
}

// Filled with the default, or the empty value, they are written.
TEST(ZQStoreLife, AColumnThatMayNotBeEmptyIsFilled)
{
    TestStore older(QByteArray(testModelJSON)
                        .replace("Version2", "Version1")
                        .replace("{ \"name\": \"medium\", \"type\": \"integer32\", \"default\": 7 },", ""));
    {
        ZQManagedObjectContext context(older.coordinator());
        context.insertNewObject<TestFolder>();
        ASSERT_TRUE(context.save());
    }
    older.close();
    older.model = ZQManagedObjectModel::modelFromJSON(testModelJSON);
    ASSERT_TRUE(older.coordinator()) << qPrintable(older.error.localizedDescription());
    ZQManagedObjectContext context(older.coordinator());
    EXPECT_EQ(context.fetch<TestFolder>({QStringLiteral("TestFolder")})->first()->medium(), 7);
}

TEST(ZQStoreLife, WhatAKilledMigrationWroteOfItsCopyIsWrittenAnew)
{
    TestStore older(olderModel());
    writeStoreToMigrate(older);
    QFile begun(older.path + QStringLiteral(".before-Version1"));
    ASSERT_TRUE(begun.open(QIODevice::WriteOnly) && begun.write(QByteArray(10000, 'x')) > 0);
    begun.close();
    ASSERT_TRUE(older.coordinator()) << qPrintable(older.error.localizedDescription());
    EXPECT_EQ(storeValue(begun.fileName(), QStringLiteral("SELECT heft FROM Label")).toInt(), 4);
}

TEST(ZQStoreLife, WhatAMigrationLeftToDoStaysWhileItsNotesCannotBeRead)
{
    for (const char *key : {"pendingVersions", "pendingProgress", "lastKeysBeforeMigration", "copiesBeforeMigration"}) {
        SCOPED_TRACE(key);
        const bool isVersions = QLatin1String(key) == QStringLiteral("pendingVersions");
        const bool isProgress = QLatin1String(key) == QStringLiteral("pendingProgress");
        const bool isLastKeys = QLatin1String(key) == QStringLiteral("lastKeysBeforeMigration");
        const QString version = QStringLiteral("Version2");
        TestStore older(olderModel());
        writeStoreToMigrate(older);
        ASSERT_TRUE(older.coordinator()->setPendingProgress(version, 1));
        older.close();
        makeEntriesUnreadable({QLatin1String(key)}, older.path);
        ASSERT_TRUE(older.coordinator()) << qPrintable(older.error.localizedDescription());
        EXPECT_EQ(older.coordinator()->pendingVersions().has_value(), !isVersions);
        EXPECT_EQ(older.coordinator()->pendingProgress(version).has_value(), !isProgress);
        EXPECT_EQ(older.coordinator()->lastKeyBeforeMigration(QStringLiteral("TestNode")).has_value(), !isLastKeys);
        EXPECT_EQ(older.coordinator()->setPendingProgress(QStringLiteral("Version3"), 1), !isProgress);
        EXPECT_EQ(older.coordinator()->clearPendingVersion(QStringLiteral("Version3")), !isVersions && !isProgress);
        older.close();
        EXPECT_EQ(copiesBeside(older).size(), 1);
        makeEntriesReadable(older.path);
        EXPECT_EQ(older.coordinator()->pendingVersions(), QStringList{version});
        EXPECT_EQ(older.coordinator()->pendingProgress(version), 1);
        EXPECT_EQ(copiesBeside(older).size(), 1);
    }
}

TEST(ZQStoreLife, ACopyThatAKilledProcessNoLongerNeededGoesWithTheNextOpening)
{
    TestStore older(olderModel());
    writeMigratedStore(older);
    {
        const auto connection = ZQSQLiteConnection::open(older.path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
        ASSERT_TRUE(
            connection->execute(QStringLiteral("UPDATE zq_metadata SET value = '' WHERE key = 'pendingVersions'")));
    }
    makeEntriesUnreadable({QStringLiteral("pendingVersions")}, older.path);
    ASSERT_TRUE(older.coordinator());
    older.close();
    EXPECT_EQ(copiesBeside(older).size(), 1) << "nobody knows whether it is needed";
    makeEntriesReadable(older.path);
    ASSERT_TRUE(older.coordinator());
    EXPECT_TRUE(copiesBeside(older).isEmpty());
}

TEST(ZQStoreLife, ARecoveryThatCannotTellWhatIsLeftToDoKeepsTheCopy)
{
    TestStore older(olderModel());
    writeMigratedStore(older);
    makeEntriesUnreadable({QStringLiteral("pendingVersions")}, older.path);
    ASSERT_TRUE(ZQPersistentStoreCoordinator::recoverStoreAtPath(older.model, older.path, &older.error));
    ASSERT_TRUE(older.coordinator()) << qPrintable(older.error.localizedDescription());
    EXPECT_EQ(copiesBeside(older), QStringList{QStringLiteral("storedata.before-Version1")});
}

TEST(ZQStoreLife, AStoreThatDoesNotSayWhereItComesFromIsNotOpened)
{
    for (const char *key : {"created", "recovered", "inUseBy", "suspicion"}) {
        SCOPED_TRACE(key);
        TestStore store;
        fillTestTags(store, 1);
        store.close();
        ASSERT_TRUE(ZQPersistentStoreCoordinator::recoverStoreAtPath(store.model, store.path));
        const QDateTime created = store.coordinator()->creationDate();
        store.close();
        makeEntriesUnreadable({QLatin1String(key)}, store.path);
        EXPECT_FALSE(store.coordinator());
        EXPECT_FALSE(store.error.isNull());
        makeEntriesReadable(store.path);
        ASSERT_TRUE(store.coordinator());
        EXPECT_EQ(store.coordinator()->creationDate(), created);
        EXPECT_TRUE(store.coordinator()->wasRecovered());
    }
}

TEST(ZQStoreLife, AStoreThatMayNotOrCannotBeMigratedIsUntouched)
{
    struct
    {
        QByteArray model;
        ZQStoreOptions options;
        ZQStoreError code;
    } const cases[] = {
        {newerModel(), {false, true}, ZQStoreError::NeedsMigration},
        {newerModel(), {true, false}, ZQStoreError::NeedsMigration},
        {newerModel().replace("{ \"name\": \"small\", \"type\": \"integer16\"",
                              "{ \"name\": \"small\", \"type\": \"string\""),
         {},
         ZQStoreError::MigrationFailed},
        {newerModel().replace("Version2", "Version0"), {}, ZQStoreError::NewerVersion},
    };
    for (const auto &testCase : cases) {
        TestStore older(olderModel());
        writeOlderStore(older);
        older.close();
        const QByteArray before = contentOfFile(older.path);
        ASSERT_FALSE(before.isEmpty());
        ZQError error;
        const auto model = ZQManagedObjectModel::modelFromJSON(testCase.model, &error);
        ASSERT_TRUE(model) << qPrintable(error.localizedDescription());
        EXPECT_FALSE(ZQPersistentStoreCoordinator::open(model, older.path, testCase.options, &error));
        EXPECT_EQ(error.code, int(testCase.code)) << qPrintable(error.localizedDescription());
        EXPECT_EQ(contentOfFile(older.path), before);
        EXPECT_EQ(QDir(older.folder.path()).entryList(QDir::Files), QStringList{QStringLiteral("storedata")});
        ASSERT_TRUE(older.coordinator()) << "the old model still opens it";
    }
}

TEST(ZQStoreLife, AMigrationThatWouldLoseSomethingSaysWhat)
{
    struct
    {
        const char *before;
        const char *after;
        const char *reason;
    } const cases[] = {
        {"{ \"name\": \"small\", \"type\": \"integer16\"", "{ \"name\": \"small\", \"type\": \"string\"",
         "the type of TestNode.small changed in a way that loses values"},
        {"{ \"name\": \"exact\", \"type\": \"double\"",
         "{ \"name\": \"exact\", \"renamingIdentifier\": \"caption\", \"type\": \"double\"",
         "the type of TestNode.exact changed in a way that loses values"},
        {"\"name\": \"tags\", \"renamingIdentifier\": \"labels\", \"destination\": \"TestTag\", \"inverse\": "
         "\"documents\", "
         "\"toMany\": true",
         "\"name\": \"tags\", \"renamingIdentifier\": \"labels\", \"destination\": \"TestTag\", \"inverse\": "
         "\"documents\"",
         "TestDocument.tags holds one object where it held many"},
        {"\"name\": \"TestNote\",", "\"name\": \"TestNote\", \"renamingIdentifier\": \"TestFolder\",", ""},
        {"{ \"name\": \"TestFolder\", \"parent\": \"TestNode\",",
         "{ \"name\": \"TestFolder\", \"parent\": \"TestNode\", \"renamingIdentifier\": \"Label\",",
         "TestFolder moved to another family of entities"},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.after);
        TestStore older(olderModel());
        writeStoreToMigrate(older);
        const QByteArray json = newerModel().replace(each.before, each.after);
        ASSERT_NE(json, newerModel());
        ZQError error;
        older.model = ZQManagedObjectModel::modelFromJSON(json, &error);
        ASSERT_TRUE(older.model) << qPrintable(error.localizedDescription());
        const bool isRefused = *each.reason;
        EXPECT_EQ(older.coordinator() == nullptr, isRefused) << qPrintable(older.error.localizedDescription());
        if (isRefused) {
            EXPECT_EQ(older.error.localizedDescription().toStdString(),
                      std::string("The library could not be brought to this version; it is unchanged. ") + each.reason);
            EXPECT_TRUE(copiesBeside(older).isEmpty());
        }
    }
    TestStore older(olderModel());
    writeStoreToMigrate(older);
    const QString copy = older.path + QStringLiteral(".before-Version1");
    ASSERT_TRUE(QDir().mkpath(copy));
    EXPECT_FALSE(older.coordinator()) << "there is no place for the copy";
    EXPECT_EQ(older.error.code, int(ZQStoreError::MigrationFailed));
    EXPECT_TRUE(older.error.localizedDescription().contains(QStringLiteral("cannot be opened")));
    ASSERT_TRUE(QDir().rmdir(copy));
    {
        const auto connection = ZQSQLiteConnection::open(older.path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
        ASSERT_TRUE(connection->execute(QStringLiteral("UPDATE zq_metadata SET value = '{}' WHERE key = 'model'")));
    }
    EXPECT_FALSE(older.coordinator()) << "nobody knows what its columns mean";
    EXPECT_EQ(older.error.code, int(ZQStoreError::MigrationFailed));
    EXPECT_TRUE(older.error.localizedDescription().endsWith(QStringLiteral("the model has no entities")));
}

TEST(ZQStoreLife, AMigrationFillsWhatIsRequiredAndWidensWhatItFinds)
{
    // One note of a node becomes many of many; numbers become reals; what is new and required is empty.
    const QByteArray before = R"JSON({ "versionIdentifiers": ["Version1"], "entities": [
      { "name": "TestTag", "attributes": [ { "name": "weight", "type": "integer16" }, { "name": "name", "type": "string" } ],
        "relationships": [ { "name": "documents", "destination": "TestNote", "inverse": "tag", "toMany": true },
                           { "name": "first", "destination": "TestNote", "inverse": "of" } ] },
      { "name": "TestNote", "relationships": [
        { "name": "tag", "destination": "TestTag", "inverse": "documents" },
        { "name": "of", "destination": "TestTag", "inverse": "first", "toMany": true } ] } ] })JSON";
    const QByteArray after = R"JSON({ "versionIdentifiers": ["Version4"], "entities": [
      { "name": "TestTag", "attributes": [
          { "name": "weight", "type": "double", "optional": false }, { "name": "name", "type": "string", "optional": false },
          { "name": "ratio", "type": "float", "optional": false }, { "name": "blob", "type": "binary", "optional": false },
          { "name": "count", "type": "integer32", "optional": false }, { "name": "set", "type": "integer32", "default": 5 } ],
        "relationships": [ { "name": "documents", "destination": "TestNote", "inverse": "tag", "toMany": true },
                           { "name": "first", "destination": "TestNote", "inverse": "of", "toMany": true } ] },
      { "name": "TestNote", "relationships": [
        { "name": "tag", "destination": "TestTag", "inverse": "documents", "toMany": true },
        { "name": "of", "destination": "TestTag", "inverse": "first", "toMany": true } ] } ] })JSON";
    TestStore store(before);
    ASSERT_TRUE(store.coordinator()) << qPrintable(store.error.localizedDescription());
    store.close();
    {
        const auto connection = ZQSQLiteConnection::open(store.path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
        const QString fill =
            QStringLiteral("PRAGMA foreign_keys=OFF; INSERT INTO TestNote (id, entity, tag) VALUES (1, 1, 11), (2, 1, "
                           "11), (3, 1, NULL); "
                           "INSERT INTO TestTag (id, entity, weight, name, first) VALUES (11, 2, 7, 'a', 3), (12, 2, "
                           "NULL, NULL, NULL)");
        ASSERT_TRUE(connection->execute(fill)) << qPrintable(connection->error().localizedDescription());
    }
    store.model = ZQManagedObjectModel::modelFromJSON(after);
    const auto coordinator = store.coordinator();
    ASSERT_TRUE(coordinator) << qPrintable(store.error.localizedDescription());
    EXPECT_EQ(coordinator->pendingVersions(),
              (QStringList{QStringLiteral("Version2"), QStringLiteral("Version3"), QStringLiteral("Version4")}));
    EXPECT_EQ(coordinator->lastKeyBeforeMigration(QStringLiteral("TestTag")), 12);
    EXPECT_EQ(coordinator->lastKeyBeforeMigration(QStringLiteral("TestNote")), 3);
    const auto connection = coordinator->newConnection();
    const auto all = [&](const QString &columns, const QString &table) {
        return connection
            ->value(QStringLiteral("SELECT group_concat(%1, ' ') FROM (SELECT * FROM \"%2\" ORDER BY 1, 2)")
                        .arg(columns, table))
            .toString()
            .toStdString();
    };
    EXPECT_EQ(
        all(QStringLiteral("id || '/' || typeof(weight) || weight || '/' || name || '/' || typeof(ratio) || ratio "
                           "|| '/' || typeof(blob) || length(blob) || '/' || count || '/' || ifnull(\"set\", 'null')"),
            QStringLiteral("TestTag")),
        "11/real7.0/a/real0.0/blob0/0/5 12/real0.0//real0.0/blob0/0/5");
    const auto *tags = coordinator->managedObjectModel()->entity(QStringLiteral("TestNote"));
    const auto pairs = [&](const char *name) {
        const ZQRelationshipDescription *relationship = tags->relationship(QLatin1String(name));
        return all(
            QStringLiteral("\"%1\" || '-' || \"%2\"").arg(relationship->joinOwnColumn, relationship->joinOtherColumn),
            relationship->joinTable);
    };
    EXPECT_EQ(pairs("tag"), "1-11 2-11");
    EXPECT_EQ(pairs("of"), "3-11");
    EXPECT_TRUE(coordinator->checkIntegrity().isEmpty());
}

TEST(ZQStoreLife, WhatACheckOrARecoveryHasToLookAtAgainIsNoted)
{
    TestStore store;
    fillTestTags(store, 2);
    EXPECT_FALSE(ZQPersistentStoreCoordinator::open(nullptr, store.path, {}, &store.error));
    EXPECT_EQ(store.error.localizedDescription().toStdString(),
              "The library has no data model. Install the application again.");
    store.coordinator()->requestRecovery();
    const auto suspicion = [&] {
        return storeValue(store.path, QStringLiteral("SELECT value FROM zq_metadata WHERE key = 'suspicion'"))
            .toString();
    };
    EXPECT_EQ(suspicion(), QStringLiteral("recover"));
    store.close();
    EXPECT_EQ(suspicion(), QStringLiteral("recover")) << "a proper end does not settle it";
    ASSERT_TRUE(store.coordinator()) << "nothing is wrong with it";
    EXPECT_EQ(suspicion(), QStringLiteral(""));
    {
        const auto connection = store.coordinator()->newConnection();
        ASSERT_TRUE(connection->execute(
            QStringLiteral("PRAGMA foreign_keys=OFF; UPDATE TestNode SET parent = 99 WHERE id = 1")));
    }
    const QStringList dangling{QStringLiteral("TestNode row 1 refers to a missing row of TestNode")};
    EXPECT_EQ(store.coordinator()->checkIntegrity(), dangling);
    store.coordinator()->requestRecovery();
    store.close();
    EXPECT_EQ(ZQPersistentStoreCoordinator::checkStoreAtPath(store.path).problems, dangling);
    EXPECT_FALSE(store.coordinator());
    EXPECT_EQ(store.error.code, int(ZQStoreError::Damaged));
    EXPECT_EQ(store.error.userInfo.value(QStringLiteral("recoveryWanted")), true);
    const auto missing = ZQPersistentStoreCoordinator::checkStoreAtPath(store.folder.filePath(QStringLiteral("none")));
    EXPECT_TRUE(missing.isComplete && !missing.isSound());
    ZQError error;
    for (const auto &[model, path] : {std::pair(store.model, store.folder.filePath(QStringLiteral("none"))),
                                      std::pair(std::shared_ptr<const ZQManagedObjectModel>(), store.path)}) {
        EXPECT_FALSE(ZQPersistentStoreCoordinator::recoverStoreAtPath(model, path, &error));
        EXPECT_EQ(error.localizedDescription().toStdString(),
                  "There is no library database at this place. Choose another library.");
    }
}

TEST(ZQStoreLife, WhatIsNoStoreIsRefusedWithAReason)
{
    const auto refusal = [](const QByteArray &content, bool isDirectory = false) {
        TestStore store;
        if (isDirectory) {
            QDir().mkpath(store.path);
        } else {
            QFile file(store.path);
            EXPECT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(content);
        }
        EXPECT_FALSE(store.coordinator());
        ZQError said;
        EXPECT_FALSE(ZQPersistentStoreCoordinator::metadataForStoreAtPath(store.path, &said));
        EXPECT_EQ(said.code, store.error.code) << "whoever only looks is told the same";
        EXPECT_FALSE(store.error.localizedDescription().isEmpty());
        return store.error.code;
    };
    EXPECT_EQ(refusal(QByteArray(10000, 'x')), int(ZQStoreError::Damaged));
    EXPECT_EQ(refusal({}, true), int(ZQStoreError::CannotOpen));
    TestStore store;
    ZQError error;
    EXPECT_FALSE(
        ZQPersistentStoreCoordinator::open(store.model, store.folder.filePath(QStringLiteral("no/where")), {}, &error));
    EXPECT_EQ(error.code, int(ZQStoreError::CannotOpen));
    {
        const auto foreign = ZQSQLiteConnection::open(store.path, ZQSQLiteConnection::Mode::Create, nullptr);
        ASSERT_TRUE(foreign->execute(QStringLiteral("CREATE TABLE something(x)")));
    }
    EXPECT_FALSE(store.coordinator());
    EXPECT_EQ(store.error.code, int(ZQStoreError::CannotOpen));
}

TEST(ZQStoreLife, AProcessKilledWhileSavingLeavesWholeSaves)
{
    constexpr int rounds = 5;
    for (int round = 0; round < rounds; ++round) {
        TestStore store;
        int pipes[2];
        ASSERT_EQ(pipe(pipes), 0);
        const pid_t child = fork();
        if (child == 0) {
            ZQManagedObjectContext context(store.coordinator());
            for (;;) {
                const auto folder = context.insertNewObject<TestFolder>();
                for (int i = 0; i < 3; ++i) {
                    context.insertNewObject<TestDocument>()->setParent(folder.get());
                }
                if (!context.save() || write(pipes[1], "s", 1) != 1) {
                    _exit(1);
                }
            }
        }
        close(pipes[1]); // or a child that ended by itself would be waited for
        // Killed somewhere in the save after the one that was confirmed last.
        int confirmed = 0;
        char byte = 0;
        while (confirmed < 2 + round && read(pipes[0], &byte, 1) == 1) {
            ++confirmed;
        }
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "it was to be interrupted";
        EXPECT_EQ(confirmed, 2 + round);
        close(pipes[0]);
        ASSERT_TRUE(store.coordinator()) << qPrintable(store.error.localizedDescription());
        EXPECT_TRUE(store.coordinator()->wasUncleanlyClosed());
        EXPECT_TRUE(store.coordinator()->checkIntegrity().isEmpty());
        ZQManagedObjectContext context(store.coordinator());
        const auto folders = context.fetch<TestFolder>({QStringLiteral("TestFolder")});
        EXPECT_GE(folders->size(), confirmed);
        for (const auto &folder : *folders) {
            EXPECT_EQ(folder->children().size(), 3);
        }
    }
}

TEST(ZQStoreLife, AClosedStoreIsOneCleanFile)
{
    TestStore store;
    fillTestTags(store, 3);
    EXPECT_FALSE(store.coordinator()->wasUncleanlyClosed());
    store.close();
    EXPECT_EQ(QDir(store.folder.path()).entryList(QDir::Files), QStringList{QStringLiteral("storedata")});
    EXPECT_FALSE(store.coordinator()->wasUncleanlyClosed());
}

TEST(ZQStoreLife, AStoreSaysSinceWhenItIsAtItsPlaceAndWhetherItWasRecovered)
{
    TestStore store;
    // File systems date by the tick of the kernel's clock.
    constexpr qint64 tick = -20;
    const QDateTime before = QDateTime::currentDateTimeUtc().addMSecs(tick);
    fillTestTags(store, 3);
    const QDateTime created = store.coordinator()->creationDate();
    EXPECT_GE(created, before);
    EXPECT_LE(created, QDateTime::currentDateTimeUtc());
    EXPECT_FALSE(store.coordinator()->wasRecovered());
    store.close();
    EXPECT_EQ(store.coordinator()->creationDate(), created);
    store.close();

    // As older versions left it: without the entry the file's own date counts, also ever after.
    {
        const auto connection = ZQSQLiteConnection::open(store.path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
        ASSERT_TRUE(connection->execute(QStringLiteral("DELETE FROM zq_metadata WHERE key = 'created'")));
    }
    EXPECT_GE(store.coordinator()->creationDate(), before);
    EXPECT_LE(store.coordinator()->creationDate(), created.addSecs(5));
    store.close();

    // Put back from a copy: what came between the copy and now is older than the file that is there now.
    {
        const auto connection = ZQSQLiteConnection::open(store.path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
        ASSERT_TRUE(connection->execute(QStringLiteral("UPDATE zq_metadata SET value = 1000 WHERE key = 'created'")));
    }
    EXPECT_GE(store.coordinator()->creationDate(), before);
    store.close();

    const QDateTime beforeRecovery = QDateTime::currentDateTimeUtc().addMSecs(tick);
    ASSERT_TRUE(ZQPersistentStoreCoordinator::recoverStoreAtPath(store.model, store.path));
    EXPECT_GE(store.coordinator()->creationDate(), beforeRecovery);
    EXPECT_TRUE(store.coordinator()->wasRecovered());
    store.close();
    EXPECT_TRUE(store.coordinator()->wasRecovered()) << "until it was seen to";
    EXPECT_TRUE(store.coordinator()->clearRecovered());
    EXPECT_FALSE(store.coordinator()->wasRecovered());
    store.close();
    EXPECT_FALSE(store.coordinator()->wasRecovered());
}

TEST(ZQStoreLife, NoConnectionKeepsAReadOpen)
{
    TestStore store;
    fillTestTags(store, 3);
    ZQManagedObjectContext context(store.coordinator());
    const auto tags = context.fetch<TestTag>({QStringLiteral("TestTag")});
    EXPECT_EQ(tags->first()->documents().size(), 1);
    EXPECT_EQ(context.countForFetchRequest({QStringLiteral("TestNode")}), 3);
    // A checkpoint that empties the log needs every reader out.
    const auto other = store.coordinator()->newConnection();
    EXPECT_EQ(other->value(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)")), QVariant(0));
}
