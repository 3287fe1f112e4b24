#include "Tests/Kit/Persistence/TestModel.h"

#include <gtest/gtest.h>

TEST(ZQManagedObjectModel, SubentitiesInheritAndShareTheRootsTable)
{
    const auto model = ZQManagedObjectModel::modelFromJSON(testModelJSON);
    ASSERT_TRUE(model);
    const ZQEntityDescription *document = model->entity(QStringLiteral("TestDocument"));
    const ZQEntityDescription *node = model->entity(QStringLiteral("TestNode"));
    ASSERT_TRUE(document && node);
    EXPECT_EQ(document->root, node);
    EXPECT_EQ(document->tableName, node->tableName);
    EXPECT_TRUE(document->isKindOf(node));
    EXPECT_FALSE(node->isKindOf(document));
    EXPECT_EQ(document->attributes.front().name, QStringLiteral("title"));
    EXPECT_EQ(document->attributes.back().name, QStringLiteral("author"));
    EXPECT_EQ(node->codesIncludingSubentities().size(), 3);
    EXPECT_EQ(model->entityWithCode(document->code), document);
}

TEST(ZQManagedObjectModel, BothSidesOfAManyToManyNameOneJoinTable)
{
    const auto model = ZQManagedObjectModel::modelFromJSON(testModelJSON);
    const auto *tags = model->entity(QStringLiteral("TestDocument"))->relationship(QStringLiteral("tags"));
    const auto *documents = model->entity(QStringLiteral("TestTag"))->relationship(QStringLiteral("documents"));
    ASSERT_TRUE(tags && documents && tags->isManyToMany());
    EXPECT_EQ(tags->joinTable, documents->joinTable);
    EXPECT_EQ(tags->joinOwnColumn, documents->joinOtherColumn);
    EXPECT_EQ(tags->inverse, documents);
}

TEST(ZQManagedObjectModel, HashesFollowTheStoredFormOnly)
{
    const auto model = ZQManagedObjectModel::modelFromJSON(testModelJSON);
    const auto hashesWith = [](const char *before, const char *after) {
        const auto changed = ZQManagedObjectModel::modelFromJSON(QByteArray(testModelJSON).replace(before, after));
        return changed ? changed->entityVersionHashes() : QHash<QString, QByteArray>();
    };
    EXPECT_EQ(hashesWith("\"indexed\": true", "\"indexed\": false"), model->entityVersionHashes());
    EXPECT_NE(hashesWith("integer16", "integer32"), model->entityVersionHashes());
    EXPECT_NE(hashesWith("\"weight\"", "\"mass\""), model->entityVersionHashes());
}

TEST(ZQManagedObjectModel, FaultsAreNamedByEntityAndProperty)
{
    struct
    {
        const char *before;
        const char *after;
        const char *named;
    } const cases[] = {
        {"\"integer16\"", "\"integer17\"", "TestNode.small"},
        {"\"inverse\": \"documents\"", "\"inverse\": \"papers\"", "TestDocument.tags"},
        {"\"inverse\": \"documents\"", "\"inverse\": \"name\"", "TestDocument.tags"},
        {"\"destination\": \"TestNote\"", "\"destination\": \"Nothing\"", "TestNode.notes"},
        {"\"parent\": \"TestNode\", \"attributes\": [ { \"name\": \"path\"",
         "\"parent\": \"Lost\", \"attributes\": [ { \"name\": \"path\"", "TestFolder"},
        {"\"cascade\"", "\"explode\"", "TestNode.children"},
        {"\"default\": 7", "\"default\": \"seven\"", "TestNode.medium"},
        {"\"name\": \"author\"", "\"name\": \"Title\"", "TestDocument.Title"},
        {"\"name\": \"author\", \"type\": \"string\"", "\"name\": \"path\", \"type\": \"date\"", ".path"},
    };
    for (const auto &testCase : cases) {
        ZQError error;
        const QByteArray json = QByteArray(testModelJSON).replace(testCase.before, testCase.after);
        EXPECT_FALSE(ZQManagedObjectModel::modelFromJSON(json, &error)) << testCase.after;
        EXPECT_TRUE(error.localizedDescription().contains(QLatin1String(testCase.named)))
            << qPrintable(error.localizedDescription());
    }
    EXPECT_FALSE(ZQManagedObjectModel::modelFromJSON("{ \"entities\": [", nullptr));
}
