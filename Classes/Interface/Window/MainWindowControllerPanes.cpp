// The panes of the window: which are shown, how wide they are, and how they were left.

#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/InfoPanel/InfoPanelViewController.h"
#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"
#include "Classes/Interface/Window/MainToolbar.h"
#include "Classes/Interface/Window/MainWindow.h"
#include "Classes/Interface/Window/MainWindowController.h"
#include "Classes/Interface/Window/SidePanel.h"
#include "Classes/Interface/Window/TabsController.h"
#include "Classes/Interface/Window/WindowFollower.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Kit/Widgets/ZQWindowPlace.h"

#include <QScreen>
#include <QSignalBlocker>
#include <QSplitter>

namespace {

ZQUserDefaults &defaults()
{
    return ZQUserDefaults::standardUserDefaults();
}

const QString geometryKey = QStringLiteral("MainWindowGeometry");
const QString panesKey = QStringLiteral("MainWindowPanes");
const QString sidebarHiddenKey = QStringLiteral("SidebarHidden");
const QString infoHiddenKey = QStringLiteral("InfoPanelHidden");   // the whole pane
const QString exportShownKey = QStringLiteral("ExportPanelShown"); // in it

} // namespace

void MainWindowController::toggleSidebar()
{
    m_sidebar->setVisible(m_sidebar->isHidden());
    showInToolbar();
    m_follower->refreshInfo();
    updateCommands();
}

void MainWindowController::toggleInfoPanel()
{
    showPanels(!m_side->shows(SidePanel::Page::Info), false);
}

void MainWindowController::toggleExportPanel()
{
    showPanels(false, !m_side->shows(SidePanel::Page::Export));
}

void MainWindowController::showPanels(bool info, bool exportPanel)
{
    const bool isAsAsked = m_side->shows(SidePanel::Page::Info) == (info && !exportPanel) &&
                           m_side->shows(SidePanel::Page::Export) == exportPanel;
    if (isAsAsked) {
        return;
    }
    if (info || exportPanel) {
        const QSignalBlocker blocker(m_side); // told once
        m_side->setPage(exportPanel ? SidePanel::Page::Export : SidePanel::Page::Info);
    }
    m_side->setVisible(info || exportPanel);
    panesDidChange();
}

void MainWindowController::panesDidChange()
{
    showInToolbar();
    m_tabs->setPanelsOpen(m_side->shows(SidePanel::Page::Info), m_side->shows(SidePanel::Page::Export));
    m_follower->refreshInfo();
    updateCommands();
}

void MainWindowController::showInToolbar()
{
    m_toolbar->showPanes(!m_sidebar->isHidden(), m_side->shows(SidePanel::Page::Info),
                         m_side->shows(SidePanel::Page::Export));
}

void MainWindowController::restoreGeometry()
{
    if (!zqRestoreGeometry(*m_mainWindow, defaults().dataForKey(geometryKey))) {
        const QScreen &screen = *m_mainWindow->screen();
        const bool isEnlarged = screen.devicePixelRatio() > 1; // and holds less than it looks
        m_mainWindow->resize(isEnlarged ? QSize(1280, 800).boundedTo(screen.availableSize()) : QSize(1280, 800));
    }
    m_splitter->restoreState(defaults().dataForKey(panesKey));
    m_splitter->setHandleWidth(1);
    m_sidebar->setVisible(!defaults().boolForKey(sidebarHiddenKey));
    const QSignalBlocker blocker(m_side); // there is no tab yet to remember it
    m_side->setPage(defaults().boolForKey(exportShownKey) ? SidePanel::Page::Export : SidePanel::Page::Info);
    m_side->setVisible(!defaults().boolForKey(infoHiddenKey));
    showInToolbar();
}

void MainWindowController::layOutPanes(int width, bool withSidePanel)
{
    m_side->setVisible(withSidePanel);
    showInToolbar();
    m_splitter->setSizes({ZQMeasure::sidebarWidth, width - ZQMeasure::sidebarWidth - ZQMeasure::infoPanelWidth - 2,
                          ZQMeasure::infoPanelWidth});
}

void MainWindowController::savePersistentState()
{
    m_info->commitEditing();
    zqRunMainLoopUntil([this] { return !isEditing(); });
    m_browser->savePersistentState();
    m_tabs->save();
    const std::pair<QString, QVariant> kept[] = {
        {geometryKey, m_mainWindow->saveGeometry()},
        {panesKey, m_splitter->saveState()},
        {sidebarHiddenKey, m_sidebar->isHidden()},
        {infoHiddenKey, m_side->isHidden()},
        {exportShownKey, m_side->page() == SidePanel::Page::Export},
    };
    for (const auto &[key, value] : kept) {
        defaults().setObjectForKey(value, key);
    }
}
