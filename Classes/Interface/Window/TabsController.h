#pragma once

#include "Classes/Browsing/Tabs/OpenTabs.h"
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
    // `path`: of the file that keeps them.
    TabsController(EditContext &edits, const QString &path, MainToolbar &toolbar,
                   ProjectsSidebarViewController &sidebar, BrowserViewController &browser, QObject *parent = nullptr);

    void restore() { m_tabs.restore(); }
    void save() { m_tabs.save(); }
    void setPanelsOpen(bool info, bool exportPanel); // of the tab in front
    void updateTitles();
    QList<WindowCommand> commands();

Q_SIGNALS:
    void changed();                                    // what is shown, or how many tabs there are
    void panelsRequested(bool info, bool exportPanel); // as the tab that came to the front had them

private:
    void showCurrent();
    void findSimilar();
    void sidebarSelectionChanged();

    EditContext &m_edits;
    OpenTabs m_tabs;
    MainToolbar &m_toolbar;
    ProjectsSidebarViewController &m_sidebar;
    BrowserViewController &m_browser;
    bool m_isSwitching = false;
};
