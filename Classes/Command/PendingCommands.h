#pragma once

#include "Classes/Command/CommandContext.h"
#include "Kit/Operations/ZQNotificationCenter.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <list>

// Commands that a window runs for other processes and that wait for other work: each is finished and answered when
// what it waits for is done, in whatever order that is, and none keeps the others waiting. Those that are left when
// this goes are not finished. Main thread.
class PendingCommands : public QObject
{
    Q_OBJECT
public:
    using Answer = std::function<void(int status, const CommandContext &context)>;

    explicit PendingCommands(QObject *parent = nullptr);

    void add(CommandContext context, Answer answer); // one with something pending

private:
    struct Waiting
    {
        CommandContext context;
        Answer answer;
        ZQNotificationCenter::Token wakes;
    };
    void finishWhatIsDone();

    std::list<Waiting> m_waiting;
    QTimer m_timer; // for what ends without a notification, as when who asked goes away
};
