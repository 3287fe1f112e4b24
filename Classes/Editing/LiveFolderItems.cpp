#include "Classes/Editing/LiveFolderItems.h"

#include "Classes/Editing/EditStep.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <utility>

namespace {
constexpr qsizetype foldersPerFetch = 500;
} // namespace

LiveFolderItems::LiveFolderItems(EditContext &edits, QString goingText)
    : m_edits(edits), m_goingText(std::move(goingText))
{
}

void LiveFolderItems::addGoing(const ZQObjectID &folder)
{
    m_going.append(folder);
}

void LiveFolderItems::addComing(ZQSidebarWatchedFolder &folder)
{
    if (folder.is_enabled() && !folder.is_missing() && !folder.is_trashed()) {
        m_coming.append(folder.objectID());
        folder.setLastSyncDate({}); // all of it is looked at again: its items may come only in part
    }
}

void LiveFolderItems::change()
{
    changeItemsOfFolders(std::exchange(m_going, {}), false);
    changeItemsOfFolders(std::exchange(m_coming, {}), true);
}

// Half of a live folder in the library would be no state of it.
void LiveFolderItems::changeItemsOfFolders(const QList<ZQObjectID> &folders, bool active)
{
    constexpr qint64 mostAtOnce = 1000;
    QList<ZQFetchRequest> requests;
    qint64 count = 0;
    for (qsizetype first = 0; first < folders.size(); first += foldersPerFetch) {
        QVariantList some;
        for (const ZQObjectID &id : folders.mid(first, foldersPerFetch)) {
            some.append(QVariant::fromValue(id));
        }
        requests.append({ZQLibraryBaseItem::entityName(),
                         ZQPredicate::predicateWithFormat(QStringLiteral("watchingFolder IN %@ AND active == %@"),
                                                          {QVariant(some), !active})});
        // What cannot be counted is much.
        count += qint64(m_edits.context.countForFetchRequest(requests.last()).value_or(mostAtOnce + 1));
    }
    if (count == 0 && !m_edits.isBusy()) { // what is under way may change that
        return;
    }
    const QString text = active ? zqLocalized("Bringing items back…") : m_goingText;
    const auto apply = [requests, text, active](EditRun &run) {
        QList<ZQObjectID> items;
        for (const ZQFetchRequest &request : requests) {
            ZQError error;
            const auto found = run.context().fetchObjectIDs(request, &error);
            if (!found) {
                run.presentError(error);
                return false;
            }
            items += *found;
        }
        run.inBatches(text, items.size(), [&](qsizetype first, qsizetype size) {
            ZQSidebarWatchedFolder::setItemsActive(
                ZQLibraryBaseItem::itemsWithIDs(items.mid(first, size), run.context()), active);
            return run.save();
        });
        return true;
    };
    if (count > mostAtOnce) {
        m_edits.save(); // so that the rows are seen to go, or come, at once
    }
    zqPerformEdit(m_edits, {count, mostAtOnce}, {apply, text, true});
}
