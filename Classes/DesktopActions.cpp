#include "Classes/DesktopActions.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/LibraryLocation.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Interface/Window/MainWindowController.h"
#include "Kit/Foundation/ZQError.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QAction>
#include <QApplication>
#include <QCoreApplication>
#include <QProcess>
#include <QTimer>

#include <cerrno>
#include <chrono>

namespace {

constexpr std::chrono::milliseconds retryInterval{200};

void importFiles(tamberin_AppDelegate &delegate)
{
    auto *window = dynamic_cast<MainWindowController *>(delegate.mainWindowController());
    QAction *import = window ? window->command(CommandID::Import) : nullptr;
    if (import && import->isEnabled()) {
        import->trigger();
    }
}

// A process has one library; who has that one open already shows its window.
void openAnotherLibrary(tamberin_AppDelegate &delegate)
{
    FileChoice choice;
    choice.title = zqLocalized("Please choose the library that you want to open");
    choice.prompt = zqLocalized("Open");
    choice.extensions = {QStringLiteral("ztlibrary")};
    choice.directory = true;
    const QStringList chosen = delegate.userInteraction().chooseFilesToOpen(choice);
    if (chosen.isEmpty()) {
        return;
    }
    if (const ZQError refused = LibraryLocation::refusalOfNamed(chosen.first(), LibraryLocation::Missing::IsRefused);
        !refused.isNull()) {
        delegate.userInteraction().presentError(refused);
    } else if (!QProcess::startDetached(QCoreApplication::applicationFilePath(),
                                        {QStringLiteral("--library"), chosen.first()})) {
        delegate.userInteraction().presentError(ZQError::posix(ENOENT, QCoreApplication::applicationFilePath()));
    }
}

void performNow(const QString &action, tamberin_AppDelegate &delegate)
{
    if (action == QStringLiteral("snap-area")) {
        if (ScreenCaptureControlling *capture = delegate.zeltoKunViewController()) {
            capture->snapArea(); // without the window, which may be in the picture
        }
        return;
    }
    delegate.reopenMainWindow();
    if (QApplication::activeModalWidget()) {
        return;
    }
    if (action == QStringLiteral("import")) {
        importFiles(delegate);
    } else if (action == QStringLiteral("another-library")) {
        openAnotherLibrary(delegate);
    }
}

} // namespace

void DesktopActions::perform(const QString &action, tamberin_AppDelegate &delegate)
{
    if (action.isEmpty() || delegate.isTerminating()) {
        return;
    }
    // Later in any case: a dialog would keep whoever asked waiting for an answer.
    const bool isReady = delegate.applicationLauched() && delegate.mainWindowController();
    QTimer::singleShot(isReady ? std::chrono::milliseconds(0) : retryInterval, &delegate, [action, &delegate, isReady] {
        if (isReady) {
            performNow(action, delegate);
        } else {
            perform(action, delegate);
        }
    });
}
