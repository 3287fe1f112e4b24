#include "Classes/Import/PendingImports.h"

#include "Classes/Application/TemporaryArea.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/BatchRequest.h"
#include "Classes/Import/BatchResult.h"
#include "Classes/Import/DuplicateAnswer.h"
#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/PendingImport.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

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
        return QFileInfo(path).isDir() && !ImportQueries::fileAtPathIsSupported(path);
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
    QString name = zqShortened(QFileInfo(path).fileName(), longestShownName);
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
    return TemporaryArea::isFolderOfOurs(holder) ? std::make_shared<TemporaryFolder>(holder) : nullptr;
}

} // namespace

QString PendingImports::folder()
{
    return application().libraryBundleDirectory() + QStringLiteral("/pending-imports");
}

std::shared_ptr<ImportOperation> PendingImports::start(const BatchRequest &request)
{
    if (!application().managedObjectContext()) {
        return nullptr;
    }
    const QUuid store = application().persistentStoreCoordinator()->storeUUID();
    ZQError error;
    auto pending = PendingImportFile::create(
        folder(),
        {.paths = request.paths,
         .target = request.target.isNull() ? QString() : request.target.URIRepresentation(store),
         .index = request.index,
         .metadata = request.metadata,
         .archivePath = request.origin ? request.origin->archivePath : QString(),
         .archiveRoot = request.origin ? request.origin->root : QString(),
         .groups = {},
         .ungrouped = {},
         .duplicates = nameOfDuplicateAnswer(request.duplicates),
         .fileMetadata = request.fileMetadata},
        &error);
    if (!pending) {
        qCWarning(zqLogImport).noquote() << "An import could not go on if it was cut off:"
                                         << error.localizedDescription();
    }
    return queue(request, {.pending = std::move(pending), .kind = KeptRequest::Kind::New});
}

QStringList PendingImports::cutOff() const
{
    return PendingImportFile::cutOff(folder());
}

QString PendingImports::text() const
{
    const QStringList names = cutOff();
    QStringList texts;
    for (const QString &name : names.mid(0, namesShown)) {
        const auto file = PendingImportFile::open(folder(), name);
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

std::optional<QDateTime> PendingImports::cutOffSince() const
{
    const QStringList names = cutOff();
    return names.isEmpty() ? std::nullopt : std::optional(PendingImportFile::beginning(names.first()));
}

std::function<CutOffImports(const QSet<QString> &)> PendingImports::traces() const
{
    return [folder = folder(), names = cutOff()](const QSet<QString> &bundleIDs) {
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

void PendingImports::didLookThroughLeftovers(const QDateTime &launch) const
{
    const QStringList names = cutOff(); // not those that went on meanwhile
    for (const QString &name : names) {
        PendingImportFile::noteLookedThrough(folder(), name, launch);
    }
}

// Any other has seen to it itself. Whether it is kept.
bool PendingImports::endBeforeItsTurn(const BatchRequest &request,
                                      const std::shared_ptr<PendingImportFile> &pending) const
{
    if (request.part) {
        request.part->didCome();
    }
    if (keepsCancelled()) {
        return pending != nullptr;
    }
    if (pending) {
        pending->remove();
    }
    BatchResult::tellOfCancel(request);
    return false;
}

std::shared_ptr<ImportOperation> PendingImports::queue(const BatchRequest &request, const KeptRequest &kept)
{
    BatchRequest asked = request;
    if (asked.origin) {
        asked.part = std::make_shared<ImportPart>(asked.whole, kept.pending);
    }
    auto operation = std::make_shared<ImportOperation>(asked, kept, m_owner);
    asked.origin.reset(); // its folder goes with the operation
    const std::weak_ptr<TemporaryFolder> holder = std::exchange(asked.holder, nullptr);
    operation->setCompletionBlock([this, pending = kept.pending, asked, holder, weak = std::weak_ptr(operation)] {
        const auto ended = weak.lock();
        if (!ended) {
            return;
        }
        const bool neverRan = ended->isCancelled() && !ended->hasStarted();
        const bool goesOn = neverRan ? endBeforeItsTurn(asked, pending) : ended->isRequestKept();
        if (const auto held = neverRan && keepsCancelled() ? holder.lock() : nullptr) {
            held->keep();
        }
        if (asked.didEnd) {
            zqOnMainThread([ended, goesOn, didEnd = asked.didEnd] { didEnd(*ended, goesOn); });
        }
    });
    application().backgroundOperationQueue().addOperation(operation);
    return operation;
}

std::shared_ptr<ImportOperation> PendingImports::resumeOne(const QString &name,
                                                           std::optional<DuplicateChoice> duplicates)
{
    ZQError error;
    const auto pending = PendingImportFile::open(folder(), name, &error);
    if (!pending) {
        application().userInteraction().presentError(error);
        return nullptr;
    }
    if (duplicates && !noteDuplicateAnswer(*duplicates, *pending, &error)) {
        application().userInteraction().presentError(error);
        return nullptr;
    }
    pending->noteGoingOn();
    const PendingImport request = pending->request();
    const ZQObjectID target = targetOf(request, *application().managedObjectContext());
    const bool isOfArchive = !request.archiveRoot.isEmpty();
    if (isOfArchive && QFileInfo(request.archiveRoot).isDir() && !request.paths.isEmpty()) {
        return resumeArchive({.archivePath = request.archivePath,
                              .root = request.archiveRoot,
                              .folder = request.paths.first(),
                              .sidebarItem = target,
                              .metadata = request.metadata,
                              .holder = holderOf(request.archiveRoot)},
                             pending, std::make_shared<ImportWhole>());
    }
    return queue({.paths = isOfArchive ? QStringList{request.archivePath} : request.paths,
                  .target = target,
                  .index = request.index,
                  .metadata = request.metadata,
                  .fileMetadata = request.fileMetadata,
                  .duplicates = duplicateAnswerNamed(request.duplicates)},
                 {.pending = pending, .kind = isOfArchive ? KeptRequest::Kind::UnpacksOf : KeptRequest::Kind::GoesOn});
}

std::shared_ptr<ImportOperation> PendingImports::resumeArchive(const UnfoldedArchive &archive,
                                                               const std::shared_ptr<PendingImportFile> &pending,
                                                               const std::shared_ptr<ImportWhole> &whole)
{
    ZQError error;
    if (!application().managedObjectContext() || !pending->moveArchive(archive.root, archive.folder, &error)) {
        qCWarning(zqLogImport).noquote() << "An import does not go on:" << error.localizedDescription();
        return nullptr;
    }
    const PendingImport request = pending->request();
    return queue({.paths = request.paths,
                  .target = targetOf(request, *application().managedObjectContext()),
                  .index = request.index,
                  .metadata = request.metadata,
                  .origin = archive,
                  .duplicates = duplicateAnswerNamed(request.duplicates),
                  .whole = whole},
                 {.pending = pending, .kind = KeptRequest::Kind::GoesOn});
}

QList<std::shared_ptr<ImportOperation>> PendingImports::resume(qsizetype *unreadable,
                                                               std::optional<DuplicateChoice> duplicates)
{
    QList<std::shared_ptr<ImportOperation>> operations;
    application().saveAction();
    if (!application().managedObjectContext()) {
        return operations;
    }
    const QStringList names = cutOff();
    for (const QString &name : names) {
        if (const auto operation = resumeOne(name, duplicates)) {
            operations.append(operation);
        } else if (unreadable) {
            ++*unreadable;
        }
    }
    return operations;
}

void PendingImports::forget()
{
    PendingImportFile::removeRemains(folder());
    const QStringList names = cutOff();
    for (const QString &name : names) {
        if (!PendingImportFile::forget(folder(), name)) {
            qCWarning(zqLogImport).noquote() << "An import that was cut off could not be forgotten:" << name;
        }
    }
}

void PendingImports::offerToResume()
{
    PendingImportFile::removeRemains(folder());
    const qsizetype count = cutOff().size();
    if (count == 0) {
        return;
    }
    const QString which = text();
    const QString explanation =
        zqLocalized("Zelto ended before all files were in the library. It can go on with those that are missing. "
                    "What is in the library stays there either way.");
    const int answer = application().userInteraction().ask(
        {zqCounted({"An import was cut off", "%d imports were cut off"}, count),
         which.isEmpty() ? explanation : which + QStringLiteral("\n\n") + explanation,
         {zqLocalized("Continue"), zqLocalized("Forget"), zqLocalized("Not Now")},
         {},
         false});
    if (answer == continueButton) {
        resume();
    } else if (answer == forgetButton) {
        forget();
    }
}
