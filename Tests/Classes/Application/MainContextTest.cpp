#include "Tests/Classes/Application/ApplicationFixture.h"

TEST_F(ApplicationTest, ASaveOfTheMainContextThatConflictsFailsAndOverwritesNothing)
{
    const auto delegate = launched();
    ZQManagedObjectContext &context = *delegate->managedObjectContext();
    const auto item = addItem(*delegate, QStringLiteral("shared"));
    ASSERT_TRUE(context.save());
    ZQManagedObjectContext background(delegate->persistentStoreCoordinator(), ZQMergePolicy::PropertyObjectTrump);
    const auto theirs = zqCast<ZQLibraryImage>(background.objectWithID(item->objectID()));
    theirs->setNotes(QStringLiteral("theirs"));
    ASSERT_TRUE(background.save());

    item->setNotes(QStringLiteral("mine"));
    ZQError error;
    EXPECT_FALSE(context.save(&error));
    EXPECT_EQ(error.code, int(ZQStoreError::Conflict)) << qPrintable(error.localizedDescription());
    EXPECT_EQ(item->notes(), QStringLiteral("mine"));
    ZQManagedObjectContext reader(delegate->persistentStoreCoordinator());
    EXPECT_EQ(zqCast<ZQLibraryImage>(reader.objectWithID(item->objectID()))->notes(), QStringLiteral("theirs"));
}
