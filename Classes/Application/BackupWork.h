#pragma once

#include "Classes/Application/LibraryBackup.h"

#include <QObject>

class ZQOperationQueue;
class tamberin_AppDelegate;

// A backup of the open library beside whatever else goes on: one at a time, on a thread of its own. Main thread. Going
// away ends what runs, and waits for that: some moments.
class BackupWork : public QObject
{
    Q_OBJECT
public:
    explicit BackupWork(tamberin_AppDelegate &delegate);
    ~BackupWork() override;

    bool start(const BackupOptions &options); // false: one is running, or the library is not open
    void stop();
    bool isRunning() const { return m_isRunning; }
    const BackupResult &result() const { return m_result; } // of the last one that ended

    static QString stageText(LibraryBackup::Stage stage); // without its counts

Q_SIGNALS:
    void progressed(LibraryBackup::Stage stage, qint64 done, qint64 total);
    void ended(); // `result` is there

private:
    void end(const BackupResult &result);

    tamberin_AppDelegate &m_delegate;
    bool m_isRunning = false;
    BackupResult m_result;
    std::stop_source m_stop;
    std::unique_ptr<ZQOperationQueue> m_queue; // last: it goes first, and waits for what runs
};
