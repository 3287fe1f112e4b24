#pragma once

#include "Classes/Interface/Sheets/KeysSheet.h"
#include "Classes/Interface/WindowCommand.h"

#include <QHash>
#include <QObject>

#include <vector>

class QAction;
class QMenu;

// The commands of one window as actions, their menus, and what is enabled and checked among them. Main thread.
class WindowCommands : public QObject
{
    Q_OBJECT
public:
    explicit WindowCommands(QWidget *window);

    void add(const QList<WindowCommand> &commands);
    QAction *action(CommandID id) const; // null for none
    QAction *ratingMenu() const { return m_rating; }

    // Once all commands are there. `fillExportMenu` makes the entries of the menu of exports whenever it opens.
    QMenu *makeMenus(QWidget *parent, std::function<void(QMenu &)> fillExportMenu);
    void update();                   // asks every command how it is now
    QList<KeyLine> keyLines() const; // as the menus have them

private:
    QMenu *makeRatingMenu(QWidget *parent);
    QMenu *makeLiveFolderMenu(QWidget *parent);
    QMenu *makeExportMenu(QWidget *parent);
    QMenu *makeScreenshotMenu(QWidget *parent);
    QMenu *makeTabMenu(QWidget *parent);
    QMenu *makeOrderMenu(CommandID first, QWidget *parent); // to group, or to sort

    QWidget *m_window;
    std::vector<WindowCommand> m_commands;
    QHash<CommandID, QAction *> m_actions;
    QMenu *m_menus = nullptr;
    QAction *m_rating = nullptr;
    QAction *m_export = nullptr;
    std::function<void(QMenu &)> m_fillExportMenu;
};
