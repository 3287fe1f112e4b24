#include "Classes/Application/FingerprintWork.h"

#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/UserInteraction.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

#include <thread>

#include <sys/resource.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr auto lookInterval = 250ms;
constexpr auto gateInterval = 50ms;
constexpr qint64 enoughForProgress = 500; // fewer are done in moments
constexpr int niceness = 15;

bool isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::InputMethod:
    case QEvent::DragMove:
        return true;
    default:
        return false;
    }
}

} // namespace

struct FingerprintWork::Gate
{
    std::atomic<bool> isOpen = false;
    std::stop_source stop;

    // On the thread that runs. False: it is to end.
    bool pass() const
    {
        while (!isOpen && !isStopped()) {
            std::this_thread::sleep_for(gateInterval);
        }
        return !isStopped();
    }
    bool isStopped() const { return stop.stop_requested() || ZQCancellation::isCurrentCancelled(); }
};

FingerprintWork::FingerprintWork(LibraryStore &store, UserInteraction &user, std::function<bool()> isBusy)
    : m_store(store), m_user(user), m_isBusy(std::move(isBusy))
{
    m_again.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &FingerprintWork::look);
    connect(&m_again, &QTimer::timeout, this, &FingerprintWork::run);
}

FingerprintWork::~FingerprintWork()
{
    requestStop();
}

void FingerprintWork::start()
{
    const auto coordinator = m_store.coordinatorIfOpen();
    if (!coordinator) {
        return;
    }
    m_filler = std::make_shared<FingerprintFiller>(coordinator);
    m_queue = std::make_unique<ZQOperationQueue>(QStringLiteral("fingerprints"), 1);
    run();
}

void FingerprintWork::run()
{
    m_gate = std::make_shared<Gate>();
    m_lastInput = Clock::now();
    m_timer.start(lookInterval);
    QCoreApplication::instance()->installEventFilter(this);
    m_queue->addOperationWithBlock([filler = m_filler, gate = m_gate, self = QPointer(this)] {
        ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), niceness);
        if (gate->pass()) {
            filler->run({
                .goesOn = [gate] { return gate->pass(); },
                .saved =
                    [self](const ZQContextDidSave &saved) {
                        zqOnMainThread([saved, self] {
                            if (self) {
                                self->m_store.mergeSaved(saved);
                            }
                        });
                    },
                .progressed =
                    [self](qint64 done, qint64 total) {
                        zqOnMainThread([self, done, total] {
                            if (self) {
                                self->show(done, total);
                            }
                        });
                    },
            });
        }
        zqOnMainThread([self] {
            if (self) {
                self->didRun();
            }
        });
    });
}

void FingerprintWork::look()
{
    m_gate->isOpen = Clock::now() - m_lastInput >= m_quiet && !m_isBusy();
}

bool FingerprintWork::eventFilter(QObject *watched, QEvent *event)
{
    if (isInput(event->type())) {
        m_lastInput = Clock::now();
        m_gate->isOpen = false;
    }
    return QObject::eventFilter(watched, event);
}

void FingerprintWork::show(qint64 done, qint64 total)
{
    if (total < enoughForProgress || m_gate->stop.stop_requested()) {
        return;
    }
    if (!m_progress) {
        m_shown = 0;
        m_progress = m_user.beginProgress(zqLocalized("Looking at pictures…"), double(total),
                                          [gate = m_gate] { gate->stop.request_stop(); });
    }
    m_progress->advanceBy(double(done - std::exchange(m_shown, done)));
}

void FingerprintWork::didRun()
{
    m_timer.stop();
    QCoreApplication::instance()->removeEventFilter(this);
    m_progress.reset();
    if (!m_gate->stop.stop_requested()) {
        m_again.start(m_untilAgain);
    }
}

void FingerprintWork::requestStop()
{
    m_again.stop();
    m_timer.stop();
    if (QCoreApplication *const application = QCoreApplication::instance()) {
        application->removeEventFilter(this);
    }
    if (m_gate) {
        m_gate->stop.request_stop();
    }
    if (m_queue) {
        m_queue->cancelAllOperations();
    }
    m_progress.reset();
}

void FingerprintWork::letGo()
{
    m_again.stop();
    m_queue.reset();
    m_filler.reset();
}

bool FingerprintWork::isEnded() const
{
    return !m_queue || m_queue->operationCount() == 0;
}
