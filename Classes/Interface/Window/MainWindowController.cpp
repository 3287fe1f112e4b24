#include "Classes/Interface/Window/MainWindowController.h"

#include "Classes/Application/BackupSchedule.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Browsing/Content/FileTagReader.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Editing/LiveFolderEdits.h"
#include "Classes/Import/ImportDoor.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Browser/EmptyState.h"
#include "Classes/Interface/Capture/CaptureActions.h"
#include "Classes/Interface/Cloud/CloudActions.h"
#include "Classes/Interface/Cloud/CloudMenu.h"
#include "Classes/Interface/Export/ExportPanelViewController.h"
#include "Classes/Interface/Export/LayerActions.h"
#include "Classes/Interface/InfoPanel/InfoPanelViewController.h"
#include "Classes/Interface/LiveFolderStates.h"
#include "Classes/Interface/Preferences/PreferencesFollower.h"
#include "Classes/Interface/Preferences/PreferencesWindow.h"
#include "Classes/Interface/Sheets/Sheet.h"
#include "Classes/Interface/Sheets/StatisticsSheet.h"
#include "Classes/Interface/Sidebar/LiveFolderActions.h"
#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"
#include "Classes/Interface/TextFields.h"
#include "Classes/Interface/Window/ArrivedItems.h"
#include "Classes/Interface/Window/ImportActions.h"
#include "Classes/Interface/Window/LiveFolderProgress.h"
#include "Classes/Interface/Window/MainToolbar.h"
#include "Classes/Interface/Window/MainWindow.h"
#include "Classes/Interface/Window/NearDuplicateActions.h"
#include "Classes/Interface/Window/SavedSearchActions.h"
#include "Classes/Interface/Window/SearchAssistant.h"
#include "Classes/Interface/Window/SidePanel.h"
#include "Classes/Interface/Window/TabsController.h"
#include "Classes/Interface/Window/TemplateActions.h"
#include "Classes/Interface/Window/WindowCommands.h"
#include "Classes/Interface/Window/WindowFollower.h"
#include "Classes/Services/SoftwareUpdater.h"
#include "Kit/Files/ZQSharedFile.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Imaging/ZQPreviewService.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QSplitter>
#include <QTimer>
#include <QToolButton>
#include <QUrl>

namespace {

constexpr int longestBeforeFirstScreen = 250; // milliseconds
constexpr qsizetype longestInMenu = 120;

QFrame *hairline(QWidget *parent)
{
    auto *line = new QFrame(parent);
    line->setObjectName(QStringLiteral("Hairline"));
    line->setFixedHeight(1);
    return line;
}

std::unique_ptr<LiveFolderStates> statesOf(tamberin_AppDelegate &delegate)
{
    LiveFolderManaging *const manager = delegate.liveFolderManager();
    return manager ? std::make_unique<LiveFolderStates>(*manager, *delegate.managedObjectContext()) : nullptr;
}

} // namespace

MainWindowController::MainWindowController(WindowUserInteraction &user)
    : m_user(user), m_delegate(tamberin_AppDelegate::sharedDelegate()),
      m_fetcher(std::make_unique<ContentFetcher>(m_delegate->persistentStoreCoordinator())),
      m_liveFolders(statesOf(*m_delegate)),
      m_window(new WindowContext{{*m_delegate->managedObjectContext(), user, m_delegate->editQueue(),
                                  [this] {
                                      m_delegate->saveAction();
                                      return true; // what could not be saved stays, and is saved with what comes
                                  },
                                  &m_undoStack},
                                 *m_fetcher,
                                 m_liveFolders.get()}),
      m_backups(std::make_unique<BackupSchedule>(*m_delegate)), m_mainWindow(std::make_unique<MainWindow>())
{
    m_window->liveFolderManager = m_delegate->liveFolderManager();
    ImportDoor::setWatchedFolderCopy(
        [this](const QStringList &paths, const ZQObjectID &folder, const WhereFroms &origin) {
            LiveFolderEdits(*m_window).copyFiles(paths, folder, origin);
        });
    const auto index = std::make_shared<LibraryIndex>(m_delegate->persistentStoreCoordinator());
    index->follow(m_window->context);
    m_fetcher->setIndex(index);
    ZQPreviewService::prepare();
    m_mainWindow->setWindowTitle(QStringLiteral("Zelto"));
    m_mainWindow->setMinimumSize(720, 480);
    m_mainWindow->closeRequested = [this] { m_delegate->terminate(); };
    auto *central = new QWidget(m_mainWindow.get());
    auto *column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    m_toolbar = new MainToolbar(m_mainWindow.get());
    makePanes();
    column->addWidget(m_toolbar);
    column->addWidget(hairline(central));
    column->addWidget(m_splitter, 1);
    m_mainWindow->setCentralWidget(central);
    m_imports = std::make_unique<ImportActions>(*m_window, *m_browser);
    m_templates =
        std::make_unique<TemplateActions>(*m_window, *m_imports, m_delegate->templateDirectory(), m_mainWindow.get());
    m_layers = std::make_unique<LayerActions>(*m_window, *m_browser);
    m_cloud = new CloudActions(*m_window, *m_browser, m_toolbar->cloudButton(), m_mainWindow.get());
    const QString tabsPath = m_delegate->documentDirectory() + QStringLiteral("/opened_tabs.plist");
    m_tabs = new TabsController(*m_window, tabsPath, *m_toolbar, *m_sidebar, *m_browser, m_mainWindow.get());
    m_savedSearches =
        new SavedSearchActions(*m_window, *m_browser, *m_sidebar, m_toolbar->search(), m_mainWindow.get());
    auto *assistant = new SearchAssistant(*m_window, m_toolbar->search(), m_mainWindow.get());
    connect(m_browser, &BrowserViewController::searchRequested, assistant, &SearchAssistant::setText);
    connect(m_browser, &BrowserViewController::searchPartRequested, assistant, &SearchAssistant::select);
    connect(assistant, &SearchAssistant::typingChanged, m_browser, &BrowserViewController::setTypedAt);
    m_follower = new WindowFollower(*m_window, *m_sidebar, *m_browser, *m_info, m_mainWindow.get());
    m_arrived = new ArrivedItems(
        *m_window, m_user, *m_sidebar, *m_browser, [this] { m_toolbar->search().clear(); }, m_mainWindow.get());
    connect(m_arrived, &ArrivedItems::lastImportChanged, this, &MainWindowController::updateCommands);
    makeCommands();
    if (m_liveFolders) {
        new LiveFolderProgress(*m_window, m_mainWindow.get());
        connect(m_liveFolders.get(), &LiveFolderStates::changed, this, &MainWindowController::updateCommands);
    }
    m_user.setPlaces({m_mainWindow.get(), m_browser, m_sidebar, m_sidebar->progressLayout()});
    readFileTags();
    TextFields::yieldKeys(m_mainWindow.get());
    restoreGeometry();
    m_tabs->restore();
    updateCommands();
    startAfterFirstScreen(*index);
}

// It comes first; they would share the processors.
void MainWindowController::startAfterFirstScreen(LibraryIndex &index)
{
    auto *timer = new QTimer(m_sidebar);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, m_preferencesFollower, &PreferencesFollower::showCounts);
    connect(timer, &QTimer::timeout, &index, &LibraryIndex::start);
    connect(timer, &QTimer::timeout, timer, &QObject::deleteLater);
    connect(&m_browser->content(), &BrowserContent::changed, timer, [timer] { timer->start(0); });
    timer->start(longestBeforeFirstScreen);
}

MainWindowController::~MainWindowController()
{
    ImportDoor::setWatchedFolderCopy({});
    m_window->editQueue.cancelAllOperations();
    m_window->editQueue.waitUntilAllOperationsAreFinished();
    m_user.setPlaces({});
    m_undoStack.disconnect(this);
    // A window that goes still moves the focus.
    qApp->disconnect(this);
    QApplication::clipboard()->disconnect(this);
    m_mainWindow.reset();
}

void MainWindowController::readFileTags()
{
    auto *reader = new FileTagReader(
        *m_window, [this] { return m_browser->selectedItems(); },
        [this] { return m_browser->content().libraryItemIDs(m_browser->grid().visibleIndexes()); }, m_mainWindow.get());
    connect(m_browser, &BrowserViewController::selectionChanged, reader, &FileTagReader::selectionDidChange);
    m_mainWindow->activated = [reader] { reader->windowDidActivate(); };
}

void MainWindowController::applyTheme()
{
    PreferencesFollower::showTheme();
    ZQTheme::current().apply(*static_cast<QApplication *>(QCoreApplication::instance()));
    QApplication::setWindowIcon(ZQIcon::application());
}

void MainWindowController::makePanes()
{
    m_splitter = new QSplitter(Qt::Horizontal, m_mainWindow.get());
    m_splitter->setHandleWidth(1);
    m_splitter->setChildrenCollapsible(false);
    m_sidebar = new ProjectsSidebarViewController(*m_window, m_splitter);
    m_sidebar->setMinimumWidth(160);
    m_browser = new BrowserViewController(*m_window, m_splitter);
    m_browser->setMinimumWidth(320);
    m_side = new SidePanel(m_splitter);
    m_side->setMinimumWidth(220);
    m_side->setMaximumWidth(520);
    m_info = new InfoPanelViewController(*m_window, *m_browser, m_side);
    m_export = new ExportPanelViewController(*m_window, *m_browser, m_side);
    m_side->setPages(m_info, m_export);
    connect(m_side, &SidePanel::pageChanged, this, &MainWindowController::panesDidChange);
    connect(m_export, &ExportPanelViewController::closeRequested, this, [this] {
        showPanels(false, false);
        m_browser->grid().setFocus();
    });
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setSizes({ZQMeasure::sidebarWidth, 900, ZQMeasure::infoPanelWidth});
    connect(m_browser, &BrowserViewController::recoveryRequested, this,
            [this] { m_delegate->reportDamage({m_browser->content().error().localizedDescription()}); });
    connect(m_browser, &BrowserViewController::contextMenuRequested, this, &MainWindowController::showItemMenu);
}

void MainWindowController::makeCommands()
{
    m_commands = new WindowCommands(m_mainWindow.get());
    for (const auto &contributed :
         {m_sidebar->commands(), m_imports->commands(), m_templates->commands(), m_arrived->commands(),
          m_tabs->commands(), libraryCommands(), editCommands(), m_browser->commands(), m_savedSearches->commands(),
          NearDuplicateActions::commands(*m_window, *m_browser, m_mainWindow.get()), m_layers->commands(),
          m_cloud->commands(), CaptureActions::commands(*m_delegate), viewCommands(), helpCommands()}) {
        m_commands->add(contributed);
    }
    connect(m_sidebar, &ProjectsSidebarViewController::nearDuplicatesRequested, this,
            [this] { NearDuplicateActions::findInLibrary(*m_window, m_mainWindow.get()); });
    m_sidebar->keysOf = [this](CommandID id) { return command(id)->shortcut(); };
    m_toolbar->menuButton().setMenu(
        m_commands->makeMenus(&m_toolbar->menuButton(), [this](QMenu &menu) { m_export->addTo(menu); }));
    connect(m_toolbar, &MainToolbar::sidebarRequested, this, &MainWindowController::toggleSidebar);
    connect(m_toolbar, &MainToolbar::infoPanelRequested, this, &MainWindowController::toggleInfoPanel);
    connect(m_toolbar, &MainToolbar::exportPanelRequested, this, &MainWindowController::toggleExportPanel);
    connect(m_toolbar, &MainToolbar::newProjectRequested, m_sidebar, &ProjectsSidebarViewController::addNew);
    connect(m_sidebar, &ProjectsSidebarViewController::sideChanged, m_toolbar, &MainToolbar::showAdds);
    connect(m_toolbar, &MainToolbar::importRequested, this, [this] { m_imports->importWithDialog(); });
    connect(&m_browser->emptyState(), &EmptyState::importRequested, this, [this] { m_imports->importWithDialog(); });
    connect(&m_browser->emptyState(), &EmptyState::enableRequested, this,
            [this] { m_sidebar->liveFolders().setEnabled({m_browser->content().singleItem()}, true); });
    connect(&m_browser->emptyState(), &EmptyState::useRequested, this,
            [this] { m_sidebar->liveFolders().use(m_browser->content().singleItem()); });
    connect(&m_browser->emptyState(), &EmptyState::everythingRequested, &m_toolbar->search(), &QLineEdit::clear);
    connect(m_tabs, &TabsController::changed, this, &MainWindowController::updateCommands);
    connect(m_savedSearches, &SavedSearchActions::changed, this, &MainWindowController::updateCommands);
    connect(m_savedSearches, &SavedSearchActions::sidebarRequested, this, [this] {
        if (m_sidebar->isHidden()) {
            toggleSidebar();
        }
    });
    connect(m_cloud, &CloudActions::changed, this, &MainWindowController::updateCommands);
    connect(m_cloud, &CloudActions::preferencesRequested, this, &MainWindowController::showCloudPreferences);
    connect(m_browser, &BrowserViewController::orderChanged, this, &MainWindowController::updateCommands);
    connect(m_browser, &BrowserViewController::refineBarToggled, this, &MainWindowController::updateCommands);
    connect(m_tabs, &TabsController::panelsRequested, this, &MainWindowController::showPanels);
    connect(m_follower, &WindowFollower::sidebarReloaded, m_tabs, &TabsController::updateTitles);
    connect(m_browser, &BrowserViewController::selectionChanged, this, &MainWindowController::updateCommands);
    connect(&m_undoStack, &QUndoStack::indexChanged, this, &MainWindowController::updateCommands);
    connect(QApplication::clipboard(), &QClipboard::dataChanged, this, &MainWindowController::updateCommands);
    connect(qApp, &QApplication::focusChanged, this, &MainWindowController::updateCommands);
    m_preferencesFollower = new PreferencesFollower(*m_sidebar, *m_browser, m_user, m_mainWindow.get());
    connect(m_preferencesFollower, &PreferencesFollower::followed, this, &MainWindowController::updateCommands);
}

// Tied to the window's own places, or to what several panes share.

QList<WindowCommand> MainWindowController::libraryCommands()
{
    return {
        {CommandID::NewLibrary, zqLocalized("New Library…"), {}, [this] { m_delegate->newZeltoLibrary(); }},
        {CommandID::OpenLibrary, zqLocalized("Open Library…"), {}, [this] { m_delegate->openZeltoLibrary(); }},
        {CommandID::MoveLibrary,
         zqLocalized("Move Library…"),
         {},
         [this] { QTimer::singleShot(0, m_delegate, [delegate = m_delegate] { delegate->moveZeltoLibrary(); }); }},
        {CommandID::ShowLibraryInFiles,
         zqLocalized("Show Library in Files"),
         {},
         [this] { m_delegate->revealLibraryInFinder(); }},
        {CommandID::BackUpLibrary, zqLocalized("Back Up Library…"), {}, [this] { showLibraryPreferences(); }},
        {CommandID::VerifyLibrary,
         zqLocalized("Verify Library…"),
         {},
         [this] {
             showLibraryPreferences();
             m_preferences->verifyLibrary();
         }},
        {CommandID::LibraryStatistics, zqLocalized("Library Statistics…"), {}, [this] { showStatistics(); }},
        {CommandID::Quit, zqLocalized("Quit"), {Qt::CTRL | Qt::Key_Q}, [this] { m_delegate->terminate(); }},
    };
}

QList<WindowCommand> MainWindowController::editCommands()
{
    const auto named = [](const QString &plain, const QString &format, const QString &step) {
        return step.isEmpty() ? plain : zqFormat(format, {zqShortened(step, longestInMenu)});
    };
    return {
        {CommandID::Undo,
         zqLocalized("Undo"),
         {Qt::CTRL | Qt::Key_Z},
         [this] {
             if (!TextFields::canUndo() || !TextFields::forward("undo")) {
                 m_undoStack.undo();
             }
         },
         [this] { return TextFields::haveFocus() || m_undoStack.canUndo(); },
         {},
         [this, named] { return named(zqLocalized("Undo"), zqLocalized("Undo %@"), m_undoStack.undoText()); }},
        {CommandID::Redo,
         zqLocalized("Redo"),
         {Qt::CTRL | Qt::SHIFT | Qt::Key_Z},
         [this] {
             if (!TextFields::canRedo() || !TextFields::forward("redo")) {
                 m_undoStack.redo();
             }
         },
         [this] { return TextFields::haveFocus() || m_undoStack.canRedo(); },
         {},
         [this, named] { return named(zqLocalized("Redo"), zqLocalized("Redo %@"), m_undoStack.redoText()); }},
        {CommandID::Rename, zqLocalized("Rename"), {Qt::Key_F2}, [this] { rename(); }},
        {CommandID::Duplicate,
         zqLocalized("Duplicate"),
         {Qt::CTRL | Qt::Key_D},
         [this] { meansSidebarRow() ? m_sidebar->duplicateItem() : m_browser->duplicate(); },
         [this] { return !TextFields::haveFocus() && (meansSidebarRow() || m_browser->selectionCount() > 0); }},
        {CommandID::Preferences,
         zqLocalized("Preferences…"),
         {Qt::CTRL | Qt::Key_Comma},
         [this] { showPreferences(); }},
        {.id = CommandID::Remove,
         .title = zqLocalized("Remove"),
         .keys = {Qt::Key_Delete},
         .run = [this] { deleteKey(); },
         .isEnabled = [this] { return !TextFields::haveFocus() && (isSidebarFocused() || m_browser->canRemove()); },
         .yieldsToFields = true},
    };
}

QList<WindowCommand> MainWindowController::viewCommands()
{
    return {
        {CommandID::Sidebar,
         zqLocalized("Sidebar"),
         {Qt::CTRL | Qt::Key_B},
         [this] { toggleSidebar(); },
         {},
         [this] { return !m_sidebar->isHidden(); }},
        {CommandID::InfoPanel,
         zqLocalized("Info Panel"),
         {Qt::CTRL | Qt::SHIFT | Qt::Key_I},
         [this] { toggleInfoPanel(); },
         {},
         [this] { return m_side->shows(SidePanel::Page::Info); }},
        {CommandID::ExportPanel,
         zqLocalized("Quick Export"),
         {Qt::CTRL | Qt::Key_E},
         [this] { toggleExportPanel(); },
         {},
         [this] { return m_side->shows(SidePanel::Page::Export); }},
        {CommandID::FullScreen,
         zqLocalized("Full Screen"),
         {Qt::Key_F11},
         [this] { m_mainWindow->setWindowState(m_mainWindow->windowState() ^ Qt::WindowFullScreen); }},
        {CommandID::DarkTheme,
         zqLocalized("Dark Theme"),
         {},
         [this] { toggleTheme(); },
         {},
         [] { return ZQTheme::current().isDark(); }},
    };
}

QList<WindowCommand> MainWindowController::helpCommands()
{
    return {{CommandID::Keyboard, zqLocalized("Keyboard"), {Qt::Key_F1}, [this] { showKeys(); }},
            {CommandID::CheckForUpdates,
             zqLocalized("Check for Updates..."),
             {},
             [] {
                 if (SoftwareUpdater *const updater = SoftwareUpdater::current()) {
                     updater->checkForUpdates();
                 }
             },
             [] { return SoftwareUpdater::current() != nullptr; }},
            {CommandID::Menu, zqLocalized("Menu"), {Qt::Key_F10}, [this] { m_toolbar->menuButton().showMenu(); }}};
}

QAction *MainWindowController::command(CommandID id) const
{
    return m_commands->action(id);
}

void MainWindowController::updateCommands()
{
    if (!m_mainWindow->property(Sheet::isShownProperty).toBool()) {
        m_commands->update();
    }
}

void MainWindowController::toggleTheme()
{
    m_preferencesFollower->setDark(!ZQTheme::current().isDark());
    updateCommands();
}

void MainWindowController::showPreferences()
{
    if (!m_preferences) {
        m_preferences = new PreferencesWindow(*m_delegate, *m_backups, m_mainWindow.get());
    }
    m_preferences->show();
    m_preferences->raise();
    m_preferences->activateWindow();
}

void MainWindowController::showCloudPreferences()
{
    showPreferences();
    m_preferences->showPane(PreferencesWindow::cloudPane);
}

void MainWindowController::showLibraryPreferences()
{
    showPreferences();
    m_preferences->showPane(PreferencesWindow::libraryPane);
}

void MainWindowController::showStatistics()
{
    (new StatisticsSheet(m_mainWindow.get(), m_delegate->persistentStoreCoordinator(), m_delegate->libraryDirectory()))
        ->open([](std::optional<int>) {});
}

void MainWindowController::rename()
{
    if (isSidebarFocused()) {
        m_sidebar->renameSidebarItem();
        return;
    }
    if (m_browser->selectionCount() == 1) {
        if (!m_side->shows(SidePanel::Page::Info)) {
            toggleInfoPanel();
        }
        m_info->refresh();
        m_info->editTitle();
    }
}

bool MainWindowController::isSidebarFocused() const
{
    const QWidget *focus = QApplication::focusWidget();
    return focus && m_sidebar->isAncestorOf(focus);
}

bool MainWindowController::meansSidebarRow() const
{
    return isSidebarFocused() && m_sidebar->canDuplicate();
}

// Del means what has the focus: a row of the sidebar, or the items in this project.
void MainWindowController::deleteKey()
{
    if (isSidebarFocused()) {
        m_sidebar->deleteItem();
    } else {
        m_browser->removeFromProject();
    }
}

void MainWindowController::showItemMenu(const QPoint &globalPoint)
{
    QMenu menu(m_mainWindow.get());
    const auto add = [&](CommandID id) { menu.addAction(command(id)); };
    if (m_browser->selectionCount() > 0) {
        add(CommandID::Open);
        if (m_browser->selectionCount() > 1) {
            add(CommandID::Compare);
            add(CommandID::FindNearDuplicates);
        } else {
            add(CommandID::FindSimilar);
        }
        const QString path = m_browser->firstSelected() ? m_browser->firstSelected()->itemURL() : QString();
        if (!path.isEmpty()) {
            menu.addAction(zqLocalized("Open with Default Program"), this, [this, path] { handOut(path, path); });
            menu.addAction(zqLocalized("Show in Files"), this,
                           [this, path] { handOut(path, QFileInfo(path).absolutePath()); });
        }
        menu.addSeparator();
        add(CommandID::Copy);
        add(CommandID::Duplicate);
        add(CommandID::Rename);
        menu.addAction(m_commands->ratingMenu());
        m_export->addTo(*menu.addMenu(zqLocalized("Export")));
        add(CommandID::ExportLayers);
        add(CommandID::Share);
        menu.addSeparator();
        const auto single = m_browser->content().singleItem();
        if (single && m_browser->canRemove()) {
            const QString title =
                zqFormat(zqLocalized("Remove from %@"), {zqShortened(single->title(), longestInMenu)});
            menu.addAction(zqTitleWithKeys(title, command(CommandID::Remove)->shortcut()), m_browser,
                           &BrowserViewController::removeFromProject);
        }
        add(CommandID::DeleteFromLibrary);
    } else {
        add(CommandID::Import);
        add(CommandID::Paste);
        add(CommandID::SelectAll);
    }
    menu.exec(globalPoint);
}

// Whoever opens `shown` may write to the asset.
void MainWindowController::handOut(const QString &asset, const QString &shown)
{
    if (ZQError error; !ZQSharedFile::makeAllOwn(asset, &error)) {
        m_user.presentError(error);
        return;
    }
    QDesktopServices::openUrl(QUrl::fromLocalFile(shown));
}

void MainWindowController::showKeys()
{
    const QList<KeyLine> others = {{zqLocalized("F10"), zqLocalized("Menu")},
                                   {zqLocalized("Esc"), zqLocalized("Back, or clear the search")}};
    KeysSheet(m_mainWindow.get(), m_commands->keyLines() + others).run();
}

// The window as the application sees it.

QWidget *MainWindowController::window() const
{
    return m_mainWindow.get();
}

void MainWindowController::showWindow()
{
    makeKeyAndOrderFront();
    m_browser->grid().setFocus();
}

void MainWindowController::makeKeyAndOrderFront()
{
    m_mainWindow->show();
    m_mainWindow->raise();
    m_mainWindow->activateWindow();
}

bool MainWindowController::isMiniaturized() const
{
    return m_mainWindow->isMinimized();
}

void MainWindowController::deminiaturize()
{
    m_mainWindow->setWindowState(m_mainWindow->windowState() & ~Qt::WindowMinimized);
}

bool MainWindowController::isVisible() const
{
    return m_mainWindow->isVisible();
}

void MainWindowController::activateIgnoringOtherApps()
{
    m_mainWindow->activateWindow();
}

void MainWindowController::selectSidebarItem(const ZQObjectID &item)
{
    m_sidebar->selectItems({item});
}

void MainWindowController::newFileFromTemplate()
{
    m_templates->newFileFromTemplate();
}

bool MainWindowController::commitEditing()
{
    return m_info->commitEditing();
}

void MainWindowController::refreshContent()
{
    m_follower->refreshContent();
}

void MainWindowController::updateLocalization()
{
    m_sidebar->reload();
    m_tabs->updateTitles();
}

bool MainWindowController::isSettled() const
{
    return m_fetcher->isIdle() && !isEditing() && m_browser->grid().thumbnailLoader().pendingCount() == 0 &&
           m_follower->isSettled();
}
