#include "Classes/Command/PendingCommands.h"

#include <QPointer>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {
constexpr std::chrono::milliseconds interval{100};
}

PendingCommands::PendingCommands(QObject *parent) : QObject(parent)
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &PendingCommands::finishWhatIsDone);
}

void PendingCommands::add(CommandContext context, Answer answer)
{
    // Queued: whoever tells of the end may not be through with it.
    auto wakes = ZQNotificationCenter::defaultCenter().addObserver(
        context.pending->wakes, nullptr, [this](const ZQNotification &) {
            QMetaObject::invokeMethod(this, &PendingCommands::finishWhatIsDone, Qt::QueuedConnection);
        });
    m_waiting.push_back({std::move(context), std::move(answer), std::move(wakes)});
    m_timer.start();
}

// Finishing a command may run the main loop, and in it come here.
void PendingCommands::finishWhatIsDone()
{
    const QPointer alive(this);
    while (alive) {
        const auto done = std::find_if(m_waiting.begin(), m_waiting.end(),
                                       [](const Waiting &waiting) { return waiting.context.pending->isDone(); });
        if (done == m_waiting.end()) {
            break;
        }
        std::list<Waiting> taken;
        taken.splice(taken.begin(), m_waiting, done);
        Waiting &command = taken.front();
        const PendingCommand pending = *std::exchange(command.context.pending, std::nullopt);
        command.answer(pending.finish(command.context), command.context);
    }
    if (alive && m_waiting.empty()) {
        m_timer.stop();
    }
}
