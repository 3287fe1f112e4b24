#include "Classes/Application/LibraryLock.h"
#include "Tests/Classes/Command/CommandFixture.h"
#include "Tests/Support/DamagedStore.h"

namespace {

class RecoverCommandTest : public CommandTest
{
protected:
    QString bundle() const { return world.filePath(QStringLiteral("Test.ztlibrary")); }
    QString store() const { return bundle() + QStringLiteral("/storedata"); }
    void fillAndClose()
    {
        for (int i = 0; i < 200; ++i) {
            const auto item =
                delegate->managedObjectContext()->insertNewObjectForEntityForName(QStringLiteral("ZQLibraryImage"));
            item->setValueForKey(QStringLiteral("picture %1 of two hundred").arg(i), QStringLiteral("title"));
        }
        delegate->saveAction();
        delegate.reset();
    }
    int recover(const QString &library)
    {
        context = {};
        context.workingDirectory = world.path();
        CommandLine commandLine;
        int status = 0;
        if (!commandLine.parse(
                {QStringLiteral("--library"), library, QStringLiteral("recover"), QStringLiteral("--json")}, context,
                &status)) {
            return status;
        }
        EXPECT_FALSE(commandLine.needsLibrary()) << "it must not need a store that opens";
        return commandLine.run(context);
    }
};

} // namespace

TEST_F(RecoverCommandTest, ACommandSaysThatTheStoreIsDamagedAndRecoverBringsBackWhatItCan)
{
    fillAndClose();
    damagePageHolding("picture 100 of", StorePage::Table, store());
    markStoreUnclean(store());
    {
        ApplicationParts parts;
        parts.userInteraction = &user;
        tamberin_AppDelegate damaged(parts);
        damaged.setLibraryBundleDirectory(bundle());
        ZQError error;
        EXPECT_FALSE(damaged.openLibraryForCommand(&error));
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("zelto recover")));
    }
    ASSERT_EQ(recover(bundle()), 0) << context.errors.constData();
    const qint64 items = object().value(QStringLiteral("items")).toInteger();
    const qint64 lost =
        object().value(QStringLiteral("unreadable")).toObject().value(QStringLiteral("items")).toInteger();
    EXPECT_GT(lost, 0);
    EXPECT_EQ(items + lost, 200);
    EXPECT_GT(object().value(QStringLiteral("sidebarEntries")).toInteger(), 5);
    EXPECT_GT(object().value(QStringLiteral("tags")).toInteger(), 10);
    EXPECT_TRUE(QFileInfo::exists(object().value(QStringLiteral("damagedStore")).toString()));
    open();
    ASSERT_EQ(run("items --json"), 0);
    EXPECT_EQ(array().size(), items);
}

TEST_F(RecoverCommandTest, ASoundAnOpenAndAMissingLibraryAreLeftAlone)
{
    fillAndClose();
    EXPECT_EQ(recover(bundle()), 0);
    EXPECT_EQ(object().value(QStringLiteral("damaged")), QJsonValue(false));
    damagePageHolding("picture 100 of", StorePage::Table, store());
    {
        const auto lock = LibraryLock::lockBundle(bundle(), nullptr);
        EXPECT_EQ(recover(bundle()), 1);
        EXPECT_FALSE(context.errors.isEmpty());
    }
    EXPECT_TRUE(QDir(bundle()).entryList({QStringLiteral("storedata.damaged-*")}, QDir::Files).isEmpty());
    EXPECT_EQ(recover(QStringLiteral("nowhere.ztlibrary")), 2);
    EXPECT_FALSE(QFileInfo::exists(world.filePath(QStringLiteral("nowhere.ztlibrary"))));
}
