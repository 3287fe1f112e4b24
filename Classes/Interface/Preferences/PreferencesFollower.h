#pragma once

#include "Kit/Files/ZQUserDefaults.h"

#include <QObject>

class BrowserViewController;
class ProjectsSidebarViewController;

// Has a window look as the preferences say, from the beginning and whenever one of them is changed. Main thread.
class PreferencesFollower : public QObject
{
    Q_OBJECT
public:
    PreferencesFollower(ProjectsSidebarViewController &sidebar, BrowserViewController &browser,
                        QObject *parent = nullptr);

    static void showTheme();
    static void setDark(bool isDark); // the preference, and what is shown

Q_SIGNALS:
    void followed(); // what commands show as checked may be another

private:
    void preferenceDidChange(const QString &key);
    void showItems();

    ProjectsSidebarViewController &m_sidebar;
    BrowserViewController &m_browser;
    ZQUserDefaults::Token m_token;
};
