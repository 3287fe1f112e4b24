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
        {zqKey("File"),
         {NewProject,
          NewFolder,
          NewTag,
          NewFromTemplate,
          AddLiveFolder,
          SyncLiveFolder,
          separator,
          Import,
          LastImport,
          SnapArea,
          ExportPanel,
          ExportLayers,
          Share,
          LatestUploads,
          separator,
          NewTab,
          CloseTab,
          ReopenClosedTab,
          separator,
          NewLibrary,
          OpenLibrary,
          MoveLibrary,
          ShowLibraryInFiles,
          BackUpLibrary,
          VerifyLibrary,
          CommandID::LibraryStatistics,
          separator,
          Quit}},
        {zqKey("Edit"),
         {Undo,
          Redo,
          separator,
          Copy,
          Paste,
          SelectAll,
          separator,
          CommandID::Rename,
          Duplicate,
          Remove,
          DeleteFromLibrary,
          separator,
          Rate0,
          separator,
          Find,
          FindSimilar,
          FindNearDuplicates,
          FindColor,
          SaveSearch,
          EditSearch,
          UpdateSearch,
          separator,
          Preferences}},
        {zqKey("View"), {Sidebar,   InfoPanel,        CommandID::RefineBar,
                         separator, ShowAsGrid,       ShowAsList,
                         separator, GroupPlain,       SortManually,
                         separator, LargerThumbnails, SmallerThumbnails,
                         separator, QuickLook,        Open,
                         Compare,   ZoomToFit,        ZoomToActualSize,
                         ZoomIn,    ZoomOut,          separator,
                         NextTab,   PreviousTab,      SelectTab1,
                         separator, FullScreen,       DarkTheme}},
        {zqKey("Help"), {Keyboard, separator, CheckForUpdates}},
    };
    return plans;
}

} // namespace

WindowCommands::WindowCommands(QWidget *window) : QObject(window), m_window(window) {}

void WindowCommands::add(const QList<WindowCommand> &commands)
{
    for (const WindowCommand &command : commands) {
        // What follows a tab a menu shows as keys.
        const QString viewKeys = command.viewKeys.isEmpty() ? QString() : u'\t' + command.viewKeys;
        auto *action = new QAction(command.title + viewKeys, m_window);
        action->setShortcuts(command.keys);
        action->setCheckable(bool(command.isChecked));
        if (command.yieldsToFields) {
            action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        } else if (command.keysIn) {
            action->setShortcutContext(Qt::WidgetShortcut);
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

QMenu *WindowCommands::makeLiveFolderMenu(QWidget *parent)
{
    auto *menu = new QMenu(zqLocalized("Live Folder"), parent);
    menu->setObjectName(QStringLiteral("Live Folder"));
    for (int id = int(CommandID::SyncLiveFolder); id <= int(CommandID::RevealLiveFolder); ++id) {
        menu->addAction(action(CommandID(id)));
    }
    return menu;
}

QMenu *WindowCommands::makeExportMenu(QWidget *parent)
{
    auto *menu = new QMenu(zqLocalized("Export"), parent);
    menu->setObjectName(QStringLiteral("Export"));
    connect(menu, &QMenu::aboutToShow, menu, [this, menu] {
        menu->clear();
        m_fillExportMenu(*menu);
    });
    m_export = menu->menuAction();
    return menu;
}

QMenu *WindowCommands::makeScreenshotMenu(QWidget *parent)
{
    auto *menu = new QMenu(zqLocalized("Take Screenshot"), parent);
    menu->setObjectName(QStringLiteral("Take Screenshot"));
    for (int id = int(CommandID::SnapArea); id <= int(CommandID::SnapWebsite); ++id) {
        menu->addAction(action(CommandID(id)));
    }
    return menu;
}

QMenu *WindowCommands::makeTabMenu(QWidget *parent)
{
    auto *menu = new QMenu(zqLocalized("Go to Tab"), parent);
    menu->setObjectName(QStringLiteral("Go to Tab"));
    for (int id = int(CommandID::SelectTab1); id <= int(CommandID::SelectTab9); ++id) {
        menu->addAction(action(CommandID(id)));
    }
    return menu;
}

QMenu *WindowCommands::makeOrderMenu(CommandID first, QWidget *parent)
{
    const bool isGroups = first == CommandID::GroupPlain;
    auto *menu = new QMenu(isGroups ? zqLocalized("Group") : zqLocalized("Sort"), parent);
    menu->setObjectName(isGroups ? QStringLiteral("Group") : QStringLiteral("Sort"));
    const CommandID last = isGroups ? CommandID::GroupBySize : CommandID::SortByHue;
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

QMenu *WindowCommands::makeMenus(QWidget *parent, std::function<void(QMenu &)> fillExportMenu)
{
    m_fillExportMenu = std::move(fillExportMenu);
    m_menus = new QMenu(parent);
    for (const MenuPlan &plan : menuPlans()) {
        QMenu *menu = m_menus->addMenu(zqLocalized(plan.title));
        menu->setObjectName(QLatin1StringView(plan.title));
        for (const Entry &entry : plan.entries) {
            if (!entry) {
                menu->addSeparator();
            } else if (*entry == CommandID::SyncLiveFolder) {
                menu->addMenu(makeLiveFolderMenu(menu));
            } else if (*entry == CommandID::ExportPanel) {
                menu->addAction(action(*entry));
                menu->addMenu(makeExportMenu(menu));
            } else if (*entry == CommandID::SnapArea) {
                menu->addMenu(makeScreenshotMenu(menu));
            } else if (*entry == CommandID::Rate0) {
                menu->addMenu(makeRatingMenu(menu));
            } else if (*entry == CommandID::SelectTab1) {
                menu->addMenu(makeTabMenu(menu));
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
    for (QAction *menu : {m_rating, m_export}) { // both are for what is selected
        if (menu) {
            menu->setEnabled(action(CommandID::Rate0)->isEnabled());
        }
    }
}

QList<KeyLine> WindowCommands::keyLines() const
{
    QHash<const QAction *, const WindowCommand *> commands;
    for (const WindowCommand &command : m_commands) {
        commands.insert(m_actions.value(command.id), &command);
    }
    QList<KeyLine> lines;
    for (const QMenu *menu : m_menus->findChildren<QMenu *>()) {
        for (const QAction *action : menu->actions()) {
            const WindowCommand *command = commands.value(action);
            if (command && (!command->keys.isEmpty() || !command->viewKeys.isEmpty())) {
                lines.append({command->keys.isEmpty() ? command->viewKeys
                                                      : command->keys.first().toString(QKeySequence::NativeText),
                              command->title}); // whatever it does at the moment
            }
        }
    }
    return lines;
}
