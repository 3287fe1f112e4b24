#include "Classes/Interface/MainWindowController.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Interface/BrowserViewController.h"
#include "Classes/Interface/InfoPanelViewController.h"
#include "Classes/Interface/MainWindow.h"
#include "Classes/Interface/ProjectsSidebarViewController.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QScopeGuard>
#include <QSplitter>
#include <QToolButton>

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

void MainWindowController::prepareSnapshotScale(double scale)
{
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
    qputenv("QT_SCALE_FACTOR_ROUNDING_POLICY", "PassThrough");
}

bool MainWindowController::renderSnapshot(const SnapshotOptions &options, QImage *image, ZQError *error)
{
    tamberin_AppDelegate *delegate = tamberin_AppDelegate::sharedDelegate();
    if (!delegate || !delegate->managedObjectContext()) {
        zqSetError(error,
                   ZQError::with(QStringLiteral("ZeltoSnapshot"), 1, zqLocalized("There is no open library to draw."),
                                 zqLocalized("Name one with --library.")));
        return false;
    }
    applyTheme();
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
    controller.m_info->setVisible(options.infoPanel);
    controller.m_infoButton->setChecked(options.infoPanel);
    const double ratio = controller.m_mainWindow->devicePixelRatioF();
    controller.m_mainWindow->setAttribute(Qt::WA_DontShowOnScreen);
    controller.m_mainWindow->resize(options.size);
    controller.m_splitter->setSizes({ZQMeasure::sidebarWidth,
                                     options.size.width() - ZQMeasure::sidebarWidth - ZQMeasure::infoPanelWidth - 2,
                                     ZQMeasure::infoPanelWidth});
    controller.m_mainWindow->show();
    if (!options.selectItem.isEmpty()) {
        const auto item = objectFor<ZQLibraryBaseItem>(context, options.selectItem);
        if (!item) {
            zqSetError(error, notFound(options.selectItem));
            return false;
        }
        controller.m_browser->selectLibraryItem(item->objectID());
    }
    QElapsedTimer waited;
    waited.start();
    int quiet = 0;
    constexpr std::chrono::milliseconds step{4};
    // Painting asks for thumbnails, so that it is settled only when a painted window asked for nothing more.
    while (quiet < 3 && waited.elapsed() < longestWait) {
        zqRunMainLoopFor(step);
        if (controller.isSettled()) {
            controller.m_mainWindow->grab();
            quiet = controller.isSettled() ? quiet + 1 : 0;
        }
    }
    QImage drawn(options.size * options.scale, QImage::Format_ARGB32_Premultiplied);
    if (qFuzzyCompare(ratio, options.scale)) {
        drawn = controller.m_mainWindow->grab().toImage();
    } else {
        drawn.setDevicePixelRatio(options.scale);
        drawn.fill(zqColor(ZQColorRole::Ground));
        controller.m_mainWindow->render(&drawn);
    }
    drawn.setDevicePixelRatio(1);
    *image = drawn;
    controller.m_mainWindow->hide();
    return true;
}
