#include "Tests/Classes/CaptureWay/CaptureWayFixture.h"

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Application/PreferencesController.h"
#include "Classes/Capture/DisplaySource.h"
#include "Classes/Capture/ZeltoKunViewController.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Services/HotKeys.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQProjectItem.h"

#include <QApplication>
#include <QColorSpace>
#include <QPainter>
#include <QProcess>
#include <QTest>
#include <QWindow>

#include <chrono>
#include <utility>

void CaptureWayFixture::SetUp()
{
    ASSERT_TRUE(desktop.hasWindowManager()) << "openbox is missing";
    PreferencesController::registerDefaultPreferences();
    for (const char *key : {opensZelto, goesToScreenshots, "MainWindowGeometry", "OpenTabs"}) {
        ZQUserDefaults::standardUserDefaults().removeObjectForKey(QLatin1StringView(key));
    }
}

void CaptureWayFixture::TearDown()
{
    views.removeStatusIcon();
    delegate.reset();
    for (const xcb_window_t each : windows) {
        desktop.destroy(each);
    }
    ZQUserDefaults::standardUserDefaults().synchronize();
}

void CaptureWayFixture::launchWithWindow()
{
    ApplicationParts parts;
    parts.userInteraction = &person;
    parts.importManager = &AImportManager::sharedAImportManager();
    parts.makeMainWindowController = [this] { return std::make_unique<MainWindowController>(person); };
    parts.makeZeltoKunViewController = [this] {
        return std::make_unique<ZeltoKunViewController>(CaptureParts{DisplaySource::make(), &views, HotKeys::make()});
    };
    delegate = std::make_unique<tamberin_AppDelegate>(parts);
    delegate->setLibraryBundleDirectory(world.filePath(QStringLiteral("Test.ztlibrary")));
    delegate->applicationWillFinishLaunching();
    delegate->applicationDidFinishLaunching();
    ASSERT_TRUE(delegate->mainWindowController());
    const auto isActive = [this] { return window().isVisible() && window().window()->isActiveWindow(); };
    if (!QTest::qWaitFor(isActive, 3000)) { // the window manager gives no focus to what nobody touched for a while
        press({QStringLiteral("windowactivate"), QString::number(window().window()->winId())});
    }
    ASSERT_TRUE(waitFor(isActive));
    ASSERT_TRUE(waitFor([this] { return window().isSettled(); }));
    showOtherProgram();
}

void CaptureWayFixture::openForCommand()
{
    ApplicationParts parts;
    parts.userInteraction = &shell;
    parts.importManager = &AImportManager::sharedAImportManager();
    parts.makeZeltoKunViewController = [this] {
        return std::make_unique<ZeltoKunViewController>(CaptureParts{DisplaySource::make(), &views, nullptr});
    };
    delegate = std::make_unique<tamberin_AppDelegate>(parts);
    delegate->setLibraryBundleDirectory(world.filePath(QStringLiteral("Test.ztlibrary")));
    ZQError error;
    ASSERT_TRUE(delegate->openLibraryForCommand(&error)) << qPrintable(error.localizedDescription());
    showOtherProgram();
}

void CaptureWayFixture::showOtherProgram()
{
    const QSize patchSize(40, 30);
    const QPoint place(150, 120);
    const auto show = [this](const XDesktop::Window &window) {
        windows.append(desktop.show(window));
        return QRect(desktop.origin(windows.last()), window.rect.size());
    };
    greenRect = show({.rect = {place, windowSize}, .colour = green, .program = "Painter"});
    greenWindow = windows.last();
    redRect = show({.rect = {place + QPoint(200, 0), windowSize}, .colour = red, .program = "Cover"});
    blueRect = show({.rect = {greenRect.topLeft() + QPoint(60, 80), patchSize},
                     .colour = blue,
                     .program = "Patch",
                     .isManaged = false});
    const std::unique_ptr<ScreenSource> source = DisplaySource::make();
    const auto isDrawn = [&] {
        bool isSo = false;
        source->captureAllScreens([&](const QImage &image, const ZQError & /*error*/) {
            isSo = true;
            for (const QRect &each : {QRect(greenRect.topLeft(), QSize(180, 300)), redRect, blueRect}) {
                isSo = isSo && plain(image.copy(each)) == drawn(each);
            }
        });
        return isSo;
    };
    ASSERT_TRUE(waitFor(isDrawn));
}

QImage CaptureWayFixture::drawn(const QRect &pixels) const
{
    QImage image(pixels.size(), QImage::Format_RGB32);
    image.fill(QColor::fromRgb(green));
    QPainter painter(&image);
    painter.translate(-pixels.topLeft());
    painter.fillRect(redRect, QColor::fromRgb(red));
    painter.fillRect(blueRect, QColor::fromRgb(blue));
    return image;
}

QRect CaptureWayFixture::frameOf(xcb_window_t window)
{
    const QList<quint32> extents = desktop.connection().numbers(window, "_NET_FRAME_EXTENTS");
    const QRect inside(desktop.origin(window), windowSize);
    return extents.size() < 4 ? inside
                              : inside.adjusted(-int(extents[0]), -int(extents[2]), int(extents[1]), int(extents[3]));
}

bool CaptureWayFixture::waitFor(const std::function<bool()> &condition)
{
    constexpr std::chrono::minutes farTooLong(3);
    const auto end = std::chrono::steady_clock::now() + farTooLong;
    zqRunMainLoopUntil([&] { return condition() || std::chrono::steady_clock::now() > end; });
    return condition();
}

void CaptureWayFixture::press(const QStringList &keysAndPointer)
{
    EXPECT_EQ(QProcess::execute(QStringLiteral("xdotool"), keysAndPointer), 0);
}

ScreenshotView *CaptureWayFixture::begin(const char *keys)
{
    press({QStringLiteral("key"), QString::fromLatin1(keys)});
    ScreenshotView *shown = nullptr;
    waitFor([&shown] {
        for (QWidget *const each : QApplication::topLevelWidgets()) {
            auto *const view = qobject_cast<ScreenshotView *>(each);
            // The server refuses it while the hot key is still held.
            if (view && view->isVisible() && QWidget::keyboardGrabber() == view &&
                view->windowHandle()->setKeyboardGrabEnabled(true)) {
                shown = view;
            }
        }
        return shown != nullptr;
    });
    return shown;
}

int CaptureWayFixture::run(const std::function<int(CommandContext &)> &command, bool isForAnother)
{
    context = {};
    context.delegate = delegate.get();
    context.workingDirectory = world.path();
    context.json = true;
    context.mayBeFinishedLater = isForAnother;
    const int status = command(context);
    if (!context.pending) {
        return status;
    }
    const PendingCommand pending = *std::exchange(context.pending, std::nullopt);
    zqRunMainLoopUntil(pending.isDone);
    return pending.finish(context);
}

ZQObjectID CaptureWayFixture::screenshotsEntry() const
{
    return ZQSidebarBaseItem::screenshotProjectInManagedObjectContext(*delegate->managedObjectContext())->objectID();
}

QList<ZQRef<ZQLibraryBaseItem>> CaptureWayFixture::screenshots() const
{
    QList<ZQRef<ZQLibraryBaseItem>> found;
    const auto entry = ZQSidebarBaseItem::screenshotProjectInManagedObjectContext(*delegate->managedObjectContext());
    for (const auto &membership : entry->pItems()) {
        found.append(membership->item());
    }
    return found;
}

ZQRef<ZQLibraryBaseItem> CaptureWayFixture::waitForItem()
{
    EXPECT_TRUE(waitFor(
        [this] { return screenshots().size() == 1 && delegate->backgroundOperationQueue().operationCount() == 0; }));
    return screenshots().value(0);
}

QImage CaptureWayFixture::plain(QImage image)
{
    image.setDevicePixelRatio(1);
    image.setDotsPerMeterX(0);
    image.setDotsPerMeterY(0);
    image.setColorSpace({}); // that of the screen, which a file may say
    return image.convertToFormat(QImage::Format_RGB32);
}

QImage CaptureWayFixture::picture(const ZQLibraryBaseItem &item)
{
    return plain(QImage(item.itemURL(), "PNG"));
}
