// The fixed entries of the sidebar: made at the first launch, named anew at every launch and change of language.

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"
#include "Models/DataModel/ZQSidebarSeed.h"

#include <QFileInfo>

void tamberin_AppDelegate::setupBasicSidebarProjects()
{
    const bool storeExisted = QFileInfo::exists(libraryBundleDirectory() + QStringLiteral("/storedata"));
    ZQManagedObjectContext *context = managedObjectContext();
    if (!context) {
        return;
    }
    constexpr qint16 libraryLabelKind = 0;
    ZQError error;
    const bool hasFixedItems = storeExisted && ZQSidebarBaseItem::specialItemOfKind(libraryLabelKind, *context, &error);
    if (!hasFixedItems && error.isNull() && zqSeedFixedSidebar(*context, &error)) {
        saveAction();
    }
    if (!error.isNull()) {
        userInteraction().presentError(error); // a second tree beside one that cannot be read helps nobody
        return;
    }
    updateLocalization();
}

void tamberin_AppDelegate::updateLocalization()
{
    updateSidebarElementNamesWithCurrentLocale();
    if (m_mainWindowController) {
        m_mainWindowController->updateLocalization();
    }
}

void tamberin_AppDelegate::updateSidebarElementNamesWithCurrentLocale()
{
    if (ZQManagedObjectContext *context = managedObjectContext()) {
        zqUpdateFixedTitles(*context);
        saveAction();
    }
}

void tamberin_AppDelegate::localeChanged()
{
    updateLocalization();
}
