#include "Classes/Interface/Window/TabsController.h"

#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Browsing/Search/SearchToken.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"
#include "Classes/Interface/Window/MainToolbar.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQGridView.h"
#include "Kit/Widgets/ZQTabStrip.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <QAction>
#include <QLineEdit>

TabsController::TabsController(EditContext &edits, const QString &path, MainToolbar &toolbar,
                               ProjectsSidebarViewController &sidebar, BrowserViewController &browser, QObject *parent)
    : QObject(parent), m_edits(edits), m_tabs(edits, path), m_toolbar(toolbar), m_sidebar(sidebar), m_browser(browser)
{
    connect(&m_tabs, &OpenTabs::currentChanged, this, &TabsController::showCurrent);
    connect(&m_tabs, &OpenTabs::tabsChanged, this, [this] {
        updateTitles();
        Q_EMIT changed();
    });
    connect(&m_tabs, &OpenTabs::aboutToLeave, &browser, &BrowserViewController::keepViewState);
    connect(&m_tabs, &OpenTabs::aboutToSave, &browser, &BrowserViewController::keepViewState);
    connect(&browser, &BrowserViewController::viewChanged, &m_tabs, &OpenTabs::saveSoon);
    ZQTabStrip &strip = toolbar.tabStrip();
    connect(&strip, &ZQTabStrip::currentChanged, &m_tabs, &OpenTabs::select);
    connect(&strip, &ZQTabStrip::closeRequested, &m_tabs, &OpenTabs::closeTab);
    connect(&strip, &ZQTabStrip::newRequested, &m_tabs, &OpenTabs::newTab);
    connect(&strip, &ZQTabStrip::moved, &m_tabs, &OpenTabs::moveTab);
    connect(&sidebar, &ProjectsSidebarViewController::selectionChanged, this, &TabsController::sidebarSelectionChanged);
    connect(&browser, &BrowserViewController::titleChanged, this, &TabsController::updateTitles);
    QLineEdit &search = toolbar.search();
    connect(&search, &QLineEdit::textChanged, &browser, &BrowserViewController::setFilter);
    auto *escape = new QAction(&search);
    escape->setShortcut(Qt::Key_Escape);
    escape->setShortcutContext(Qt::WidgetShortcut);
    connect(escape, &QAction::triggered, this, [this] {
        m_toolbar.search().clear();
        m_browser.grid().setFocus();
    });
    search.addAction(escape);
    connect(&search, &QLineEdit::returnPressed, this, [this] { m_browser.grid().setFocus(); });
}

void TabsController::showCurrent()
{
    const auto &tab = m_tabs.current();
    m_isSwitching = true;
    m_sidebar.selectItems(tab->sidebarSelectedItems());
    m_isSwitching = false;
    {
        const QSignalBlocker blocker(&m_toolbar.search());
        m_toolbar.search().setText(tab->searchString());
    }
    m_browser.showTab(tab);
    updateTitles();
    if (const auto &view = tab->view; view.infoPanelOpen || view.exportPanelOpen) {
        Q_EMIT panelsRequested(view.infoPanelOpen.value_or(false), view.exportPanelOpen.value_or(false));
    }
    Q_EMIT changed();
}

void TabsController::setPanelsOpen(bool info, bool exportPanel)
{
    m_tabs.current()->view.infoPanelOpen = info;
    m_tabs.current()->view.exportPanelOpen = exportPanel;
    m_tabs.saveSoon();
}

void TabsController::sidebarSelectionChanged()
{
    const QList<ZQObjectID> items = m_sidebar.selectedItems();
    if (m_isSwitching || items.isEmpty() || items == m_tabs.current()->sidebarSelectedItems()) {
        return;
    }
    m_browser.showSidebarItems(items);
    m_tabs.saveSoon();
    updateTitles();
    Q_EMIT changed();
}

void TabsController::updateTitles()
{
    const QStringList titles = m_tabs.titles();
    m_browser.updateHead();
    m_toolbar.tabStrip().setTabs(titles, m_tabs.currentIndex());
    m_toolbar.window()->setWindowTitle(titles.value(m_tabs.currentIndex()) + QStringLiteral(" — Zelto"));
}

// Of the whole library, whatever place the picture was found in.
void TabsController::findSimilar()
{
    const auto item = m_browser.firstSelected();
    const auto library = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(m_edits.context);
    if (!item || !library) {
        return;
    }
    if (item->pictureHash().isEmpty()) {    // null while nobody has looked
        if (item->pictureHash().isNull()) { // among many, its turn may be hours away
            ZQLibraryEnvironment::current().thumbForLibraryItem(item.get());
        }
        const QString text =
            item->pictureHash().isNull()
                ? zqLocalized("What “%@” looks like is not known yet. Try again in a moment.")
                : zqLocalized("“%@” shows nothing by which others could be found: it has one color, or none.");
        m_edits.user.showNotificationWithText(zqFormat(text, {item->title()}), NotificationPlace::Browser,
                                              usualNotificationTime);
        return;
    }
    const ZQObjectID id = item->objectID();
    if (m_edits.context.hasChanges()) {
        m_edits.save(); // what is searched is what was saved, and it may have been looked at a moment ago
    }
    m_tabs.openTab({library->objectID()},
                   SearchToken::ofField(SearchField::Like).name() + u' ' + SearchManager::quoted(item->bundleID()));
    m_browser.selectLibraryItem(id);
}

QList<WindowCommand> TabsController::commands()
{
    QList<WindowCommand> result = {
        {CommandID::NewTab, zqLocalized("New Tab"), {Qt::CTRL | Qt::Key_T}, [this] { m_tabs.newTab(); }},
        {CommandID::CloseTab,
         zqLocalized("Close Tab"),
         {Qt::CTRL | Qt::Key_W},
         [this] { m_tabs.closeTab(m_tabs.currentIndex()); },
         [this] { return m_tabs.count() > 1; }},
        {CommandID::ReopenClosedTab,
         zqLocalized("Reopen Closed Tab"),
         {Qt::CTRL | Qt::SHIFT | Qt::Key_T},
         [this] { m_tabs.reopenTab(); },
         [this] { return m_tabs.canReopen(); }},
        {CommandID::NextTab, zqLocalized("Next Tab"), {Qt::CTRL | Qt::Key_Tab}, [this] { m_tabs.selectNext(1); }},
        {CommandID::PreviousTab,
         zqLocalized("Previous Tab"),
         {Qt::CTRL | Qt::SHIFT | Qt::Key_Tab},
         [this] { m_tabs.selectNext(-1); }},
        {CommandID::Find,
         zqLocalized("Find"),
         {Qt::CTRL | Qt::Key_F},
         [this] {
             m_toolbar.search().setFocus();
             m_toolbar.search().selectAll();
         }},
        {CommandID::FindSimilar,
         zqLocalized("Find Similar"),
         {Qt::CTRL | Qt::SHIFT | Qt::Key_F},
         [this] { findSimilar(); },
         [this] { return m_browser.selectionCount() == 1; }},
    };
    for (int index = 0; index < 9; ++index) {
        result.append({CommandID(int(CommandID::SelectTab1) + index),
                       zqFormat(zqLocalized("Tab %d"), {index + 1}),
                       {Qt::CTRL | Qt::Key(Qt::Key_1 + index)},
                       [this, index] { m_tabs.select(index); }});
    }
    return result;
}
