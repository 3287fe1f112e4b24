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
        const char *reason;
    } const cases[] = {
        {"\"integer16\"", "\"integer17\"", "TestNode.small: unknown type \"integer17\""},
        {"\"inverse\": \"documents\"", "\"inverse\": \"papers\"",
         "TestDocument.tags: the inverse \"papers\" does not exist"},
        {"\"inverse\": \"documents\"", "\"inverse\": \"name\"",
         "TestDocument.tags: the inverse \"name\" does not exist"},
        {"\"inverse\": \"notes\"", "\"inverse\": \"children\"",
         "TestNode.notes: the inverse \"node\" does not lead back here"},
        {"\"destination\": \"TestNode\", \"inverse\": \"notes\"",
         "\"destination\": \"TestFolder\", \"inverse\": \"notes\"",
         "TestNode.notes: the inverse \"node\" does not lead back here"},
        {"\"destination\": \"TestNode\", \"inverse\": \"children\"",
         "\"destination\": \"TestFolder\", \"inverse\": \"children\"",
         "TestNode.parent: the inverse \"children\" does not lead back here"},
        {"\"inverse\": \"children\" },", "\"inverse\": \"parent\" },",
         "TestNode.parent: a relationship cannot be its own inverse"},
        {"\"destination\": \"TestNote\"", "\"destination\": \"Nothing\"",
         "TestNode.notes: the destination \"Nothing\" does not exist"},
        {"\"parent\": \"TestNode\", \"attributes\": [ { \"name\": \"path\"",
         "\"parent\": \"Lost\", \"attributes\": [ { \"name\": \"path\"",
         "TestFolder: the parent \"Lost\" does not exist"},
        {"\"name\": \"TestNode\", \"abstract\"", "\"name\": \"TestNode\", \"parent\": \"TestFolder\", \"abstract\"",
         "entities are parents of each other"},
        {"\"cascade\"", "\"explode\"", "TestNode.children: unknown delete rule \"explode\""},
        {"\"default\": 7", "\"default\": \"seven\"",
         "TestNode.medium: the default does not fit the type \"integer32\""},
        {"\"name\": \"author\"", "\"name\": \"Title\"", "TestDocument.Title: two properties have this name"},
        {"\"name\": \"weight\"", "\"name\": \"Documents\"", "TestTag.documents: two properties have this name"},
        {"\"name\": \"author\"", "\"name\": \"a-b\"",
         "TestDocument.a-b: a property needs a name of letters, digits and underscores"},
        {"\"name\": \"author\"", "\"name\": \"\"",
         "TestDocument.: a property needs a name of letters, digits and underscores"},
        {"\"name\": \"author\"", "\"name\": \"\u00E4\"",
         "TestDocument.\u00E4: a property needs a name of letters, digits and underscores"},
        {"\"name\": \"author\", \"type\": \"string\"", "\"name\": \"path\", \"type\": \"date\"",
         "TestDocument.path: another entity of the family stores something else under this name"},
        {"{ \"name\": \"path\", \"type\": \"string\" } ]",
         "], \"relationships\": [ { \"name\": \"author\", \"destination\": \"TestNote\", \"inverse\": \"text\" } ]",
         "TestDocument.author: another entity of the family stores something else under this name"},
        {"\"relationships\": [ { \"name\": \"tags\",",
         "\"relationships\": [ { \"name\": \"path\", \"destination\": \"TestDocument\", \"inverse\": \"works\" }, "
         "{ \"name\": \"works\", \"destination\": \"TestDocument\", \"inverse\": \"path\", \"toMany\": true }, "
         "{ \"name\": \"tags\",",
         "TestDocument.path: another entity of the family stores something else under this name"},
        {"{ \"name\": \"path\"", "{ \"name\": \"AUTHOR\"",
         "TestDocument.author: another entity of the family stores something else under this name"},
        {"\"name\": \"TestTag\"", "\"name\": \"Test Tag\"",
         "Test Tag: an entity needs a name of letters, digits and underscores"},
        {"\"name\": \"TestTag\"", "\"name\": \"SQLite_tag\"", "SQLite_tag: the name is reserved"},
        {"\"name\": \"TestTag\"", "\"name\": \"ZQ_tag\"", "ZQ_tag: the name is reserved"},
        {"\"name\": \"TestTag\"", "\"name\": \"testnote\"", "TestNote: two entities have this name"},
        {"\"entities\"", "\"things\"", "the model has no entities"},
    };
    for (const auto &each : cases) {
        ZQError error;
        const QByteArray json = QByteArray(testModelJSON).replace(each.before, each.after);
        ASSERT_NE(json, testModelJSON) << each.before;
        EXPECT_FALSE(ZQManagedObjectModel::modelFromJSON(json, &error)) << each.after;
        EXPECT_EQ(error.localizedDescription().toStdString(),
                  std::string("The data model cannot be read. ") + each.reason);
    }
    ZQError error;
    EXPECT_FALSE(ZQManagedObjectModel::modelFromJSON("{ \"entities\": [", &error));
    EXPECT_TRUE(error.localizedDescription().endsWith(QStringLiteral("at byte 15)")))
        << error.localizedDescription().toStdString();
    EXPECT_FALSE(ZQManagedObjectModel::modelFromJSON("[]", &error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("not a JSON object")));
}

TEST(ZQManagedObjectModel, AModelSaysAllThatItsFileSays)
{
    QByteArray json = testModelJSON;
    json.replace("{ \"name\": \"title\",",
                 "{ \"name\": \"Version\", \"type\": \"string\", \"renamingIdentifier\": \"old\" }, "
                 "{ \"name\": \"title\",");
    json.replace("\"name\": \"parent\", \"destination\"",
                 "\"name\": \"parent\", \"renamingIdentifier\": \"up\", \"destination\"");
    ZQError error;
    const auto model = ZQManagedObjectModel::modelFromJSON(json, &error);
    ASSERT_TRUE(model) << qPrintable(error.localizedDescription());
    EXPECT_EQ(model->versionIdentifiers(), QStringList{QStringLiteral("Version2")});
    EXPECT_EQ(model->json(), json);
    QStringList entities;
    for (const auto &entity : model->entities()) {
        entities.append(entity->name + QString::number(entity->code) +
                        (entity->isAbstract ? QStringLiteral("*") : QString()));
        EXPECT_EQ(model->entityWithCode(entity->code), entity.get());
    }
    EXPECT_EQ(entities.join(u' ').toStdString(), "TestNode3* TestFolder2 TestDocument1 TestTag5 TestNote4");
    EXPECT_EQ(model->entityWithCode(6), nullptr);
    EXPECT_EQ(model->entity(QStringLiteral("Nothing")), nullptr);
    const ZQEntityDescription &folder = *model->entity(QStringLiteral("TestFolder"));
    QStringList attributes;
    for (const ZQAttributeDescription &attribute : folder.attributes) {
        attributes.append(QStringLiteral("%1/%2/%3%4%5/%6")
                              .arg(attribute.name, attribute.columnName)
                              .arg(int(attribute.type))
                              .arg(attribute.optional ? QString() : QStringLiteral("!"),
                                   attribute.indexed ? QStringLiteral("i") : QString(),
                                   attribute.defaultValue.toString() + attribute.renamingIdentifier));
    }
    EXPECT_EQ(attributes.join(u' ').toStdString(),
              "Version/Version_/0/old title/title/0i/ flag/flag/1!/true small/small/2/ "
              "medium/medium/3/7 large/large/4/ ratio/ratio/5/ exact/exact/6/ date/date/7/ blob/blob/8/ path/path/0/");
    QStringList relationships;
    for (const ZQRelationshipDescription &relationship : folder.relationships) {
        relationships.append(QStringLiteral("%1/%2/%3/%4/%5")
                                 .arg(relationship.name, relationship.columnName, relationship.renamingIdentifier)
                                 .arg(int(relationship.deleteRule))
                                 .arg(relationship.toMany));
        EXPECT_EQ(relationship.inverse->inverse->name, relationship.name);
    }
    EXPECT_EQ(relationships.join(u' ').toStdString(), "parent/parent/up/0/0 children///1/1 notes///1/1");
}
