// Imports that an earlier process did not end.

#include "Classes/Application/TemporaryArea.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/PendingImport.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QFileInfo>

#include <algorithm>

namespace {

constexpr int continueButton = 0;
constexpr int forgetButton = 1;
constexpr qsizetype namesShown = 3;
constexpr qsizetype longestShownName = 80;
constexpr qsizetype namesInOneQuery = 500;

tamberin_AppDelegate &application()
{
    return *tamberin_AppDelegate::sharedDelegate();
}

bool holdsFolder(const PendingImport &request)
{
    return std::any_of(request.paths.begin(), request.paths.end(), [](const QString &path) {
        return QFileInfo(path).isDir() && !AImportManager::fileAtPathIsSupported(path);
    });
}

// Where it was to go, or, when that is gone, where files that are opened go.
ZQObjectID targetOf(const PendingImport &request, ZQManagedObjectContext &context)
{
    const auto target = request.target.isEmpty()
                            ? ZQRef<ZQSidebarBaseItem>()
                            : zqCast<ZQSidebarBaseItem>(context.objectWithURIRepresentation(request.target));
    if (target && target->active()) {
        return target->objectID();
    }
    const auto projects = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context);
    return holdsFolder(request) && projects ? projects->objectID() : ZQObjectID();
}

// A name may come with a library from elsewhere, and the text is shown in a terminal too.
QString shownName(const QString &path)
{
    QString name = QFileInfo(path).fileName().left(longestShownName);
    for (QChar &character : name) {
        if (!character.isPrint() && !character.isSurrogate()) {
            character = QChar::ReplacementCharacter;
        }
    }
    return name;
}

QString textForRequest(const PendingImport &request)
{
    const bool isOfArchive = !request.archiveRoot.isEmpty();
    if (!isOfArchive && request.paths.isEmpty()) {
        return {};
    }
    const QString name = shownName(isOfArchive ? request.archivePath : request.paths.first());
    const qsizetype others = isOfArchive ? 0 : request.paths.size() - 1;
    if (others == 0) {
        return zqFormat(zqLocalized("“%@”"), {name});
    }
    return others == 1 ? zqFormat(zqLocalized("“%@” and one other"), {name})
                       : zqFormat(zqLocalized("“%@” and %d others"), {name, others});
}

// How many files it was to import; 0 when that is not known, since it has not looked into its folders yet.
qsizetype fileCount(const PendingImport &request)
{
    qsizetype count = request.ungrouped.size();
    for (const PendingImport::Group &group : request.groups) {
        count += group.files.size();
    }
    if (request.groups.isEmpty()) {
        count = holdsFolder(request) ? 0 : request.paths.size();
    }
    return count;
}

std::optional<qsizetype> savedCount(const PendingImportFile &file, ZQManagedObjectContext &context)
{
    const auto sources = file.sources();
    if (!sources) {
        return std::nullopt;
    }
    qsizetype count = 0;
    for (qsizetype first = 0; first < sources->size(); first += namesInOneQuery) {
        QStringList names;
        for (const PendingImportFile::Source &source : sources->mid(first, namesInOneQuery)) {
            names.append(source.bundleID);
        }
        const auto rows =
            context.fetchDictionaries({ZQLibraryBaseItem::entityName(),
                                       ZQPredicate::predicateWithFormat(QStringLiteral("bundleID in %@"), {names})},
                                      {QStringLiteral("bundleID")});
        if (!rows) {
            return std::nullopt;
        }
        count += rows->size();
    }
    return count;
}

// The folder an archive was unpacked into goes with the request; a name in a file is believed only so far.
std::shared_ptr<TemporaryFolder> holderOf(const QString &root)
{
    const QString holder = QFileInfo(root).path();
    const bool isOurs = QFileInfo(holder).path() == TemporaryArea::folder() &&
                        QFileInfo(holder).fileName().startsWith(u"t.") && QFileInfo(holder).isDir() &&
                        !QFileInfo(holder).isSymLink();
    return isOurs ? std::make_shared<TemporaryFolder>(holder) : nullptr;
}

} // namespace

QString AImportManager::pendingFolder()
{
    return application().libraryBundleDirectory() + QStringLiteral("/pending-imports");
}

QStringList AImportManager::cutOffImports() const
{
    return PendingImportFile::cutOff(pendingFolder());
}

QString AImportManager::textForCutOffImports() const
{
    const QStringList names = cutOffImports();
    QStringList texts;
    for (const QString &name : names.mid(0, namesShown)) {
        const auto file = PendingImportFile::open(pendingFolder(), name);
        QString text = file ? textForRequest(file->request()) : QString();
        const qsizetype count = file && names.size() == 1 ? fileCount(file->request()) : 0;
        if (!text.isEmpty() && count > 0 && application().managedObjectContext()) {
            const auto saved = savedCount(*file, *application().managedObjectContext());
            if (saved && *saved <= count) {
                text = zqFormat(zqLocalized("%@, %d of %d in the library"), {text, *saved, count});
            }
        }
        if (!text.isEmpty()) {
            texts.append(text);
        }
    }
    if (!texts.isEmpty() && names.size() > namesShown) {
        texts.append(QStringLiteral("…"));
    }
    return texts.join(QStringLiteral(", "));
}

std::optional<QDateTime> AImportManager::cutOffImportSince()
{
    const QStringList names = cutOffImports();
    return names.isEmpty() ? std::nullopt : std::optional(PendingImportFile::beginning(names.first()));
}

std::function<CutOffImports(const QSet<QString> &)> AImportManager::tracesOfCutOffImports()
{
    return [folder = pendingFolder(), names = cutOffImports()](const QSet<QString> &bundleIDs) {
        CutOffImports all;
        for (const QString &name : names) {
            const PendingImportFile::Traces traces = PendingImportFile::traces(folder, name, bundleIDs);
            all.saved += traces.saved;
            if (traces.since && (!all.since || *traces.since < *all.since)) {
                all.since = traces.since;
            }
        }
        return all;
    };
}

void AImportManager::didLookThroughLeftovers(const QDateTime &launch)
{
    const QStringList names = cutOffImports(); // not those that went on meanwhile
    for (const QString &name : names) {
        PendingImportFile::noteLookedThrough(pendingFolder(), name, launch);
    }
}

std::shared_ptr<ImportOperation> AImportManager::queue(std::shared_ptr<ImportOperation> operation,
                                                       std::shared_ptr<PendingImportFile> pending)
{
    operation->setCompletionBlock([this, pending, weak = std::weak_ptr(operation)] {
        // One that was cancelled before its turn never runs, and ends here; any other has seen to it.
        const auto ended = weak.lock();
        if (pending && ended && ended->isCancelled() && !ended->hasStarted() && !keepsCancelledImports()) {
            pending->remove();
        }
    });
    importOperationQueue().addOperation(operation);
    return operation;
}

std::shared_ptr<ImportOperation> AImportManager::resumeImport(const QString &name)
{
    ZQError error;
    const auto pending = PendingImportFile::open(pendingFolder(), name, &error);
    if (!pending) {
        application().userInteraction().presentError(error);
        return nullptr;
    }
    pending->noteGoingOn();
    const PendingImport &request = pending->request();
    const ZQObjectID target = targetOf(request, *application().managedObjectContext());
    const bool isOfArchive = !request.archiveRoot.isEmpty();
    if (isOfArchive && QFileInfo(request.archiveRoot).isDir() && !request.paths.isEmpty()) {
        return resumeImportOfArchive({.archivePath = request.archivePath,
                                      .root = request.archiveRoot,
                                      .folder = request.paths.first(),
                                      .sidebarItem = target,
                                      .metadata = request.metadata,
                                      .holder = holderOf(request.archiveRoot)},
                                     pending);
    }
    auto operation = std::make_shared<ImportOperation>(isOfArchive ? QStringList{request.archivePath} : request.paths,
                                                       target, request.index, request.metadata);
    if (isOfArchive) {
        operation->setRequestOfArchive(pending);
    } else {
        operation->setPendingImport(pending, true);
    }
    return queue(std::move(operation), pending);
}

std::shared_ptr<ImportOperation>
AImportManager::resumeImportOfArchive(const UnfoldedArchive &archive, const std::shared_ptr<PendingImportFile> &pending)
{
    ZQError error;
    if (!application().managedObjectContext() || !pending->moveArchive(archive.root, archive.folder, &error)) {
        qCWarning(zqLogImport).noquote() << "An import does not go on:" << error.localizedDescription();
        return nullptr;
    }
    const PendingImport &request = pending->request();
    auto operation = std::make_shared<ImportOperation>(
        request.paths, targetOf(request, *application().managedObjectContext()), request.index, request.metadata);
    operation->setOrigin(archive);
    operation->setPendingImport(pending, true);
    return queue(std::move(operation), pending);
}

QList<std::shared_ptr<ImportOperation>> AImportManager::resumeImports(qsizetype *unreadable)
{
    QList<std::shared_ptr<ImportOperation>> operations;
    application().saveAction();
    if (!application().managedObjectContext()) {
        return operations;
    }
    const QStringList names = cutOffImports();
    for (const QString &name : names) {
        if (const auto operation = resumeImport(name)) {
            operations.append(operation);
        } else if (unreadable) {
            ++*unreadable;
        }
    }
    return operations;
}

void AImportManager::forgetImports()
{
    PendingImportFile::removeRemains(pendingFolder());
    const QStringList names = cutOffImports();
    for (const QString &name : names) {
        if (!PendingImportFile::forget(pendingFolder(), name)) {
            qCWarning(zqLogImport).noquote() << "An import that was cut off could not be forgotten:" << name;
        }
    }
}

void AImportManager::offerToResumeImports()
{
    PendingImportFile::removeRemains(pendingFolder());
    const qsizetype count = cutOffImports().size();
    if (count == 0) {
        return;
    }
    const QString which = textForCutOffImports();
    const QString explanation =
        zqLocalized("Zelto ended before all files were in the library. It can go on with those that are missing. "
                    "What is in the library stays there either way.");
    const int answer = application().userInteraction().ask(
        {count == 1 ? zqLocalized("An import was cut off") : zqFormat(zqLocalized("%d imports were cut off"), {count}),
         which.isEmpty() ? explanation : which + QStringLiteral("\n\n") + explanation,
         {zqLocalized("Continue"), zqLocalized("Forget"), zqLocalized("Not Now")},
         {},
         false});
    if (answer == continueButton) {
        resumeImports();
    } else if (answer == forgetButton) {
        forgetImports();
    }
}
