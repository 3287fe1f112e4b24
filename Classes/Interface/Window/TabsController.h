#pragma once

#include "Classes/Browsing/OpenTabs.h"
#include "Classes/Interface/WindowCommand.h"

#include <QObject>

class BrowserViewController;
class MainToolbar;
class ProjectsSidebarViewController;

// Keeps the tab strip, the search field, the sidebar's selection and the browser in step with the tab in front. Main
// thread.
class TabsController : public QObject
{
    Q_OBJECT
public:
    TabsController(EditContext &edits, MainToolbar &toolbar, ProjectsSidebarViewController &sidebar,
                   BrowserViewController &browser, QObject *parent = nullptr);

    void restore() { m_tabs.restore(); }
    void save() const { m_tabs.save(); }
    void updateTitles();
    QList<WindowCommand> commands();

Q_SIGNALS:
    void changed(); // what is shown, or how many tabs there are

private:
    void showCurrent();
    void sidebarSelectionChanged();

    OpenTabs m_tabs;
    MainToolbar &m_toolbar;
    ProjectsSidebarViewController &m_sidebar;
    BrowserViewController &m_browser;
    bool m_isSwitching = false;
};
