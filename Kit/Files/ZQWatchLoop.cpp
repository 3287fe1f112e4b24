#include "Kit/Files/ZQWatchLoop.h"

#include "Kit/Files/ZQOwnChanges.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLog.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>

namespace {

constexpr std::chrono::seconds longestGoodbye(2);
constexpr std::chrono::minutes usualSilentInterval(10);
constexpr qint64 mostSilentMinutes = 24 * 60;

void takeEarlier(std::optional<ZQSettlingChanges::Clock::time_point> &earliest,
                 std::optional<ZQSettlingChanges::Clock::time_point> other)
{
    if (other && (!earliest || *other < *earliest)) {
        earliest = other;
    }
}

} // namespace

std::shared_ptr<ZQWatchLoop> ZQWatchLoop::start(const ZQWatchOptions &options, bool isForSilent,
                                                std::shared_ptr<ZQWatchOutbox> outbox)
{
    std::shared_ptr<ZQWatchLoop> loop(new ZQWatchLoop(options, isForSilent, std::move(outbox)));
    loop->m_thread = std::thread([loop]() mutable {
        loop->run();
        loop.reset();
    });
    return loop;
}

ZQWatchLoop::ZQWatchLoop(const ZQWatchOptions &options, bool isForSilent, std::shared_ptr<ZQWatchOutbox> outbox)
    : m_options(options), m_isForSilent(isForSilent), m_outbox(std::move(outbox)),
      m_wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), m_pulse([this] {
          m_queue.read();
          return !m_isEnding.load();
      }),
      m_table(options.mostWatches), m_queue(m_table.descriptor()), m_changes(options.quiet, options.longestWait),
      m_files(options.quiet, options.longestWrite),
      m_events(m_table, options.ownChanges ? *options.ownChanges : ZQOwnChanges::sharedOwnChanges(), m_changes, m_files,
               m_pulse),
      m_now(Clock::now()), m_sweepDue(m_now + options.sweepInterval), m_silentDue(m_now + silentInterval())
{
}

ZQWatchLoop::~ZQWatchLoop() = default;

void ZQWatchLoop::end()
{
    m_isEnding = true;
    wake();
    bool hasEnded = false;
    {
        const ZQLockGuard lock(m_mutex);
        const auto latest = std::chrono::steady_clock::now() + longestGoodbye;
        while (!m_hasEnded && m_ended.waitUntil(m_mutex, latest)) {
        }
        hasEnded = m_hasEnded;
    }
    if (hasEnded) {
        m_thread.join();
    } else {
        qCWarning(zqLogFiles, "A place that is watched does not answer");
        m_thread.detach();
    }
}

void ZQWatchLoop::add(const QByteArray &path)
{
    send({true, path});
}

void ZQWatchLoop::remove(const QByteArray &path)
{
    send({false, path});
}

void ZQWatchLoop::send(Command command)
{
    {
        const ZQLockGuard lock(m_mutex);
        m_commands.push_back(std::move(command));
    }
    wake();
}

void ZQWatchLoop::wake()
{
    const uint64_t one = 1;
    if (::write(m_wake.get(), &one, sizeof one) < 0) {
        return; // it is awake: the counter is full
    }
}

void ZQWatchLoop::run()
{
    m_mountFile = ZQFileDescriptor(::open(m_options.mountTable.constData(), O_RDONLY | O_CLOEXEC));
    m_mounts = ZQMountTable::read(m_options.mountTable);
    while (!m_isEnding) {
        m_now = Clock::now();
        obey();
        wait();
        handleEvents();
        doWhatIsDue();
    }
    m_table.close();
    m_roots.clear();
    const ZQLockGuard lock(m_mutex);
    m_hasEnded = true;
    m_ended.notifyAll();
}

void ZQWatchLoop::obey()
{
    std::vector<Command> commands;
    {
        const ZQLockGuard lock(m_mutex);
        commands.swap(m_commands);
    }
    for (const Command &command : commands) {
        removeRoot(command.path);
        if (command.adds) {
            m_roots.push_back(std::make_unique<ZQWatchedRoot>(command.path));
            startRoot(*m_roots.back());
        }
    }
}

void ZQWatchLoop::wait()
{
    int milliseconds = m_queue.isEmpty() ? -1 : 0;
    if (const auto next = due(); next && milliseconds < 0) {
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(*next - Clock::now()).count();
        milliseconds = static_cast<int>(std::clamp<qint64>(rest, 0, 3'600'000));
    }
    pollfd files[] = {{m_wake.get(), POLLIN, 0}, {m_table.descriptor(), POLLIN, 0}, {m_mountFile.get(), POLLPRI, 0}};
    ::poll(files, std::size(files), milliseconds);
    m_now = Clock::now();
    uint64_t count = 0;
    if (files[0].revents & POLLIN && ::read(m_wake.get(), &count, sizeof count) < 0) {
        return;
    }
    if (files[2].revents & POLLPRI) {
        lookAtMounts();
    }
}

std::optional<ZQWatchLoop::Clock::time_point> ZQWatchLoop::due() const
{
    std::optional<Clock::time_point> earliest = m_changes.due();
    takeEarlier(earliest, m_files.due());
    takeEarlier(earliest, m_checkDue);
    takeEarlier(earliest, m_returnDue);
    if (!m_roots.empty()) {
        takeEarlier(earliest, m_sweepDue);
        takeEarlier(earliest, m_silentDue);
    }
    return earliest;
}

void ZQWatchLoop::handleEvents()
{
    for (const ZQFolderEvent &event : m_queue.take()) {
        if (++m_eventCount > m_options.mostEvents) {
            loseEvents();
            break;
        }
        m_events.handle(event, m_now);
    }
    const ZQTreeEvents::Demands demands = m_events.takeDemands();
    if (demands.everything) {
        loseEvents();
    }
    if (demands.mounts) {
        lookAtMounts();
    }
    if (demands.roots && !m_checkDue) {
        m_checkDue = m_now + m_options.quiet;
    }
    for (const Root &root : m_roots) {
        if (root->isStarted() && demands.vanished.contains(&root->tree())) {
            vanish(*root);
        }
    }
}

void ZQWatchLoop::doWhatIsDue()
{
    const auto isDue = [this](std::optional<Clock::time_point> time) { return time && *time <= m_now; };
    if (isDue(m_checkDue)) {
        m_checkDue.reset();
        checkRoots();
    }
    if (isDue(m_returnDue)) {
        startMissingRoots();
    }
    if (m_sweepDue <= m_now) {
        m_sweepDue = m_now + m_options.sweepInterval;
        sweep();
    }
    if (m_silentDue <= m_now) {
        sweepSilent();
        m_silentDue = Clock::now() + silentInterval();
    }
    if (isDue(m_changes.due())) {
        announce();
    }
    if (isDue(m_files.due())) {
        tellFolders(m_files.lookAtAll(m_now, [this](const QByteArray &folder) { return m_changes.contains(folder); }));
    }
}

std::chrono::milliseconds ZQWatchLoop::silentInterval() const
{
    if (m_options.silentInterval) {
        return *m_options.silentInterval;
    }
    const qint64 set = ZQUserDefaults::standardUserDefaults().integerForKey(QStringLiteral("LiveFolderSweepMinutes"));
    return set > 0 ? std::chrono::minutes(std::min(set, mostSilentMinutes)) : usualSilentInterval;
}

// Looking at a server's place may mount it: that is not done every second.
std::chrono::milliseconds ZQWatchLoop::returnInterval() const
{
    return m_isForSilent ? std::max(silentInterval(), m_options.returnInterval) : m_options.returnInterval;
}

void ZQWatchLoop::tell(ZQWatchNews::Kind kind, const QByteArray &path, qint64 needed)
{
    m_outbox->post({{kind, path, {}, false, needed, m_isForSilent}});
}
