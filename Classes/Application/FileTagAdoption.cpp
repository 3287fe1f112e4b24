#include "Classes/Application/FileTagAdoption.h"

#include "Classes/Application/LibraryStore.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <utility>

namespace {
constexpr qsizetype atATime = 200; // so that the window is free in between
}

void FileTagAdoption::add(const QString &bundleID, const FileTagsChange &change)
{
    const ZQLockGuard lock(m_mutex);
    if (m_changes.isEmpty()) {
        zqOnMainThread([self = weak_from_this()] {
            if (const auto adoption = self.lock()) {
                adoption->apply();
            }
        });
    }
    m_changes[bundleID].append(change);
}

bool FileTagAdoption::applyTo(ZQLibraryBaseItem &item, const FileTagsChange &change)
{
    bool didChange = item.changeTags(change.added, change.removed);
    // What the person changed since is being written, and is compared anew there.
    if (change.comment && item.notes() == change.from.comment) {
        item.setNotes(*change.comment);
        didChange = true;
    }
    if (change.rating && item.rating() == change.from.rating && item.rating() != *change.rating) {
        item.setRating(qint16(*change.rating));
        didChange = true;
    }
    if (didChange) {
        item.metadataDidComeFromFile();
    }
    return didChange;
}

bool FileTagAdoption::apply()
{
    QHash<QString, QList<FileTagsChange>> changes;
    {
        const ZQLockGuard lock(m_mutex);
        changes.swap(m_changes);
    }
    ZQManagedObjectContext *const context = changes.isEmpty() ? nullptr : m_store.managedObjectContext();
    if (!context) {
        return false;
    }
    bool didWrite = false;
    const QStringList all = changes.keys();
    for (qsizetype first = 0; first < all.size(); first += atATime) {
        ZQError error;
        const auto items = context->fetch<ZQLibraryBaseItem>(
            {ZQLibraryBaseItem::entityName(),
             ZQPredicate::predicateWithFormat(QStringLiteral("bundleID in %@"), {all.mid(first, atATime)})},
            &error);
        if (!items) {
            qCWarning(zqLogTags).noquote() << "What other programs tagged stays in the files, and is read there again:"
                                           << error.localizedDescription();
            continue;
        }
        didWrite = true;
        QList<ZQRef<ZQLibraryBaseItem>> changed;
        const auto kept = zqPrefetch(*items, QStringLiteral("tags"));
        for (const ZQRef<ZQLibraryBaseItem> &item : *items) {
            bool didChange = false;
            for (const FileTagsChange &change : changes.value(item->bundleID())) {
                didChange = applyTo(*item, change) || didChange;
            }
            item->writeOpenMetaToDisk();
            if (didChange) {
                changed.append(item);
            }
        }
        if (!context->save(&error)) {
            qCWarning(zqLogTags).noquote()
                << "What other programs tagged was not saved yet:" << error.localizedDescription();
        }
        for (const ZQRef<ZQLibraryBaseItem> &item : std::as_const(changed)) {
            ZQNotificationCenter::defaultCenter().postNotification(ZQLibraryBaseItem::dataDidUpdateNotification,
                                                                   static_cast<ZQManagedObject *>(item.get()));
        }
    }
    return didWrite;
}
