#include "Classes/Application/CoreDataMigrationWindowController.h"

#include "Kit/Foundation/ZQCancellation.h"
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

CoreDataMigrationWindowController::CoreDataMigrationWindowController(UserInteraction &userInteraction,
                                                                     std::function<bool()> isEndWanted)
    : m_userInteraction(userInteraction), m_isEndWanted(std::move(isEndWanted))
{
}

void CoreDataMigrationWindowController::showWindow()
{
    m_progress = m_userInteraction.beginProgress(zqLocalized("Updating your library"), 1,
                                                 [cancelled = m_isCancelled] { *cancelled = true; });
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
    const auto cancellation = std::make_shared<ZQCancellation>();
    const auto cancelIfWanted = [&] {
        if (isCancelled()) {
            cancellation->cancel();
        }
    };
    cancelIfWanted();
    std::jthread thread([&] {
        const ZQCancellation::Scope scope(cancellation);
        work();
        isDone = true;
    });
    while (!isDone) {
        draw(std::chrono::milliseconds(20));
        cancelIfWanted();
    }
    setMaximum(1);
}

bool CoreDataMigrationWindowController::isCancelled() const
{
    return *m_isCancelled || (m_isEndWanted && m_isEndWanted());
}

void CoreDataMigrationWindowController::hideWindow()
{
    m_progress.reset();
}
