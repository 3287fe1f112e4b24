#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Interface/Window/WindowUserInteraction.h"
#include "Classes/Interface/WindowCommand.h"
#include "Classes/Interface/WindowContext.h"

#include <QObject>
#include <QPointer>
#include <QUndoStack>

#include <memory>

class ArrivedItems;
class BrowserViewController;
class CloudActions;
class ExportPanelViewController;
class ImportActions;
class LayerActions;
class InfoPanelViewController;
class LibraryIndex;
class LiveFolderStates;
class MainToolbar;
class MainWindow;
class PreferencesFollower;
class BackupSchedule;
class PreferencesWindow;
class ProjectsSidebarViewController;
class QAction;
class QSplitter;
class SavedSearchActions;
class SidePanel;
class TabsController;
class TemplateActions;
class WindowCommands;
class WindowFollower;
class tamberin_AppDelegate;

// The main window: toolbar and tabs over sidebar, browser and info panel. Puts the panes together and their commands
// into menus; what happens is theirs. Main thread. Needs the application object with an open library.
class MainWindowController : public QObject, public MainWindowControlling
{
    Q_OBJECT
public:
    explicit MainWindowController(WindowUserInteraction &user);
    ~MainWindowController() override;

    void showWindow() override;
    void makeKeyAndOrderFront() override;
    bool isMiniaturized() const override;
    void deminiaturize() override;
    bool isVisible() const override;
    void activateIgnoringOtherApps() override;
    void selectSidebarItem(const ZQObjectID &item) override;
    void newFileFromTemplate() override;
    void savePersistentState() override;
    bool commitEditing() override;
    void refreshContent() override;
    void updateLocalization() override;

    // The application's theme, from the preferences. After the QApplication was made, before the first window.
    static void applyTheme();
    void readFileTags();

    QWidget *window() const;
    ProjectsSidebarViewController &sidebar() { return *m_sidebar; }
    BrowserViewController &browser() { return *m_browser; }
    ExportPanelViewController &exportPanel() { return *m_export; }
    QUndoStack &undoStack() { return m_undoStack; }
    ContentFetcher &fetcher() { return *m_fetcher; }
    QAction *command(CommandID id) const;
    bool isEditing() const { return m_window->isBusy(); } // many items are being changed
    bool isSettled() const;                               // nothing is being fetched or read for what is shown
    // The browser takes what the other panes, at their usual widths, leave of the window's.
    void layOutPanes(int width, bool withSidePanel);

private:
    void makePanes();
    void makeCommands();
    void startAfterFirstScreen(LibraryIndex &index);
    QList<WindowCommand> libraryCommands();
    QList<WindowCommand> editCommands();
    QList<WindowCommand> viewCommands();
    QList<WindowCommand> helpCommands();
    void updateCommands();
    void toggleSidebar();
    void toggleInfoPanel();
    void toggleExportPanel();
    void showPanels(bool info, bool exportPanel); // one of them at most
    void panesDidChange();
    void showInToolbar();
    void toggleTheme();
    void rename();
    bool isSidebarFocused() const;
    bool meansSidebarRow() const; // Ctrl+D does
    void deleteKey();
    void showItemMenu(const QPoint &globalPoint);
    void handOut(const QString &asset, const QString &shown);
    void showKeys();
    void showPreferences();
    void showCloudPreferences();
    void showLibraryPreferences();
    void showStatistics();
    void restoreGeometry();

    WindowUserInteraction &m_user;
    tamberin_AppDelegate *m_delegate;
    QUndoStack m_undoStack;
    std::unique_ptr<ContentFetcher> m_fetcher;
    std::unique_ptr<LiveFolderStates> m_liveFolders; // null: nobody keeps live folders in step
    std::unique_ptr<WindowContext> m_window;
    std::unique_ptr<BackupSchedule> m_backups;
    std::unique_ptr<MainWindow> m_mainWindow;
    std::unique_ptr<ImportActions> m_imports;
    std::unique_ptr<TemplateActions> m_templates;
    std::unique_ptr<LayerActions> m_layers;
    MainToolbar *m_toolbar = nullptr;
    QSplitter *m_splitter = nullptr;
    ProjectsSidebarViewController *m_sidebar = nullptr;
    BrowserViewController *m_browser = nullptr;
    SidePanel *m_side = nullptr; // holds the next two
    InfoPanelViewController *m_info = nullptr;
    ExportPanelViewController *m_export = nullptr;
    ArrivedItems *m_arrived = nullptr;
    CloudActions *m_cloud = nullptr;
    TabsController *m_tabs = nullptr;
    SavedSearchActions *m_savedSearches = nullptr;
    WindowFollower *m_follower = nullptr;
    PreferencesFollower *m_preferencesFollower = nullptr;
    WindowCommands *m_commands = nullptr;
    QPointer<PreferencesWindow> m_preferences; // while it is open
};
