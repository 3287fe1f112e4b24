#include "Classes/Application/ItemTagSync.h"

#include "Classes/Application/FileReferenceRenewal.h"
#include "Classes/Application/FileTagAdoption.h"
#include "Classes/Application/LibraryPlaces.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Tags/OpenMetaBackup.h"
#include "Classes/Tags/TagFileJournal.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Models/DataModel/ZQModelFetch.h"

#include <QFileInfo>

#include <utility>

namespace {

// Of thousands of files that came just now they take longer than a person waits for the end of a program, and the next
// one makes those that are missing.
constexpr std::chrono::milliseconds longestWaitForCopies{700};

// The main thread does not wait for the files to reach the disk.
void storeDidSave(const std::shared_ptr<TagFileJournal> &journal)
{
    journal->didSave();
    TagFileWriter::sharedTagFileWriter().afterWrites([journal] { journal->emptyIfSettled(); });
}

} // namespace

ItemTagSync::ItemTagSync(LibraryPlaces &places, LibraryStore &store)
    : m_places(places), m_store(store), m_readings(QStringLiteral("tags of files"), 1)
{
}

ItemTagSync::~ItemTagSync() = default;

FileTags ItemTagSync::valuesOf(const ZQFileTags &tags)
{
    return {tags.tags, tags.comment, tags.rating.value_or(0), tags.measured};
}

void ItemTagSync::takeInTagsOfFiles(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    if (!m_adoption) {
        return;
    }
    struct Present
    {
        QString bundleID;
        QString path;
        FileTags values;
        bool isManaged; // a person's own file is not written to because it was looked at
    };
    QList<Present> all;
    const auto kept = zqPrefetch(items, QStringLiteral("tags"));
    ZQLibraryBaseItem::lookForFiles(items);
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        const QString path = item && item->active() ? item->itemURL() : QString();
        if (!path.isEmpty()) {
            all.append({item->bundleID(), path, valuesOf(item->fileTags()), item->managed()});
        }
    }
    m_readings.addOperationWithBlock([all, adoption = m_adoption] {
        for (const Present &present : all) {
            ZQError error;
            const auto file =
                FileTagsMerge::ofFile(present.path, present.values, FileTagsMerge::Unknown::KeepsBoth, false, &error);
            const bool canBeRecorded =
                file && !file->isRecorded && present.isManaged && QFileInfo(present.path).isWritable();
            if (file && (!file->change.isEmpty() || canBeRecorded)) {
                adoption->add(present.bundleID, file->change);
            }
        }
    });
}

bool ItemTagSync::fileOfItemDidMove(const ZQObjectID &item, const QByteArray &reference, const QByteArray &renewed)
{
    if (m_renewal) {
        m_renewal->add({item, reference, renewed});
    }
    return m_renewal != nullptr;
}

void ItemTagSync::write(const QString &bundleID, const QString &path, const ZQFileTags &tags,
                        const std::function<QString()> &find)
{
    TagFileWriter::Merge merge{.path = path,
                               .find = find,
                               .library = valuesOf(tags),
                               .takesRating = !tags.rating,
                               .ratingIsMeant = tags.ratingIsMeant,
                               .isLibrarysOwn = path.startsWith(m_places.libraryDirectory() + u'/'),
                               .isFirst = tags.isFirst,
                               .willTouch = {},
                               .adopt = {},
                               .done = {}};
    if (m_journal) {
        const qint64 line = m_journal->willWrite(bundleID, tags.isSaved);
        merge.willTouch = [journal = m_journal, line] { journal->bringToDisk(line); };
        merge.done = [journal = m_journal](const QString &written) { journal->didWrite(written); };
    }
    if (m_adoption) {
        merge.adopt = [adoption = m_adoption, bundleID](const FileTagsChange &change) {
            adoption->add(bundleID, change);
        };
    }
    TagFileWriter::sharedTagFileWriter().mergeWithFile(std::move(merge));
}

std::shared_ptr<void> ItemTagSync::willWriteTagsOfItems(const QStringList &bundleIDs)
{
    if (!m_journal || bundleIDs.isEmpty()) {
        return nullptr;
    }
    for (const QString &bundleID : bundleIDs) {
        m_journal->willWrite(bundleID, true); // its save is the caller's, and this lives until after it
    }
    m_journal->bringToDisk();
    return {nullptr, [journal = m_journal, count = bundleIDs.size()](void *) {
                for (qsizetype i = 0; i < count; ++i) {
                    journal->didWrite();
                }
            }};
}

void ItemTagSync::open()
{
    ZQManagedObjectContext *context = m_store.managedObjectContext();
    if (m_journal || !context) {
        return;
    }
    m_journal = std::make_shared<TagFileJournal>(m_places.libraryBundleDirectory() + QStringLiteral("/pending-tags"));
    m_adoption = std::make_shared<FileTagAdoption>(m_store);
    m_renewal = std::make_shared<FileReferenceRenewal>(m_store);
    m_willSaveObserver = context->observeWillSave([journal = m_journal] { journal->bringToDisk(); });
    m_saveObserver =
        context->observeDidSave([journal = m_journal](const ZQContextDidSave &) { storeDidSave(journal); });
    const QStringList interrupted = m_journal->interrupted();
    constexpr qsizetype atATime = 500;
    for (qsizetype first = 0; first < interrupted.size(); first += atATime) {
        const auto items =
            zqFetch<ZQLibraryBaseItem>(*context, QStringLiteral("bundleID in %@"), {interrupted.mid(first, atATime)});
        if (!items) {
            return; // the journal stays for the next launch
        }
        const auto kept = zqPrefetch(*items, QStringLiteral("tags"));
        ZQLibraryBaseItem::lookForFiles(*items);
        for (const ZQRef<ZQLibraryBaseItem> &item : *items) {
            item->writeOpenMetaToDisk();
        }
    }
    if (!interrupted.isEmpty()) {
        storeDidSave(m_journal); // what is written again comes from the saved store
    }
}

void ItemTagSync::close()
{
    m_readings.waitUntilAllOperationsAreFinished();
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    if (m_adoption && m_adoption->apply()) {
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    }
    m_renewal.reset();
    m_adoption.reset(); // what still comes is found in the files at the next launch
    OpenMetaBackup::waitUntilAllWritten(longestWaitForCopies);
    m_willSaveObserver.reset();
    m_saveObserver.reset();
    m_journal.reset(); // what was written and never saved stays in it, and is taken back at the next launch
}
