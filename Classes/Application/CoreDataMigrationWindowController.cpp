#include "Classes/Application/CoreDataMigrationWindowController.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"

CoreDataMigrationWindowController::CoreDataMigrationWindowController(UserInteraction &userInteraction)
    : m_userInteraction(userInteraction)
{
}

void CoreDataMigrationWindowController::showWindow()
{
    m_progress = m_userInteraction.beginProgress(zqLocalized("Updating your library"), 1, {});
    zqRunMainLoopFor(std::chrono::milliseconds(400));
}

void CoreDataMigrationWindowController::setMaximum(double maximum)
{
    if (m_progress) {
        m_progress->setMaximum(maximum);
    }
}

void CoreDataMigrationWindowController::advance()
{
    if (m_progress) {
        m_progress->advanceBy(1);
    }
}

void CoreDataMigrationWindowController::hideWindow()
{
    m_progress.reset();
}
