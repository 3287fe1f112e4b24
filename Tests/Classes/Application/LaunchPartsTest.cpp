// What a launch asks of the other parts, and what they may ask of it afterwards.

#include "Tests/Classes/Application/ApplicationFixture.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <QTimer>

namespace {

struct FakeUpdater : SoftwareUpdating
{
    explicit FakeUpdater(QStringList &heard) : calls(heard) {}
    bool areTestKeysHeld() const override { return keysAreHeld; }
    void configure(const QString &appCastURL) override { calls.append(appCastURL); }
    void setAutomaticChecks(bool automatic) override
    {
        calls.append(QLatin1String(automatic ? "automatic" : "by hand"));
    }
    QStringList &calls;
    bool keysAreHeld = false;
};

struct FakeCloud : CloudMenuControlling
{
    explicit FakeCloud(QStringList &heard) : calls(heard) {}
    void createSharedSession() override { calls.append(QStringLiteral("session")); }
    void updateCloudMenu() override
    {
        calls.append(QStringLiteral("menu"));
        QTimer::singleShot(0, [heard = &calls] { heard->append(QStringLiteral("drawn")); });
    }
    QStringList &calls;
};

struct FakeCapture : ScreenCaptureControlling
{
    explicit FakeCapture(QStringList &heard) : calls(heard) {}
    ~FakeCapture() override { calls.append(QStringLiteral("released")); }
    void loadView() override { calls.append(QStringLiteral("loaded")); }
    void snapArea() override {}
    void snapWindow() override {}
    void snapFullScreen() override {}
    void snapWebsite(const QString & /*pageURL*/, const QRect & /*frame*/) override {}
    QStringList &calls;
};

struct FakeReporter : CrashReporting
{
    explicit FakeReporter(QStringList &heard) : calls(heard) {}
    void start(Callbacks given, bool automaticSubmission) override
    {
        calls.append(QLatin1String(automaticSubmission ? "reporter" : "silent reporter"));
        callbacks = std::move(given);
    }
    QStringList &calls;
    Callbacks callbacks;
};

class LaunchParts : public ApplicationTest
{
protected:
    std::unique_ptr<tamberin_AppDelegate> launchedWithParts()
    {
        ApplicationParts parts = partsOfAll();
        parts.softwareUpdater = &updater;
        parts.cloudMenuViewController = &cloud;
        parts.crashReporter = &reporter;
        parts.makeZeltoKunViewController = [this] { return std::make_unique<FakeCapture>(imports.calls); };
        parts.makeMainWindowController = [this] {
            imports.calls.append(QStringLiteral("window"));
            struct Ending : FakeWindow
            {
                Ending(State &state, QStringList &heard) : FakeWindow(state), calls(heard) {}
                ~Ending() override { calls.append(QStringLiteral("window gone")); }
                QStringList &calls;
            };
            return std::make_unique<Ending>(window, imports.calls);
        };
        auto delegate = std::make_unique<tamberin_AppDelegate>(parts);
        delegate->applicationWillFinishLaunching();
        delegate->applicationDidFinishLaunching();
        return delegate;
    }

    FakeUpdater updater{imports.calls};
    FakeCloud cloud{imports.calls};
    FakeReporter reporter{imports.calls};
};

} // namespace

TEST_F(LaunchParts, AreStartedInTheirOrder)
{
    auto delegate = launchedWithParts();
    EXPECT_EQ(imports.calls.join(u' '), QStringLiteral("updates/release/feed.json automatic loaded permission window "
                                                       "session menu drawn observe sync reporter"));
    imports.calls.clear();
    delegate->openZeltoKunHelper(); // there is one
    EXPECT_TRUE(imports.calls.isEmpty());
    delegate->quitZeltoKunHelper();
    delegate->openZeltoKunHelper();
    EXPECT_EQ(imports.calls.join(u' '), QStringLiteral("released loaded"));
    EXPECT_EQ(window.calls, (QStringList{QStringLiteral("shown"), QStringLiteral("activated")}));
    imports.calls.clear();
    delegate.reset();
    EXPECT_EQ(imports.calls.join(u' '), QStringLiteral("window gone released"));
    EXPECT_EQ(imports.keptCancelled, (QList<bool>{true, false}));
}

TEST_F(LaunchParts, TheFeedIsThatOfTheBetaOrOfTheKeysThatAreHeld)
{
    updater.keysAreHeld = true;
    launchedWithParts();
    EXPECT_EQ(imports.calls.first(), QStringLiteral("updates/test/feed.json"));
    imports.calls.clear();
    ZQUserDefaults::standardUserDefaults().setObjectForKey(true, QStringLiteral("PartecipateToBeta"));
    launchedWithParts();
    EXPECT_EQ(imports.calls.first(), QStringLiteral("updates/beta/feed.json"));
}

TEST_F(LaunchParts, TheReportersLogLooksForLeftoversBeforeImportsAreOffered)
{
    QString library;
    {
        const auto delegate = launchedWithParts();
        library = delegate->libraryDirectory();
        addItem(*delegate, QStringLiteral("A"));
        delegate->saveAction();
    }
    QDir().mkpath(library + QStringLiteral("/Left.ztlibraryitem"));
    const auto delegate = launchedWithParts();
    EXPECT_TRUE(QFileInfo::exists(library + QStringLiteral("/Left.ztlibraryitem"))) << "nobody has asked yet";
    imports.calls.clear();
    EXPECT_TRUE(reporter.callbacks.applicationLog().isEmpty());
    EXPECT_TRUE(comesTrue([&] { return imports.calls == QStringList{QStringLiteral("resume")}; }));
    EXPECT_TRUE(comesTrue([&] { return !QFileInfo::exists(library + QStringLiteral("/Left.ztlibraryitem")); }));

    window = {};
    window.visible = false;
    window.miniaturized = true;
    reporter.callbacks.showMainApplicationWindow();
    EXPECT_FALSE(window.miniaturized);
    EXPECT_EQ(window.madeKey, 1);
}

TEST_F(LaunchParts, AChangeOfLanguageNamesTheFixedEntriesAnewAndIsSaved)
{
    const auto delegate = launchedWithParts();
    ZQManagedObjectContext &context = *delegate->managedObjectContext();
    const auto library = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(context);
    library->setTitle(QStringLiteral("another language"));
    delegate->saveAction();
    const int before = window.localized;
    QEvent change(QEvent::LocaleChange);
    QCoreApplication::sendEvent(QCoreApplication::instance(), &change);
    EXPECT_EQ(library->title(), QStringLiteral("Library"));
    EXPECT_FALSE(context.hasChanges());
    EXPECT_EQ(window.localized, before + 1);
}

TEST_F(LaunchParts, LiveFoldersAreSyncedAsItIsAskedFor)
{
    const auto delegate = launchedWithParts();
    imports.calls.clear();
    delegate->syncWatchedFolder({});
    delegate->forceSyncWatchedFolder({});
    EXPECT_EQ(imports.calls, (QStringList{QStringLiteral("folder sync"), QStringLiteral("forced sync")}));
}

TEST_F(LaunchParts, OpenedFilesGoToTheEndAndARecentIsShownOnlyWhenThatIsWanted)
{
    const auto delegate = launchedWithParts();
    QFile file(world.filePath(QStringLiteral("a.png")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ZQUserDefaults::standardUserDefaults().setObjectForKey(false, QStringLiteral("ShowRecentItemsAfterDropOnDock"));
    delegate->openFiles({file.fileName()});
    ASSERT_EQ(imports.imports.size(), 1);
    EXPECT_EQ(imports.imports.first().index, 4294967295U);
    EXPECT_TRUE(window.selected.isEmpty());
    delegate->openFiles({delegate->libraryBundleDirectory()}); // it is open
    EXPECT_TRUE(user.questions.isEmpty());
}
