// Puts the parts of the application together: a window, or one command.

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Application/LibraryLocation.h"
#include "Classes/Application/LibraryLock.h"
#include "Classes/Application/PreferencesController.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Capture/DisplaySource.h"
#include "Classes/Capture/ZeltoKunViewController.h"
#include "Classes/Command/CommandLine.h"
#include "Classes/Command/CommandUserInteraction.h"
#include "Classes/Command/PendingCommands.h"
#include "Classes/DesktopActions.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Import/ImageDownloads.h"
#include "Classes/Import/PromisedImports.h"
#include "Classes/Import/XDirectSave.h"
#include "Classes/Interface/Capture/CaptureViews.h"
#include "Classes/Interface/Sheets/CrashReportSheet.h"
#include "Classes/Interface/TextScale.h"
#include "Classes/Interface/Window/MainWindowController.h"
#include "Classes/Interface/Window/WindowSnapshot.h"
#include "Classes/Interface/Window/WindowUserInteraction.h"
#include "Classes/LiveFolders/LiveFolderManager.h"
#include "Classes/Services/CrashHandler.h"
#include "Classes/Services/CrashReporter.h"
#include "Classes/Services/HotKeys.h"
#include "Classes/Services/InstanceServer.h"
#include "Classes/Services/ProtocolManager.h"
#include "Classes/Services/SoftwareUpdater.h"
#include "Classes/Services/UsageCounts.h"
#include "Classes/Sharing/CloudMenuViewController.h"
#include "Classes/Sharing/CloudUploader.h"
#include "Classes/SignalWatcher.h"
#include "Kit/Foundation/ZQLanguage.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageDestination.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQPreviewService.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QApplication>
#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QScopeGuard>
#include <QScreen>
#include <QSessionManager>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <functional>
#include <optional>
#include <thread>
#include <unistd.h>

namespace {

int print(const CommandContext &context, int status)
{
    std::fwrite(context.output.constData(), 1, static_cast<std::size_t>(context.output.size()), stdout);
    std::fflush(stdout);
    std::fwrite(context.errors.constData(), 1, static_cast<std::size_t>(context.errors.size()), stderr);
    return status;
}

int drawSnapshot(const SnapshotRequest &request, CommandContext &context)
{
    SnapshotOptions options;
    options.size = request.size;
    options.scale = request.scale;
    if (!request.select.isEmpty()) {
        const ZQRef<ZQSidebarBaseItem> item = zqSidebarItemForReference(request.select, context);
        if (!item) {
            return 2;
        }
        options.select = item->UUID();
    }
    if (!request.theme.isEmpty()) {
        options.dark = request.theme == QStringLiteral("dark");
    }
    QImage picture;
    ZQError error;
    if (!zqRenderWindowSnapshot(options, &picture, &error) ||
        !ZQImageDestination::writePNG(ZQBitmap(picture), request.file, &error)) {
        return context.fail(error.localizedDescription());
    }
    return 0;
}

// Does what another process asked of this one, which has the window. Nothing: it is answered when what it waits for
// is done.
std::optional<InstanceReply> serve(const InstanceRequest &request, tamberin_AppDelegate &delegate,
                                   PendingCommands &pending)
{
    CommandContext context;
    context.delegate = &delegate;
    context.mayBeFinishedLater = true;
    context.workingDirectory = request.workingDirectory;
    context.isAbandoned = request.isAbandoned;
    if (auto *window = dynamic_cast<MainWindowController *>(delegate.mainWindowController())) {
        context.index = ContentFetcher::Ticket(window->fetcher(), ContentFetcher::Priority::Counts).index();
    }
    CommandLine commandLine;
    commandLine.setSnapshotDrawer(drawSnapshot);
    int status = 0;
    if (commandLine.parse(request.arguments, context, &status)) {
        if (!delegate.applicationLauched() || !delegate.managedObjectContext()) {
            status = context.fail(
                zqLocalized("Zelto has the library in use but not open: answer what it asks, then try again"));
        } else if (commandLine.isCommand()) {
            status = commandLine.run(context);
        } else {
            QStringList paths;
            for (const QString &file : commandLine.filesToOpen()) {
                paths.append(context.pathToOpen(file));
            }
            delegate.reopenMainWindow();
            delegate.openFiles(paths);
            DesktopActions::perform(commandLine.desktopAction(), delegate);
        }
    }
    if (context.pending) {
        context.index.reset(); // what is shown meanwhile is not its matter
        pending.add(std::move(context), [answer = request.answer](int ended, const CommandContext &finished) {
            answer({ended, finished.output, finished.errors});
        });
        return std::nullopt;
    }
    return InstanceReply{status, context.output, context.errors};
}

QString bundleFor(tamberin_AppDelegate &delegate, const CommandLine &commandLine)
{
    if (!commandLine.library().isEmpty()) {
        delegate.setLibraryBundleDirectory(commandLine.library());
    }
    return delegate.libraryBundleDirectory();
}

// A mistyped --library is no reason to make one, but for what fills it.
ZQError refusalOfLibrary(const CommandLine &commandLine)
{
    const bool mayMake = commandLine.fillsLibrary() || !commandLine.isCommand();
    return commandLine.library().isEmpty()
               ? ZQError()
               : LibraryLocation::refusalOfNamed(commandLine.library(), mayMake ? LibraryLocation::Missing::MayBeMade
                                                                                : LibraryLocation::Missing::IsRefused);
}

// A signal ends this process as the system does it; the other one notices that it went.
class UncaughtSignals
{
public:
    UncaughtSignals()
    {
        struct sigaction usual = {};
        usual.sa_handler = SIG_DFL;
        ::sigaction(SIGINT, &usual, &m_interrupt);
        ::sigaction(SIGTERM, &usual, &m_terminate);
    }
    ~UncaughtSignals()
    {
        ::sigaction(SIGINT, &m_interrupt, nullptr);
        ::sigaction(SIGTERM, &m_terminate, nullptr);
    }
    UncaughtSignals(const UncaughtSignals &) = delete;
    UncaughtSignals &operator=(const UncaughtSignals &) = delete;

private:
    struct sigaction m_interrupt = {};
    struct sigaction m_terminate = {};
};

// At once, and not with the rest of what the command says: a person who waits wonders why.
void tellOfWaiting(const QString &format, const QString &bundle)
{
    std::fprintf(stderr, "zelto: %s\n", zqFormat(format, {bundle}).toUtf8().constData());
}

// Hands the whole command line to the process that holds the library; its exit status, or nothing when nobody takes
// it.
std::optional<int> handOver(const QString &bundle, const QStringList &arguments, CommandContext &context)
{
    ZQError error;
    const auto tell = [&bundle](bool hasBegun) {
        tellOfWaiting(hasBegun
                          ? zqLocalized("the Zelto that has the library “%@” open is at it; where its window asks "
                                        "something, answer there; Ctrl+C stops it")
                          : zqLocalized("waiting for the Zelto that has the library “%@” open, which does something "
                                        "else first; where its window asks something, answer there; Ctrl+C ends the "
                                        "waiting"),
                      bundle);
    };
    const auto reply = InstanceServer::send(LibraryLock::socketNameForBundle(bundle),
                                            {arguments, QDir::currentPath(), {}}, &error, tell);
    if (!reply) {
        const bool hasEnded =
            error.domain == InstanceServer::errorDomain && error.code == InstanceServer::EndedMeanwhile;
        if (!hasEnded) {
            return std::nullopt;
        }
        const QString what =
            arguments.contains(QStringLiteral("import"))
                ? zqLocalized("%@ What it had not finished of the import, `zelto import --resume` goes on with.")
                : zqLocalized("%@ What it changed before that stays so; ask again for the rest.");
        return context.fail(zqFormat(what, {error.localizedDescription()}));
    }
    context.output += reply->output;
    context.errors += reply->errors;
    return reply->exitStatus;
}

bool isInUse(const ZQError &error)
{
    return error.domain == LibraryLock::errorDomain && error.code == LibraryLock::InUse;
}

// Nothing once `take` has the library for this process, else the exit status: of the process that has it, or of a
// refusal, which is in `error`. A window that quits takes no more requests, and soon gives the library up.
std::optional<int> takeLibrary(const std::function<bool(ZQError *)> &take, const QString &bundle,
                               const QStringList &arguments, CommandContext &context, ZQError *error)
{
    constexpr std::chrono::seconds longEnough(5);
    constexpr std::chrono::milliseconds pause(50);
    constexpr std::chrono::seconds patience(1);
    const auto start = std::chrono::steady_clock::now();
    const auto latest = start + longEnough;
    bool isTold = false;
    while (!take(error)) {
        const UncaughtSignals uncaught; // nothing is begun here that a signal could cut off
        const auto status = isInUse(*error) ? handOver(bundle, arguments, context) : std::nullopt;
        if (status) {
            return status;
        }
        if (!isInUse(*error) || std::chrono::steady_clock::now() >= latest) {
            return context.fail(error->localizedDescription());
        }
        if (!isTold && std::chrono::steady_clock::now() - start >= patience) {
            tellOfWaiting(zqLocalized("waiting for another Zelto, which works on the library “%@”; Ctrl+C ends the "
                                      "waiting"),
                          bundle);
            isTold = true;
        }
        std::this_thread::sleep_for(pause);
    }
    return std::nullopt;
}

int runOnLibrary(tamberin_AppDelegate &delegate, const CommandLine &commandLine, const QStringList &arguments,
                 CommandContext &context)
{
    const QString bundle = bundleFor(delegate, commandLine);
    ZQError error;
    const auto take = [&delegate](ZQError *taken) { return delegate.openLibraryForCommand(taken); };
    if (const auto status = takeLibrary(take, bundle, arguments, context, &error)) {
        return *status;
    }
    if (!delegate.managedObjectContext()) {
        return context.fail(zqLocalized("the library can't be opened"));
    }
    context.delegate = &delegate;
    return commandLine.run(context);
}

int runCommand(const CommandLine &commandLine, const QStringList &arguments, CommandContext &context)
{
    if (!commandLine.needsLibrary()) {
        return commandLine.run(context);
    }
    CommandUserInteraction user;
    user.setPolicies(commandLine.duplicatePolicy(), commandLine.unreadablePolicy());
    LiveFolderManager liveFolders;
    ApplicationParts parts;
    parts.userInteraction = &user;
    parts.importManager = &AImportManager::sharedAImportManager();
    parts.imageDownloading = &ImageDownloads::sharedImageDownloads();
    parts.liveFolderManager = &liveFolders;
    parts.isEndWanted = &SignalWatcher::hasCome;
    parts.makeZeltoKunViewController = [] { return std::make_unique<ZeltoKunViewController>(CaptureParts{}); };
    tamberin_AppDelegate delegate(parts);
    // An import takes back what it did, an edit ends at a batch and a synchronisation at a save, and both say so;
    // everything else can be ended anywhere, as the system does it.
    std::optional<SignalWatcher> signalWatcher;
    if (commandLine.isImport() || commandLine.isEdit()) {
        signalWatcher.emplace([&user] { user.cancelCurrentWork(); });
    }
    if (commandLine.isImport()) {
        ZQPreviewService::prepare(); // while the library opens
    }
    return runOnLibrary(delegate, commandLine, arguments, context);
}

// A command draws with a window's widgets, or talks to the person through one.
int runSnapshot(const CommandLine &commandLine, const QStringList &arguments, CommandContext &context)
{
    WindowUserInteraction user;
    ApplicationParts parts;
    parts.userInteraction = &user;
    parts.importManager = &AImportManager::sharedAImportManager();
    parts.imageDownloading = &ImageDownloads::sharedImageDownloads();
    parts.isEndWanted = &SignalWatcher::hasCome;
    tamberin_AppDelegate delegate(parts);
    return runOnLibrary(delegate, commandLine, arguments, context);
}

// A command that takes the screen needs no window, but the views that a person chooses in.
int runSnap(const CommandLine &commandLine, const QStringList &arguments, CommandContext &context)
{
    PreferencesController::registerDefaultPreferences();
    CommandUserInteraction user;
    CaptureViews views;
    ApplicationParts parts;
    parts.userInteraction = &user;
    parts.importManager = &AImportManager::sharedAImportManager();
    parts.isEndWanted = &SignalWatcher::hasCome;
    parts.makeZeltoKunViewController = [&views] {
        return std::make_unique<ZeltoKunViewController>(CaptureParts{DisplaySource::make(), &views, nullptr});
    };
    tamberin_AppDelegate delegate(parts);
    return runOnLibrary(delegate, commandLine, arguments, context);
}

// For a window that may find its library taken. Started from a desktop, nobody reads what it prints.
std::optional<int> takeLibraryForWindow(tamberin_AppDelegate &delegate, const QString &bundle,
                                        const QStringList &arguments, CommandContext &context, UserInteraction &user)
{
    const qsizetype printed = context.errors.size();
    ZQError error;
    const auto take = [&delegate](ZQError *taken) { return delegate.lockLibrary(taken); };
    const auto status = takeLibrary(take, bundle, arguments, context, &error);
    if (status && *status != 0 && context.errors.size() > printed && ::isatty(STDERR_FILENO) == 0) {
        user.presentError(error);
    }
    return status;
}

// A library among the files to open is the one to start with, unless a window with the remembered one is there
// already: that one asks whether to switch. Before the library is first asked for.
bool takeLibraryFrom(QStringList &files, const CommandLine &commandLine, ZQError *error)
{
    const auto library = std::find_if(files.begin(), files.end(), [](const QString &file) {
        return file.endsWith(QStringLiteral(".ztlibrary"), Qt::CaseInsensitive) &&
               !ProtocolHandling::isProtocolURL(file);
    });
    if (library == files.end() || !commandLine.library().isEmpty() ||
        LibraryLock::isInUse(LibraryLocation::rememberedOrDefault())) {
        return true;
    }
    if (!LibraryLocation::remember(*library, error)) {
        return false;
    }
    files.erase(library);
    return true;
}

QList<QRect> screenFrames()
{
    QList<QRect> frames;
    for (const QScreen *screen : QGuiApplication::screens()) { // the main one first
        frames.append(screen->availableGeometry());
    }
    return frames;
}

std::unique_ptr<ProtocolHandling> makeProtocolManager(UserInteraction &user)
{
    const auto delegate = &tamberin_AppDelegate::sharedDelegate;
    return std::make_unique<ProtocolManager>(ProtocolManager::Uses{
        user,
        [delegate] {
            return delegate()->applicationLauched() && delegate()->mainWindowController() &&
                   !delegate()->isTerminating();
        },
        [delegate] { return delegate()->zeltoKunViewController(); },
        [delegate] { return delegate()->imageDownloading(); },
        &screenFrames,
    });
}

// Of the window alone: who runs a command sees how it ends.
void prepareCrashReports()
{
    CrashReports reports;
    if (reports.make()) {
        reports.removeOld();
        CrashHandler::install(CrashReports::usualFolder(), QCoreApplication::applicationVersion());
    }
}

// In a sheet of the window.
CrashReporter::Presenter reportPresenter(UserInteraction &user)
{
    return [&user](const QString &text, std::function<void()> seen) {
        tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
        if (auto *window = dynamic_cast<MainWindowController *>(delegate->mainWindowController())) {
            CrashReportSheet::show(window->window(), user, text, std::move(seen));
        }
    };
}

int runWindow(QApplication &application, const CommandLine &commandLine, const QStringList &arguments,
              CommandContext &context, bool *reopens)
{
    PreferencesController::registerDefaultPreferences(); // the theme is one of them
    MainWindowController::applyTheme();
    prepareCrashReports();
    WindowUserInteraction user;
    UsageCounts usage;
    usage.follow();
    SoftwareUpdater updater;
    CrashReporter crashReporter;
    crashReporter.setPresenter(reportPresenter(user));
    CloudMenuViewController cloudMenu;
    CaptureViews captureViews;
    LiveFolderManager liveFolders;
    ApplicationParts parts;
    parts.userInteraction = &user;
    parts.importManager = &AImportManager::sharedAImportManager();
    parts.imageDownloading = &ImageDownloads::sharedImageDownloads();
    const auto isSessionEnding = std::make_shared<bool>(false);
    QObject::connect(
        &application, &QGuiApplication::commitDataRequest, &application, [isSessionEnding] { *isSessionEnding = true; },
        Qt::DirectConnection);
    QObject::connect(&application, &QGuiApplication::applicationStateChanged, &application,
                     [isSessionEnding](Qt::ApplicationState state) { // the end was called off
                         *isSessionEnding = *isSessionEnding && state != Qt::ApplicationActive;
                     });
    parts.isEndWanted = [isSessionEnding] { return SignalWatcher::hasCome() || *isSessionEnding; };
    parts.liveFolderManager = &liveFolders;
    parts.softwareUpdater = &updater;
    parts.crashReporter = &crashReporter;
    parts.cloudMenuViewController = &cloudMenu;
    parts.cloudUploading = &CloudUploader::sharedCloudUploader();
    parts.makeMainWindowController = [&user] { return std::make_unique<MainWindowController>(user); };
    parts.makeProtocolManager = [&user] { return makeProtocolManager(user); };
    parts.makeZeltoKunViewController = [&captureViews] {
        return std::make_unique<ZeltoKunViewController>(
            CaptureParts{DisplaySource::make(), &captureViews, HotKeys::make()});
    };
    tamberin_AppDelegate delegate(parts);
    AImportManager &imports = AImportManager::sharedAImportManager();
    PromisedImports promised(imports, XDirectSave::maker());
    imports.setPromisedImports(&promised);
    const auto endPromises = qScopeGuard([&imports] { imports.setPromisedImports(nullptr); });

    QStringList files;
    for (const QString &file : commandLine.filesToOpen()) {
        files.append(context.pathToOpen(file));
    }
    ZQError error;
    if (!takeLibraryFrom(files, commandLine, &error)) {
        return context.fail(error.localizedDescription());
    }
    const QString bundle = bundleFor(delegate, commandLine);
    if (const auto status = takeLibraryForWindow(delegate, bundle, arguments, context, user)) {
        return *status;
    }
    PendingCommands pending;
    InstanceServer server(LibraryLock::socketNameForBundle(bundle),
                          [&](const InstanceRequest &request) { return serve(request, delegate, pending); });
    // Requests wait while the library opens or is given up, and not for a person who may be away.
    server.setIsReady([&delegate] {
        return (delegate.applicationLauched() && !delegate.isTerminating()) || QApplication::activeModalWidget();
    });
    if (!server.listen(&error)) {
        qWarning("%s", qUtf8Printable(error.localizedDescription()));
    }
    server.registerOnSessionBus({[&](const QStringList &paths) {
                                     delegate.reopenMainWindow();
                                     delegate.openFiles(paths);
                                 },
                                 [&](const QString &action) { DesktopActions::perform(action, delegate); }});
    SignalWatcher signalWatcher([&delegate] { delegate.terminate(); });

    delegate.applicationWillFinishLaunching();
    if (!files.isEmpty()) {
        delegate.openFiles(files); // waits for the window
    }
    DesktopActions::perform(commandLine.desktopAction(), delegate); // as this does
    QTimer::singleShot(0, &delegate, [&] {
        delegate.applicationDidFinishLaunching();
        if (!delegate.managedObjectContext()) {
            QCoreApplication::exit(SignalWatcher::hasCome() ? 0 : 2);
        } else {
            captureViews.makeStatusIcon(delegate);
        }
    });
    const int status = application.exec();
    *reopens = delegate.reopensAfterQuit();
    zqStopMainThreadCalls();
    return status;
}

bool hasDisplay()
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

// Whoever has the library open takes the screen itself, and sooner than a process that gets ready for it.
bool takesScreenItself(const CommandLine &commandLine)
{
    const QString library = commandLine.library();
    return commandLine.takesScreen() && hasDisplay() &&
           !LibraryLock::isInUse(library.isEmpty() ? LibraryLocation::rememberedOrDefault() : library);
}

int runWithWidgets(QApplication &application, const CommandLine &commandLine, const QStringList &arguments,
                   CommandContext &context, bool *reopens)
{
    if (commandLine.isSnapshot()) {
        return runSnapshot(commandLine, arguments, context);
    }
    return commandLine.takesScreen() ? runSnap(commandLine, arguments, context)
                                     : runWindow(application, commandLine, arguments, context, reopens);
}

// Texts, and numbers among them, in one language. Answers the way it is written.
Qt::LayoutDirection installLanguage()
{
    const ZQLanguage language = zqInstallLanguage();
    if (language.locale) {
        QLocale::setDefault(*language.locale);
    }
    return language.direction;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName(QStringLiteral("Zelto"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZELTO_VERSION)); // which the command line knows
    CommandContext context;
    CommandLine commandLine;
    commandLine.setSnapshotDrawer(drawSnapshot);
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    context.workingDirectory = QDir::currentPath();
    int status = 0;
    if (!commandLine.parse(arguments, context, &status)) {
        return print(context, status);
    }
    if (const ZQError refused = refusalOfLibrary(commandLine); commandLine.needsLibrary() && !refused.isNull()) {
        return print(context, context.fail(refused.localizedDescription()));
    }

    ZQImageSource::initialize(argv[0]);
    if (commandLine.isCommand() && !commandLine.isSnapshot() && !takesScreenItself(commandLine)) {
        QCoreApplication application(argc, argv);
        installLanguage();
        status = runCommand(commandLine, arguments, context);
        zqStopMainThreadCalls();
        return print(context, status);
    }
    if (commandLine.isSnapshot()) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        zqPrepareSnapshotScale(commandLine.snapshot().scale);
    }
    print(context, 0); // files that are not there are named before the window comes
    context.errors.clear();
    std::optional<TextScale> scale;
    if (!commandLine.isSnapshot()) {
        scale.emplace();
    }
    QApplication application(argc, argv);
    scale.reset();
    QApplication::setLayoutDirection(installLanguage());
    QApplication::setDesktopFileName(QStringLiteral("org.zelto.Zelto"));
    QApplication::setQuitOnLastWindowClosed(false);
    bool reopens = false;
    status = runWithWidgets(application, commandLine, arguments, context, &reopens);
    if (reopens) { // only now nobody holds the library any more
        const QString library = commandLine.library();
        QProcess::startDetached(QCoreApplication::applicationFilePath(),
                                library.isEmpty() ? QStringList() : QStringList{QStringLiteral("--library"), library});
    }
    return print(context, status);
}
