#pragma once

#include "Classes/Application/LiveFolderTally.h"
#include "Classes/Interface/WindowContext.h"

#include <QObject>
#include <QTimer>

#include <memory>

class UserProgress;

// A line of long work, with cancel, while live folders are synchronised for longer than a moment: one for all of them.
// Main thread.
class LiveFolderProgress : public QObject
{
    Q_OBJECT
public:
    // Needs the window's live folders.
    explicit LiveFolderProgress(WindowContext &window, QObject *parent = nullptr);
    ~LiveFolderProgress() override;

private:
    QList<ZQObjectID> syncing() const; // without those below another one
    void follow();
    void begin();
    void stop();
    void show(const QList<ZQObjectID> &folders);
    void tally(const QList<ZQObjectID> &folders);

    WindowContext &m_window;
    QTimer m_delay;
    std::shared_ptr<UserProgress> m_line;
    LiveFolderTally m_tally;    // since the line began
    double m_done = 0;          // as the line has it
    QSet<ZQObjectID> m_stopped; // by the person, and still at their last save
};
