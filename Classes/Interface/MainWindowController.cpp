#include "Classes/Interface/MainWindowController.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Interface/BrowserViewController.h"
#include "Classes/Interface/FileTagReader.h"
#include "Classes/Interface/ImportDoor.h"
#include "Classes/Interface/InfoPanelViewController.h"
#include "Classes/Interface/MainWindow.h"
#include "Classes/Interface/ProjectsSidebarViewController.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQPreviewService.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQTabStrip.h"

#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QSplitter>
#include <QToolButton>

namespace {

ZQUserDefaults &defaults()
{
    return ZQUserDefaults::standardUserDefaults();
}

const QString geometryKey = QStringLiteral("MainWindowGeometry");
const QString panesKey = QStringLiteral("MainWindowPanes");
const QString sidebarHiddenKey = QStringLiteral("SidebarHidden");
const QString infoHiddenKey = QStringLiteral("InfoPanelHidden");
const QString tabsKey = QStringLiteral("OpenTabs");
const QString currentTabKey = QStringLiteral("SelectedTab");

constexpr int infoDelay = 30;  // milliseconds
constexpr int editDelay = 250; // between two looks at what an edit of many items has changed

QFrame *hairline(QWidget *parent)
{
    auto *line = new QFrame(parent);
    line->setObjectName(QStringLiteral("Hairline"));
    line->setFixedHeight(1);
    return line;
}

} // namespace

MainWindowController::MainWindowController(WindowUserInteraction &user)
    : m_user(user), m_delegate(tamberin_AppDelegate::sharedDelegate()),
      m_fetcher(std::make_unique<ContentFetcher>(m_delegate->persistentStoreCoordinator())),
      m_window(new WindowContext{*m_delegate->managedObjectContext(), user, m_undoStack, *m_fetcher, m_editQueue,
                                 [this] { m_delegate->saveAction(); }}),
      m_mainWindow(std::make_unique<MainWindow>())
{
    ZQPreviewService::prepare();
    m_mainWindow->setWindowTitle(QStringLiteral("Zelto"));
    m_mainWindow->setMinimumSize(720, 480);
    m_mainWindow->closeRequested = [this] { m_delegate->terminate(); };
    auto *central = new QWidget(m_mainWindow.get());
    auto *column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    makeToolbar();
    makePanes();
    column->addWidget(m_toolbar);
    column->addWidget(hairline(central));
    column->addWidget(m_splitter, 1);
    m_mainWindow->setCentralWidget(central);
    makeCommands();
    m_user.setPlaces({m_mainWindow.get(), m_browser, m_sidebar, m_sidebar->progressLayout()});
    observe();
    restoreGeometry();
    restoreTabs();
    updateUndo();
    updateCommands();
}

MainWindowController::~MainWindowController()
{
    m_editQueue.cancelAllOperations();
    m_editQueue.waitUntilAllOperationsAreFinished();
    m_contextToken.reset();
    m_tokens.clear();
    m_user.setPlaces({});
    m_undoStack.disconnect(this);
    // A window that goes still moves the focus.
    qApp->disconnect(this);
    QApplication::clipboard()->disconnect(this);
    m_mainWindow.reset();
}

void MainWindowController::applyTheme()
{
    ZQTheme::current().setDark(defaults().boolForKey(QStringLiteral("UseDarkUI")));
    ZQTheme::current().apply(*static_cast<QApplication *>(QCoreApplication::instance()));
}

void MainWindowController::makeToolbar()
{
    m_toolbar = new QWidget(m_mainWindow.get());
    m_toolbar->setObjectName(QStringLiteral("Toolbar"));
    m_toolbar->setAttribute(Qt::WA_StyledBackground);
    m_toolbar->setFixedHeight(ZQMeasure::toolbarHeight);
    const auto button = [this](const QString &icon, const QString &name) {
        auto *made = new QToolButton(m_toolbar);
        made->setIcon(ZQIcon::icon(icon));
        made->setIconSize({ZQMeasure::iconSize, ZQMeasure::iconSize});
        made->setFixedSize(30, 28);
        made->setAccessibleName(name);
        made->setToolTip(name);
        made->setFocusPolicy(Qt::TabFocus);
        return made;
    };
    m_sidebarButton = button(QStringLiteral("sidebar"), zqLocalized("Sidebar (Ctrl+B)"));
    m_sidebarButton->setCheckable(true);
    connect(m_sidebarButton, &QToolButton::clicked, this, &MainWindowController::toggleSidebar);
    m_menuButton = button(QStringLiteral("menu"), zqLocalized("Menu (F10)"));
    auto *add = button(QStringLiteral("plus"), zqLocalized("New Project (Ctrl+N)"));
    connect(add, &QToolButton::clicked, this, [this] { m_sidebar->addNewProject(); });
    auto *import = button(QStringLiteral("import"), zqLocalized("Import… (Ctrl+I)"));
    connect(import, &QToolButton::clicked, this, &MainWindowController::importWithDialog);
    m_infoButton = button(QStringLiteral("info"), zqLocalized("Info Panel (Ctrl+Shift+I)"));
    m_infoButton->setCheckable(true);
    connect(m_infoButton, &QToolButton::clicked, this, &MainWindowController::toggleInfoPanel);
    m_tabStrip = new ZQTabStrip(m_toolbar);
    connect(m_tabStrip, &ZQTabStrip::currentChanged, this, &MainWindowController::showTab);
    connect(m_tabStrip, &ZQTabStrip::closeRequested, this, &MainWindowController::closeTab);
    connect(m_tabStrip, &ZQTabStrip::newRequested, this, &MainWindowController::newTab);
    connect(m_tabStrip, &ZQTabStrip::moved, this, [this](int from, int to) {
        m_tabs.move(from, to);
        m_currentTab = to;
        updateTabs();
    });
    m_search = new QLineEdit(m_toolbar);
    m_search->setObjectName(QStringLiteral("Search"));
    m_search->setPlaceholderText(zqLocalized("Search titles"));
    m_search->setAccessibleName(zqLocalized("Search titles"));
    m_search->addAction(ZQIcon::icon(QStringLiteral("search")), QLineEdit::LeadingPosition);
    m_search->setFixedSize(320, 30);
    m_search->setClearButtonEnabled(false);
    connect(m_search, &QLineEdit::textChanged, this, &MainWindowController::runSearch);

    auto *row = new QHBoxLayout(m_toolbar);
    row->setContentsMargins(10, 0, 10, 0);
    row->setSpacing(6);
    row->addWidget(m_sidebarButton);
    row->addWidget(add);
    row->addWidget(import);
    row->addSpacing(8);
    row->addWidget(m_tabStrip, 1, Qt::AlignBottom);
    row->addWidget(m_search);
    row->addWidget(m_infoButton);
    row->addWidget(m_menuButton);
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
    m_info = new InfoPanelViewController(*m_window, *m_browser, m_splitter);
    m_info->setMinimumWidth(220);
    m_info->setMaximumWidth(520);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setSizes({ZQMeasure::sidebarWidth, 900, ZQMeasure::infoPanelWidth});
    connect(m_sidebar, &ProjectsSidebarViewController::selectionChanged, this,
            &MainWindowController::sidebarSelectionChanged);
    connect(m_browser, &BrowserViewController::titleChanged, this, &MainWindowController::updateTabs);
    connect(m_browser, &BrowserViewController::recoveryRequested, this,
            [this] { m_delegate->reportDamage({m_browser->content().error().localizedDescription()}); });
    connect(m_browser, &BrowserViewController::contextMenuRequested, this, &MainWindowController::showItemMenu);
    m_infoTimer.setSingleShot(true);
    m_infoTimer.setInterval(infoDelay); // moving through items with a held key reads only where it stops
    connect(&m_infoTimer, &QTimer::timeout, this, [this] {
        const bool isShown = m_info->refresh();
        m_infoTimer.setInterval(isShown ? infoDelay : editDelay);
        if (!isShown) {
            m_infoTimer.start();
        }
    });
    connect(m_browser, &BrowserViewController::selectionChanged, this, [this] {
        m_infoTimer.start();
        updateCommands();
    });
    new FileTagReader(*m_window, *m_browser, m_mainWindow.get());
}

void MainWindowController::observe()
{
    m_contextToken =
        m_window->context.observeObjectsDidChange([this](const ZQContextDidSave &change) { contextDidChange(change); });
    auto &center = ZQNotificationCenter::defaultCenter();
    for (const QString &name :
         {QStringLiteral("ImportManagerDidFinishImportOperation"), ZQLibraryBaseItem::didDeleteNotification}) {
        m_tokens.append(center.addObserver(name, nullptr, [this](const ZQNotification &) { refreshContent(); }));
    }
    m_tokens.append(
        center.addObserver(ZQLibraryBaseItem::dataDidUpdateNotification, nullptr, [this](const ZQNotification &) {
            m_browser->redrawVisible();
            m_infoTimer.start();
        }));
    m_sidebarTimer.setSingleShot(true);
    m_sidebarTimer.setInterval(60);
    connect(&m_sidebarTimer, &QTimer::timeout, this, [this] {
        if (m_sidebar->isEditing()) {
            m_sidebarTimer.start(); // the editor would close
            return;
        }
        m_sidebar->reload();
        updateTabs();
    });
    m_editTimer.setSingleShot(true);
    m_editTimer.setInterval(editDelay);
    connect(&m_editTimer, &QTimer::timeout, this, [this] {
        m_sidebarTimer.start();
        refreshContent();
    });
    connect(&m_undoStack, &QUndoStack::indexChanged, this, &MainWindowController::updateUndo);
    connect(QApplication::clipboard(), &QClipboard::dataChanged, this, &MainWindowController::updateCommands);
}

void MainWindowController::contextDidChange(const ZQContextDidSave &change)
{
    const QString sidebarEntity = ZQSidebarBaseItem::entityName();
    const auto touchesSidebar = [&sidebarEntity](const QList<ZQObjectID> &ids) {
        return std::any_of(ids.begin(), ids.end(), [&](const ZQObjectID &id) {
            return id.rootEntity() && id.rootEntity()->name == sidebarEntity;
        });
    };
    // A batch follows the other; the last one is still part of the edit. The sidebar shows nothing that is gone.
    if (isEditing() && !touchesSidebar(change.deleted)) {
        for (QTimer *timer : {&m_infoTimer, &m_editTimer}) {
            if (!timer->isActive()) {
                timer->start();
            }
        }
        return;
    }
    m_infoTimer.start();
    if (touchesSidebar(change.inserted) || touchesSidebar(change.updated) || touchesSidebar(change.deleted)) {
        m_sidebarTimer.start();
    } else {
        m_sidebar->reloadCounts();
    }
    m_browser->refetch();
}

void MainWindowController::restoreGeometry()
{
    if (!m_mainWindow->restoreGeometry(defaults().dataForKey(geometryKey))) {
        m_mainWindow->resize(1280, 800);
    }
    m_splitter->restoreState(defaults().dataForKey(panesKey));
    m_splitter->setHandleWidth(1);
    m_sidebar->setVisible(!defaults().boolForKey(sidebarHiddenKey));
    m_info->setVisible(!defaults().boolForKey(infoHiddenKey));
    m_sidebarButton->setChecked(!m_sidebar->isHidden());
    m_infoButton->setChecked(!m_info->isHidden());
}

void MainWindowController::cancelEdits()
{
    m_editQueue.cancelAllOperations();
}

void MainWindowController::savePersistentState()
{
    m_info->commitEditing();
    zqRunMainLoopUntil([this] { return m_editQueue.operationCount() == 0; });
    m_browser->savePersistentState();
    saveTabs();
    const std::pair<QString, QVariant> kept[] = {
        {geometryKey, m_mainWindow->saveGeometry()},
        {panesKey, m_splitter->saveState()},
        {sidebarHiddenKey, m_sidebar->isHidden()},
        {infoHiddenKey, m_info->isHidden()},
    };
    for (const auto &[key, value] : kept) {
        defaults().setObjectForKey(value, key);
    }
}

// Tabs.

void MainWindowController::sidebarSelectionChanged()
{
    if (m_isSwitchingTab || m_currentTab < 0) {
        return;
    }
    const QList<ZQObjectID> items = m_sidebar->selectedItems();
    if (items.isEmpty() || items == m_browser->sidebarItems()) {
        return;
    }
    m_tabs[m_currentTab].items = items;
    m_browser->showSidebarItems(items);
    updateTabs();
    updateCommands();
}

void MainWindowController::showTab(int index)
{
    if (index < 0 || index >= m_tabs.size()) {
        return;
    }
    m_currentTab = index;
    m_isSwitchingTab = true;
    const Tab &tab = m_tabs[index];
    m_sidebar->selectItems(tab.items);
    m_isSwitchingTab = false;
    {
        const QSignalBlocker blocker(m_search);
        m_search->setText(tab.search);
    }
    m_browser->setFilter(tab.search);
    m_browser->showSidebarItems(tab.items);
    updateTabs();
    updateCommands();
}

void MainWindowController::updateTabs()
{
    QStringList titles;
    for (qsizetype i = 0; i < m_tabs.size(); ++i) {
        const auto item =
            m_tabs[i].items.size() == 1 ? m_window->sidebarItem(m_tabs[i].items.first()) : ZQRef<ZQSidebarBaseItem>();
        const bool isEmpty = m_tabs[i].items.isEmpty();
        titles.append(item      ? item->title()
                      : isEmpty ? zqLocalized("nothing selected")
                                : zqFormat(zqLocalized("%d items selected"), {int(m_tabs[i].items.size())}));
    }
    m_tabStrip->setTabs(titles, m_currentTab);
    m_mainWindow->setWindowTitle(titles.value(m_currentTab) + QStringLiteral(" — Zelto"));
}

void MainWindowController::newTab()
{
    m_tabs.insert(m_currentTab + 1, Tab{m_sidebar->selectedItems(), {}});
    showTab(m_currentTab + 1);
}

void MainWindowController::closeTab(int index)
{
    if (m_tabs.size() < 2 || index < 0 || index >= m_tabs.size()) {
        return;
    }
    m_closedTabs.append(m_tabs.takeAt(index));
    showTab(std::min(int(m_tabs.size()) - 1, index <= m_currentTab
                                                 ? std::max(0, m_currentTab - (index < m_currentTab ? 1 : 0))
                                                 : m_currentTab));
}

void MainWindowController::reopenTab()
{
    if (!m_closedTabs.isEmpty()) {
        m_tabs.insert(m_currentTab + 1, m_closedTabs.takeLast());
        showTab(m_currentTab + 1);
    }
}

void MainWindowController::saveTabs() const
{
    QVariantList tabs;
    const QUuid store = m_window->context.persistentStoreCoordinator()->storeUUID();
    for (const Tab &tab : m_tabs) {
        QStringList items;
        for (const ZQObjectID &id : tab.items) {
            items.append(id.URIRepresentation(store));
        }
        tabs.append(QVariantMap{{QStringLiteral("items"), items}, {QStringLiteral("search"), tab.search}});
    }
    defaults().setObjectForKey(tabs, tabsKey);
    defaults().setObjectForKey(m_currentTab, currentTabKey);
}

void MainWindowController::restoreTabs()
{
    for (const QVariant &value : defaults().objectForKey(tabsKey).toList()) {
        Tab tab;
        for (const QString &uri : value.toMap().value(QStringLiteral("items")).toStringList()) {
            const auto item = zqCast<ZQSidebarBaseItem>(m_window->context.objectWithURIRepresentation(uri));
            if (item && item->active()) {
                tab.items.append(item->objectID());
            }
        }
        tab.search = value.toMap().value(QStringLiteral("search")).toString();
        if (!tab.items.isEmpty()) {
            m_tabs.append(tab);
        }
    }
    if (m_tabs.isEmpty()) {
        const auto library = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(m_window->context);
        m_tabs.append(library ? Tab{{library->objectID()}, {}} : Tab{});
    }
    showTab(std::clamp(int(defaults().integerForKey(currentTabKey)), 0, int(m_tabs.size()) - 1));
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
    m_user.showNotificationWithText(zqLocalized("The template was added"), 0, 2.5);
}

bool MainWindowController::commitEditing()
{
    return m_info->commitEditing();
}

void MainWindowController::refreshContent()
{
    m_browser->refetch();
    m_sidebar->reloadCounts();
}

void MainWindowController::updateLocalization()
{
    m_sidebar->reload();
    updateTabs();
}

bool MainWindowController::isSettled() const
{
    return m_fetcher->isIdle() && !isEditing() && m_browser->grid().thumbnailLoader().pendingCount() == 0 &&
           !m_infoTimer.isActive() && !m_sidebarTimer.isActive() && !m_editTimer.isActive();
}
