#include "Tests/Classes/Interface/MainWindowFixture.h"

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Import/ImportDoor.h"
#include "Classes/Sharing/CloudMenuViewController.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Tools/samples/SampleFormats.h"

#include <QDir>
#include <QPainter>
#include <QPdfWriter>

namespace {

QImage picture(QSize size, const QColor &color)
{
    QImage image(size, color.alpha() == 255 ? QImage::Format_RGB32 : QImage::Format_RGBA8888);
    image.fill(color);
    return image;
}

// Three pages, the last of another shape.
void writeDocument(const QString &path)
{
    QPdfWriter writer(path);
    const auto setSize = [&writer](const QSizeF &size) {
        writer.setPageSize(QPageSize(size, QPageSize::Point, {}, QPageSize::ExactMatch));
    };
    writer.setResolution(72);
    writer.setPageMargins(QMarginsF());
    setSize({200, 100});
    QPainter painter(&writer);
    painter.fillRect(QRect(0, 0, 200, 100), Qt::blue);
    writer.newPage();
    painter.fillRect(QRect(0, 0, 200, 100), Qt::red);
    setSize({100, 200});
    writer.newPage();
    painter.fillRect(QRect(0, 0, 100, 200), Qt::green);
}

} // namespace

void MainWindowFixture::SetUp()
{
    for (const char *key :
         {"OpenTabs", "SelectedTab", "MainWindowGeometry", "MainWindowPanes", "SidebarHidden", "InfoPanelHidden",
          "ExportPanelShown", "RefineBarShown", "UseDarkUI", "removeFromSidebarAlertSuppress"}) {
        ZQUserDefaults::standardUserDefaults().removeObjectForKey(QLatin1StringView(key));
    }
    ApplicationParts parts;
    parts.userInteraction = &person;
    parts.importManager = &AImportManager::sharedAImportManager();
    parts.liveFolderManager = liveFolderManager;
    parts.makeZeltoKunViewController = makeCapture;
    static CloudMenuViewController cloudMenu; // which holds nothing
    parts.cloudMenuViewController = &cloudMenu;
    delegate = std::make_unique<tamberin_AppDelegate>(parts);
    delegate->setLibraryBundleDirectory(world.filePath(QStringLiteral("Test.ztlibrary")));
    ZQError error;
    ASSERT_TRUE(delegate->openLibraryForCommand(&error)) << qPrintable(error.localizedDescription());
    projects = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context());
    for (const Item &sample : projects->childsItems()) {
        sample->deletePermanently();
    }
    a = add<ZQSidebarProject>(QStringLiteral("A"), projects);
    b = add<ZQSidebarProject>(QStringLiteral("B"), projects);
    folder = add<ZQSidebarFolder>(QStringLiteral("Folder"), projects);
    folder->setExpanded(true);
    inner = add<ZQSidebarProject>(QStringLiteral("Inner"), folder);
    tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("mine"), context());
    delegate->saveAction();

    QDir().mkpath(world.filePath(QStringLiteral("in")));
    const auto path = [this](const char *name) {
        return world.filePath(QStringLiteral("in/") + QLatin1StringView(name));
    };
    ASSERT_TRUE(picture({80, 60}, Qt::red).save(path("red.png")));
    ASSERT_TRUE(picture({40, 40}, QColor(0, 255, 0, 100)).save(path("clear.png")));
    writeDocument(path("pages.pdf"));
    ASSERT_TRUE(SampleFormats::writeGIF(
        {picture({30, 20}, Qt::red), picture({30, 20}, Qt::green), picture({30, 20}, Qt::blue)}, path("moving.gif")));
    ImportDoor::importFiles({path("red.png"), path("clear.png"), path("pages.pdf"), path("moving.gif")}, a.get(),
                            ZQSidebarBaseItem::appendIndex);
    zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
    QCoreApplication::processEvents(); // what is said at the end is not for the window that comes
    openWindow();
    show(a);
}

void MainWindowFixture::TearDown()
{
    controller.reset();
    for (Item *item : {&projects, &a, &b, &folder, &inner, &tag}) {
        *item = {};
    }
    delegate.reset();
    ZQUserDefaults::standardUserDefaults().synchronize();
}

void MainWindowFixture::openWindow()
{
    controller = std::make_unique<MainWindowController>(person);
    controller->showWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(controller->window()));
    QTest::keyRelease(controller->window(), Qt::Key_Control); // whatever a test before held down
    settle();
}

void MainWindowFixture::closeWindow()
{
    controller->savePersistentState();
    controller.reset();
}

void MainWindowFixture::settle()
{
    bool hasRested = false;
    QTimer::singleShot(100, &window(), [&] { hasRested = true; }); // timers go off in their order
    zqRunMainLoopUntil([&] { return hasRested; }, std::chrono::milliseconds(5));
    zqRunMainLoopUntil(
        [this] { return controller->isSettled() && delegate->backgroundOperationQueue().operationCount() == 0; },
        std::chrono::milliseconds(5));
}

SidebarTreeView *MainWindowFixture::tree()
{
    for (auto *view : sidebar().findChildren<SidebarTreeView *>()) {
        if (view->isVisibleTo(&sidebar())) {
            return view;
        }
    }
    return nullptr;
}

ZQRef<ZQLibraryBaseItem> MainWindowFixture::image(const QString &title)
{
    return zqFetchFirst<ZQLibraryBaseItem>(context(), QStringLiteral("title == %@"), {title});
}

void MainWindowFixture::show(const Item &item)
{
    sidebar().selectItems({item->objectID()});
    settle();
}

void MainWindowFixture::select(const QStringList &titles)
{
    ZQIndexSet selection;
    const QStringList all = shown();
    for (const QString &title : titles) {
        selection.insert(all.indexOf(title));
    }
    grid().setSelection(selection);
    settle();
}

QStringList MainWindowFixture::shown()
{
    QStringList titles;
    browser().content().willShow(0, browser().content().count() - 1);
    for (qint64 index = 0; index < browser().content().count(); ++index) {
        titles.append(browser().content().item(index).title);
    }
    return titles;
}

QStringList MainWindowFixture::selected()
{
    QStringList titles;
    for (const ZQObjectID &id : browser().selectedItems()) {
        titles.append(zqCast<ZQLibraryBaseItem>(context().objectWithID(id))->title());
    }
    return titles;
}

QStringList MainWindowFixture::children(const Item &item)
{
    QStringList titles;
    for (const Item &child : item->orderedChildren()) {
        titles.append(child->title());
    }
    return titles;
}

void MainWindowFixture::press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QWidget *focus = QApplication::focusWidget();
    QTest::keyClick(focus ? focus : &window(), key, modifiers);
}

void MainWindowFixture::type(const QString &text)
{
    QTest::keyClicks(QApplication::focusWidget(), text);
}

void MainWindowFixture::run(CommandID command)
{
    QAction *action = controller->command(command);
    ASSERT_TRUE(action && action->isEnabled()) << int(command);
    action->trigger();
}

void MainWindowFixture::whenAsked(std::function<void(Sheet &)> act)
{
    auto *poll = new QTimer(&window());
    poll->callOnTimeout([this, poll, act = std::move(act), looks = 0]() mutable {
        for (Sheet *sheet : window().findChildren<Sheet *>()) {
            // A key pressed before the sheet has the focus would be somebody else's.
            constexpr int longEnough = 100; // looks
            if (sheet->isVisible() && (sheet->isAncestorOf(QApplication::focusWidget()) || ++looks > longEnough)) {
                poll->stop();
                poll->deleteLater();
                act(*sheet);
                return;
            }
        }
    });
    poll->start(5);
}

QString MainWindowFixture::textsOf(const QMenu &menu)
{
    QStringList texts;
    for (const QAction *action : menu.actions()) {
        const QString title = action->text().section(u'\t', 0, 0);
        const QString text = action->isSeparator() ? QStringLiteral("-") : title;
        texts.append(action->isEnabled() || action->isSeparator() ? text : u'(' + text + u')');
    }
    return texts.join(u'|');
}

void MainWindowFixture::whenMenuOpens(const QString &choose)
{
    auto *poll = new QTimer(&window());
    poll->callOnTimeout([this, poll, choose, looks = 0]() mutable {
        auto *open = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        constexpr int untilItWaits = 4; // looks; one that is closed before its loop runs would never return
        if (!open || ++looks < untilItWaits) {
            return;
        }
        poll->stop();
        poll->deleteLater();
        menu = textsOf(*open);
        shownKeys.clear();
        QAction *chosen = nullptr;
        for (QAction *action : open->actions()) {
            const QString title = action->text().section(u'\t', 0, 0);
            const QString keys = action->text().section(u'\t', 1);
            shownKeys.insert(title, keys.isEmpty() ? action->shortcut().toString(QKeySequence::NativeText) : keys);
            chosen = title == choose ? action : chosen;
        }
        open->close();
        if (chosen && !choose.isEmpty()) {
            chosen->trigger();
        }
    });
    poll->start(5);
}
