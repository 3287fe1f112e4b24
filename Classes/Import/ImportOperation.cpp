#include "Classes/Import/ImportOperation.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/BatchResult.h"
#include "Classes/Import/DuplicateCheck.h"
#include "Classes/Import/GroupImport.h"
#include "Classes/Import/ImportErrors.h"
#include "Classes/Import/ImportOwner.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QFileInfo>
#include <QHash>

#include <algorithm>

ImportOperation::ImportOperation(const BatchRequest &request, const KeptRequest &kept, ImportOwner &owner)
    : m_owner(owner), m_goesPastQuestions(request.goesPastQuestions),
      m_batch{.operation = *this,
              .user = tamberin_AppDelegate::sharedDelegate()->userInteraction(),
              .settings = ImportSettings::current(),
              .coordinator = tamberin_AppDelegate::sharedDelegate()->persistentStoreCoordinator(),
              .request = request,
              .originalDropIndex = request.index,
              .requestedFiles = request.paths},
      m_resumption(m_batch, kept), m_plan(m_batch, m_resumption), m_items(m_batch, m_resumption)
{
    if (request.origin) {
        m_batch.record.report().setOrigin(request.origin->root, request.origin->archivePath);
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

bool ImportOperation::isAnyRunning() const
{
    return (m_hasStarted && !isFinished()) ||
           std::any_of(m_followUps.begin(), m_followUps.end(),
                       [](const auto &operation) { return operation->isAnyRunning(); });
}

void ImportOperation::cancelWholly()
{
    cancel();
    std::for_each(m_followUps.begin(), m_followUps.end(), [](const auto &operation) { operation->cancelWholly(); });
}

void ImportOperation::main()
{
    m_hasStarted = true;
    BatchResult result(m_batch, m_resumption);
    if (setUp()) {
        if (m_resumption.goesOn()) {
            resume();
        } else {
            importIntoTarget();
        }
    }
    finish(result);
}

bool ImportOperation::setUp()
{
    if (!m_batch.coordinator) {
        m_batch.record.setRefusal(zqLocalized("The library cannot be opened."));
        return false;
    }
    m_batch.context = std::make_unique<ZQManagedObjectContext>(m_batch.coordinator, ZQMergePolicy::PropertyObjectTrump);
    m_batch.inserter = std::make_unique<ItemInserter>(*m_batch.context);
    m_groupImport = std::make_unique<GroupImport>(m_batch, m_items);
    m_cancellationObserver = observe([this](Key key) {
        if (key == Key::IsCancelled) {
            m_groupImport->cancelFiles();
        }
    });
    m_mainThreadSaveObserver = m_batch.context->observeDidSave([this](const ZQContextDidSave &notification) {
        zqOnMainThreadAndWait([this, &notification] { m_owner.mergeChanges(notification); });
    });
    return !isCancelled();
}

void ImportOperation::importIntoTarget()
{
    auto planned = m_plan.groupsForTarget();
    if (planned && (!planned->madeFolders || rememberFolders(planned->groups))) {
        m_groupImport->importGroups(planned->groups);
    }
}

bool ImportOperation::rememberFolders(const QList<FileGroup> &groups)
{
    ZQError error;
    if (m_resumption.rememberGroups(groups, &error)) {
        return true;
    }
    removeEverythingCreated(); // or going on would make the same projects again
    m_resumption.postpone(
        zqFormat(zqLocalized("%@ Import it again once that is mended."), {error.localizedDescription()}));
    return false;
}

void ImportOperation::resume()
{
    const bool isRestored = m_resumption.restoreEarlierItems(
        [this](const PendingImportFile::Source &source, ZQLibraryBaseItem &item) { m_items.addEarlier(source, item); });
    if (!isRestored) {
        m_batch.requestedFiles.clear(); // told in one sentence
        return;
    }
    m_batch.isProcessed = m_resumption.earlierItemCount() > 0;
    if (m_resumption.firstRequest().groups.isEmpty()) {
        importIntoTarget();
        return;
    }
    if (auto groups = m_plan.remainingGroups()) {
        m_groupImport->importGroups(*groups);
    }
    m_batch.request.paths = m_resumption.firstRequest().ungrouped;
    // Making folders saves them, and with them what was imported so far, which is to be noted before.
    if (!m_batch.request.paths.isEmpty() && !isCancelled() && m_batch.record.refusal().isEmpty() && m_items.save()) {
        m_batch.requestedFiles.append(m_batch.request.paths);
        importIntoTarget();
    }
}

void ImportOperation::removeEverythingCreated()
{
    m_items.takeOutAll();
    m_plan.removeCreatedSidebarItems();
    m_batch.inserter->removeNewTags();
}

void ImportOperation::finish(BatchResult &result)
{
    if (m_batch.request.part) {
        m_batch.request.part->didCome();
    }
    if (!isCancelled() && m_batch.context) {
        DuplicateCheck(m_batch, m_items, m_resumption).run();
    }
    const bool wasCancelled = isCancelled(); // what comes later comes too late
    if (m_batch.context) {
        saveAtTheEnd(wasCancelled);
    }
    if (!wasCancelled) {
        importUnfoldedArchives();
    }
    m_batch.record.takeUnfoldedArchives();
    m_resumption.end(wasCancelled, m_owner.keepsCancelledImports(), m_items.savedCount(), !m_followUps.isEmpty());
    result.report(m_items, m_followedUpPaths, wasCancelled);
    result.tell({.hasFollowUps = !m_followUps.isEmpty(),
                 .wasCancelled = wasCancelled,
                 .isKept = m_owner.keepsCancelledImports()});
    m_batch.record.endProgress();
    releaseFolders();
}

void ImportOperation::saveAtTheEnd(bool wasCancelled)
{
    if (wasCancelled) {
        removeEverythingCreated();
    }
    ZQError error;
    if (!m_items.save(&error)) {
        m_items.keepWhatCouldNotBeTakenOut(error);
    } else if (!wasCancelled) {
        m_items.removeSources();
    }
    m_items.removeDirectories();
    enableSidebarItems();
    m_mainThreadSaveObserver.reset();
    m_cancellationObserver.reset();
    m_batch.context.reset();
}

void ImportOperation::enableSidebarItems()
{
    ZQManagedObjectContext &context = *m_batch.context;
    m_items.releaseObjects();
    m_plan.forgetCreatedSidebarItems();
    m_batch.inserter.reset();
    context.reset();
    if (m_goesPastQuestions) {
        return; // it made none, and those of a batch that waits are not whole yet
    }
    const auto items = zqFetch<ZQSidebarBaseItem>(context, QStringLiteral("enabled == %@"), {false});
    for (const ZQRef<ZQSidebarBaseItem> &item : items.value_or(QList<ZQRef<ZQSidebarBaseItem>>())) {
        item->setEnabled(true);
    }
    ZQError error;
    if (!context.save(&error)) {
        logImportSaveError(error);
    }
}

// The folder it was unpacked into, or was made in, goes with it.
void ImportOperation::releaseFolders()
{
    std::optional<UnfoldedArchive> &origin = m_batch.request.origin;
    if (origin && m_resumption.isRequestKept() && origin->holder && !QFileInfo::exists(origin->archivePath)) {
        origin->holder->keep(); // there is nothing else left of the archive
    }
    origin.reset();
    if (m_batch.request.holder && m_resumption.isRequestKept()) {
        m_batch.request.holder->keep();
    }
    m_batch.request.holder.reset();
}

// In the order of the request, whichever was unpacked first. They are queued before this batch has finished, so whoever
// waits for an empty queue waits for them too.
void ImportOperation::importUnfoldedArchives()
{
    QList<UnfoldedArchive> archives = m_batch.record.takeUnfoldedArchives();
    QHash<QString, qsizetype> order;
    for (qsizetype i = 0; i < m_batch.requestedFiles.size(); ++i) {
        order.insert(m_batch.requestedFiles.at(i), i);
    }
    std::stable_sort(archives.begin(), archives.end(), [&order](const UnfoldedArchive &a, const UnfoldedArchive &b) {
        return order.value(a.archivePath) < order.value(b.archivePath);
    });
    for (const UnfoldedArchive &archive : std::as_const(archives)) {
        const bool isServed = zqOnMainThreadAndWait([this, &archive] { importUnfoldedArchive(archive); });
        if (!isServed) {
            m_batch.record.fileDidDrop({archive.archivePath,
                                        zqLocalized("Zelto was quit before it could be imported. Import it again."),
                                        DroppedFile::Telling::Quietly});
        }
    }
}

void ImportOperation::importUnfoldedArchive(const UnfoldedArchive &archive)
{
    if (isCancelled()) { // by whoever stops all imports; the new one would not be among them
        m_batch.record.fileDidDrop({archive.archivePath, cancelledImportReason(), DroppedFile::Telling::Quietly});
        return;
    }
    const auto &duplicates = m_batch.request.duplicates;
    const auto &whole = m_batch.request.whole;
    const auto followUp = m_resumption.unpacksOf()
                              ? m_owner.resumeImportOfArchive(archive, m_resumption.requestOfArchive(), whole)
                              : m_owner.startImport({.paths = {archive.folder},
                                                     .target = archive.sidebarItem,
                                                     .index = indexForArchive(archive),
                                                     .metadata = archive.metadata,
                                                     .origin = archive,
                                                     .duplicates = duplicates ? duplicates : whole->duplicates(),
                                                     .whole = whole});
    if (followUp) {
        const PendingImportFile::Source handedOver{
            .bundleID = {}, .path = archive.archivePath, .movedPath = {}, .movedModification = 0};
        ZQError error;
        if (!m_resumption.remember({handedOver}, &error)) {
            qCWarning(zqLogImport).noquote() << error.localizedDescription();
        }
        m_followUps.append(followUp);
        m_followedUpPaths.insert(archive.archivePath);
    } else {
        m_batch.record.fileDidDrop(
            {archive.archivePath, zqLocalized("The library was closed. Open it and import it again.")});
    }
}

quint32 ImportOperation::indexForArchive(const UnfoldedArchive &archive) const
{
    if (m_batch.originalDropIndex == appendIndex || archive.sidebarItem != m_batch.target) {
        return appendIndex;
    }
    const qsizetype place = m_batch.foldersAndArchivesPathOrdered.indexOf(archive.archivePath);
    return m_batch.originalDropIndex + quint32(std::max<qsizetype>(place, 0));
}
