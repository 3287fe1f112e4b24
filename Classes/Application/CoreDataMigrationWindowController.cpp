#include "Classes/Application/CoreDataMigrationWindowController.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

#include <atomic>
#include <chrono>
#include <thread>

namespace {
// What other processes ask for waits until the library is open.
void draw(std::chrono::milliseconds time)
{
    const QDeadlineTimer deadline(time);
    do {
        QCoreApplication::processEvents(QEventLoop::ExcludeSocketNotifiers, 20);
        if (!deadline.hasExpired()) {
            QThread::msleep(5); // which the other thread needs more
        }
    } while (!deadline.hasExpired());
}
} // namespace

CoreDataMigrationWindowController::CoreDataMigrationWindowController(UserInteraction &userInteraction)
    : m_userInteraction(userInteraction)
{
}

void CoreDataMigrationWindowController::showWindow()
{
    m_progress = m_userInteraction.beginProgress(zqLocalized("Updating your library"), 1, {});
    draw(std::chrono::milliseconds(400));
}

void CoreDataMigrationWindowController::setMaximum(double maximum)
{
    if (m_progress) {
        m_progress->setMaximum(maximum);
    }
}

void CoreDataMigrationWindowController::advanceBy(double items)
{
    if (m_progress) {
        m_progress->advanceBy(items);
        draw(std::chrono::milliseconds(0));
    }
}

void CoreDataMigrationWindowController::showWhile(const std::function<void()> &work)
{
    setMaximum(0); // how far it is cannot be told, only that it goes on
    std::atomic_bool isDone = false;
    std::jthread thread([&] {
        work();
        isDone = true;
    });
    while (!isDone) {
        draw(std::chrono::milliseconds(20));
    }
    setMaximum(1);
}

void CoreDataMigrationWindowController::hideWindow()
{
    m_progress.reset();
}
