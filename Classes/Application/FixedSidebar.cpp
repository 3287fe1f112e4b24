#include "Classes/Application/FixedSidebar.h"

#include "Classes/Application/LibraryPlaces.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/RunningParts.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"
#include "Models/DataModel/ZQSidebarSeed.h"

#include <QFileInfo>

FixedSidebar::FixedSidebar(LibraryPlaces &places, LibraryStore &store, RunningParts &running)
    : m_places(places), m_store(store), m_running(running)
{
}

void FixedSidebar::setupBasicSidebarProjects()
{
    const bool storeExisted = QFileInfo::exists(m_places.storePath());
    ZQManagedObjectContext *context = m_store.managedObjectContext();
    if (!context) {
        return;
    }
    ZQError error;
    const bool hasFixedItems =
        storeExisted && ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind::LibraryLabel, *context, &error);
    if (!hasFixedItems && error.isNull() && zqSeedFixedSidebar(*context, &error)) {
        m_store.saveAction();
    }
    if (!error.isNull()) {
        m_running.userInteraction().presentError(error); // a second tree beside one that cannot be read helps nobody
        return;
    }
    updateLocalization();
}

void FixedSidebar::updateLocalization()
{
    updateSidebarElementNamesWithCurrentLocale();
    if (m_running.window()) {
        m_running.window()->updateLocalization();
    }
}

void FixedSidebar::updateSidebarElementNamesWithCurrentLocale()
{
    if (ZQManagedObjectContext *context = m_store.managedObjectContext()) {
        zqUpdateFixedTitles(*context);
        m_store.saveAction();
    }
}
