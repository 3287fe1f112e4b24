#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Persistence/ZQStoreCheck.h"
#include "Models/DataModel/ZQModel.h"
#include "Tests/Classes/Application/ApplicationFixture.h"
#include "Tests/Support/DamagedStore.h"

#include <QFile>
#include <QLocale>

namespace {

class DamagedLibrary : public ApplicationTest
{
protected:
    QString store() const { return defaultBundle() + QStringLiteral("/storedata"); }
    QStringList keptStores() const
    {
        return QDir(defaultBundle()).entryList({QStringLiteral("storedata.damaged-*")}, QDir::Files);
    }
    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // A library of `count` items, "picture 7" with the bundleID "item-7"; `bytes` more in one of them.
    void makeLibrary(int count, qsizetype bytes = 0)
    {
        const auto delegate = launched();
        for (int i = 0; i < count; ++i) {
            addItem(*delegate, QStringLiteral("item-%1").arg(i))->setTitle(QStringLiteral("picture %1").arg(i));
        }
        if (bytes > 0) {
            addItem(*delegate, QStringLiteral("large"))->setItemURLData(QByteArray(bytes, 'b'));
        }
        delegate->saveAction();
    }
    QStringList messages() const
    {
        QStringList all;
        for (const UserQuestion &question : user.questions) {
            all.append(question.message);
        }
        return all;
    }
    static qint64 itemCount(tamberin_AppDelegate &delegate)
    {
        return delegate.managedObjectContext()->countForFetchRequest({ZQLibraryBaseItem::entityName()}).value_or(-1);
    }

    const QString damagedMessage = QStringLiteral("The library is damaged");
};

} // namespace

TEST_F(DamagedLibrary, IsRecoveredAfterAnUncleanEndOnlyWhenThePersonSaysSo)
{
    makeLibrary(200);
    damagePageHolding("picture 100", StorePage::Table, store());
    markStoreUnclean(store());
    const QByteArray before = contents(store());
    {
        const auto delegate = application(); // the answer that changes least
        EXPECT_EQ(delegate->managedObjectContext(), nullptr);
        EXPECT_EQ(messages(), QStringList{damagedMessage});
        EXPECT_TRUE(user.questions.first().informativeText.startsWith(QStringLiteral("Zelto can copy")))
            << "the headline has said what happened";
        EXPECT_FALSE(user.errors.isEmpty());
        EXPECT_EQ(contents(store()), before);
        EXPECT_TRUE(keptStores().isEmpty());
    }
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    const auto delegate = application();
    ASSERT_NE(delegate->managedObjectContext(), nullptr);
    EXPECT_EQ(messages().last(), QStringLiteral("The library was recovered"));
    EXPECT_TRUE(delegate->persistentStoreCoordinator()->wasRecovered());
    EXPECT_GT(itemCount(*delegate), 100);
    EXPECT_LT(itemCount(*delegate), 200);
    const QString lost = QString::number(200 - itemCount(*delegate));
    EXPECT_TRUE(user.questions.last().informativeText.contains(lost))
        << qPrintable(user.questions.last().informativeText);
    ASSERT_EQ(keptStores().size(), 1);
    EXPECT_EQ(contents(defaultBundle() + u'/' + keptStores().first()), before);
}

TEST_F(DamagedLibrary, GetsNoSecondSidebarWhenItsOwnCannotBeRead)
{
    makeLibrary(1);
    const QString sequence = QStringLiteral("SELECT last FROM zq_sequence WHERE name = 'ZQSidebarBaseItem'");
    const QVariant before = storeValue(store(), sequence);
    ASSERT_GT(before.toInt(), 0);
    damagePageHolding("LIVE FOLDERS", StorePage::Table, store());
    {
        const auto delegate = application();
        ZQError error;
        delegate->openLibraryForCommand(&error);
        ASSERT_FALSE(user.errors.isEmpty());
        EXPECT_EQ(user.errors.first().code, int(ZQStoreError::Damaged));
    }
    EXPECT_EQ(storeValue(store(), sequence), before);
}

TEST_F(DamagedLibrary, IsFoundBesideTheWindowAndRecoveredByTheNextLaunchWithoutAskingAgain)
{
    constexpr qsizetype moreThanAQuickLookChecks = 25 * 1024 * 1024;
    makeLibrary(2000, moreThanAQuickLookChecks);
    damagePageHolding("item-1000", StorePage::Index, store());
    markStoreUnclean(store());
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    {
        const auto delegate = launched();
        ASSERT_NE(delegate->managedObjectContext(), nullptr);
        zqRunMainLoopUntil([&] { return delegate->reopensAfterQuit(); });
        EXPECT_EQ(messages(), QStringList{damagedMessage});
        EXPECT_EQ(window.savedState, 1) << "it quit as ever";
        EXPECT_TRUE(keptStores().isEmpty()) << "not while it is open";
    }
    user.questions.clear();
    const auto delegate = launched();
    EXPECT_EQ(messages(), QStringList{QStringLiteral("The library was recovered")});
    EXPECT_EQ(itemCount(*delegate), 2001);
    EXPECT_EQ(keptStores().size(), 1);
    EXPECT_FALSE(delegate->persistentStoreCoordinator()->needsCheck());
}

TEST_F(DamagedLibrary, IsLeftAsItIsWhenThePersonPutsItOff)
{
    makeLibrary(1);
    {
        const auto delegate = launched();
        delegate->reportDamage({QStringLiteral("broken")}); // the answer that changes least
        EXPECT_EQ(messages(), QStringList{damagedMessage});
        EXPECT_FALSE(delegate->reopensAfterQuit());
        EXPECT_EQ(window.savedState, 0);
    }
    user.questions.clear();
    const auto delegate = launched();
    EXPECT_TRUE(user.questions.isEmpty());
    EXPECT_TRUE(keptStores().isEmpty());
    ZQError error;
    EXPECT_FALSE(delegate->recoverLibrary(&error)) << "it is open";
    EXPECT_FALSE(error.isNull());
    EXPECT_TRUE(keptStores().isEmpty());
}

TEST_F(DamagedLibrary, ARecoveryThatFailsIsToldAndTheLibraryStaysShut)
{
    makeLibrary(200);
    damagePageHolding("picture 100", StorePage::Table, store());
    markStoreUnclean(store());
    ASSERT_TRUE(QDir().mkpath(store() + QStringLiteral(".recovering/in the way")));
    const QByteArray before = contents(store());
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    const auto delegate = application();
    EXPECT_EQ(delegate->managedObjectContext(), nullptr);
    EXPECT_EQ(messages(), QStringList{damagedMessage}) << "and no word of a recovery";
    EXPECT_EQ(user.errors.size(), 3) << "why, and twice that the library cannot be opened";
    EXPECT_EQ(contents(store()), before);
}

TEST_F(DamagedLibrary, IsNotWhatASoundOneIsTakenForAfterAnUncleanEnd)
{
    constexpr qsizetype moreThanAQuickLookChecks = 25 * 1024 * 1024;
    makeLibrary(2, moreThanAQuickLookChecks);
    markStoreUnclean(store());
    const auto delegate = launched();
    const auto coordinator = delegate->persistentStoreCoordinator();
    zqRunMainLoopUntil([&] { return !coordinator->needsCheck(); });
    EXPECT_TRUE(user.questions.isEmpty());
}

TEST_F(DamagedLibrary, LosesNoFilesWhenItsDeletionsCannotBeSaved)
{
    for (const TerminateReply reply : {TerminateReply::Cancel, TerminateReply::Now}) {
        QDir(defaultBundle()).removeRecursively();
        const auto delegate = launched();
        const auto item = addItem(*delegate, QStringLiteral("deleted"));
        item->setActive(false);
        delegate->saveAction();
        const QString directory = item->bundleURL();
        ZQManagedObjectContext other(delegate->persistentStoreCoordinator());
        const auto same = other.existingObjectWithID(item->objectID());
        ASSERT_TRUE(same);
        same->setValueForKey(QStringLiteral("changed elsewhere"), QStringLiteral("title"));
        ASSERT_TRUE(other.save());
        user.answerQuestion = [&](const UserQuestion &question) {
            return reply == TerminateReply::Now ? 0 : int(question.buttons.size()) - 1;
        };
        EXPECT_EQ(delegate->applicationShouldTerminate(), reply);
        EXPECT_EQ(messages().last(), QStringLiteral("Could not save changes while quitting.  Quit anyway?"));
        EXPECT_EQ(delegate->deleteTask(), nullptr);
        EXPECT_TRUE(QFileInfo::exists(directory));
        EXPECT_EQ(std::exchange(user.errors, {}).size(), 1);
    }
}

TEST_F(DamagedLibrary, TellsOfARecoveryWhatIsLostAndWhereFilesComeBack)
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    LibraryRecovery recovery;
    recovery.items = 50000;
    recovery.unreadableItems = 1234;
    recovery.unreadableEntries = 1;
    recovery.keptPath = QStringLiteral("/kept");
    EXPECT_EQ(recovery.text(), QStringLiteral("Recovered: 50,000 items, 0 sidebar entries, 0 tags, 0 memberships.\n"
                                              "Could not be read, at least: 1,234 items, 1 sidebar entry or tag.\n"
                                              "Their files come back into the project “Recovered”.\n"
                                              "The damaged store is kept as /kept"));
    recovery.unreadableItems = 0;
    recovery.unreadableMemberships = 2;
    EXPECT_TRUE(recovery.text().contains(QStringLiteral("2 memberships.\n")));
    recovery.unreadableMemberships = 0;
    EXPECT_FALSE(recovery.text().contains(QStringLiteral("Recovered”")));
    recovery.unreadableEntries = 0;
    EXPECT_TRUE(recovery.text().contains(QStringLiteral("Nothing is known to be lost.")));
    recovery.unreadableItems = 1;
    EXPECT_TRUE(recovery.text().contains(QStringLiteral("\nCould not be read, at least: 1 item.\n")));
    for (qint64 LibraryRecovery::*part : {&LibraryRecovery::sidebarEntries, &LibraryRecovery::tags,
                                          &LibraryRecovery::memberships, &LibraryRecovery::items}) {
        LibraryRecovery some;
        some.*part = 1;
        EXPECT_TRUE(some.text().startsWith(QStringLiteral("Recovered: ")));
    }
    LibraryRecovery none;
    none.keptPath = QStringLiteral("/kept");
    EXPECT_EQ(none.text(), QStringLiteral("Nothing could be read from the damaged library, which is kept as /kept\nThe "
                                          "files in it come back into the project “Recovered” when it is opened."));
    QLocale::setDefault(QLocale::c());
}

TEST_F(DamagedLibrary, CountsWhatIsLostByItsKind)
{
    ZQStoreRecovery report;
    report.keptPath = QStringLiteral("/kept");
    report.rows = {{QStringLiteral("ZQLibraryImage"), 1},
                   {QStringLiteral("ZQLibraryPDF"), 2},
                   {QStringLiteral("ZQSidebarTag"), 4},
                   {QStringLiteral("ZQSidebarProject"), 8},
                   {QStringLiteral("ZQProjectItem"), 16}};
    report.unreadable = {{QStringLiteral("ZQLibraryBaseItem"), 32},
                         {QStringLiteral("ZQSidebarBaseItem"), 64},
                         {QStringLiteral("ZQProjectItem"), 128}};
    const auto recovery = LibraryRecovery::of(report, *zqCurrentModel());
    EXPECT_EQ(recovery.items, 3);
    EXPECT_EQ(recovery.tags, 4);
    EXPECT_EQ(recovery.sidebarEntries, 8);
    EXPECT_EQ(recovery.memberships, 16);
    EXPECT_EQ(recovery.unreadableItems, 32);
    EXPECT_EQ(recovery.unreadableEntries, 64);
    EXPECT_EQ(recovery.unreadableMemberships, 128);
    EXPECT_EQ(recovery.keptPath, QStringLiteral("/kept"));
}

TEST_F(DamagedLibrary, WarnsOfItsDamageInOneLine)
{
    static QStringList warnings;
    warnings.clear();
    const auto before = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
        if (type != QtDebugMsg) {
            warnings.append(text);
        }
    });
    zqLogDamage({QStringLiteral("*** in database main ***\nPage 356: broken\nPage 357: broken"),
                 QStringLiteral("row 1 missing from index")});
    qInstallMessageHandler(before);
    EXPECT_EQ(warnings, QStringList{QStringLiteral("damaged: Page 356: broken")});
}
