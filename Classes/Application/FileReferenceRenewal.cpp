#include "Classes/Application/FileReferenceRenewal.h"

#include "Classes/Application/LibraryStore.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

namespace {
constexpr qsizetype atATime = 200; // so that the window is free in between
}

void FileReferenceRenewal::add(const Found &found)
{
    m_found.append(found);
    if (m_found.size() == 1) {
        applyLater();
    }
}

void FileReferenceRenewal::applyLater()
{
    zqOnMainThread([self = weak_from_this()] {
        if (const auto renewal = self.lock()) {
            renewal->apply();
        }
    });
}

QList<ZQRef<ZQLibraryBaseItem>> FileReferenceRenewal::renew(const QList<Found> &batch, ZQManagedObjectContext &context)
{
    QList<ZQRef<ZQLibraryBaseItem>> renewed;
    for (const Found &found : batch) {
        ZQError error;
        const auto item = zqCast<ZQLibraryBaseItem>(context.existingObjectWithID(found.item, &error));
        if (!error.isNull() || found.renewed.isEmpty()) {
            zqTellPersistentURLAgain(found.reference);
        } else if (item && !item->managed() && item->itemURLData() == found.reference) {
            item->setItemURLData(found.renewed);
            renewed.append(item);
        }
    }
    return renewed;
}

void FileReferenceRenewal::apply()
{
    const QList<Found> batch = m_found.mid(0, atATime);
    m_found.remove(0, batch.size());
    ZQManagedObjectContext *const context = m_store.managedObjectContext();
    if (!context) {
        for (const Found &found : batch) {
            zqTellPersistentURLAgain(found.reference);
        }
    }
    const auto renewed = context ? renew(batch, *context) : QList<ZQRef<ZQLibraryBaseItem>>();
    ZQError error;
    if (!renewed.isEmpty() && !context->save(&error)) {
        qCWarning(zqLogFiles).noquote() << "Where files were moved to was not saved yet:"
                                        << error.localizedDescription();
    }
    const auto kept = zqPrefetch(renewed, QStringLiteral("tags"));
    for (const ZQRef<ZQLibraryBaseItem> &item : renewed) {
        item->writeOpenMetaToDisk();
        ZQNotificationCenter::defaultCenter().postNotification(ZQLibraryBaseItem::dataDidUpdateNotification,
                                                               static_cast<ZQManagedObject *>(item.get()));
    }
    if (!m_found.isEmpty()) {
        applyLater();
    }
}
