// The keyboard alone: every command's keys are in the menus, and Tab reaches every control, which shows it.

#include "Classes/Interface/Browser/BrowserHead.h"
#include "Tests/Classes/Interface/MainWindowTest.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QSet>
#include <QToolButton>

namespace {

// What comes to a field with Ctrl.
class KeysOfField : public QObject
{
public:
    QStringList keys;
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress) {
            const QKeyCombination pressed = static_cast<QKeyEvent *>(event)->keyCombination();
            if (pressed.keyboardModifiers() & Qt::ControlModifier && pressed.key() != Qt::Key_Control) {
                keys.append(QKeySequence(pressed).toString());
            }
        }
        return QObject::eventFilter(object, event);
    }
};

class KeysTest : public MainWindowTest
{
protected:
    void SetUp() override
    {
        MainWindowController::applyTheme();
        MainWindowTest::SetUp();
    }
    // "Ctrl+N New Project" and so on, of all menus.
    QStringList menuKeys()
    {
        QStringList lines;
        const auto *menus = window().findChild<QMenu *>(QStringLiteral("File"))->parentWidget();
        for (const QMenu *each : menus->findChildren<QMenu *>()) {
            for (const QAction *action : each->actions()) {
                for (const QKeySequence &keys : action->shortcuts()) {
                    lines.append(keys.toString() + u' ' + action->text());
                }
                if (const qsizetype tab = action->text().indexOf(u'\t'); tab >= 0) {
                    lines.append(action->text().mid(tab + 1) + u' ' + action->text().left(tab));
                }
            }
        }
        return lines;
    }
    static QString spoken(QWidget *widget)
    {
        return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
    }
    // What is drawn where the widget is, with the ring that may lie around it.
    QImage drawn(const QWidget *widget)
    {
        const QRect place(widget->mapTo(&window(), QPoint(0, 0)), widget->size());
        return window().grab(place.adjusted(-8, -8, 8, 8)).toImage();
    }
    // By Tab, or back, from the grid until it has the focus again.
    QList<QWidget *> walk(Qt::Key key)
    {
        constexpr int tooMany = 100;
        QList<QWidget *> stops;
        search().setFocus();
        grid().setFocus(Qt::TabFocusReason);
        do {
            QWidget *before = QApplication::focusWidget();
            stops.append(before);
            const QImage focused = drawn(before);
            press(key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
            EXPECT_NE(drawn(before), focused) << "nothing shows the focus of " << nameOf(before);
        } while (QApplication::focusWidget() != &grid() && stops.size() < tooMany);
        return stops;
    }
    static std::string nameOf(QWidget *widget)
    {
        return (spoken(widget) + QStringLiteral(" (%1)").arg(QLatin1StringView(widget->metaObject()->className())))
            .toStdString();
    }
    // From left to right, as they stand. How many lie there.
    static int expectInOrder(const QList<QWidget *> &stops, const QWidget &row)
    {
        int left = -1;
        int count = 0;
        for (QWidget *stop : stops) {
            if (row.isAncestorOf(stop)) {
                const int x = stop->mapTo(&row, QPoint(0, 0)).x();
                EXPECT_GT(x, left) << nameOf(stop);
                left = x;
                ++count;
            }
        }
        return count;
    }
    void expectAllSeen(const QList<QWidget *> &stops)
    {
        for (QWidget *stop : stops) {
            EXPECT_TRUE(stop->isVisible() && !stop->size().isEmpty()) << nameOf(stop);
            EXPECT_FALSE(spoken(stop).isEmpty()) << nameOf(stop);
            EXPECT_EQ(stops.count(stop), 1) << nameOf(stop);
        }
    }
};

} // namespace

TEST_F(KeysTest, EveryCommandOfTheKeyboardIsInAMenu)
{
    const QStringList lines = menuKeys();
    for (const char *line : {
             "Ctrl+I Import…",
             "Ctrl+Alt+N New from Template…",
             "Ctrl+T New Tab",
             "Ctrl+W Close Tab",
             "Ctrl+Shift+T Reopen Closed Tab",
             "Ctrl+Shift+N New Folder",
             "Ctrl+N New Project",
             "Ctrl+1 Tab 1",
             "Ctrl+9 Tab 9",
             "Ctrl+Tab Next Tab",
             "Ctrl+Shift+Tab Previous Tab",
             "Ctrl+F Find",
             "Space Quick Look",
             "Enter Open",
             "Ctrl+K Compare",
             "Del Remove",
             "Ctrl+Del Delete from Library",
             "Ctrl+D Duplicate",
             "Ctrl+Z Undo",
             "Ctrl+Shift+Z Redo",
             "0 No rating",
             "1 1 Star",
             "5 5 Stars",
             "Ctrl+B Sidebar",
             "Ctrl+Shift+I Info Panel",
             "F2 Rename",
             "Ctrl+C Copy",
             "Ctrl+V Paste",
             "Ctrl+, Preferences…",
             "Z Actual Size",
             "Ctrl+0 Fit",
             "+ Zoom In",
             "- Zoom Out",
             "F1 Keyboard",
             "Ctrl+A Select All",
         }) {
        EXPECT_TRUE(lines.contains(QString::fromUtf8(line))) << line;
    }
}

TEST_F(KeysTest, TheToolkitHasNothingToSayOfMenusAndPanes)
{
    static QStringList logged;
    logged.clear();
    const auto before = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
        const bool isOfThePlatform = text.startsWith(QStringLiteral("This plugin does not support"));
        if (type != QtDebugMsg && !isOfThePlatform) {
            logged.append(text);
        }
    });
    closeWindow();
    openWindow();
    for (const QStringList &titles : {QStringList(), {QStringLiteral("red")}}) {
        select(titles);
        whenMenuOpens();
        Q_EMIT grid().contextMenuRequested(window().mapToGlobal(QPoint(400, 300)));
        EXPECT_FALSE(menu.isEmpty());
    }
    whenMenuOpens();
    Q_EMIT tree()->customContextMenuRequested(QPoint(10, 10));
    whenMenuOpens();
    press(Qt::Key_F10);
    qInstallMessageHandler(before);
    EXPECT_EQ(logged.join(u'\n').toStdString(), "");
}

TEST_F(KeysTest, MenusOfTheMomentShowTheKeysOfTheCommands)
{
    const auto compare = [this](const QHash<QString, CommandID> &commands) {
        for (auto each = commands.begin(); each != commands.end(); ++each) {
            ASSERT_TRUE(shownKeys.contains(each.key())) << each.key().toStdString();
            const QString wanted = controller->command(each.value())->shortcut().toString(QKeySequence::NativeText);
            EXPECT_FALSE(wanted.isEmpty());
            EXPECT_EQ(shownKeys.value(each.key()), wanted) << each.key().toStdString();
        }
    };
    show(a);
    select({QStringLiteral("red")});
    whenMenuOpens();
    Q_EMIT grid().contextMenuRequested(window().mapToGlobal(QPoint(400, 300)));
    compare({{QStringLiteral("Remove from A"), CommandID::Remove},
             {QStringLiteral("Delete from Library"), CommandID::DeleteFromLibrary},
             {QStringLiteral("Copy"), CommandID::Copy},
             {QStringLiteral("Duplicate"), CommandID::Duplicate},
             {QStringLiteral("Rename"), CommandID::Rename}});
    whenMenuOpens();
    Q_EMIT tree()->customContextMenuRequested(tree()->visualRect(tree()->tree()->indexOf(a->objectID())).center());
    compare({{QStringLiteral("New Project"), CommandID::NewProject},
             {QStringLiteral("New Folder"), CommandID::NewFolder},
             {QStringLiteral("Rename"), CommandID::Rename},
             {QStringLiteral("Delete A"), CommandID::Remove}});
    controller->command(CommandID::NewFolder)->setShortcut(Qt::CTRL | Qt::ALT | Qt::Key_N);
    controller->command(CommandID::Remove)->setShortcut(Qt::CTRL | Qt::Key_Backspace);
    whenMenuOpens();
    Q_EMIT tree()->customContextMenuRequested(tree()->visualRect(tree()->tree()->indexOf(a->objectID())).center());
    compare({{QStringLiteral("New Folder"), CommandID::NewFolder}, {QStringLiteral("Delete A"), CommandID::Remove}});
}

// Where the toolkit binds them, these keys would move the cursor, or delete letters, words and lines.
TEST_F(KeysTest, AFieldGivesTheWindowItsKeys)
{
    show(a);
    select({QStringLiteral("red")});
    KeysOfField came;
    const auto expectOwnKeysOnly = [&](QWidget *field, const char *name) {
        ASSERT_TRUE(field) << name;
        field->setFocus();
        field->installEventFilter(&came);
        const auto *line = qobject_cast<QLineEdit *>(field);
        const QString text = line ? line->text() : QString();
        const int cursor = line ? line->cursorPosition() : 0;
        for (const Qt::Key key : {Qt::Key_D, Qt::Key_K, Qt::Key_U, Qt::Key_H, Qt::Key_G}) {
            press(key, Qt::ControlModifier);
        }
        press(Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(came.keys.join(u' ').toStdString(), "") << name;
        EXPECT_EQ(QApplication::focusWidget(), field) << name;
        EXPECT_TRUE(!line || (line->text() == text && line->cursorPosition() == cursor)) << name;
        press(Qt::Key_A, Qt::ControlModifier);
        press(Qt::Key_C, Qt::ControlModifier);
        press(Qt::Key_Left, Qt::ControlModifier);
        press(Qt::Key_Backspace, Qt::ControlModifier);
        press(Qt::Key_Delete, Qt::ControlModifier);
        EXPECT_EQ(came.keys.join(u' ').toStdString(), "Ctrl+A Ctrl+C Ctrl+Left Ctrl+Backspace Ctrl+Del") << name;
        came.keys.clear();
        field->removeEventFilter(&came);
        const bool hadSidebar = sidebar().isVisible();
        if (!sidebar().isAncestorOf(field)) {
            press(Qt::Key_B, Qt::ControlModifier);
            EXPECT_NE(sidebar().isVisible(), hadSidebar) << name;
            press(Qt::Key_B, Qt::ControlModifier);
        }
    };
    for (const char *name : {"Title", "Add tag", "Notes", "Source", "License", "Search"}) {
        expectOwnKeysOnly(named(name), name);
        press(Qt::Key_Escape);
    }
    show(b);
    tree()->setFocus();
    run(CommandID::Rename);
    expectOwnKeysOnly(tree()->findChild<QLineEdit *>(QStringLiteral("InlineEditor")), "a row");
    press(Qt::Key_Escape);
    show(a);
    EXPECT_EQ(shown().size(), 4) << "nothing was duplicated or deleted";
}

TEST_F(KeysTest, NoKeysMeanTwoThings)
{
    QSet<QString> seen;
    for (const QAction *action : window().findChildren<QAction *>()) {
        for (const QKeySequence &keys : action->shortcuts()) {
            // The keyboard sends one for the other.
            const QString pressed = keys.toString().replace(QStringLiteral("Backtab"), QStringLiteral("Shift+Tab"));
            const bool isOfAField = action->shortcutContext() == Qt::WidgetShortcut;
            EXPECT_TRUE(isOfAField || !seen.contains(pressed)) << pressed.toStdString();
            seen.insert(pressed);
        }
    }
    EXPECT_TRUE(seen.contains(QStringLiteral("Ctrl+Shift+Tab")));
    EXPECT_GT(seen.size(), 40);
}

TEST_F(KeysTest, TabReachesEveryControlAndEachShowsIt)
{
    run(CommandID::NewTab);
    show(a);
    grid().setSelection({});
    const QList<QWidget *> unselected = walk(Qt::Key_Tab);
    expectAllSeen(unselected);

    select({QStringLiteral("red")});
    const QList<QWidget *> stops = walk(Qt::Key_Tab);
    expectAllSeen(stops);
    QStringList names;
    for (QWidget *stop : stops) {
        names.append(spoken(stop));
    }
    for (const char *name :
         {"Sidebar (Ctrl+B)", "New Project (Ctrl+N)", "Import… (Ctrl+I)", "Tabs", "New Tab", "Search",
          "Share (Ctrl+Shift+C)", "Info Panel (Ctrl+Shift+I)", "Menu (F10)", "Projects", "Group: Sidebar item",
          "Thumbnail size", "Title", "Rating: 0 of 5", "#ff0000", "Add tag", "Notes", "Source", "License"}) {
        EXPECT_TRUE(names.contains(QString::fromUtf8(name))) << name << " in " << names.join(u'|').toStdString();
    }
    QList<QWidget *> back = walk(Qt::Key_Backtab);
    std::reverse(back.begin() + 1, back.end());
    EXPECT_EQ(back, stops) << "and the same way back";

    EXPECT_GT(expectInOrder(stops, *window().findChild<QWidget *>(QStringLiteral("Toolbar"))), 3);

    window().findChild<QLineEdit *>(QStringLiteral("Search"))->setText(QStringLiteral("e"));
    run(CommandID::SortByKind);
    settle();
    ASSERT_TRUE(named("Save Search"));
    constexpr int controls = 6; // Save Search, grid, list, Group, Sort, direction
    EXPECT_EQ(expectInOrder(walk(Qt::Key_Tab), browser().head()), controls);
}

TEST_F(KeysTest, TabGoesRoundInTheDetailViewToo)
{
    select({QStringLiteral("pages")});
    run(CommandID::Open);
    settle();
    QWidget *first = QApplication::focusWidget();
    QList<QWidget *> stops;
    constexpr int tooMany = 100;
    do {
        QWidget *before = QApplication::focusWidget();
        const QImage focused = drawn(before);
        press(Qt::Key_Tab);
        EXPECT_TRUE(before == first || drawn(before) != focused) << nameOf(before);
        stops.append(before);
    } while (QApplication::focusWidget() != first && stops.size() < tooMany);
    EXPECT_LT(stops.size(), tooMany);
    expectAllSeen(stops);
    EXPECT_TRUE(stops.contains(named<QToolButton>("Next page (Page Down)")));
}
