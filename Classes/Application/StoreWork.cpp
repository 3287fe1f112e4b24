#include "Classes/Application/StoreWork.h"

#include "Classes/Application/FingerprintWork.h"
#include "Classes/Application/LeftoverCheck.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/RatingFiller.h"
#include "Classes/Application/RunningParts.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QCoreApplication>
#include <QPointer>

StoreWork::StoreWork(LibraryStore &store, LeftoverCheck &leftovers, RunningParts &running,
                     std::function<void(const QStringList &)> didFind)
    : m_store(store), m_leftovers(leftovers), m_running(running), m_didFindDamage(std::move(didFind)),
      m_fingerprints(
          std::make_unique<FingerprintWork>(store, running.userInteraction(), [this] { return !isOtherWorkDone(); }))
{
}

StoreWork::~StoreWork() = default;

void StoreWork::start()
{
    const auto coordinator = m_store.coordinatorIfOpen();
    if (!coordinator) {
        return;
    }
    m_stop = std::stop_source();
    // Not among the imports: those would wait for it, and quitting would ask about it.
    m_queue = std::make_unique<ZQOperationQueue>(QStringLiteral("store"), 1);
    const std::stop_token stop = m_stop.get_token();
    if (coordinator->needsCheck()) {
        m_queue->addOperationWithBlock([coordinator, stop, self = QPointer(this)] {
            const ZQStoreCheckResult result = coordinator->check(stop);
            if (!result.problems.isEmpty()) {
                zqOnMainThread([problems = result.problems, self] {
                    if (self) {
                        self->m_didFindDamage(problems);
                    }
                });
            }
        });
    }
    m_queue->addOperationWithBlock([coordinator, stop, self = QPointer(this)] {
        RatingFiller(coordinator, [self](const ZQContextDidSave &saved) {
            zqOnMainThread([saved, self] {
                if (self) {
                    self->m_store.mergeSaved(saved);
                }
            });
        }).run([&stop] { return !stop.stop_requested(); });
    });
    m_fingerprints->start();
}

bool StoreWork::isOtherWorkDone() const
{
    const auto isIdle = [](const ZQOperationQueue &queue) { return queue.operationCount() == 0; };
    LiveFolderManaging *const liveFolders = m_running.liveFolderManager();
    return isIdle(m_running.backgroundQueue()) && isIdle(m_running.editQueue()) && (!m_queue || isIdle(*m_queue)) &&
           (!liveFolders || isIdle(liveFolders->syncOperationQueue())) && !m_leftovers.isRunning();
}

void StoreWork::stop()
{
    m_leftovers.stop();
    if (!m_queue) {
        return;
    }
    m_stop.request_stop();
    m_fingerprints->requestStop();
    m_queue->cancelAllOperations();
    // What it saved last is on its way into the main context, whose own save would otherwise meet newer rows.
    zqRunMainLoopUntil([this] { return m_queue->operationCount() == 0 && m_fingerprints->isEnded(); });
    m_queue.reset();
    QCoreApplication::sendPostedEvents();
    m_fingerprints->letGo();
}
