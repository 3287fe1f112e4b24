#include "Classes/Interface/MainWindowController.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Interface/BrowserViewController.h"
#include "Classes/Interface/ImportDoor.h"
#include "Classes/Interface/InfoPanelViewController.h"
#include "Classes/Interface/MainWindow.h"
#include "Classes/Interface/ProjectsSidebarViewController.h"
#include "Classes/Interface/Sheet.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQTabStrip.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QToolButton>
#include <QUrl>

namespace {
constexpr double zoomStep = 0.08;
const QStringList menuTitles = {QStringLiteral("File"), QStringLiteral("Edit"), QStringLiteral("View"),
                                QStringLiteral("Help")};

bool textFieldHasFocus()
{
    QWidget *focus = QApplication::focusWidget();
    return focus && (focus->inherits("QLineEdit") || focus->inherits("QPlainTextEdit"));
}

// Sends an editing key's meaning to the text field with the focus.
bool forwardToTextField(const char *slot)
{
    return textFieldHasFocus() && QMetaObject::invokeMethod(QApplication::focusWidget(), slot);
}

// Typing is taken back in its field as long as there is some; then the window's steps are.
bool undoesInTextField()
{
    const auto *line = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    const auto *text = qobject_cast<QPlainTextEdit *>(QApplication::focusWidget());
    return (line && line->isUndoAvailable()) || (text && text->document()->isUndoAvailable());
}

bool redoesInTextField()
{
    const auto *line = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    const auto *text = qobject_cast<QPlainTextEdit *>(QApplication::focusWidget());
    return (line && line->isRedoAvailable()) || (text && text->document()->isRedoAvailable());
}
} // namespace

QList<WindowCommand> MainWindowController::fileCommands()
{
    const QString menu = menuTitles[0];
    QList<WindowCommand> commands = {
        {menu, QStringLiteral("New Project"), {Qt::CTRL | Qt::Key_N}, [this] { m_sidebar->addNewProject(); }},
        {menu, QStringLiteral("New Folder"), {Qt::CTRL | Qt::SHIFT | Qt::Key_N}, [this] { m_sidebar->addNewFolder(); }},
        {menu, QStringLiteral("New Tag"), {}, [this] { m_sidebar->addNewTag(); }},
        {menu, {}, {}, {}},
        {menu, QStringLiteral("Import…"), {Qt::CTRL | Qt::Key_I}, [this] { importWithDialog(); }},
        {menu, {}, {}, {}},
        {menu, QStringLiteral("New Tab"), {Qt::CTRL | Qt::Key_T}, [this] { newTab(); }},
        {menu, QStringLiteral("Close Tab"), {Qt::CTRL | Qt::Key_W}, [this] { closeTab(m_currentTab); }},
        {menu, QStringLiteral("Reopen Closed Tab"), {Qt::CTRL | Qt::SHIFT | Qt::Key_T}, [this] { reopenTab(); }},
        {{},
         QStringLiteral("Next Tab"),
         {Qt::CTRL | Qt::Key_Tab},
         [this] { showTab((m_currentTab + 1) % int(m_tabs.size())); }},
        {{},
         QStringLiteral("Previous Tab"),
         {Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, Qt::CTRL | Qt::Key_Backtab},
         [this] { showTab((m_currentTab + int(m_tabs.size()) - 1) % int(m_tabs.size())); }},
        {menu, {}, {}, {}},
        {menu, QStringLiteral("New Library…"), {}, [this] { m_delegate->newZeltoLibrary(); }},
        {menu, QStringLiteral("Open Library…"), {}, [this] { m_delegate->openZeltoLibrary(); }},
        {menu,
         QStringLiteral("Move Library…"),
         {},
         [this] { QTimer::singleShot(0, m_delegate, [delegate = m_delegate] { delegate->moveZeltoLibrary(); }); }},
        {menu, QStringLiteral("Show Library in Files"), {}, [this] { m_delegate->revealLibraryInFinder(); }},
        {menu, {}, {}, {}},
        {menu, QStringLiteral("Quit"), {Qt::CTRL | Qt::Key_Q}, [this] { m_delegate->terminate(); }},
    };
    for (int number = 1; number <= 9; ++number) {
        commands.append(
            {{}, QStringLiteral("Tab %1").arg(number), {Qt::CTRL | Qt::Key(Qt::Key_0 + number)}, [this, number] {
                 showTab(number - 1);
             }});
    }
    return commands;
}

QList<WindowCommand> MainWindowController::editCommands()
{
    const QString menu = menuTitles[1];
    return {
        {menu,
         QStringLiteral("Undo"),
         {Qt::CTRL | Qt::Key_Z},
         [this] {
             if (!undoesInTextField() || !forwardToTextField("undo")) {
                 m_undoStack.undo();
             }
         }},
        {menu,
         QStringLiteral("Redo"),
         {Qt::CTRL | Qt::SHIFT | Qt::Key_Z},
         [this] {
             if (!redoesInTextField() || !forwardToTextField("redo")) {
                 m_undoStack.redo();
             }
         }},
        {menu, {}, {}, {}},
        {menu,
         QStringLiteral("Copy"),
         {Qt::CTRL | Qt::Key_C},
         [this] {
             if (!forwardToTextField("copy")) {
                 m_browser->copyToClipboard();
             }
         }},
        {menu,
         QStringLiteral("Paste"),
         {Qt::CTRL | Qt::Key_V},
         [this] {
             if (!forwardToTextField("paste")) {
                 pasteFromClipboard();
             }
         }},
        {menu,
         QStringLiteral("Select All"),
         {Qt::CTRL | Qt::Key_A},
         [this] {
             if (!forwardToTextField("selectAll")) {
                 m_browser->grid().selectAll();
             }
         }},
        {menu, {}, {}, {}},
        {menu, QStringLiteral("Rename"), {Qt::Key_F2}, [this] { rename(); }},
        {menu, QStringLiteral("Duplicate"), {Qt::CTRL | Qt::Key_D}, [this] { m_browser->duplicate(); }},
        {menu, QStringLiteral("Remove"), {Qt::Key_Delete}, [this] { deleteKey(); }},
        {menu,
         QStringLiteral("Delete from Library"),
         {Qt::CTRL | Qt::Key_Delete},
         [this] { m_browser->deleteFromLibrary(); }},
        {menu, {}, {}, {}},
    };
}

// Only the grid takes their keys: in a field a digit is a digit.
void MainWindowController::makeRatingCommands()
{
    auto *menu = m_menuButton->menu()->findChild<QMenu *>(menuTitles[1])->addMenu(zqLocalized("Rating"));
    menu->setObjectName(QStringLiteral("Rating"));
    for (int stars = 0; stars <= 5; ++stars) {
        auto *action = new QAction(stars == 0   ? zqLocalized("None")
                                   : stars == 1 ? zqLocalized("1 Star")
                                                : zqFormat(zqLocalized("%d Stars"), {stars}),
                                   menu);
        action->setShortcut(Qt::Key(Qt::Key_0 + stars));
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, [this, stars] { m_info->rateItems(stars); });
        menu->addAction(action);
        m_browser->grid().addAction(action);
    }
    m_rating = menu->menuAction();
}

QList<WindowCommand> MainWindowController::findCommands()
{
    return {
        {menuTitles[1], {}, {}, {}},
        {menuTitles[1],
         QStringLiteral("Find"),
         {Qt::CTRL | Qt::Key_F},
         [this] {
             m_search->setFocus();
             m_search->selectAll();
         }},
    };
}

QList<WindowCommand> MainWindowController::viewCommands()
{
    const QString menu = menuTitles[2];
    return {
        {menu, QStringLiteral("Sidebar"), {Qt::CTRL | Qt::Key_B}, [this] { toggleSidebar(); }, true},
        {menu, QStringLiteral("Info Panel"), {Qt::CTRL | Qt::SHIFT | Qt::Key_I}, [this] { toggleInfoPanel(); }, true},
        {menu, {}, {}, {}},
        {menu,
         QStringLiteral("Larger Thumbnails"),
         {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal},
         [this] { m_browser->changeZoom(zoomStep); }},
        {menu,
         QStringLiteral("Smaller Thumbnails"),
         {Qt::CTRL | Qt::Key_Minus},
         [this] { m_browser->changeZoom(-zoomStep); }},
        {menu, {}, {}, {}},
        {menu, QStringLiteral("Quick Look"), {}, [this] { m_browser->openDetail(true); }},
        {menu, QStringLiteral("Open"), {}, [this] { m_browser->openDetail(false); }},
        {menu,
         QStringLiteral("Full Screen"),
         {Qt::Key_F11},
         [this] { m_mainWindow->setWindowState(m_mainWindow->windowState() ^ Qt::WindowFullScreen); }},
        {menu, {}, {}, {}},
        {menu, QStringLiteral("Dark Theme"), {}, [this] { toggleTheme(); }, true},
    };
}

QList<WindowCommand> MainWindowController::helpCommands()
{
    const QString menu = menuTitles[3];
    return {{menu, QStringLiteral("Keyboard"), {Qt::Key_F1}, [this] { showKeys(); }},
            {{}, QStringLiteral("Menu"), {Qt::Key_F10}, [this] { m_menuButton->showMenu(); }}};
}

void MainWindowController::makeCommands()
{
    auto *all = new QMenu(m_menuButton);
    for (const QString &title : menuTitles) {
        QMenu *menu = all->addMenu(zqLocalized(title));
        menu->setObjectName(title);
    }
    m_menuButton->setMenu(all);
    m_menuButton->setPopupMode(QToolButton::InstantPopup);
    addCommands(fileCommands() + editCommands());
    makeRatingCommands();
    addCommands(findCommands() + viewCommands() + helpCommands());
    m_undo = commandNamed(QStringLiteral("Undo"));
    m_redo = commandNamed(QStringLiteral("Redo"));
    // In a text field Delete deletes text.
    commandNamed(QStringLiteral("Remove"))->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(qApp, &QApplication::focusChanged, this, [this] { updateCommands(); });
    auto *escape = new QAction(m_search);
    escape->setShortcut(Qt::Key_Escape);
    escape->setShortcutContext(Qt::WidgetShortcut);
    connect(escape, &QAction::triggered, this, [this] {
        m_search->clear();
        m_browser->grid().setFocus();
    });
    m_search->addAction(escape);
    connect(m_search, &QLineEdit::returnPressed, this, [this] { m_browser->grid().setFocus(); });
}

void MainWindowController::addCommands(const QList<WindowCommand> &commands)
{
    for (const WindowCommand &command : commands) {
        QMenu *menu = command.menu.isEmpty() ? nullptr : m_menuButton->menu()->findChild<QMenu *>(command.menu);
        if (command.title.isEmpty()) {
            if (menu) {
                menu->addSeparator();
            }
            continue;
        }
        auto *action = new QAction(zqLocalized(command.title), m_mainWindow.get());
        action->setShortcuts(command.keys);
        action->setCheckable(command.isCheckable);
        connect(action, &QAction::triggered, this, [run = command.run] { run(); });
        m_mainWindow->addAction(action);
        if (menu) {
            menu->addAction(action);
        }
        m_commands.insert(command.title, action);
    }
}

QAction *MainWindowController::commandNamed(const QString &title) const
{
    return m_commands.value(title);
}

void MainWindowController::updateUndo()
{
    const QString undo = m_undoStack.undoText();
    const QString redo = m_undoStack.redoText();
    m_undo->setText(undo.isEmpty() ? zqLocalized("Undo") : zqFormat(zqLocalized("Undo %@"), {undo}));
    m_redo->setText(redo.isEmpty() ? zqLocalized("Redo") : zqFormat(zqLocalized("Redo %@"), {redo}));
    updateCommands();
}

void MainWindowController::updateCommands()
{
    if (!m_undo || m_mainWindow->property(Sheet::isShownProperty).toBool()) {
        return;
    }
    const bool inText = textFieldHasFocus();
    const bool hasSelection = m_browser->selectionCount() > 0;
    const std::pair<const char *, bool> enabled[] = {
        {"Undo", inText || m_undoStack.canUndo()},
        {"Redo", inText || m_undoStack.canRedo()},
        {"Copy", inText || hasSelection},
        {"Duplicate", hasSelection},
        {"Remove", !inText},
        {"Delete from Library", !inText && hasSelection},
        {"Quick Look", hasSelection},
        {"Open", hasSelection},
        {"Close Tab", m_tabs.size() > 1},
        {"Reopen Closed Tab", !m_closedTabs.isEmpty()},
    };
    for (const auto &[title, isEnabled] : enabled) {
        commandNamed(QLatin1StringView(title))->setEnabled(isEnabled);
    }
    m_rating->setEnabled(hasSelection);
    const std::pair<const char *, bool> checked[] = {
        {"Sidebar", !m_sidebar->isHidden()},
        {"Info Panel", !m_info->isHidden()},
        {"Dark Theme", ZQTheme::current().isDark()},
    };
    for (const auto &[title, isChecked] : checked) {
        commandNamed(QLatin1StringView(title))->setChecked(isChecked);
    }
}

void MainWindowController::runSearch()
{
    if (m_currentTab >= 0) {
        m_tabs[m_currentTab].search = m_search->text();
        m_browser->setFilter(m_search->text().trimmed());
    }
}

ZQRef<ZQSidebarBaseItem> MainWindowController::importTarget() const
{
    const auto single = m_browser->content().singleItem();
    const bool takes =
        single && !single->isRecent() && !single->isFolder() && !(single->isTag() && single->kind() != 0);
    return takes ? single : ZQSidebarBaseItem::libraryProjectInManagedObjectContext(m_window->context);
}

void MainWindowController::importWithDialog()
{
    FileChoice choice;
    choice.title = zqLocalized("Import");
    choice.prompt = zqLocalized("Import");
    choice.extensions = ImportDoor::openPanelExtensions();
    choice.several = true;
    const QStringList paths = m_user.chooseFilesToOpen(choice);
    if (const auto target = importTarget(); target && !paths.isEmpty()) {
        ImportDoor::importFiles(paths, target.get(), ZQSidebarBaseItem::appendIndex);
    }
}

void MainWindowController::pasteFromClipboard()
{
    const QMimeData *mime = QApplication::clipboard()->mimeData();
    const auto target = importTarget();
    if (!target || !mime || !ImportDoor::carriesContent(mime)) {
        m_user.showNotificationWithText(zqLocalized("There is no picture or file on the clipboard"), 1, 2.5);
        return;
    }
    ImportDoor::importPasteboard(mime, target.get(), ZQSidebarBaseItem::appendIndex);
}

void MainWindowController::toggleSidebar()
{
    m_sidebar->setVisible(m_sidebar->isHidden());
    m_sidebarButton->setChecked(!m_sidebar->isHidden());
    updateCommands();
}

void MainWindowController::toggleInfoPanel()
{
    m_info->setVisible(m_info->isHidden());
    m_infoButton->setChecked(!m_info->isHidden());
    m_infoTimer.start();
    updateCommands();
}

void MainWindowController::toggleTheme()
{
    const bool dark = !ZQTheme::current().isDark();
    ZQUserDefaults::standardUserDefaults().setObjectForKey(dark, QStringLiteral("UseDarkUI"));
    ZQTheme::current().setDark(dark);
    updateCommands();
}

void MainWindowController::rename()
{
    QWidget *focus = QApplication::focusWidget();
    if (focus && m_sidebar->isAncestorOf(focus)) {
        m_sidebar->renameSidebarItem();
        return;
    }
    if (m_browser->selectionCount() == 1) {
        if (m_info->isHidden()) {
            toggleInfoPanel();
        }
        m_info->refresh();
        m_info->editTitle();
    }
}

// Del means what has the focus: a row of the sidebar, or the items in this project.
void MainWindowController::deleteKey()
{
    QWidget *focus = QApplication::focusWidget();
    if (focus && m_sidebar->isAncestorOf(focus)) {
        m_sidebar->deleteItem();
    } else {
        m_browser->removeFromProject();
    }
}

void MainWindowController::showItemMenu(const QPoint &globalPoint)
{
    QMenu menu(m_mainWindow.get());
    const auto add = [&](const char *title) { menu.addAction(commandNamed(QString::fromUtf8(title))); };
    if (m_browser->selectionCount() > 0) {
        add("Open");
        const QString path = m_browser->firstSelected() ? m_browser->firstSelected()->itemURL() : QString();
        if (!path.isEmpty()) {
            menu.addAction(zqLocalized("Open with Default Program"), this,
                           [path] { QDesktopServices::openUrl(QUrl::fromLocalFile(path)); });
            menu.addAction(zqLocalized("Show in Files"), this,
                           [path] { QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath())); });
        }
        menu.addSeparator();
        add("Copy");
        add("Duplicate");
        add("Rename");
        menu.addAction(m_rating);
        menu.addSeparator();
        const auto single = m_browser->content().singleItem();
        if (single && (single->isProject() || single->isTag())) {
            menu.addAction(zqFormat(zqLocalized("Remove from %@"), {single->title()}), m_browser,
                           &BrowserViewController::removeFromProject);
        }
        add("Delete from Library");
    } else {
        add("Import…");
        add("Paste");
        add("Select All");
    }
    menu.exec(globalPoint);
}

void MainWindowController::showKeys()
{
    QStringList lines;
    for (QMenu *menu : m_menuButton->menu()->findChildren<QMenu *>()) {
        for (const QAction *action : menu->actions()) {
            if (!action->shortcut().isEmpty()) {
                lines.append(action->shortcut().toString(QKeySequence::NativeText) + QStringLiteral("   ") +
                             action->text());
            }
        }
    }
    lines += {zqLocalized("Space   Quick look"), zqLocalized("Enter   Open"), zqLocalized("Esc   Back")};
    UserQuestion question;
    question.message = zqLocalized("Keyboard");
    question.informativeText = lines.join(u'\n');
    question.buttons = {zqLocalized("OK")};
    m_user.ask(question);
}
