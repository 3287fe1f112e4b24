#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Interface/ContentFetcher.h"
#include "Classes/Interface/WindowCommands.h"
#include "Classes/Interface/WindowContext.h"
#include "Classes/Interface/WindowUserInteraction.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QHash>
#include <QImage>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <memory>

class BrowserViewController;
class InfoPanelViewController;
class MainWindow;
class ProjectsSidebarViewController;
class QLineEdit;
class QSplitter;
class QToolButton;
class ZQTabStrip;
class tamberin_AppDelegate;

// What `renderSnapshot` draws.
struct SnapshotOptions
{
    QSize size = {1280, 800};
    double scale = 1;
    QString select;           // a sidebar item by its identifier text or its title; empty: as it was left, else Library
    QString selectItem;       // a library item of it by its identifier text or its title; empty: none
    std::optional<bool> dark; // nothing: as the person chose
    bool infoPanel = true;
};

// The main window: toolbar and tabs over sidebar, browser and info panel, and the commands that work on them.
// Main thread. Needs the application object with an open library.
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
    void cancelEdits() override;
    void savePersistentState() override;
    bool commitEditing() override;
    void refreshContent() override;
    void updateLocalization() override;

    // The application's theme, from the preferences. After the QApplication was made, before the first window.
    static void applyTheme();
    // Draws the window off screen once its content and thumbnails are there. False with an error when there is no
    // library, or nothing to select by that reference. Scales other than the screen's need `prepareSnapshotScale`
    // before the QApplication is made to have every icon sharp.
    static bool renderSnapshot(const SnapshotOptions &options, QImage *image, ZQError *error);
    static void prepareSnapshotScale(double scale);

    QWidget *window() const;
    ProjectsSidebarViewController &sidebar() { return *m_sidebar; }
    BrowserViewController &browser() { return *m_browser; }
    QUndoStack &undoStack() { return m_undoStack; }
    QAction *commandNamed(const QString &title) const;                  // null for none
    bool isEditing() const { return m_editQueue.operationCount() > 0; } // many items are being changed
    bool isSettled() const; // nothing is being fetched or read for what is shown

private:
    struct Tab
    {
        QList<ZQObjectID> items;
        QString search;
    };

    void makeToolbar();
    void makePanes();
    void makeCommands();
    QList<WindowCommand> fileCommands();
    QList<WindowCommand> editCommands();
    QList<WindowCommand> findCommands();
    void makeRatingCommands();
    QList<WindowCommand> viewCommands();
    QList<WindowCommand> helpCommands();
    void addCommands(const QList<WindowCommand> &commands);
    void updateUndo();
    void updateCommands();
    void observe();
    void contextDidChange(const ZQContextDidSave &change);

    void sidebarSelectionChanged();
    void showTab(int index);
    void updateTabs();
    void newTab();
    void closeTab(int index);
    void reopenTab();
    void saveTabs() const;
    void restoreTabs();

    void importWithDialog();
    void pasteFromClipboard();
    void toggleSidebar();
    void toggleInfoPanel();
    void toggleTheme();
    void rename();
    void deleteKey();
    void showItemMenu(const QPoint &globalPoint);
    void showKeys();
    ZQRef<ZQSidebarBaseItem> importTarget() const;
    void restoreGeometry();
    void runSearch();

    WindowUserInteraction &m_user;
    tamberin_AppDelegate *m_delegate;
    QAction *m_rating = nullptr; // the menu of ratings
    QUndoStack m_undoStack;
    std::unique_ptr<ContentFetcher> m_fetcher;
    ZQOperationQueue m_editQueue{QStringLiteral("Edits"), 1};
    std::unique_ptr<WindowContext> m_window;
    std::unique_ptr<MainWindow> m_mainWindow;
    ProjectsSidebarViewController *m_sidebar = nullptr;
    BrowserViewController *m_browser = nullptr;
    InfoPanelViewController *m_info = nullptr;
    QSplitter *m_splitter = nullptr;
    QWidget *m_toolbar = nullptr;
    ZQTabStrip *m_tabStrip = nullptr;
    QLineEdit *m_search = nullptr;
    QToolButton *m_sidebarButton = nullptr;
    QToolButton *m_infoButton = nullptr;
    QToolButton *m_menuButton = nullptr;
    QHash<QString, QAction *> m_commands;
    QAction *m_undo = nullptr;
    QAction *m_redo = nullptr;
    QList<Tab> m_tabs;
    QList<Tab> m_closedTabs;
    int m_currentTab = -1;
    bool m_isSwitchingTab = false;
    QTimer m_infoTimer;
    QTimer m_sidebarTimer;
    QTimer m_editTimer; // while many items are changed, what is shown follows now and then
    ZQManagedObjectContext::Token m_contextToken;
    QList<ZQNotificationCenter::Token> m_tokens;
};
