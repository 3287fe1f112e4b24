#include "Classes/LiveFolders/LateItemsOperation.h"

#include "Classes/Import/ImportOwner.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <utility>

namespace {
constexpr qsizetype itemsPerSave = 500;
} // namespace

LateItemsOperation::LateItemsOperation(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator, ImportOwner &owner)
    : m_coordinator(std::move(coordinator)), m_owner(owner)
{
}

void LateItemsOperation::main()
{
    ZQManagedObjectContext context(m_coordinator, ZQMergePolicy::PropertyObjectTrump);
    const auto merging = context.observeDidSave(
        [this](const ZQContextDidSave &saved) { zqOnMainThreadAndWait([&] { m_owner.mergeChanges(saved); }); });
    ZQError error;
    const auto late = context.fetchObjectIDs(
        {ZQLibraryBaseItem::entityName(),
         ZQSidebarWatchedFolder::predicateOfItemsLeftBehind(ZQSidebarWatchedFolder::Left::RemovedOrDisabled)},
        &error);
    const qsizetype count = late ? late->size() : 0;
    for (qsizetype first = 0; error.isNull() && first < count && !isCancelled(); first += itemsPerSave) {
        const auto items = ZQLibraryBaseItem::itemsWithIDs(late->mid(first, itemsPerSave), context);
        for (const ZQRef<ZQLibraryBaseItem> &item : items) {
            item->setActive(false);
        }
        context.save(&error);
    }
    if (!error.isNull()) {
        qCWarning(zqLogStore).noquote() << "Items of live folders that are gone are still shown:"
                                        << error.localizedDescription();
    }
}
