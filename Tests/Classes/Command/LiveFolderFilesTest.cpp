#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Command/CommandFixture.h"

#include <QDir>
#include <QUuid>

TEST_F(CommandTest, EditsReachTheDiskBelowLiveFolders)
{
    ZQManagedObjectContext &store = *delegate->managedObjectContext();
    const QString own = picture(QStringLiteral("live/own.png"), qRgb(20, 20, 220));
    const auto folder =
        ZQSidebarWatchedFolder::newSidebarWatchedFolderForPath(world.filePath(QStringLiteral("live")), store);
    folder->setIs_root(true);
    ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(store)->appendChild(folder.get());
    const auto item = store.insertNewObject<ZQLibraryImage>(); // as synchronising makes it
    item->setBundleID(QUuid::createUuid().toString(QUuid::WithoutBraces));
    item->setTitle(zqBaseName(own));
    item->setManaged(false);
    item->setActive(true);
    item->setItemURLData(zqDataForPersistentURL(own));
    item->setWatchingFolder(folder.get());
    delegate->saveAction();
    const auto files = [&] {
        return QDir(folder->folderPath()).entryList(QDir::Files | QDir::NoDotAndDotDot, QDir::Name);
    };

    ASSERT_EQ(run({QStringLiteral("delete"), item->bundleID()}), 0) << context.errors.toStdString();
    EXPECT_EQ(files(), QStringList());
    ASSERT_EQ(run({QStringLiteral("restore"), item->bundleID()}), 0) << context.errors.toStdString();
    EXPECT_EQ(files(), QStringList{QStringLiteral("own.png")});

    picture(QStringLiteral("in/own.png"), qRgb(220, 20, 20));
    ASSERT_EQ(run({QStringLiteral("import"), QStringLiteral("in/own.png"), QStringLiteral("--into"),
                   QStringLiteral("LIVE FOLDERS/live"), QStringLiteral("--json")}),
              0)
        << context.errors.toStdString();
    const QJsonArray imported = object().value(QStringLiteral("imported")).toArray();
    EXPECT_EQ(files(), (QStringList{"own 1.png", "own.png"}));
    EXPECT_TRUE(QFileInfo::exists(world.filePath(QStringLiteral("in/own.png"))));
    ASSERT_EQ(imported.size(), 1) << "by then it was synchronised";
    EXPECT_NE(imported.first().toString(), item->bundleID());
    ASSERT_EQ(run("items --json"), 0);
    EXPECT_EQ(array().size(), 2);

    folder->setIs_enabled(false);
    delegate->saveAction();
    EXPECT_EQ(run({QStringLiteral("import"), QStringLiteral("in/own.png"), QStringLiteral("--into"),
                   QStringLiteral("LIVE FOLDERS/live")}),
              2);
    EXPECT_TRUE(context.errors.contains("disabled"));
    EXPECT_EQ(files().size(), 2);
}
