#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQModel.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Models/DataModel/_ZQEntities.h"
#include "Tests/Support/ScratchLibrary.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

TEST(Model, EveryVersionReadsAndKnowsItsOwnAttributes)
{
    struct Case
    {
        const char *version;
        bool hasCreationDate, hasThumbName, hasRating, hasSmartFolders, hasFingerprints;
    };
    const Case cases[] = {
        {"Version5", false, false, false, false, false}, {"Version6", true, false, false, false, false},
        {"Version7", true, true, false, false, false},   {"Version8", true, true, true, false, false},
        {"Version9", true, true, true, true, false},     {"Version10", true, true, true, true, true}};
    for (const Case &each : cases) {
        SCOPED_TRACE(each.version);
        const auto model = zqModelVersion(QString::fromLatin1(each.version));
        ASSERT_TRUE(model);
        EXPECT_EQ(model->versionIdentifiers(), QStringList{QString::fromLatin1(each.version)});
        const auto *item = model->entity(QStringLiteral("ZQLibraryImage"));
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->attribute(QStringLiteral("creation_date")) != nullptr, each.hasCreationDate);
        EXPECT_EQ(item->attribute(QStringLiteral("thumbName")) != nullptr, each.hasThumbName);
        EXPECT_EQ(item->attribute(QStringLiteral("rating")) != nullptr, each.hasRating);
        EXPECT_EQ(model->entity(QStringLiteral("ZQSidebarSmartFolder")) != nullptr, each.hasSmartFolders);
        EXPECT_EQ(item->attribute(QStringLiteral("pictureHash")) != nullptr, each.hasFingerprints);
        EXPECT_EQ(item->attribute(QStringLiteral("palette")) != nullptr, each.hasFingerprints);
    }
    EXPECT_EQ(zqCurrentModel(), zqModelVersion(QStringLiteral("Version10")));
    EXPECT_FALSE(zqModelVersion(QStringLiteral("Version99")));
}

TEST(Model, EveryEntityHasAClassWithAFieldForEachValue)
{
    zqRegisterEntities();
    for (const auto &entity : zqCurrentModel()->entities()) {
        SCOPED_TRACE(qPrintable(entity->name));
        const ZQEntityClass *made = ZQEntityRegistry::classForEntity(entity->name);
        ASSERT_NE(made, nullptr);
        QStringList fields;
        for (const ZQField &field : made->fields) {
            fields.append(QString::fromLatin1(field.name));
        }
        for (const auto &attribute : entity->attributes) {
            EXPECT_TRUE(fields.contains(attribute.name)) << qPrintable(attribute.name);
        }
        for (const auto &relationship : entity->relationships) {
            EXPECT_EQ(fields.contains(relationship.name), !relationship.toMany) << qPrintable(relationship.name);
            EXPECT_NE(relationship.inverse, nullptr) << qPrintable(relationship.name);
        }
    }
}

TEST(Model, AnOldStoreOpensWithEverythingItHeld)
{
    zqRegisterEntities();
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("storedata"));
    {
        ZQError error;
        const auto old =
            ZQPersistentStoreCoordinator::open(zqModelVersion(QStringLiteral("Version5")), path, {}, &error);
        ASSERT_TRUE(old) << qPrintable(error.localizedDescription());
        ZQManagedObjectContext context(old);
        const auto project = context.insertNewObject<ZQSidebarProject>();
        project->setTitle(QStringLiteral("Work"));
        const auto tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("red"), context);
        for (int i = 0; i < 3; ++i) {
            const auto item = context.insertNewObject<ZQLibraryImage>();
            item->setTitle(QString::number(i));
            item->setPixelTotal(i);
            item->addTagsObject(tag.get());
            project->addItem(item.get(), 0);
        }
        ASSERT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
    }
    const auto metadata = ZQPersistentStoreCoordinator::metadataForStoreAtPath(path);
    ASSERT_TRUE(metadata);
    EXPECT_FALSE(ZQPersistentStoreCoordinator::isModelCompatible(*zqCurrentModel(), *metadata));

    ZQError error;
    const auto migrated = ZQPersistentStoreCoordinator::open(zqCurrentModel(), path, {}, &error);
    ASSERT_TRUE(migrated) << qPrintable(error.localizedDescription());
    ZQManagedObjectContext context(migrated);
    const auto project =
        zqFetchFirst<ZQSidebarProject>(context, QStringLiteral("title == %@"), {QStringLiteral("Work")});
    ASSERT_TRUE(project);
    const auto items = project->items();
    ASSERT_EQ(items.size(), 3);
    EXPECT_EQ(items.first()->title(), QStringLiteral("2"));
    EXPECT_EQ(items.first()->pixelTotal(), 2);
    EXPECT_EQ(items.first()->itemTags().size(), 1);
    EXPECT_FALSE(items.first()->creation_date().isValid());
    items.first()->setThumbName(QStringLiteral("2_thumb.png"));
    EXPECT_TRUE(context.save());
}

// Every kind has another code in a store that knows one more of them.
TEST(Model, AStoreFromBeforeSmartFoldersKeepsItsKindsAndTakesSmartFolders)
{
    zqRegisterEntities();
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("storedata"));
    {
        const auto old = ZQPersistentStoreCoordinator::open(zqModelVersion(QStringLiteral("Version8")), path);
        ASSERT_TRUE(old);
        ZQManagedObjectContext context(old);
        const auto live = context.insertNewObject<ZQSidebarWatchedFolder>();
        live->setTitle(QStringLiteral("Live"));
        live->setFolderPath(QStringLiteral("/pictures"));
        const auto tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("red"), context);
        const auto item = context.insertNewObject<ZQLibraryImage>();
        item->setRating(4);
        item->addTagsObject(tag.get());
        const auto project = context.insertNewObject<ZQSidebarProject>();
        project->setTitle(QStringLiteral("Work"));
        project->addItem(item.get());
        ASSERT_TRUE(context.save());
    }
    ZQError error;
    const auto migrated = ZQPersistentStoreCoordinator::open(zqCurrentModel(), path, {}, &error);
    ASSERT_TRUE(migrated) << qPrintable(error.localizedDescription());
    EXPECT_TRUE(QFile::exists(path + QStringLiteral(".before-Version8")));
    {
        ZQManagedObjectContext context(migrated);
        const auto live = zqFetchFirst<ZQSidebarWatchedFolder>(context, QStringLiteral("active == YES"), {});
        ASSERT_TRUE(live);
        EXPECT_EQ(live->folderPath(), QStringLiteral("/pictures"));
        const auto tag = ZQSidebarTag::tagWithTagName(QStringLiteral("red"), context);
        ASSERT_TRUE(tag);
        ASSERT_EQ(tag->items().size(), 1);
        EXPECT_EQ(tag->items().first()->rating(), 4);
        const auto project = zqFetchFirst<ZQSidebarProject>(context, QStringLiteral("active == YES"), {});
        ASSERT_TRUE(project);
        EXPECT_EQ(project->numberOfItems(), 1);
        const auto smart = context.insertNewObject<ZQSidebarSmartFolder>();
        smart->setSearchText(QStringLiteral("#r>3 “ä”"));
        ASSERT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
    }
    ZQManagedObjectContext again(migrated);
    const auto found = again.fetch<ZQSidebarSmartFolder>({ZQSidebarSmartFolder::entityName()});
    ASSERT_TRUE(found && found->size() == 1);
    EXPECT_EQ(found->first()->searchText(), QStringLiteral("#r>3 “ä”"));
}

} // namespace
