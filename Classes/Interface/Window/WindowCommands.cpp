#include "Classes/Interface/Window/WindowCommands.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QAction>
#include <QMenu>

#include <optional>

namespace {

using Entry = std::optional<CommandID>; // nothing: a separator

struct MenuPlan
{
    const char *title;
    std::vector<Entry> entries;
};

constexpr Entry separator = std::nullopt;

// Commands that are not in here have keys only.
const std::vector<MenuPlan> &menuPlans()
{
    using enum CommandID;
    static const std::vector<MenuPlan> plans = {
        {"File",
         {NewProject, NewFolder, NewTag, separator, Import, separator, NewTab, CloseTab, ReopenClosedTab, separator,
          NewLibrary, OpenLibrary, MoveLibrary, ShowLibraryInFiles, separator, Quit}},
        {"Edit",
         {Undo, Redo, separator, Copy, Paste, SelectAll, separator, CommandID::Rename, Duplicate, Remove,
          DeleteFromLibrary, separator, Rate0, separator, Find, SaveSearch, EditSearch, UpdateSearch}},
        {"View",
         {Sidebar, InfoPanel, CommandID::RefineBar, separator, ShowAsGrid, ShowAsList, separator, GroupPlain,
          SortManually, separator, LargerThumbnails, SmallerThumbnails, separator, QuickLook, Open, FullScreen,
          separator, DarkTheme}},
        {"Help", {Keyboard}},
    };
    return plans;
}

} // namespace

WindowCommands::WindowCommands(QWidget *window) : QObject(window), m_window(window) {}

void WindowCommands::add(const QList<WindowCommand> &commands)
{
    for (const WindowCommand &command : commands) {
        auto *action = new QAction(command.title, m_window);
        action->setShortcuts(command.keys);
        action->setCheckable(bool(command.isChecked));
        if (command.keysIn) {
            action->setShortcutContext(Qt::WidgetShortcut);
        } else if (command.yieldsToFields) {
            action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        }
        connect(action, &QAction::triggered, this, [run = command.run] { run(); });
        (command.keysIn ? command.keysIn : m_window)->addAction(action);
        m_actions.insert(command.id, action);
        m_commands.push_back(command);
    }
}

QAction *WindowCommands::action(CommandID id) const
{
    return m_actions.value(id);
}

QMenu *WindowCommands::makeRatingMenu(QWidget *parent)
{
    auto *menu = new QMenu(zqLocalized("Rating"), parent);
    menu->setObjectName(QStringLiteral("Rating"));
    for (int stars = 0; stars <= 5; ++stars) {
        menu->addAction(action(CommandID(int(CommandID::Rate0) + stars)));
    }
    m_rating = menu->menuAction();
    return menu;
}

QMenu *WindowCommands::makeOrderMenu(CommandID first, QWidget *parent)
{
    const bool isGroups = first == CommandID::GroupPlain;
    auto *menu = new QMenu(isGroups ? zqLocalized("Group") : zqLocalized("Sort"), parent);
    menu->setObjectName(isGroups ? QStringLiteral("Group") : QStringLiteral("Sort"));
    const CommandID last = isGroups ? CommandID::GroupBySize : CommandID::SortByCreationDate;
    for (int id = int(first); id <= int(last); ++id) {
        menu->addAction(action(CommandID(id)));
    }
    using enum CommandID;
    menu->addSeparator();
    for (const CommandID id : isGroups ? std::vector{CollapseGroup, ExpandGroup, CollapseAllGroups, ExpandAllGroups}
                                       : std::vector{SortAscending, SortDescending}) {
        menu->addAction(action(id));
    }
    return menu;
}

QMenu *WindowCommands::makeMenus(QWidget *parent)
{
    m_menus = new QMenu(parent);
    for (const MenuPlan &plan : menuPlans()) {
        QMenu *menu = m_menus->addMenu(zqLocalized(plan.title));
        menu->setObjectName(QLatin1StringView(plan.title));
        for (const Entry &entry : plan.entries) {
            if (!entry) {
                menu->addSeparator();
            } else if (*entry == CommandID::Rate0) {
                menu->addMenu(makeRatingMenu(menu));
            } else if (*entry == CommandID::GroupPlain || *entry == CommandID::SortManually) {
                menu->addMenu(makeOrderMenu(*entry, menu));
            } else {
                menu->addAction(action(*entry));
            }
        }
    }
    return m_menus;
}

void WindowCommands::update()
{
    for (const WindowCommand &command : m_commands) {
        QAction *const action = m_actions.value(command.id);
        if (command.isEnabled) {
            action->setEnabled(command.isEnabled());
        }
        if (command.isChecked) {
            action->setChecked(command.isChecked());
        }
        if (command.shown) {
            action->setText(command.shown());
        }
    }
    if (m_rating) {
        m_rating->setEnabled(action(CommandID::Rate0)->isEnabled());
    }
}

QStringList WindowCommands::keyLines() const
{
    QHash<const QAction *, QString> titles; // whatever they do at the moment
    for (const WindowCommand &command : m_commands) {
        titles.insert(m_actions.value(command.id), command.title);
    }
    QStringList lines;
    for (const QMenu *menu : m_menus->findChildren<QMenu *>()) {
        for (const QAction *action : menu->actions()) {
            if (!action->shortcut().isEmpty()) {
                lines.append(action->shortcut().toString(QKeySequence::NativeText) + QStringLiteral("   ") +
                             titles.value(action, action->text()));
            }
        }
    }
    return lines;
}
