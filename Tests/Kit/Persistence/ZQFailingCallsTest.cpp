// Every call to the database or the file system fails once, in turn, in each of the things that are done to a store:
// either it is reported and nothing happened, or everything happened all the same.

#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQStoreReplacement.h"
#include "Tests/Kit/Persistence/FailingCalls.h"
#include "Tests/Kit/Persistence/OlderStore.h"
#include "Tests/Kit/Persistence/TestModel.h"
#include "Tests/Support/DamagedStore.h"

#include <QDir>

namespace {

using Kind = FailingCalls::Kind;
const QString wal = QStringLiteral("-wal");

// The rows of all tables but the bookkeeping's, or those of the metadata that `keys` names.
QStringList rowsOf(const QString &path, const QString &keys = {})
{
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    QStringList selections;
    if (keys.isEmpty()) {
        ZQSQLiteStatement tables = connection->prepare(
            QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%' "
                           "AND name <> 'zq_metadata' ORDER BY name"));
        while (tables.next()) {
            selections.append(QStringLiteral("SELECT * FROM \"%1\" ORDER BY 1, 2").arg(tables.text(0)));
        }
    } else {
        selections.append(QStringLiteral("SELECT * FROM zq_metadata WHERE key IN (%1) ORDER BY 1").arg(keys));
    }
    QStringList rows;
    for (const QString &selection : std::as_const(selections)) {
        ZQSQLiteStatement row = connection->prepare(selection);
        while (row.next()) {
            QStringList values{selection.section(u' ', 3, 3)};
            for (int column = 0; column < row.columnCount(); ++column) {
                values.append(row.isNull(column) ? QStringLiteral("null") : row.text(column));
            }
            rows.append(values.join(u'|'));
        }
    }
    return rows;
}

// Put in place of a new one in each round, which is quicker than making it again.
enum class Form { Current, Older, Migrated };
void writeStore(TestStore &store, Form form)
{
    static QHash<Form, QByteArray> made;
    if (!made.contains(form)) {
        TestStore first(form == Form::Current ? testModelJSON : olderModel());
        form == Form::Current    ? fillTestTags(first, 5)
        : form == Form::Migrated ? writeMigratedStore(first)
                                 : writeOlderStore(first);
        first.close();
        made.insert(form, contentOfFile(first.path));
    }
    QFile file(store.path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(made.value(form)) > 0);
    store.model = ZQManagedObjectModel::modelFromJSON(form == Form::Current ? testModelJSON : newerModel());
}

QString told(const QList<ZQObjectID> &ids)
{
    QString text;
    for (const ZQObjectID &id : ids) {
        text += QStringLiteral("%1 %2, ").arg(id.entity ? id.entity->name : QString()).arg(id.key);
    }
    return text;
}

struct Question
{
    const char *name;
    std::function<std::optional<QString>(ZQManagedObjectContext &, ZQError *)> answer;
};

std::vector<Question> questions()
{
    const auto tags = [] {
        return ZQFetchRequest{QStringLiteral("TestTag"),
                              ZQPredicate::predicateWithFormat(QStringLiteral("ANY documents.title != '1'")),
                              {{QStringLiteral("weight"), false}}};
    };
    return {
        {"objects",
         [=](auto &context, ZQError *error) -> std::optional<QString> {
             const auto found = context.template fetch<TestTag>(tags(), error);
             QString text;
             for (const auto &tag : found.value_or(QList<ZQRef<TestTag>>())) {
                 text += tag->name() + QStringLiteral("; ");
             }
             return found ? std::optional(text) : std::nullopt;
         }},
        {"identifiers",
         [=](auto &context, ZQError *error) -> std::optional<QString> {
             const auto found = context.fetchObjectIDs(tags(), error);
             return found ? std::optional(told(*found)) : std::nullopt;
         }},
        {"with related",
         [](auto &context, ZQError *error) -> std::optional<QString> {
             const auto found =
                 context.fetchObjectIDsWithRelated({QStringLiteral("TestDocument")}, QStringLiteral("parent"), error);
             return found ? std::optional(told(found->ids) + told(found->related)) : std::nullopt;
         }},
        {"count",
         [=](auto &context, ZQError *error) -> std::optional<QString> {
             const auto count = context.countForFetchRequest(tags(), error);
             return count ? std::optional(QString::number(*count)) : std::nullopt;
         }},
        {"dictionaries",
         [](auto &context, ZQError *error) -> std::optional<QString> {
             const auto found =
                 context.fetchDictionaries({QStringLiteral("TestTag")}, {QStringLiteral("weight")}, error);
             QString text;
             for (const QVariantMap &map : found.value_or(QList<QVariantMap>())) {
                 text += map.value(QStringLiteral("weight")).toString() + u' ';
             }
             return found ? std::optional(text) : std::nullopt;
         }},
        {"one object",
         [](auto &context, ZQError *error) -> std::optional<QString> {
             const auto *entity = context.model().entity(QStringLiteral("TestDocument"));
             const auto found = zqCast<TestDocument>(context.existingObjectWithID({entity, 2}, error));
             return found ? std::optional(found->title()) : std::nullopt;
         }},
        {"identifiers of addresses",
         [](auto &context, ZQError *error) -> std::optional<QString> {
             const ZQObjectID id{context.model().entity(QStringLiteral("TestDocument")), 3};
             const QUuid uuid = context.persistentStoreCoordinator()->storeUUID();
             const auto found = context.objectIDsWithURIRepresentations({id.URIRepresentation(uuid)}, error);
             return found ? std::optional(told(*found)) : std::nullopt;
         }},
    };
}

} // namespace

TEST(ZQFailingCalls, AFetchIsAnErrorAndNoShorterAnswer)
{
    TestStore store;
    fillTestTags(store, 4);
    const auto coordinator = store.coordinator();
    for (const bool isChanged : {false, true}) {
        for (const Question &question : questions()) {
            std::optional<QString> whole;
            forEachFailingCall([&](int number) {
                SCOPED_TRACE(testing::Message() << question.name << ", changed " << isChanged << ", call " << number);
                ZQManagedObjectContext context(coordinator);
                if (isChanged) {
                    const auto all = context.fetch<TestDocument>({QStringLiteral("TestDocument")});
                    all->at(0)->setTitle(QStringLiteral("1"));
                    all->at(1)->setTitle(QStringLiteral("other"));
                    const auto tag = context.insertNewObject<TestTag>();
                    tag->setName(QStringLiteral("new"));
                    tag->setWeight(2);
                    all->at(3)->addTag(tag.get());
                }
                ZQError error;
                const FailingCalls failing(Kind::Database, number);
                const auto answer = question.answer(context, &error);
                if (number == 0) {
                    whole = answer;
                    EXPECT_TRUE(answer && !answer->isEmpty());
                } else if (answer) {
                    EXPECT_EQ(answer, whole);
                } else {
                    EXPECT_EQ(error.code, int(ZQStoreError::Other));
                    EXPECT_EQ(error.userInfo.value(QStringLiteral("sqliteCode")).toInt(), 10);
                }
                return failing.count();
            });
        }
    }
}

TEST(ZQFailingCalls, AContextWithoutAConnectionSaysSo)
{
    TestStore store;
    fillTestTags(store, 1);
    for (const Question &question : questions()) {
        SCOPED_TRACE(question.name);
        FailingCalls failing(Kind::Database, 1);
        ZQManagedObjectContext context(store.coordinator());
        ZQError error;
        EXPECT_FALSE(question.answer(context, &error));
        EXPECT_EQ(error.code, int(ZQStoreError::Other)) << qPrintable(error.localizedDescription());
        context.insertNewObject<TestFolder>();
        error = {};
        EXPECT_FALSE(context.save(&error));
        EXPECT_EQ(error.code, int(ZQStoreError::Other));
        EXPECT_EQ(context.insertedObjects().size(), 1);
    }
}

TEST(ZQFailingCalls, ASaveWritesAllOrNothingAndCanBeRepeated)
{
    for (const auto policy : {ZQMergePolicy::Error, ZQMergePolicy::PropertyObjectTrump}) {
        QStringList saved;
        forEachFailingCall([&](int number) {
            SCOPED_TRACE(testing::Message() << "policy " << int(policy) << ", call " << number);
            TestStore store;
            writeStore(store, Form::Current);
            ZQManagedObjectContext context(store.coordinator(), policy);
            const auto documents = *context.fetch<TestDocument>({QStringLiteral("TestDocument")});
            const auto tags = *context.fetch<TestTag>({QStringLiteral("TestTag")});
            const auto folder = context.insertNewObject<TestFolder>();
            const auto tag = context.insertNewObject<TestTag>();
            tag->setName(QStringLiteral("new"));
            documents.at(0)->setParent(folder.get());
            documents.at(0)->addTag(tag.get());
            documents.at(1)->removeTag(tags.at(1).get());
            context.deleteObject(documents.at(2).get());
            tags.at(3)->setWeight(30);
            documents.at(4)->addTag(tags.at(0).get());
            if (policy == ZQMergePolicy::PropertyObjectTrump) { // each of its corrections
                store.elsewhere([](auto &other) {
                    const auto theirs = *other.template fetch<TestTag>({QStringLiteral("TestTag")});
                    theirs.at(3)->setName(QStringLiteral("theirs"));
                    other.deleteObject(theirs.at(0).get());
                });
            }
            const QStringList before = rowsOf(store.path);
            ZQError error;
            int count = 0;
            bool isSaved = false;
            {
                const FailingCalls failing(Kind::Database, number);
                isSaved = context.save(&error);
                count = failing.count();
            }
            if (number == 0) {
                EXPECT_TRUE(isSaved) << qPrintable(error.localizedDescription());
                saved = rowsOf(store.path);
                EXPECT_NE(saved, before);
            } else if (!isSaved) {
                EXPECT_EQ(error.code, int(ZQStoreError::Other)) << qPrintable(error.localizedDescription());
                EXPECT_EQ(rowsOf(store.path), before);
                EXPECT_TRUE(tag->objectID().isTemporary() && documents.at(2)->isDeleted() && context.hasChanges());
                EXPECT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
            }
            EXPECT_EQ(rowsOf(store.path), saved);
            return count;
        });
    }
}

TEST(ZQFailingCalls, WhatWasNotReadIsReadWhenItIsNextAskedFor)
{
    TestStore store;
    fillTestTags(store, 2);
    ZQManagedObjectContext context(store.coordinator());
    for (int number = 1; number <= 2; ++number) {
        const auto tag = context.fetch<TestTag>({QStringLiteral("TestTag")})->first();
        {
            const FailingCalls failing(Kind::Database, number);
            EXPECT_TRUE(tag->documents().isEmpty());
            EXPECT_TRUE(context.prefetchRelatedObjects(QList{tag}, QStringLiteral("documents")).size() <= 1);
        }
        EXPECT_EQ(tag->documents().size(), 1);
        context.reset();
    }
}

TEST(ZQFailingCalls, AStoreIsOpenedWholeOrLeftAsItWas)
{
    enum Case { New, Older, WithoutIndexes, Unclean };
    for (const Case which : {New, Older, WithoutIndexes, Unclean}) {
        QStringList opened;
        forEachFailingCall([&](int number) {
            SCOPED_TRACE(testing::Message() << "case " << which << ", call " << number);
            TestStore store;
            if (which != New) {
                writeStore(store, which == Older ? Form::Older : Form::Current);
            }
            if (which == WithoutIndexes) {
                const auto connection =
                    ZQSQLiteConnection::open(store.path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
                EXPECT_TRUE(connection->execute(QStringLiteral("DROP INDEX zq_index_TestTag_name")));
            } else if (which == Unclean) {
                markStoreUnclean(store.path);
            }
            const QStringList before = which == New ? QStringList() : rowsOf(store.path);
            int count = 0;
            bool isOpen = false;
            store.error = {};
            {
                const FailingCalls failing(Kind::Database, number);
                isOpen = store.coordinator() != nullptr;
                count = failing.count();
            }
            EXPECT_EQ(isOpen, store.error.isNull()) << qPrintable(store.error.localizedDescription());
            EXPECT_TRUE(number > 0 || isOpen) << qPrintable(store.error.localizedDescription());
            if (!isOpen && which != New) {
                const QStringList now = rowsOf(store.path);
                EXPECT_TRUE(now == before || now == opened.mid(0, now.size())) << qPrintable(now.join(u'\n'));
            }
            store.close();
            EXPECT_TRUE(store.coordinator()) << qPrintable(store.error.localizedDescription());
            EXPECT_TRUE(store.coordinator()->checkIntegrity().isEmpty());
            store.close();
            const QStringList now =
                rowsOf(store.path) + rowsOf(store.path, QStringLiteral("'pendingVersions', 'lastKeysBeforeMigration'"));
            opened = number == 0 ? now : opened;
            EXPECT_EQ(now, opened);
            EXPECT_EQ(storeValue(store.path, QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name = "
                                                            "'zq_index_TestTag_name'")),
                      QVariant(1));
            EXPECT_EQ(QDir(store.folder.path()).entryList({QStringLiteral("*before*")}).size(), which == Older ? 1 : 0);
            return count;
        });
    }
}

TEST(ZQFailingCalls, WhatIsNotedOfAStoreIsNotedOrRefused)
{
    struct
    {
        const char *name;
        std::function<bool(ZQPersistentStoreCoordinator &)> step;
    } const steps[] = {
        {"progress", [](auto &store) { return store.setPendingProgress(QStringLiteral("Version2"), 7); }},
        {"version", [](auto &store) { return store.clearPendingVersion(QStringLiteral("Version2")); }},
        {"recovered", [](auto &store) { return store.clearRecovered(); }},
        {"pending", [](auto &store) { return store.pendingVersions().has_value(); }},
        {"number", [](auto &store) { return store.pendingProgress(QStringLiteral("Version2")).has_value(); }},
        {"check", [](auto &store) { return store.check().isSound(); }},
    };
    const QString keys = QStringLiteral("'pendingVersions', 'pendingProgress', 'recovered'");
    for (const auto &step : steps) {
        QStringList done;
        forEachFailingCall([&](int number) {
            SCOPED_TRACE(testing::Message() << step.name << ", call " << number);
            TestStore store;
            writeStore(store, Form::Migrated);
            EXPECT_TRUE(store.coordinator()->setPendingProgress(QStringLiteral("Version2"), 3));
            const QStringList before = rowsOf(store.path, keys);
            int count = 0;
            bool isDone = false;
            {
                const FailingCalls failing(Kind::Database, number);
                isDone = step.step(*store.coordinator());
                count = failing.count();
            }
            EXPECT_TRUE(isDone || number > 0);
            const QStringList now = rowsOf(store.path, keys);
            done = number == 0 ? now : done;
            EXPECT_EQ(now, isDone ? done : before);
            return count;
        });
    }
}

// The fault is in what is written: what cannot be read of a damaged store is another matter.
TEST(ZQFailingCalls, ARecoveryPutsAWholeStoreInPlaceOrNone)
{
    const std::pair<Kind, bool> cases[] = {{Kind::Database, true}, {Kind::Database, false}, {Kind::Files, true}};
    for (const auto &each : cases) {
        const Kind kind = each.first;
        const bool isReadable = each.second;
        QStringList recovered;
        forEachFailingCall([&](int number) {
            SCOPED_TRACE(testing::Message()
                         << "kind " << int(kind) << ", readable " << isReadable << ", call " << number);
            TestStore store;
            fillTestTags(store, 30);
            store.close();
            if (isReadable) {
                damagePageHolding("tag 5 tag", StorePage::Table, store.path);
            } else {
                QFile file(store.path);
                EXPECT_TRUE(file.open(QIODevice::ReadWrite) && file.write(QByteArray(storePageSize, '\0')) > 0);
            }
            const QByteArray before = contentOfFile(store.path);
            ZQError error;
            std::optional<ZQStoreRecovery> report;
            int count = 0;
            {
                const FailingCalls failing(kind, number, kind == Kind::Database ? ".recovering" : "");
                report = ZQPersistentStoreCoordinator::recoverStoreAtPath(store.model, store.path, &error);
                count = failing.count();
            }
            EXPECT_EQ(report.has_value(), error.isNull()) << qPrintable(error.localizedDescription());
            if (report) {
                EXPECT_EQ(contentOfFile(report->keptPath), before);
                const QStringList now = rowsOf(store.path);
                recovered = number == 0 ? now : recovered;
                EXPECT_EQ(now, recovered);
            } else {
                EXPECT_GT(number, 0);
                EXPECT_EQ(contentOfFile(store.path), before);
                EXPECT_TRUE(
                    ZQPersistentStoreCoordinator::recoverStoreAtPath(store.model, store.path, &(error = ZQError())));
            }
            EXPECT_TRUE(store.coordinator()) << qPrintable(store.error.localizedDescription());
            EXPECT_TRUE(store.coordinator()->wasRecovered());
            store.close();
            EXPECT_EQ(rowsOf(store.path), recovered);
            const QStringList files = QDir(store.folder.path()).entryList(QDir::Files, QDir::Name);
            EXPECT_EQ(files.size(), 2) << qPrintable(files.join(u' '));
            return count;
        });
    }
}

TEST(ZQFailingCalls, ARecoveryTakesAlongWhatIsStillToDoOrPutsNothingInPlace)
{
    const QString keys = QStringLiteral("'pendingVersions', 'pendingProgress', 'lastKeysBeforeMigration'");
    forEachFailingCall([&](int number) {
        SCOPED_TRACE(testing::Message() << "call " << number);
        TestStore store;
        writeStore(store, Form::Migrated);
        EXPECT_TRUE(store.coordinator()->setPendingProgress(QStringLiteral("Version2"), 3));
        store.close();
        const QStringList before = rowsOf(store.path, keys);
        EXPECT_EQ(before.size(), 3);
        ZQError error;
        int count = 0;
        {
            const FailingCalls failing(Kind::Database, number, ".recovering");
            const auto report = ZQPersistentStoreCoordinator::recoverStoreAtPath(store.model, store.path, &error);
            EXPECT_EQ(report.has_value(), error.isNull()) << qPrintable(error.localizedDescription());
            count = failing.count();
        }
        EXPECT_EQ(rowsOf(store.path, keys), before);
        return count;
    });
}

TEST(ZQFailingCalls, AReplacementIsMadeOrNotBegunWhateverItsFileSystemRefuses)
{
    for (const bool hasLog : {false, true}) {
        forEachFailingCall([&](int number) {
            SCOPED_TRACE(testing::Message() << "log " << hasLog << ", call " << number);
            const QTemporaryDir folder;
            const QString path = folder.filePath(QStringLiteral("storedata"));
            const QString recovered = folder.filePath(QStringLiteral("recovered"));
            const auto write = [](const QString &name, const char *content) {
                QFile file(name);
                EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) > 0);
            };
            write(path, "old");
            write(recovered, "new");
            if (hasLog) {
                write(path + wal, "log");
            }
            ZQError error;
            const FailingCalls failing(Kind::Files, number);
            const auto kept = zqReplaceStore(path, recovered, &error);
            const QByteArray log = hasLog ? "log" : "";
            EXPECT_EQ(kept.has_value(), error.isNull());
            EXPECT_TRUE(kept || number > 0);
            EXPECT_EQ(contentOfFile(path), kept ? "new" : "old");
            EXPECT_EQ(contentOfFile(path + wal), kept ? QByteArray() : log);
            if (kept) {
                EXPECT_EQ(contentOfFile(*kept), "old");
                EXPECT_EQ(contentOfFile(*kept + wal), log);
            }
            QStringList files = QDir(folder.path()).entryList(QDir::Files, QDir::Name);
            files.removeAll(QStringLiteral("recovered"));
            EXPECT_EQ(files.size(), (kept ? 2 : 1) + (hasLog ? 1 : 0)) << qPrintable(files.join(u' '));
            return failing.count();
        });
    }
}
