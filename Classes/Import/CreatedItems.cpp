#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/ImportOwner.h"
#include "Classes/Import/ImportQueries.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Models/DataModel/ZQProjectItem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>

namespace {

constexpr int browserPosition = 1;
constexpr qsizetype digestsInOneQuery = 500;
constexpr std::chrono::duration<double> longEnoughToBeElsewhere(20.0);

// A source that was written to after it had been read holds something the library does not have.
void removeSource(const QString &path, qint64 modification)
{
    const auto dates = zqFileDates(path);
    const QFileInfo info(path);
    if (info.isSymLink() || !dates || dates->modification != modification) {
        qCInfo(zqLogImport).noquote() << "The imported file" << path << "has changed and stays where it is";
        return;
    }
    const bool isRemoved = info.isDir() ? QDir(path).removeRecursively() : QFile::remove(path);
    if (!isRemoved) {
        qCInfo(zqLogImport).noquote() << "The imported file" << path
                                      << "could not be removed from the temporary folder";
    }
}

// Of an item that was saved before, the store tells it, and a store may come from elsewhere.
bool isPlainName(const QString &name)
{
    return !name.isEmpty() && name != u"." && name != u".." && !name.contains(u'/') && !name.contains(QChar::Null);
}

bool isRegularFile(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISREG(status.st_mode);
}

// A record may have come with a library from elsewhere. It is believed about a file alone that the library holds a true
// copy of, so that nothing is lost whatever it names; a link anywhere on the way would lead past the place.
bool mayRemoveRecordedSource(const QString &path, const QString &itemFile)
{
    const QString library = QFileInfo(ZQLibraryEnvironment::current().libraryDirectory()).canonicalFilePath();
    const QString copy = QFileInfo(itemFile).canonicalFilePath();
    if (!isRegularFile(path) || QFileInfo(path).canonicalFilePath() != path ||
        !ImportQueries::fileIsInsideTemporaryDirectory(path)) {
        return false;
    }
    if (library.isEmpty() || !isRegularFile(itemFile) || !copy.startsWith(library + u'/') || copy == path) {
        return false;
    }
    const QByteArray digest = zqSHA1OfFile(copy);
    return !digest.isEmpty() && digest == zqSHA1OfFile(path);
}

} // namespace

void ImportOperation::finish()
{
    if (!isCancelled() && m_moc) {
        checkForDuplicateImport();
    }
    const bool wasCancelled = isCancelled(); // what comes later comes too late
    if (m_moc) {
        if (wasCancelled) {
            removeEverythingCreated();
        }
        ZQError error;
        const bool isSaved = saveItems(&error);
        if (!isSaved) {
            keepWhatCouldNotBeTakenOut(error);
        } else if (!wasCancelled) {
            completeItems();
        }
        removeBundles();
        enableSidebarItems();
        m_mainThreadSaveObserver.reset();
        m_cancellationObserver.reset();
        m_moc.reset();
    }
    if (!wasCancelled) {
        importUnfoldedArchives();
    }
    m_unfoldedArchives.clear();
    endPendingImport(wasCancelled);
    endRequestOfArchive(wasCancelled);
    writeReport(wasCancelled);
    tellResult(wasCancelled);
    m_progress.reset();
    if (m_origin && m_isRequestKept && m_origin->holder && !QFileInfo::exists(m_origin->archivePath)) {
        m_origin->holder->keep(); // there is nothing else left of the archive
    }
    m_origin.reset(); // and with it the folder it was unpacked into
}

// In the order of the request, whichever was unpacked first. They are queued before this batch has finished, so whoever
// waits for an empty queue waits for them too.
void ImportOperation::importUnfoldedArchives()
{
    QHash<QString, qsizetype> order;
    for (qsizetype i = 0; i < m_requestedFiles.size(); ++i) {
        order.insert(m_requestedFiles.at(i), i);
    }
    std::stable_sort(m_unfoldedArchives.begin(), m_unfoldedArchives.end(),
                     [&order](const UnfoldedArchive &a, const UnfoldedArchive &b) {
                         return order.value(a.archivePath) < order.value(b.archivePath);
                     });
    for (const UnfoldedArchive &archive : std::as_const(m_unfoldedArchives)) {
        const bool isServed = zqOnMainThreadAndWait([this, &archive] { importUnfoldedArchive(archive); });
        if (!isServed) {
            fileDidDrop({archive.archivePath,
                         zqLocalized("Zelto was quit before it could be imported. Import it again."),
                         DroppedFile::Telling::Quietly});
        }
    }
}

void ImportOperation::importUnfoldedArchive(const UnfoldedArchive &archive)
{
    if (isCancelled()) { // by whoever stops all imports; the new one would not be among them
        fileDidDrop({archive.archivePath, zqLocalized("The import was cancelled. Import it again if you want it."),
                     DroppedFile::Telling::Quietly});
        return;
    }
    const auto followUp = m_requestOfArchive ? m_owner.resumeImportOfArchive(archive, m_requestOfArchive)
                                             : m_owner.startImport({.paths = {archive.folder},
                                                                    .target = archive.sidebarItem,
                                                                    .index = indexForArchive(archive),
                                                                    .metadata = archive.metadata,
                                                                    .origin = archive});
    if (followUp) {
        const PendingImportFile::Source handedOver{
            .bundleID = {}, .path = archive.archivePath, .movedPath = {}, .movedModification = 0};
        ZQError error;
        if (m_pendingImport && !m_pendingImport->addSources({handedOver}, &error)) {
            qCWarning(zqLogImport).noquote() << error.localizedDescription();
        }
        m_followUps.append(followUp);
        m_followedUpPaths.insert(archive.archivePath);
    } else {
        fileDidDrop({archive.archivePath, zqLocalized("The library was closed. Open it and import it again.")});
    }
}

quint32 ImportOperation::indexForArchive(const UnfoldedArchive &archive) const
{
    if (m_originalDropIndex == appendIndex || archive.sidebarItem != m_target) {
        return appendIndex;
    }
    const qsizetype place = m_foldersAndArchivesPathOrdered.indexOf(archive.archivePath);
    return m_originalDropIndex + quint32(std::max<qsizetype>(place, 0));
}

std::optional<std::vector<ImportOperation::Duplicate>> ImportOperation::findDuplicates()
{
    QHash<QString, std::vector<std::size_t>> createdBySHA1;
    QSet<ZQObjectID> created;
    for (std::size_t i = 0; i < m_createdItems.size(); ++i) {
        created.insert(m_createdItems[i].objectID);
        if (!m_createdItems[i].SHA1.isEmpty()) {
            createdBySHA1[m_createdItems[i].SHA1].push_back(i);
        }
    }
    QHash<QString, ZQRef<ZQLibraryBaseItem>> existing;
    const QStringList digests = createdBySHA1.keys();
    for (qsizetype first = 0; first < digests.size(); first += digestsInOneQuery) {
        // Saved rows only: what this batch has not saved yet cannot be there already.
        const auto items = zqFetch<ZQLibraryBaseItem>(
            *m_moc,
            ZQFetchRequest{.entityName = ZQLibraryBaseItem::entityName(),
                           .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("SHA1 in %@ AND active == YES"),
                                                                         {digests.mid(first, digestsInOneQuery)}),
                           .includesPendingChanges = false});
        if (!items) {
            return std::nullopt;
        }
        for (const ZQRef<ZQLibraryBaseItem> &item : *items) {
            if (!created.contains(item->objectID())) {
                existing.insert(item->SHA1(), item);
            }
        }
    }
    std::vector<Duplicate> duplicates;
    for (auto entry = existing.constBegin(); entry != existing.constEnd(); ++entry) {
        duplicates.push_back({entry.value(), createdBySHA1.value(entry.key())});
    }
    std::sort(duplicates.begin(), duplicates.end(),
              [](const Duplicate &a, const Duplicate &b) { return a.created.front() < b.created.front(); });
    return duplicates;
}

QList<DuplicatePair> ImportOperation::duplicatePairs(const std::vector<Duplicate> &duplicates) const
{
    QList<DuplicatePair> pairs;
    for (const Duplicate &duplicate : duplicates) {
        const CreatedItem &created = m_createdItems[duplicate.created.front()];
        const ZQRef<ZQLibraryBaseItem> &item = duplicate.existing;
        QStringList places;
        for (const ZQRef<ZQSidebarBaseItem> &project : item->projects()) {
            places.append(project->title());
        }
        const QString path = item->itemURL();
        const QFileInfo file(created.filePath);
        pairs.append(
            {.SHA1 = created.SHA1,
             .existingTitle = item->title(),
             .existingPath = path,
             .existingThumbPath = item->thumbURL().isEmpty() ? path : item->thumbURL(),
             .existingPlaces = places,
             .existingImportDate = item->import_date(),
             .newTitle = file.completeBaseName(),
             .newPath = created.sourcePath,
             .newThumbPath = created.thumbName.isEmpty() ? created.filePath : file.path() + u'/' + created.thumbName,
             .bytes = file.size(),
             .pixelWidth = item->pixelWidth(),
             .pixelHeight = item->pixelHeight()});
    }
    return pairs;
}

void ImportOperation::checkForDuplicateImport()
{
    const auto found = findDuplicates();
    if (!found) {
        const QString reason = zqLocalized("It cannot be told whether the library has it already, since the library "
                                           "cannot be read. Import it again once that is mended.");
        postpone(reason);
        forgetUnsavedItems(reason);
        return;
    }
    const std::vector<Duplicate> &duplicates = *found;
    if (duplicates.empty()) {
        return;
    }
    const auto choices = m_userInteraction.resolveDuplicates(duplicatePairs(duplicates));
    if (!choices) {
        cancel();
        return;
    }
    for (std::size_t i = 0; i < duplicates.size(); ++i) {
        resolveDuplicate(duplicates[i], choices->value(qsizetype(i), DuplicateChoice::KeepBoth));
    }
}

void ImportOperation::resolveDuplicate(const Duplicate &duplicate, DuplicateChoice choice)
{
    if (choice == DuplicateChoice::KeepBoth) {
        return;
    }
    const bool relinks = choice == DuplicateChoice::Relink;
    const QString reason =
        zqFormat(relinks ? zqLocalized("The library has it already, as “%@”; that item was put in its place.")
                         : zqLocalized("The library has it already, as “%@”; the new copy was discarded."),
                 {duplicate.existing->title()});
    for (const std::size_t index : duplicate.created) {
        const ZQRef<ZQLibraryBaseItem> item = object(m_createdItems[index]);
        if (!item) {
            continue;
        }
        if (relinks) {
            relink(*duplicate.existing, *item);
        }
        takeOut(index);
        if (!relinks) {
            m_discardedPaths.append(m_createdItems[index].sourcePath);
        }
        m_droppedOnceSaved.append({m_createdItems[index].sourcePath, reason, DroppedFile::Telling::Quietly});
    }
}

// The directory of an item whose row was saved must outlive that row, which goes with the next save or stays.
void ImportOperation::takeOut(std::size_t index)
{
    CreatedItem &created = m_createdItems[index];
    if (const ZQRef<ZQLibraryBaseItem> item = object(created); item && !created.isGone) {
        item->deletePermanently();
    }
    created.isGone = true;
    const bool isNamed = index < std::size_t(m_savedItemCount);
    (isNamed ? m_bundlesToRemoveOnceSaved : m_bundlesToRemove).append(created.bundleID);
}

void ImportOperation::relink(ZQLibraryBaseItem &existing, ZQLibraryBaseItem &created)
{
    if (!m_rootSidebarItem.isNull()) {
        if (const auto tag = zqCast<ZQSidebarTag>(m_moc->objectWithID(m_rootSidebarItem))) {
            tag->addItem(&existing);
        }
    }
    for (const ZQRef<ZQProjectItem> &membership : created.projectsItems()) {
        if (const ZQRef<ZQSidebarBaseItem> project = membership->project()) {
            project->addItem(&existing, quint32(membership->order()), false);
        }
    }
}

void ImportOperation::removeEverythingCreated()
{
    for (std::size_t i = 0; i < m_createdItems.size(); ++i) {
        if (!m_createdItems[i].isEarlier) { // the person has had those since the last launch
            takeOut(i);
        }
    }
    for (const ZQRef<ZQSidebarBaseItem> &item : std::as_const(m_createdSidebarItems)) {
        if (item->managedObjectContext() && !item->isDeleted()) { // a father takes its children along
            item->deletePermanently();
        }
    }
}

// What is due once the items are safe: the moved files leave where they were.
void ImportOperation::completeItems()
{
    for (const CreatedItem &created : m_createdItems) {
        if (created.isGone || created.movedPath.isEmpty() || !QFileInfo::exists(created.movedPath)) {
            continue;
        }
        if (created.isEarlier && !mayRemoveRecordedSource(created.movedPath, created.filePath)) {
            qCInfo(zqLogImport).noquote() << "The file" << created.movedPath
                                          << "is no temporary copy of what the library has and stays where it is";
            continue;
        }
        removeSource(created.movedPath, created.movedModification);
    }
}

// After a last save that failed: the store still lists what earlier saves of the batch put there, and it stays whole.
void ImportOperation::keepWhatCouldNotBeTakenOut(const ZQError &error)
{
    if (m_bundlesToRemoveOnceSaved.isEmpty()) {
        return;
    }
    const qsizetype count = m_bundlesToRemoveOnceSaved.size();
    qCWarning(zqLogImport).noquote() << count << "items could not be taken out of the library again:"
                                     << error.localizedDescription();
    for (CreatedItem &created : m_createdItems) {
        created.isGone = false;
    }
    m_bundlesToRemoveOnceSaved.clear();
    m_droppedOnceSaved.clear();
    const ZQError told = ZQError::with(
        QStringLiteral("zelto.import"), 2,
        zqFormat(zqLocalized("%d imported items could not be taken out of the library again."), {count}),
        zqFormat(zqLocalized("%@ Delete them in the library once that is mended."), {error.localizedDescription()}));
    zqOnMainThread([&user = m_userInteraction, told] { user.presentError(told); });
}

void ImportOperation::removeBundles()
{
    m_bundlesToRemove.append(m_bundlesToRemoveOnceSaved);
    m_bundlesToRemoveOnceSaved.clear();
    for (const DroppedFile &file : std::as_const(m_droppedOnceSaved)) {
        fileDidDrop(file);
    }
    m_droppedOnceSaved.clear();
    for (const QString &bundleID : std::as_const(m_bundlesToRemove)) {
        if (!isPlainName(bundleID) || QFileInfo(bundlePath(bundleID)).isSymLink()) {
            qCWarning(zqLogImport).noquote()
                << "An item's directory has an unsafe name and is not removed:" << bundleID;
        } else if (!QDir(bundlePath(bundleID)).removeRecursively()) {
            qCWarning(zqLogImport).noquote() << "Error while deleting unused bundle item" << bundlePath(bundleID);
        }
    }
    m_bundlesToRemove.clear();
}

void ImportOperation::enableSidebarItems()
{
    m_unsavedItems.clear();
    m_createdSidebarItems.clear();
    m_tags.clear();
    m_moc->reset();
    const auto items = zqFetch<ZQSidebarBaseItem>(*m_moc, QStringLiteral("enabled == %@"), {false});
    for (const ZQRef<ZQSidebarBaseItem> &item : items.value_or(QList<ZQRef<ZQSidebarBaseItem>>())) {
        item->setEnabled(true);
    }
    ZQError error;
    if (!m_moc->save(&error)) {
        logSaveError(error);
    }
}

void ImportOperation::writeReport(bool wasCancelled)
{
    QStringList imported;
    QSet<QString> importedPaths;
    for (const CreatedItem &created : m_createdItems) {
        if (!created.isGone) {
            if (!created.isEarlier) {
                imported.append(created.bundleID);
            }
            importedPaths.insert(created.sourcePath);
        }
    }
    m_report.setImported(imported);
    const QString refused = refusal();
    const QString reason = wasCancelled ? zqLocalized("The import was cancelled. Import it again if you want it.")
                           : refused.isEmpty() ? zqLocalized("It was left out. Import it again.")
                                               : refused;
    const QSet<QString> outOfReach(m_outOfReach.begin(), m_outOfReach.end()); // told together
    for (const QString &path : std::as_const(m_requestedFiles)) {
        const bool isSeenTo = m_followedUpPaths.contains(path) || m_earlierPaths.contains(path);
        if (!importedPaths.contains(path) && !isSeenTo && !outOfReach.contains(path)) {
            fileDidDrop({path, reason, wasCancelled ? DroppedFile::Telling::Quietly : DroppedFile::Telling::InWindow});
        }
    }
}

void ImportOperation::tellResult(bool wasCancelled)
{
    const bool tookLong = std::chrono::steady_clock::now() - m_startDate > longEnoughToBeElsewhere;
    const bool isWanted =
        tookLong && !wasCancelled && !m_report.isUnfinished() && !(m_hasArchives && m_itemsToImport.size() == 1);
    const bool gaveNothing = m_followUps.isEmpty() && !m_isProcessed;
    if (m_report.isUnfinished()) {
        notify(textForUnfinished(), browserPosition, 6.0);
    } else if (gaveNothing && !wasCancelled) {
        notify(zqLocalized("Nothing to import!"), browserPosition, 2.0);
    }
    if (isWanted) {
        const QString title = gaveNothing ? zqLocalized("Import Invalid") : zqLocalized("Import Successful");
        const QString text =
            gaveNothing ? zqLocalized("Nothing to import") : zqLocalized("Import operation successful");
        zqOnMainThread([&user = m_userInteraction, title, text] { user.showSystemNotification(title, text); });
    }
    if (!wasCancelled) {
        tellDropped();
    }
}

namespace {

QString textForDropped(const QList<DroppedFile> &told)
{
    const DroppedFile &first = told.first();
    const QString name = QFileInfo(first.path).fileName();
    if (told.size() == 1) {
        return zqFormat(first.telling == DroppedFile::Telling::InWindowPartly
                            ? zqLocalized("“%@” was imported in part: %@")
                            : zqLocalized("“%@” could not be imported: %@"),
                        {name, first.reason});
    }
    if (std::all_of(told.begin(), told.end(), [&first](const auto &file) { return file.reason == first.reason; })) {
        return zqFormat(zqLocalized("%d files could not be imported: %@"), {told.size(), first.reason});
    }
    return zqFormat(zqLocalized("%d files could not be imported. The first is “%@”: %@"),
                    {told.size(), name, first.reason});
}

QString textForIncomplete(const QList<DroppedFile> &told)
{
    const QString name = QFileInfo(told.first().path).fileName();
    return told.size() == 1
               ? zqFormat(zqLocalized("“%@” is incomplete: only a part of it can be drawn"), {name})
               : zqFormat(
                     zqLocalized("%d pictures are incomplete: only a part of each can be drawn. The first is “%@”"),
                     {told.size(), name});
}

} // namespace

void ImportOperation::tellDropped()
{
    QList<DroppedFile> dropped;
    QList<DroppedFile> incomplete;
    for (const DroppedFile &file : m_report.dropped()) {
        if (file.telling == DroppedFile::Telling::InWindowIncomplete) {
            incomplete.append(file);
        } else if (file.telling != DroppedFile::Telling::Quietly) {
            dropped.append(file);
        }
    }
    QStringList texts;
    if (!dropped.isEmpty()) {
        texts.append(textForDropped(dropped));
    }
    if (!incomplete.isEmpty()) {
        texts.append(textForIncomplete(incomplete));
    }
    if (!texts.isEmpty()) {
        notify(texts.join(u'\n'), browserPosition, 6.0);
    }
}

void ImportOperation::notify(const QString &text, int position, double seconds)
{
    m_report.addNotification(text);
    zqOnMainThread([&user = m_userInteraction, text, position, seconds] {
        user.showNotificationWithText(text, position, seconds);
    });
}
