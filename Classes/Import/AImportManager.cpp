#include "Classes/Import/AImportManager.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/DirectoriesLeft.h"
#include "Classes/Import/ForLiveFolder.h"
#include "Classes/Import/ImportErrors.h"
#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/PasteboardFiles.h"
#include "Classes/Import/PromisedImports.h"
#include "Classes/Import/TakeBackOperation.h"
#include "Classes/Import/TemporaryFolder.h"
#include "Classes/Import/ThumbGenerator.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQImagingError.h"
#include "Kit/Imaging/ZQPreviewService.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQPictureFingerprint.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

tamberin_AppDelegate &application()
{
    return *tamberin_AppDelegate::sharedDelegate();
}

// One that another context can find; null for no item.
ZQObjectID savedIdentifier(const ZQSidebarBaseItem *item)
{
    if (item && item->objectID().isTemporary()) {
        application().saveAction();
    }
    return item ? item->objectID() : ZQObjectID();
}

// The program that runs into it every time says it once to a person, not once a launch.
void tellThatDrawingIsUnconfined()
{
    zqOnMainThread([] {
        const QString key = QStringLiteral("DidTellUnconfinedDrawing");
        ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
        tamberin_AppDelegate *delegate = tamberin_AppDelegate::sharedDelegate();
        if (!delegate || defaults.boolForKey(key)) {
            return;
        }
        defaults.setObjectForKey(true, key);
        delegate->userInteraction().presentError(ZQError::with(
            QStringLiteral("zelto.imaging"), int(ZQImagingErrorCode::NoRenderer),
            zqLocalized("This system cannot keep programs that draw pictures away from your files."),
            zqLocalized("Zelto therefore draws no EPS and PostScript files and uses no thumbnailers of the "
                        "desktop. A Linux kernel with Landlock (5.13 or newer) "
                        "changes that.")));
    });
}

// Null when it was deleted, or the library closed, meanwhile.
ZQRef<ZQLibraryBaseItem> itemInMainContext(const ZQObjectID &id)
{
    tamberin_AppDelegate *delegate = tamberin_AppDelegate::sharedDelegate();
    ZQManagedObjectContext *context = delegate ? delegate->managedObjectContext() : nullptr;
    return context ? zqCast<ZQLibraryBaseItem>(context->existingObjectWithID(id)) : ZQRef<ZQLibraryBaseItem>();
}

bool isWatchedFolder(const ZQObjectID &target)
{
    ZQManagedObjectContext *const context = application().managedObjectContext();
    const auto item = context && !target.isNull() ? zqCast<ZQSidebarBaseItem>(context->existingObjectWithID(target))
                                                  : ZQRef<ZQSidebarBaseItem>();
    return item && item->isWatchedFolder();
}

} // namespace

AImportManager &AImportManager::sharedAImportManager()
{
    static AImportManager manager;
    return manager;
}

AImportManager::AImportManager() : m_thumbsGenerationQueue(QStringLiteral("Thumbnails"), 3), m_pendingImports(*this)
{
    ZQPreviewService::setUnconfinedHandler(tellThatDrawingIsUnconfined);
}

ZQOperationQueue &AImportManager::importOperationQueue()
{
    return application().backgroundOperationQueue();
}

std::shared_ptr<ImportOperation> AImportManager::startImport(const BatchRequest &request)
{
    Q_ASSERT(zqIsMainThread());
    if (m_watchedFolderCopy && isWatchedFolder(request.target)) {
        copyIntoWatchedFolder(request);
        return nullptr;
    }
    application().saveAction();
    auto operation = m_pendingImports.start(request);
    if (!operation) {
        presentImportError(ZQError::with(QStringLiteral("zelto.import"), 1,
                                         zqLocalized("There is no library to import into."),
                                         zqLocalized("Open or create a library first.")));
        return nullptr;
    }
    if (importOperationQueue().operationCount() >= 2) {
        announceQueued(request.paths);
    }
    return operation;
}

// What a live folder would never show need not be copied there.
void AImportManager::copyIntoWatchedFolder(const BatchRequest &request)
{
    constexpr qsizetype mostTold = 8;
    const ForLiveFolder files = ForLiveFolder::of(request.paths);
    if (!files.paths.isEmpty()) {
        m_watchedFolderCopy(files.paths, request.target,
                            {request.metadata.value(QStringLiteral("webURL")).toString(),
                             request.metadata.value(QStringLiteral("webPageURL")).toString()});
    }
    if (files.leftOut.isEmpty()) {
        return;
    }
    QStringList lines;
    for (const DroppedFile &file : files.leftOut.first(std::min(mostTold, files.leftOut.size()))) {
        lines.append(zqFormat(zqLocalized("“%@”: %@"), {QFileInfo(file.path).fileName(), file.reason}));
    }
    if (files.leftOut.size() > mostTold) {
        lines.append(zqFormat(zqLocalized("and %d more"), {int(files.leftOut.size() - mostTold)}));
    }
    const QString text =
        files.leftOut.size() == 1
            ? zqLocalized("1 file was not copied into the live folder.")
            : zqFormat(zqLocalized("%d files were not copied into the live folder."), {int(files.leftOut.size())});
    presentImportError(ZQError::with(QStringLiteral("zelto.import"), 4, text, lines.join(u'\n')));
}

void AImportManager::announceQueued(const QStringList &paths)
{
    if (paths.size() == 1 && paths.first().contains(QStringLiteral("ZeltoTemporaryFolder"))) {
        return;
    }
    const QString text = paths.size() == 1
                             ? zqLocalized("1 item added to the import queue")
                             : zqFormat(zqLocalized("%d items added to the import queue"), {paths.size()});
    application().userInteraction().showNotificationWithText(text, NotificationPlace::Window, usualNotificationTime);
}

void AImportManager::importFilesAtPaths(const QStringList &paths, const ZQObjectID &intoSidebarItemID, quint32 atIndex,
                                        const QVariantMap &metadata)
{
    startImport({.paths = paths, .target = intoSidebarItemID, .index = atIndex, .metadata = metadata});
}

namespace {

ImportEnd endOf(const ImportOperation &operation, bool goesOn)
{
    ImportEnd end{ImportEnd::Kind::Imported, {}, operation.report().imported()};
    if (!end.items.isEmpty()) {
        return end;
    }
    const QList<DroppedFile> dropped = operation.report().dropped();
    end.kind = goesOn                    ? ImportEnd::Kind::GoesOn
               : operation.isCancelled() ? ImportEnd::Kind::Cancelled
                                         : ImportEnd::Kind::Failed;
    end.reason = operation.isCancelled() ? cancelledImportReason()
                 : dropped.isEmpty()     ? zqLocalized("It was left out. Import it again.")
                                         : dropped.front().reason;
    return end;
}

} // namespace

void AImportManager::importFile(const QString &path, const ZQObjectID &intoSidebarItemID, const QVariantMap &metadata,
                                std::function<void(const ImportEnd &end)> done)
{
    const auto operation =
        startImport({.paths = {path},
                     .target = intoSidebarItemID,
                     .metadata = metadata,
                     .duplicates = DuplicateChoice::KeepBoth,
                     .goesPastQuestions = true,
                     .didEnd = [done](const ImportOperation &ended, bool goesOn) { done(endOf(ended, goesOn)); }});
    if (!operation) {
        done({ImportEnd::Kind::Failed, zqLocalized("There is no library to import into."), {}});
    }
}

std::shared_ptr<ImportOperation>
AImportManager::importFilesAtPaths(const QStringList &paths, const ZQSidebarBaseItem *intoSidebarItem, quint32 atIndex)
{
    return startImport({.paths = paths, .target = savedIdentifier(intoSidebarItem), .index = atIndex});
}

std::shared_ptr<ImportOperation>
AImportManager::importFileURLs(const QList<QUrl> &urls, const ZQSidebarBaseItem *intoSidebarItem, quint32 atIndex)
{
    QStringList paths;
    for (const QUrl &url : urls) {
        if (url.isLocalFile()) {
            paths.append(url.toLocalFile());
        }
    }
    return startImport({.paths = paths, .target = savedIdentifier(intoSidebarItem), .index = atIndex});
}

std::shared_ptr<ImportOperation> AImportManager::importItemsFromPasteboard(const QMimeData *pasteboard,
                                                                           const ZQSidebarBaseItem *intoSidebarItem,
                                                                           quint32 atIndex)
{
    const PasteboardFiles files = PasteboardFiles::filesFromMimeData(pasteboard, TemporaryFolder::temporaryDirectory);
    if (files.paths.isEmpty()) {
        return nullptr;
    }
    return startImport({.paths = files.paths,
                        .target = savedIdentifier(intoSidebarItem),
                        .index = atIndex,
                        .metadata = files.metadata});
}

bool AImportManager::isPromised(const QMimeData &dragged) const
{
    return m_promisedImports && m_promisedImports->isPromised(dragged);
}

bool AImportManager::importPromisedFiles(const QMimeData &dropped, const ZQSidebarBaseItem *intoSidebarItem,
                                         quint32 atIndex)
{
    return isPromised(dropped) && m_promisedImports->start(dropped, savedIdentifier(intoSidebarItem), atIndex);
}

void AImportManager::stopAllOperation()
{
    importOperationQueue().cancelAllOperations();
    ZQNotificationCenter::defaultCenter().postNotification(willFinishImportOperation, this);
}

namespace {

void tellOfDirectoriesLeft(const QStringList &names, const QString &library)
{
    if (names.isEmpty()) {
        return;
    }
    DirectoriesLeft(library).add(names);
    presentImportError(ZQError::with(
        QStringLiteral("zelto.import"), 7,
        names.size() == 1
            ? zqFormat(zqLocalized("“%@” in the library belongs to no item and could not be taken back."),
                       {names.first()})
            : zqFormat(zqLocalized("%d folders of the library belong to no item and could not be taken back. The first "
                                   "is “%@”."),
                       {names.size(), names.first()}),
        zqFormat(zqLocalized("They stay as they are in %@. What is in them is damaged, or of no kind that can be "
                             "imported."),
                 {library})));
}

} // namespace

void AImportManager::takeBackItemDirectories(const QStringList &names,
                                             std::function<void(qsizetype takenBack, bool isComplete)> done)
{
    application().saveAction();
    const QString library = application().libraryDirectory();
    const DirectoriesLeft left(library);
    QStringList rest = names;
    const qsizetype known = rest.removeIf([&left](const QString &name) { return left.contains(name); });
    if (known > 0) {
        qCWarning(zqLogImport) << known << "item directories of no item could not be taken back before";
    }
    auto operation = std::make_shared<TakeBackOperation>(rest, *this);
    operation->setCompletionBlock([weak = std::weak_ptr(operation), done = std::move(done), library] {
        zqOnMainThread([operation = weak.lock(), done, library] {
            if (operation) {
                tellOfDirectoriesLeft(operation->namesLeft(), library);
            }
            done(operation ? operation->takenBackCount() : 0, operation && operation->isComplete());
        });
    });
    importOperationQueue().addOperation(operation);
}

void AImportManager::mergeChanges(const ZQContextDidSave &notification)
{
    Q_ASSERT_X(zqIsMainThread(), "mergeChanges", "Not on the main thread");
    ZQManagedObjectContext *context = application().managedObjectContext();
    if (context) {
        context->mergeChangesFromContextDidSaveNotification(notification);
        ZQError error;
        if (!context->save(&error)) {
            qCWarning(zqLogImport).noquote() << "The main context was not saved:" << error.localizedDescription();
        }
        const QStringList titles = ZQSidebarTag::contextContainsDuplicatedTags(*context);
        if (!titles.isEmpty()) {
            mergeDuplicatedTagNames(titles);
            application().saveAction();
        }
    }
    ZQNotificationCenter::defaultCenter().postNotification(didFinishImportOperation, this);
}

void AImportManager::mergeDuplicatedTagNames(const QStringList &titles)
{
    ZQManagedObjectContext &context = *application().managedObjectContext();
    ZQSidebarTag::mergeTagsNamed(titles, context);
    ZQSidebarTag::reorderAllUserTagsInManagedObjectContext(context);
}

void AImportManager::thumbForLibraryItem(ZQLibraryBaseItem *item)
{
    const QString file = item->itemURL();
    const QString bundle = item->bundleURL();
    const QString oldThumb = item->thumbURL();
    const ZQObjectID id = item->objectID();
    if (file.isEmpty() || bundle.isEmpty()) {
        qCWarning(zqLogImport) << "An item without a file gets no thumbnail";
        return;
    }
    m_thumbsGenerationQueue.addOperationWithBlock([this, file, bundle, oldThumb, id] {
        QString thumb;
        ZQBitmap picture;
        if (ImportQueries::canSkipThumbForPath(file)) {
            picture = ZQImageSource::thumbnailOfFile(file, ThumbGenerator::thumbnailSize);
        } else {
            ZQError error;
            thumb = ThumbGenerator::thumbPathForImageURL(file, bundle, &picture, &error);
            if (thumb.isEmpty()) {
                qCWarning(zqLogImport).noquote()
                    << zqFormat(QStringLiteral("can't create thumb for %@: %@"), {file, error.localizedDescription()});
                return;
            }
        }
        if (!oldThumb.isEmpty() && oldThumb != thumb) {
            QFile::remove(oldThumb);
        }
        // What could not be drawn now is not what shows nothing: it is still to be looked at.
        const auto fingerprint = picture.isNull() ? std::nullopt : std::optional(ZQPictureFingerprint::of(picture));
        zqOnMainThread([this, thumb, id, fingerprint] {
            if (const auto there = fingerprint ? itemInMainContext(id) : nullptr) {
                fingerprint->applyTo(*there);
            }
            updateThumbPath(thumb, id);
        });
    });
}

void AImportManager::updateThumbPath(const QString &path, const ZQObjectID &forObjectID)
{
    const ZQRef<ZQLibraryBaseItem> item = itemInMainContext(forObjectID);
    if (!item) {
        return;
    }
    item->setThumbVersion(item->thumbVersion() + 1);
    item->setThumbName(path.isEmpty() ? QString() : QFileInfo(path).fileName());
    if (MainWindowControlling *window = application().mainWindowController()) {
        window->refreshContent();
    }
}

bool AImportManager::libraryOnPath(const QString &volumePath) const
{
    const QString volume = QDir::cleanPath(volumePath);
    const QString library = application().libraryBundleDirectory();
    return !library.isEmpty() && (library == volume || volume == u"/" || library.startsWith(volume + u'/'));
}
