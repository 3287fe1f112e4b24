#pragma once

#include "Classes/Interface/WindowContext.h"
#include "Kit/Operations/ZQNotificationCenter.h"

#include <QObject>
#include <QTimer>

class BrowserViewController;
class InfoPanelViewController;
class ProjectsSidebarViewController;

// Has what the window shows follow the store, and the info panel the selection: several changes in a row at once, and
// those of an edit of many items now and then, since with few cores what the window reads is taken from the edit. What
// a step brings back is selected. Main thread.
class WindowFollower : public QObject
{
    Q_OBJECT
public:
    WindowFollower(WindowContext &window, ProjectsSidebarViewController &sidebar, BrowserViewController &browser,
                   InfoPanelViewController &info, QObject *parent = nullptr);

    void refreshContent();
    void refreshInfo() { m_infoTimer.start(); }
    bool isSettled() const { return !m_infoTimer.isActive() && !m_sidebarTimer.isActive() && !m_editTimer.isActive(); }

Q_SIGNALS:
    void sidebarReloaded();

private:
    void contextDidChange(const ZQContextDidSave &change);
    EditContext::Brought whenStepBrings(); // selects that

    WindowContext &m_window;
    ProjectsSidebarViewController &m_sidebar;
    BrowserViewController &m_browser;
    QTimer m_infoTimer;
    QTimer m_sidebarTimer;
    QTimer m_editTimer;
    ZQManagedObjectContext::Token m_contextToken;
    QList<ZQNotificationCenter::Token> m_tokens;
};
