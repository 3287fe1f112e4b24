#include "Classes/LiveFolders/LiveFileImport.h"

#include "Classes/Application/CutOffSyncs.h"
#include "Classes/Import/BaseImportOperation.h"
#include "Classes/Import/ImportErrors.h"
#include "Classes/Import/ImportReport.h"
#include "Classes/Import/ImporterForFile.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <unistd.h>

namespace {
constexpr qsizetype mostUnsaved = 256;
constexpr std::size_t mostReading = 512;
constexpr int longestInterval = 4;   // times the first
constexpr int mostWaitingTags = 512; // files
} // namespace

LiveFileImport::LiveFileImport(SyncRun &run)
    : m_run(run), m_inserter(*run.moc), m_importOperationQueue(QStringLiteral("Live folder files"), 4),
      m_arrival(std::make_shared<Arrival>()), m_importDate(zqNow()), m_interval(run.settings.firstSaveAfter),
      m_nextSave(Clock::now() + m_interval)
{
}

LiveFileImport::~LiveFileImport()
{
    m_importOperationQueue.cancelAllOperations();
    m_importOperationQueue.waitUntilAllOperationsAreFinished(); // their slots are here
    for (const Reading &reading : m_reading) {
        giveUp(reading.file);
    }
    if (!m_note.isEmpty() && !m_run.didFail) {
        CutOffSyncs::end(m_note);
    }
}

void LiveFileImport::add(const File &file)
{
    auto operation = m_run.isWanted() && refusal().isEmpty() ? importOperationForFilePath(file.path) : nullptr;
    if (!operation) {
        m_run.progress.advance(file.root);
        return;
    }
    if (m_note.isEmpty()) {
        m_note = CutOffSyncs::begin(m_run.records.bundle());
    }
    Reading &reading = m_reading.emplace_back();
    reading.asked = file;
    reading.operation = operation;
    operation->setReferenceImage(true);
    operation->setSHA1(file.SHA1);
    operation->setSettings(m_run.settings);
    operation->setSidebarItem(m_run.folderID(file.folder));
    operation->setImportDate(m_importDate.addMSecs(m_count++)); // lists keep the order of the folder
    operation->setImportData(&reading.file);
    operation->setFatherOperation(this);
    operation->setCompletionBlock([this, root = file.root, arrival = m_arrival, read = operation.get()] {
        if (!read->isCancelled()) {
            m_run.progress.advance(root);
        }
        const ZQLockGuard lock(arrival->mutex);
        arrival->arrived.notifyAll();
    });
    m_importOperationQueue.addOperation(operation);
    while (isFirstThere() || m_reading.size() >= mostReading) {
        takeFirst(true);
    }
    saveIfDue();
}

bool LiveFileImport::isFirstThere()
{
    return !m_reading.empty() && m_reading.front().operation->isFinished();
}

void LiveFileImport::giveUpWaiting()
{
    m_importOperationQueue.cancelAllOperations();
}

void LiveFileImport::finish()
{
    if (!m_run.isWanted()) {
        m_importOperationQueue.cancelAllOperations();
    }
    while (!m_reading.empty()) {
        takeFirst(true);
        saveIfDue();
        if (!m_run.isWanted()) {
            m_importOperationQueue.cancelAllOperations();
        }
    }
    const QString reason = refusal();
    if (!reason.isEmpty()) {
        m_run.refusal = reason;
        presentImportError(ZQError::with(QStringLiteral("zelto.import"), 3,
                                         zqLocalized("Not every file of the live folders could be read."), reason));
    }
    saveNow();
}

// A slow file does not keep from the screen what is there already.
void LiveFileImport::takeFirst(bool waits)
{
    BaseImportOperation &first = *m_reading.front().operation;
    while (waits && !first.isFinished()) {
        constexpr std::chrono::milliseconds step(50);
        {
            const ZQLockGuard lock(m_arrival->mutex);
            if (!first.isFinished()) {
                m_arrival->arrived.waitFor(m_arrival->mutex, step);
            }
        }
        saveIfDue();
        if (!m_run.isWanted()) {
            m_importOperationQueue.cancelAllOperations();
        }
    }
    first.waitUntilFinished();
    const Reading reading = std::move(m_reading.front());
    m_reading.pop_front();
    if (reading.file.fileData.isEmpty()) {
        if (reading.operation->isCancelled()) {
            m_foldersGivenUp.append(reading.asked.folder);
        } else {
            m_unreadFiles.append(reading.asked.path);
        }
        return;
    }
    if (m_run.didFail) {
        giveUp(reading.file);
    } else {
        insert(reading);
    }
}

void LiveFileImport::insert(const Reading &reading)
{
    const qint64 key = reading.asked.folder;
    if (!m_folders.contains(key)) {
        m_folders.insert(key, m_run.folder(key));
    }
    const ZQRef<ZQSidebarWatchedFolder> folder = m_folders.value(key);
    const bool isWanted = folder && folder->active() && !folder->isDeleted();
    const ItemInserter::Inserted inserted =
        isWanted ? m_inserter.insert(reading.file.fileData) : ItemInserter::Inserted();
    if (!inserted.item) {
        giveUp(reading.file);
        return;
    }
    inserted.item->setWatchingFolder(folder.get());
    m_written.push_back({inserted.item->bundleID(), reading.file.filePath, inserted.tags, inserted.item->notes(),
                         inserted.item->rating()});
    ++m_changes;
}

void LiveFileImport::giveUp(const ImportedFile &file)
{
    const QString bundleID = file.fileData.value(QStringLiteral("bundleID")).toString();
    if (bundleID.isEmpty() || bundleID.contains(u'/') || bundleID.startsWith(u'.')) {
        return;
    }
    QDir(ZQLibraryEnvironment::current().libraryDirectory() + u'/' + bundleID +
         ZQLibraryBaseItem::itemDirectoryExtension)
        .removeRecursively();
}

void LiveFileImport::saveIfDue()
{
    if (m_changes >= mostUnsaved || (m_changes > 0 && Clock::now() >= m_nextSave)) {
        saveNow();
    }
}

bool LiveFileImport::saveNow()
{
    ZQError error;
    const QString library = ZQLibraryEnvironment::current().libraryDirectory();
    if (!m_written.empty() && !zqSyncFileSystem(library, &error)) { // thumbnails are safe before rows name them
        qCWarning(zqLogImport).noquote() << "The library could not be written:" << error.localizedDescription();
        m_run.moc->rollback();
        m_run.didFail = true;
    }
    m_changes = 0;
    if (!m_run.save()) {
        m_inserter.forgetTags();
        m_written.clear(); // their directories go at the next launch
        return false;
    }
    m_interval = std::min<Clock::duration>(2 * m_interval, longestInterval * m_run.settings.firstSaveAfter);
    m_nextSave = Clock::now() + m_interval;
    writeTags();
    // Both go on side by side; else one thread would be left to write most of the tags after the last file was read,
    // and what a person tags meanwhile would wait behind all of them.
    TagFileWriter::sharedTagFileWriter().waitUntilFewerWait(mostWaitingTags, &m_run.operation);
    return true;
}

// At once: from here on people change them too, and what they write must not be followed by what was read before.
void LiveFileImport::writeTags()
{
    ZQLibraryEnvironment &environment = ZQLibraryEnvironment::current();
    std::vector<WrittenTags::File> files;
    for (const Written &written : std::exchange(m_written, {})) {
        // Of a file that cannot be written the library alone keeps what was measured.
        const bool canBeWritten = ::access(QFile::encodeName(written.path).constData(), W_OK) == 0;
        if (canBeWritten && environment.writesTagsToFiles()) {
            environment.writeTagsToFileOfItem(
                written.bundleID, written.path,
                {.tags = written.tags, .comment = written.notes, .rating = {}, .isFirst = true, .isSaved = true});
            files.push_back({written.path, {written.tags, written.notes, written.rating}});
        }
    }
    m_writtenTags.add(files);
}

void LiveFileImport::fileDidDrop(const DroppedFile &file)
{
    qCInfo(zqLogImport).noquote() << "The file" << file.path
                                  << "of a live folder is no item, or not wholly:" << file.reason;
}

QString LiveFileImport::refusal() const
{
    const ZQLockGuard lock(m_mutex);
    return m_refusal;
}

void LiveFileImport::setRefusal(const QString &reason)
{
    const ZQLockGuard lock(m_mutex);
    m_refusal = reason;
}
