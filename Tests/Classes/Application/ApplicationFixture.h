#pragma once

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Application/LibraryRecovery.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/PreferencesController.h"
#include "Classes/Application/Quit.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"
#include "Tests/Support/ScriptedUser.h"
#include "Tests/Support/UserWorld.h"

#include <QDir>
#include <QProcess>

#include <gtest/gtest.h>

#include <chrono>

// A window that only remembers what was asked of it.
class FakeWindow : public MainWindowControlling
{
public:
    struct State
    {
        bool visible = true;
        bool miniaturized = false;
        int made = 0;
        int madeKey = 0;
        int savedState = 0;
        int templates = 0;
        int localized = 0;
        bool takesTyping = true;
        QList<ZQObjectID> selected;
        QStringList calls; // to show and end it
    };
    explicit FakeWindow(State &state) : m_state(state) { ++m_state.made; }
    ~FakeWindow() override { m_state.calls.append(QStringLiteral("gone")); }
    void showWindow() override
    {
        m_state.visible = true;
        m_state.calls.append(QStringLiteral("shown"));
    }
    void makeKeyAndOrderFront() override { ++m_state.madeKey; }
    bool isMiniaturized() const override { return m_state.miniaturized; }
    void deminiaturize() override { m_state.miniaturized = false; }
    bool isVisible() const override { return m_state.visible; }
    void activateIgnoringOtherApps() override { m_state.calls.append(QStringLiteral("activated")); }
    void selectSidebarItem(const ZQObjectID &item) override { m_state.selected.append(item); }
    void newFileFromTemplate() override { ++m_state.templates; }
    void savePersistentState() override
    {
        ++m_state.savedState;
        m_state.calls.append(QStringLiteral("saved"));
    }
    bool commitEditing() override { return m_state.takesTyping; }
    void refreshContent() override {}
    void updateLocalization() override { ++m_state.localized; }

private:
    State &m_state;
};

// An import manager that only remembers.
class FakeImports : public ImportManaging
{
public:
    struct Import
    {
        QStringList paths;
        ZQObjectID target;
        quint32 index;
    };
    void importFilesAtPaths(const QStringList &paths, const ZQObjectID &intoSidebarItemID, quint32 atIndex,
                            const QVariantMap &) override
    {
        imports.append({paths, intoSidebarItemID, atIndex});
    }
    void importFile(const QString &path, const ZQObjectID &intoSidebarItemID, const QVariantMap & /*metadata*/,
                    std::function<void(const ImportEnd &end)> done) override
    {
        imports.append({{path}, intoSidebarItemID, ZQSidebarBaseItem::appendIndex});
        done({ImportEnd::Kind::Imported, {}, {}});
    }
    void takeBackItemDirectories(const QStringList &names,
                                 std::function<void(qsizetype takenBack, bool isComplete)> done) override
    {
        takenBack += names;
        done(takesBack.value_or(names.size()), !takesBack);
    }
    std::optional<QDateTime> cutOffImportSince() override { return cutOff; }
    std::function<CutOffImports(const QSet<QString> &)> tracesOfCutOffImports() override
    {
        return [traces = CutOffImports{cutOff, saved}](const QSet<QString> &) { return traces; };
    }
    void didLookThroughLeftovers(const QDateTime &) override { ++lookedThrough; }
    void offerToResumeImports() override { calls.append(QStringLiteral("resume")); }
    void setKeepsCancelledImports(bool keeps) override { keptCancelled.append(keeps); }
    void thumbForLibraryItem(ZQLibraryBaseItem *item) override { thumbs.append(item); }

    QList<Import> imports;
    QStringList calls;
    QStringList takenBack;
    QList<ZQLibraryBaseItem *> thumbs;
    std::optional<qsizetype> takesBack; // and then ends; without it all of them
    std::optional<QDateTime> cutOff;
    QSet<QString> saved; // by imports that were cut off
    int lookedThrough = 0;
    QList<bool> keptCancelled;
};

// Live folders that only remember, in one list with the imports.
class FakeLiveFolders : public LiveFolderManaging
{
public:
    explicit FakeLiveFolders(QStringList &calls) : m_calls(calls) {}
    ZQOperationQueue &syncOperationQueue() override { return m_sync; }
    void getLiveFolderPermissionFromSandbox() override { m_calls.append(QStringLiteral("permission")); }
    void startObservingWatchedFolders() override { m_calls.append(QStringLiteral("observe")); }
    void stopObservingWatchedFolders() override { m_calls.append(QStringLiteral("stop")); }
    void syncRootWatchedFolders() override { m_calls.append(QStringLiteral("sync")); }
    void syncWatchedFolder(const ZQObjectID &, bool force) override
    {
        m_calls.append(force ? QStringLiteral("forced sync") : QStringLiteral("folder sync"));
    }
    void syncAndRemoveMissing(const ZQObjectID &folder) override { syncWatchedFolder(folder, true); }
    void stopSyncingWatchedFolders(const QList<ZQObjectID> &) override { m_calls.append(QStringLiteral("stop sync")); }
    AddedLiveFolders addNewWatchFolderFromPaths(const QStringList &, quint32) override { return {}; }
    void watchedFoldersDidChange(const QList<ZQObjectID> &) override {}
    LiveFolderStatus statusOfWatchedFolder(const ZQObjectID &) const override { return {}; }

private:
    QStringList &m_calls;
    ZQOperationQueue m_sync;
};

// One user's world in a temporary folder, and the application in it.
class ApplicationTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
        for (const QString &key : defaults.keys()) {
            defaults.removeObjectForKey(key);
        }
    }

    // Nobody looks at the window.
    ApplicationParts partsOfAll()
    {
        ApplicationParts parts;
        parts.userInteraction = &user;
        parts.importManager = &imports;
        parts.liveFolderManager = &liveFolders;
        parts.windowFirst = std::chrono::milliseconds(0);
        return parts;
    }
    std::unique_ptr<tamberin_AppDelegate> application()
    {
        ApplicationParts parts = partsOfAll();
        parts.makeMainWindowController = [this] { return std::make_unique<FakeWindow>(window); };
        return std::make_unique<tamberin_AppDelegate>(parts);
    }
    std::unique_ptr<tamberin_AppDelegate> launched()
    {
        auto delegate = application();
        delegate->applicationWillFinishLaunching();
        delegate->applicationDidFinishLaunching();
        return delegate;
    }
    static void checkLeftovers(tamberin_AppDelegate &delegate)
    {
        delegate.checkAndDeleteLibraryLeftovers();
        zqRunMainLoopUntil([&delegate] { return !delegate.isCheckingLeftovers(); });
    }
    QString defaultBundle() const { return world.filePath(QStringLiteral("xdg_data_home/Zelto/Zelto.ztlibrary")); }

    // Whether it comes to be, while the main loop runs; given up after half a minute.
    static bool comesTrue(const std::function<bool()> &condition)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        zqRunMainLoopUntil([&] { return condition() || std::chrono::steady_clock::now() > end; });
        return condition();
    }

    // A managed item with its directory and file.
    static ZQRef<ZQLibraryImage> addItem(tamberin_AppDelegate &delegate, const QString &bundleID)
    {
        auto item = delegate.managedObjectContext()->insertNewObject<ZQLibraryImage>();
        item->setBundleID(bundleID);
        item->setActive(true);
        item->setManaged(true);
        item->setTitle(QStringLiteral("picture"));
        item->setOriginalExtension(QStringLiteral("png"));
        QDir().mkpath(item->bundleURL());
        return item;
    }

    UserWorld world{"application"};
    ScriptedUser user;
    FakeImports imports;
    FakeLiveFolders liveFolders{imports.calls};
    FakeWindow::State window;
};
