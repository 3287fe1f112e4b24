#pragma once

#include "Classes/Interface/Preferences/PreferencesPane.h"
#include "Classes/Services/LaunchAtLogin.h"

// What Zelto does beside the library: starting at login, and looking for new versions. Main thread.
class ServicesPane : public PreferencesPane
{
    Q_OBJECT
public:
    explicit ServicesPane(QWidget *parent = nullptr);

private:
    void addLogin();
    void addUpdates();
    void setLaunchAtLogin(bool isOn);
    void setUpdatesEnabled(bool isEnabled);
    void showUpdates(const QString &whyNot); // empty: they can be looked for

    LaunchAtLogin m_launchAtLogin;
    QCheckBox *m_login = nullptr;
    QList<QWidget *> m_updates; // what has no meaning where there are no checks
    QLabel *m_whyNot = nullptr;
};
