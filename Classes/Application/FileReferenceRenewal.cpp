#include "Classes/Application/FileReferenceRenewal.h"

#include "Classes/Application/tamberin_AppDelegate.h"
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

void FileReferenceRenewal::apply()
{
    ZQManagedObjectContext *const context = m_delegate.managedObjectContext();
    const QList<Found> batch = m_found.mid(0, atATime);
    m_found.remove(0, batch.size());
    QList<ZQRef<ZQLibraryBaseItem>> renewed;
    for (const Found &found : batch) {
        const auto item =
            context ? zqCast<ZQLibraryBaseItem>(context->existingObjectWithID(found.item)) : ZQRef<ZQLibraryBaseItem>();
        const bool isMeant = item && !item->managed() && item->itemURLData() == found.reference;
        const QByteArray reference = isMeant ? zqDataForPersistentURL(found.path) : QByteArray();
        if (!reference.isEmpty()) {
            item->setItemURLData(reference);
            renewed.append(item);
        }
    }
    ZQError error;
    if (!renewed.isEmpty() && !context->save(&error)) {
        qCWarning(zqLogFiles).noquote() << "Where files were moved to was not saved yet:"
                                        << error.localizedDescription();
    }
    for (const ZQRef<ZQLibraryBaseItem> &item : std::as_const(renewed)) {
        ZQNotificationCenter::defaultCenter().postNotification(ZQLibraryBaseItem::dataDidUpdateNotification,
                                                               static_cast<ZQManagedObject *>(item.get()));
    }
    if (!m_found.isEmpty()) {
        applyLater();
    }
}
