#pragma once

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Sheets/Sheet.h"
#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"
#include "Classes/Interface/Sidebar/SidebarTreeView.h"
#include "Classes/Interface/Window/MainWindowController.h"
#include "Classes/Interface/Window/WindowUserInteraction.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Support/UserWorld.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QTimer>
#include <QtTest/QTest>

#include <gtest/gtest.h>

// A whole application with its main window, off screen, driven as a person does it. Its library: the projects A, B and
// Folder{Inner}, the tag "mine"; A holds "red" (80 x 60), "clear" (transparent, 40 x 40), "pages" (a document of three)
// and "moving" (three frames), imported from real files.
class MainWindowFixture : public testing::Test
{
protected:
    using Item = ZQRef<ZQSidebarBaseItem>;

    // Talks through the window but for the dialogs of files.
    class Person : public WindowUserInteraction
    {
    public:
        QStringList files; // chosen in a dialog; none: cancelled
        QList<FileChoice> choices;
        std::optional<QString> fileToSave; // none: cancelled
        std::optional<QString> chooseFileToSave(const FileChoice &choice) override
        {
            choices.append(choice);
            return fileToSave;
        }
        QStringList chooseFilesToOpen(const FileChoice &choice) override
        {
            choices.append(choice);
            return files;
        }
    };

    void SetUp() override;
    void TearDown() override;
    void openWindow();  // with what was kept of the one before
    void closeWindow(); // keeping what quitting keeps

    ZQManagedObjectContext &context() { return *delegate->managedObjectContext(); }
    QMainWindow &window() { return *qobject_cast<QMainWindow *>(controller->window()); }
    ProjectsSidebarViewController &sidebar() { return controller->sidebar(); }
    BrowserViewController &browser() { return controller->browser(); }
    ZQGridView &grid() { return controller->browser().grid(); }
    template <class T>
    Item add(const QString &title, const Item &father)
    {
        const auto item = context().insertNewObject<T>();
        item->setTitle(title);
        item->setActive(true);
        father->appendChild(item.get());
        return item;
    }
    Item special(ZQSidebarKind kind) { return ZQSidebarBaseItem::specialItemOfKind(kind, context()); }
    ZQRef<ZQLibraryBaseItem> image(const QString &title);

    static bool waitFor(const std::function<bool()> &condition) { return QTest::qWaitFor(condition, 20000); }
    // Everything asked for is there, and what waits for a moment of rest has had it.
    void settle();
    SidebarTreeView *tree();     // of the side that is shown
    void show(const Item &item); // as if clicked in the sidebar
    void select(const QStringList &titles);
    QStringList shown(); // titles in the grid
    QStringList selected();
    QStringList children(const Item &item);

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier); // where the focus is
    void type(const QString &text);
    void run(CommandID command);
    bool isEnabled(CommandID command) { return controller->command(command)->isEnabled(); }
    // The visible widget a screen reader calls that.
    template <class T = QWidget>
    T *named(const char *name)
    {
        for (T *widget : window().findChildren<T *>()) {
            if (widget->isVisible() && widget->accessibleName() == QString::fromUtf8(name)) {
                return widget;
            }
        }
        return nullptr;
    }
    // Once it hangs from the window.
    void whenAsked(std::function<void(Sheet &)> act);
    // Takes the entry of the menu that opens, none with an empty text. The texts of the menu are in `menu` then.
    void whenMenuOpens(const QString &choose = {});
    QHash<QString, QString> shownKeys; // of its entries, as they show them
    QString menu;                      // "-" for a separator, "(…)" for what is disabled
    static QString textsOf(const QMenu &menu);

    UserWorld world{"window"};
    Person person;
    LiveFolderManaging *liveFolderManager = nullptr; // of the application, before it is set up; null: none
    std::function<std::unique_ptr<ScreenCaptureControlling>()> makeCapture; // the same
    std::unique_ptr<tamberin_AppDelegate> delegate;
    std::unique_ptr<MainWindowController> controller;
    Item projects;
    Item a;
    Item b;
    Item folder;
    Item inner;
    Item tag;
};
