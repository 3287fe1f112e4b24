#pragma once

#include "Kit/Persistence/ZQContextPrivate.h"
#include "Tests/Kit/Persistence/TestModel.h"

// A store of a model that came before that of TestModel.h, and the latter with the names things had then.

inline QByteArray olderModel()
{
    // Before: no "TestNote", no "author", "weight" was a narrow "heft", tags were labels, "title" was "caption".
    return R"JSON({ "versionIdentifiers": ["Version1"], "entities": [
      { "name": "TestNode", "abstract": true,
        "attributes": [
          { "name": "caption", "type": "string" }, { "name": "obsolete", "type": "string" },
          { "name": "flag", "type": "boolean" }, { "name": "small", "type": "boolean" } ],
        "relationships": [
          { "name": "parent", "destination": "TestNode", "inverse": "children" },
          { "name": "children", "destination": "TestNode", "inverse": "parent", "toMany": true } ] },
      { "name": "TestFolder", "parent": "TestNode" },
      { "name": "TestDocument", "parent": "TestNode",
        "relationships": [ { "name": "labels", "destination": "Label", "inverse": "documents", "toMany": true } ] },
      { "name": "Label",
        "attributes": [ { "name": "name", "type": "string", "optional": false }, { "name": "heft", "type": "integer16" } ],
        "relationships": [ { "name": "documents", "destination": "TestDocument", "inverse": "labels", "toMany": true } ] } ] })JSON";
}

inline QByteArray newerModel()
{
    QByteArray json = testModelJSON;
    json.replace("{ \"name\": \"title\",", "{ \"name\": \"title\", \"renamingIdentifier\": \"caption\",");
    json.replace("{ \"name\": \"weight\",", "{ \"name\": \"weight\", \"renamingIdentifier\": \"heft\",");
    json.replace("{ \"name\": \"tags\",", "{ \"name\": \"tags\", \"renamingIdentifier\": \"labels\",");
    json.replace("{ \"name\": \"TestTag\",", "{ \"name\": \"TestTag\", \"renamingIdentifier\": \"Label\",");
    return json;
}

// The older store: folder "f" with document "d", which has the label "l" of heft 4.
inline void writeOlderStore(TestStore &older)
{
    ZQEntityRegistry::registerClass({"Label", TestTag::fields(), makeTestObject<TestTag>});
    const auto coordinator = older.coordinator();
    ASSERT_TRUE(coordinator) << qPrintable(older.error.localizedDescription());
    ZQManagedObjectContext context(coordinator);
    const auto folder = context.insertNewObject<TestFolder>();
    const auto document = context.insertNewObject<TestDocument>();
    document->setParent(folder.get());
    const auto label = context.insertNewObjectForEntityForName(QStringLiteral("Label"));
    label->setValueForKey(QStringLiteral("l"), QStringLiteral("name"));
    document->addRelatedObject(QStringLiteral("labels"), label.get());
    ASSERT_TRUE(context.save(&older.error)) << qPrintable(older.error.localizedDescription());
    // The classes of today have no fields of these names.
    ASSERT_TRUE(ZQObjectAccess::connection(context)->execute(QStringLiteral(
        "UPDATE TestNode SET caption = CASE WHEN parent IS NULL THEN 'f' ELSE 'd' END, small = 1, flag = NULL; "
        "UPDATE Label SET heft = 4")));
}

// The same, closed and seen with the newer model from now on.
inline void writeStoreToMigrate(TestStore &older)
{
    writeOlderStore(older);
    older.close();
    older.model = ZQManagedObjectModel::modelFromJSON(newerModel());
}

// Migrated and closed; nobody has filled in yet what is pending.
inline void writeMigratedStore(TestStore &older)
{
    writeStoreToMigrate(older);
    ASSERT_TRUE(older.coordinator()) << qPrintable(older.error.localizedDescription());
    older.close();
}
