#pragma once

#include "Classes/Application/FingerprintFiller.h"

#include <QObject>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <stop_token>

class LibraryStore;
class UserInteraction;
class UserProgress;
class ZQOperationQueue;

// Fills in fingerprints beside the window, at a low priority, with a line of progress where there are many: only while
// the person does nothing in the window and nothing else is imported, changed, exported or brought into step. What the
// person stops goes on after the next launch. Main thread.
class FingerprintWork : public QObject
{
public:
    // `isBusy`: whether something else goes on.
    FingerprintWork(LibraryStore &store, UserInteraction &user, std::function<bool()> isBusy);
    ~FingerprintWork() override;

    void start(); // a moment after the person's last doing
    // Asks it to end, and, `isEnded`, soon after that it has. What was saved last is on its way to the main thread.
    void requestStop();
    bool isEnded() const;
    void letGo(); // of the store, once it has ended

    // How long the person has done nothing before it goes on.
    void setQuiet(std::chrono::milliseconds quiet) { m_quiet = quiet; }
    // When it looks again: for what changed without being drawn, and for what a locked store or a missing renderer
    // left. Before `start`.
    void setUntilAgain(std::chrono::milliseconds interval) { m_untilAgain = interval; }

private:
    using Clock = std::chrono::steady_clock;
    struct Gate; // what the two threads share

    bool eventFilter(QObject *watched, QEvent *event) override;
    void look();
    void run();
    void didRun();
    void show(qint64 done, qint64 total);

    LibraryStore &m_store;
    UserInteraction &m_user;
    const std::function<bool()> m_isBusy;
    std::chrono::milliseconds m_quiet{3000};
    std::chrono::milliseconds m_untilAgain = std::chrono::minutes(5);
    Clock::time_point m_lastInput;
    QTimer m_timer;
    QTimer m_again;
    std::shared_ptr<Gate> m_gate;
    std::shared_ptr<FingerprintFiller> m_filler;
    std::shared_ptr<UserProgress> m_progress;
    qint64 m_shown = 0;
    std::unique_ptr<ZQOperationQueue> m_queue; // last: it goes first, and waits for what runs
};
