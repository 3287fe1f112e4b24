#pragma once

#include "Kit/Desktop/ZQDesktopSettings.h"
#include "Kit/Files/ZQUserDefaults.h"

#include <QObject>

class BrowserViewController;
class ProjectsSidebarViewController;
class UserInteraction;
class ZQFileWatcher;

// Has a window look as the preferences say, from the beginning and whenever one of them is changed, by another process
// too. Main thread.
class PreferencesFollower : public QObject
{
    Q_OBJECT
public:
    PreferencesFollower(ProjectsSidebarViewController &sidebar, BrowserViewController &browser, UserInteraction &user,
                        QObject *parent = nullptr);

    static void showTheme(const ZQDesktopSettings::Wishes &wishes = {}); // those of the desktop come later
    void setDark(bool isDark); // the preference, and what is shown; a notification says where it cannot be written
    void showCounts();         // not from the beginning: they cost more than the first screen can wait for

Q_SIGNALS:
    void followed(); // what commands show as checked may be another

private:
    void preferenceDidChange(const QString &key);
    void showItems();
    void lookAtFile();

    ProjectsSidebarViewController &m_sidebar;
    BrowserViewController &m_browser;
    UserInteraction &m_user;
    ZQFileWatcher *m_watcher;
    ZQDesktopSettings *m_desktop;
    ZQUserDefaults::Token m_token;
};
