#include "Classes/Interface/Window/WindowSnapshot.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Window/MainWindowController.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QScopeGuard>

namespace {

constexpr qint64 longestWait = 20000; // milliseconds; what is not there then is drawn as it is

template <class Object>
ZQRef<Object> objectFor(ZQManagedObjectContext &context, const QString &reference)
{
    if (const auto object = zqCast<Object>(context.objectWithURIRepresentation(reference))) {
        return object;
    }
    return zqFetchFirst<Object>(context, QStringLiteral("title == %@ AND active == %@"), {reference, true});
}

ZQError notFound(const QString &reference)
{
    return ZQError::with(QStringLiteral("ZeltoSnapshot"), 2,
                         zqFormat(zqLocalized("There is no \"%@\" in this library."), {reference}),
                         zqLocalized("Give the title or the identifier of something in the sidebar."));
}

} // namespace

void zqPrepareSnapshotScale(double scale)
{
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
    qputenv("QT_SCALE_FACTOR_ROUNDING_POLICY", "PassThrough");
}

bool zqRenderWindowSnapshot(const SnapshotOptions &options, QImage *image, ZQError *error)
{
    tamberin_AppDelegate *delegate = tamberin_AppDelegate::sharedDelegate();
    if (!delegate || !delegate->managedObjectContext()) {
        zqSetError(error,
                   ZQError::with(QStringLiteral("ZeltoSnapshot"), 1, zqLocalized("There is no open library to draw."),
                                 zqLocalized("Name one with --library.")));
        return false;
    }
    MainWindowController::applyTheme();
    // A window on the screen keeps its own theme.
    const auto restoreTheme = qScopeGuard([dark = ZQTheme::current().isDark()] { ZQTheme::current().setDark(dark); });
    if (options.dark) {
        ZQTheme::current().setDark(*options.dark);
    }
    WindowUserInteraction user;
    MainWindowController controller(user);
    ZQManagedObjectContext &context = *delegate->managedObjectContext();
    if (!options.select.isEmpty()) {
        const auto item = objectFor<ZQSidebarBaseItem>(context, options.select);
        if (!item) {
            zqSetError(error, notFound(options.select));
            return false;
        }
        controller.selectSidebarItem(item->objectID());
    }
    QWidget &window = *controller.window();
    const double ratio = window.devicePixelRatioF();
    window.setAttribute(Qt::WA_DontShowOnScreen);
    window.resize(options.size);
    controller.layOutPanes(options.size.width(), options.infoPanel);
    window.show();
    if (!options.selectItem.isEmpty()) {
        const auto item = objectFor<ZQLibraryBaseItem>(context, options.selectItem);
        if (!item) {
            zqSetError(error, notFound(options.selectItem));
            return false;
        }
        controller.browser().selectLibraryItem(item->objectID());
    }
    QElapsedTimer waited;
    waited.start();
    int quiet = 0;
    constexpr std::chrono::milliseconds step{4};
    // Painting asks for thumbnails, so that it is settled only when a painted window asked for nothing more.
    while (quiet < 3 && waited.elapsed() < longestWait) {
        zqRunMainLoopFor(step);
        if (controller.isSettled()) {
            window.grab();
            quiet = controller.isSettled() ? quiet + 1 : 0;
        }
    }
    QImage drawn(options.size * options.scale, QImage::Format_ARGB32_Premultiplied);
    if (qFuzzyCompare(ratio, options.scale)) {
        drawn = window.grab().toImage();
    } else {
        drawn.setDevicePixelRatio(options.scale);
        drawn.fill(zqColor(ZQColorRole::Ground));
        window.render(&drawn);
    }
    drawn.setDevicePixelRatio(1);
    *image = drawn;
    window.hide();
    return true;
}
