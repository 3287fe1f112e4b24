#pragma once

#include <QKeySequence>
#include <QString>

#include <functional>

class QAction;
class QMenu;
class QWidget;

// One command of the window: where it is found, its keys, what it does.
struct WindowCommand
{
    QString menu;  // "File", "Edit", "View", "Help"; empty: keys only
    QString title; // empty: a separator
    QList<QKeySequence> keys;
    std::function<void()> run;
    bool isCheckable = false;
};
