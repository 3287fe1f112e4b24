#include "Classes/Import/ImportOperation.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/ImportConflictResolver.h"
#include "Classes/Import/ImportKind.h"
#include "Classes/Import/ImportOwner.h"
#include "Classes/Import/ImportQueries.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <QDebug>
#include <QFileInfo>

#include <algorithm>

ImportOperation::ImportOperation(const BatchRequest &request, ImportOwner &owner)
    : m_owner(owner), m_itemsToImport(request.paths), m_rootSidebarItem(request.target), m_index(request.index),
      m_originalDropIndex(request.index), m_metadata(request.metadata), m_settings(ImportSettings::current()),
      m_coordinator(tamberin_AppDelegate::sharedDelegate()->persistentStoreCoordinator()),
      m_userInteraction(tamberin_AppDelegate::sharedDelegate()->userInteraction()), m_origin(request.origin)
{
    if (m_origin) {
        m_report.setOrigin(m_origin->root, m_origin->archivePath);
    }
}

ImportOperation::~ImportOperation() = default;

bool ImportOperation::isWhollyFinished() const
{
    return isFinished() && std::all_of(m_followUps.begin(), m_followUps.end(),
                                       [](const auto &operation) { return operation->isWhollyFinished(); });
}

bool ImportOperation::isAnyCancelled() const
{
    return isCancelled() || std::any_of(m_followUps.begin(), m_followUps.end(),
                                        [](const auto &operation) { return operation->isAnyCancelled(); });
}

void ImportOperation::main()
{
    m_hasStarted = true;
    m_startDate = std::chrono::steady_clock::now();
    m_lastProgress = m_startDate;
    if (setUp()) {
        if (m_isResumed && m_pendingImport) {
            resume();
        } else {
            importIntoTarget();
        }
    }
    finish();
}

bool ImportOperation::setUp()
{
    m_requestedFiles = m_itemsToImport;
    if (!m_coordinator) {
        setRefusal(zqLocalized("The library cannot be opened."));
        return false;
    }
    m_importOperationQueue = std::make_unique<ZQOperationQueue>(QStringLiteral("Import"), 3);
    m_moc = std::make_unique<ZQManagedObjectContext>(m_coordinator, ZQMergePolicy::PropertyObjectTrump);
    m_cancellationObserver = observe([this](Key key) {
        if (key == Key::IsCancelled) {
            m_importOperationQueue->cancelAllOperations();
        }
    });
    m_mainThreadSaveObserver = m_moc->observeDidSave([this](const ZQContextDidSave &notification) {
        zqOnMainThreadAndWait([this, &notification] { m_owner.mergeChanges(notification); });
    });
    return !isCancelled();
}

void ImportOperation::importIntoTarget()
{
    const ZQRef<ZQSidebarBaseItem> target =
        m_rootSidebarItem.isNull() ? ZQSidebarBaseItem::libraryProjectInManagedObjectContext(*m_moc)
                                   : zqCast<ZQSidebarBaseItem>(m_moc->existingObjectWithID(m_rootSidebarItem));
    if (!target) {
        dropAll(m_itemsToImport,
                zqLocalized("The sidebar item it was to go to does not exist any more. Import it into another one."));
        return;
    }
    m_target = target->objectID();
    const bool takesFiles =
        target->isProject() || target->isScreenshot() || target->isLibrary() || (target->isTag() && !target->isLabel());
    const bool takesFolders = !target->isTag() && target->kind() != qint16(ZQSidebarKind::WatchedFoldersLabel) &&
                              (target->isFolder() || target->isDroppableLabel());
    if (takesFiles) {
        importFlat(*target);
    } else if (takesFolders) {
        importStructured(*target);
    } else {
        dropAll(m_itemsToImport,
                zqFormat(zqLocalized("“%@” takes no files. Import it into the library, a project or a tag."),
                         {target->title()}));
    }
}

DroppedFile ImportOperation::unsupportedFile(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        return {path, zqLocalized("There is no such file. Check its name."), DroppedFile::Telling::Quietly};
    }
    if (info.isDir()) {
        return {path, zqLocalized("It is a folder. Import it into a folder of the sidebar, or into PROJECTS."),
                DroppedFile::Telling::Quietly};
    }
    if (isSketchFile(path)) {
        return {path, zqLocalized(
                          "It is a document of a newer Sketch, which cannot be imported. Export it from Sketch as PNG, "
                          "SVG or PDF and import that.")};
    }
    return {path, zqLocalized("Files of this kind cannot be imported. Convert it to an image, a PDF or an SVG first."),
            DroppedFile::Telling::Quietly};
}

QStringList ImportOperation::supportedFiles()
{
    if (m_origin && !ImportQueries::fileAtPathIsSupported(m_origin->folder)) {
        m_requestedFiles =
            filesBelowDirectory(m_origin->folder); // they stand for the archive, which was asked for as a file
        return remaining(m_requestedFiles);
    }
    QStringList files;
    const QStringList paths = remaining(m_itemsToImport);
    for (const QString &path : paths) {
        if (ImportQueries::fileAtPathIsSupported(path)) {
            if (ImportQueries::fileAtPathIsArchive(path)) {
                m_hasArchives = true;
                m_foldersAndArchivesPathOrdered.append(path);
            }
            files.append(path);
        } else {
            fileDidDrop(unsupportedFile(path));
        }
    }
    return files;
}

QStringList ImportOperation::screened(const QStringList &files)
{
    ImportConflictResolver resolver(files, m_userInteraction);
    bool isStopped = false;
    const QStringList valid = resolver.validFilesCancellingOperation(&isStopped);
    if (isStopped) {
        cancel();
        return {};
    }
    for (const QString &path : resolver.excludedFiles()) {
        const QString reason =
            QFileInfo::exists(path)
                ? zqLocalized("It cannot be read. Change its permissions, or unlock it, and import it again.")
                : zqLocalized("There is no such file. Check its name.");
        fileDidDrop({path, reason});
    }
    return valid;
}

void ImportOperation::importFlat(ZQSidebarBaseItem &target)
{
    const QStringList supported = supportedFiles();
    if (m_origin && m_requestedFiles.isEmpty() && !isCancelled()) {
        fileDidDrop({m_origin->root, zqLocalized("The archive holds nothing that can be imported."),
                     DroppedFile::Telling::Quietly});
    }
    const QStringList files = screened(supported);
    if (m_index != appendIndex) {
        m_index += quint32(m_savedItemCount);
    }
    m_numberOfItemToImport = files.size();
    if (isCancelled() || files.isEmpty()) {
        return;
    }
    QList<Group> groups{{.project = ZQRef<ZQSidebarBaseItem>(&target),
                         .files = files,
                         .droppedFolder = m_origin ? m_origin->folder : QString()}};
    orderLikeTheDrop(groups);
    beginProgress();
    importFiles(groups.first());
}

void ImportOperation::beginProgress()
{
    const std::weak_ptr<ZQOperation> operation = weak_from_this();
    m_progress =
        m_userInteraction.beginProgress(zqLocalized("Importing…"), double(m_numberOfItemToImport), [operation] {
            if (const auto running = operation.lock()) {
                running->cancel();
            }
        });
}

void ImportOperation::fileDidDrop(const DroppedFile &file)
{
    if (file.telling != DroppedFile::Telling::InWindowIncomplete) {
        const std::lock_guard lock(m_mutex);
        if (m_droppedPaths.contains(file.path)) {
            return;
        }
        m_droppedPaths.insert(file.path);
    }
    m_report.addDropped(file);
}

void ImportOperation::archiveDidUnfold(const UnfoldedArchive &archive)
{
    const std::lock_guard lock(m_mutex);
    m_unfoldedArchives.append(archive);
}

void ImportOperation::dropAll(const QStringList &paths, const QString &reason, DroppedFile::Telling telling)
{
    for (const QString &path : paths) {
        fileDidDrop({path, reason, telling});
    }
}

// The bar moves a few times a second; a call for each of many small files would cost more than the files.
void ImportOperation::fileDidFinish()
{
    constexpr std::chrono::milliseconds interval(60);
    int amount = 0;
    {
        const std::lock_guard lock(m_mutex);
        ++m_unreportedProgress;
        const auto now = std::chrono::steady_clock::now();
        if (now - m_lastProgress < interval) {
            return;
        }
        m_lastProgress = now;
        amount = std::exchange(m_unreportedProgress, 0);
    }
    if (m_progress) {
        m_progress->advanceBy(amount);
    }
}

QString ImportOperation::refusal() const
{
    const std::lock_guard lock(m_mutex);
    return m_refusal;
}

void ImportOperation::setRefusal(const QString &reason)
{
    const std::lock_guard lock(m_mutex);
    if (m_refusal.isEmpty()) {
        m_refusal = reason;
    }
}

void ImportOperation::logSaveError(const ZQError &error)
{
    QString details;
    QDebug(&details).nospace() << error.userInfo;
    qCWarning(zqLogImport).noquote() << zqFormat(QStringLiteral("error ->%@ %@"),
                                                 {error.localizedDescription(), details});
}

QString ImportOperation::bundlePath(const QString &bundleID)
{
    return ZQLibraryEnvironment::current().libraryDirectory() + u'/' + bundleID +
           ZQLibraryBaseItem::itemDirectoryExtension;
}

ZQRef<ZQLibraryBaseItem> ImportOperation::object(const CreatedItem &item)
{
    return zqCast<ZQLibraryBaseItem>(m_moc->objectWithID(item.objectID));
}
