#pragma once

#include "Kit/Files/ZQUserDefaults.h"

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

class tamberin_AppDelegate;

// The captures in the desktop's status area, as soon as it has one, while "ShowZeltoKun" is on. Never the only way to
// them. Main thread.
class StatusIcon : public QObject
{
    Q_OBJECT
public:
    static constexpr const char *preference = "ShowZeltoKun";

    explicit StatusIcon(tamberin_AppDelegate &delegate);

    void update(); // whether it is there, and the keys in its menu
    const QMenu &menu() const { return m_menu; }
    bool isShown() const { return m_icon.isVisible() && QSystemTrayIcon::isSystemTrayAvailable(); }

private:
    tamberin_AppDelegate &m_delegate;
    QMenu m_menu;
    QSystemTrayIcon m_icon; // goes before its menu
    ZQUserDefaults::Token m_token;
};
