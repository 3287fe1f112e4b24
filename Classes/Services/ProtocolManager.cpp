#include "Classes/Services/ProtocolManager.h"

#include "Classes/Application/UserInteraction.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype mostHostsNamed = 3;

std::chrono::milliseconds sinceStart()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

QStringList knownPages()
{
    return ZQUserDefaults::standardUserDefaults().objectForKey(ProtocolManager::knownPagesKey).toStringList();
}

void remember(const QString &host)
{
    const QStringList known = knownPages() + QStringList{host};
    ZQUserDefaults::standardUserDefaults().setObjectForKey(
        known.mid(std::max<qsizetype>(0, known.size() - ProtocolManager::mostKnownPages)),
        ProtocolManager::knownPagesKey);
}

} // namespace

ProtocolManager::ProtocolManager(Uses uses, QObject *parent) : QObject(parent), m_uses(std::move(uses))
{
    if (!m_uses.now) {
        m_uses.now = &sinceStart;
    }
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &ProtocolManager::work);
}

void ProtocolManager::handleURL(const QString &url)
{
    if (isTooMuch()) {
        m_hasDropped = true;
    } else {
        ZQError error;
        Waiting waiting;
        waiting.command = ProtocolCommand::fromURL(url, &error);
        waiting.problem = error.localizedDescription();
        m_waiting.append(std::move(waiting));
    }
    if (!m_isWorking) {
        m_timer.start(0); // who asked goes on first
    }
}

bool ProtocolManager::isTooMuch()
{
    const auto now = m_uses.now();
    m_arrivals.removeIf([&](std::chrono::milliseconds arrival) { return arrival + burst <= now; });
    if (m_arrivals.size() >= mostAtOnce || m_waiting.size() >= mostAtOnce) {
        return true;
    }
    m_arrivals.append(now);
    return false;
}

bool ProtocolManager::isReady(const ProtocolCommand &command) const
{
    return command.kind == ProtocolCommand::Kind::Snap ? m_uses.capture() != nullptr : m_uses.downloads() != nullptr;
}

std::optional<ProtocolManager::Waiting> ProtocolManager::takeReady()
{
    for (qsizetype i = 0; i < m_waiting.size(); ++i) {
        const Waiting &waiting = m_waiting[i];
        if (!waiting.command || isReady(*waiting.command) || waiting.retries >= mostRetries) {
            return m_waiting.takeAt(i);
        }
    }
    return std::nullopt;
}

void ProtocolManager::work()
{
    if (!m_uses.isLaunched()) {
        m_timer.start(retryInterval);
        return;
    }
    const QPointer<ProtocolManager> alive(this);
    m_isWorking = true;
    while (const auto next = takeReady()) {
        run(*next);
        if (!alive) { // a question runs the main loop
            return;
        }
    }
    m_isWorking = false;
    if (std::exchange(m_hasDropped, false)) {
        tell(zqLocalized("Too many requests came from the browser at once; some were left out. Try again in a few "
                         "seconds."));
    }
    if (!m_waiting.isEmpty()) {
        for (Waiting &waiting : m_waiting) {
            ++waiting.retries;
        }
        m_timer.start(retryInterval);
    }
}

void ProtocolManager::run(const Waiting &waiting)
{
    if (!waiting.command) {
        tell(waiting.problem);
        return;
    }
    const ProtocolCommand &command = *waiting.command;
    if (!isReady(command)) {
        tell(command.kind == ProtocolCommand::Kind::Snap
                 ? zqLocalized("Web pages cannot be captured now. Restart Zelto, and try again.")
                 : zqLocalized("Images cannot be downloaded now. Restart Zelto, and try again."));
        return;
    }
    const QPointer<ProtocolManager> alive(this);
    if (!isAllowed(command) || !alive || !isReady(command)) {
        return;
    }
    if (command.kind == ProtocolCommand::Kind::Snap) {
        m_uses.capture()->snapWebsite(command.images.pageUrl, zqFrameOnScreens(command.frame, m_uses.screens()));
    } else {
        m_uses.downloads()->downloadImages(command.images);
    }
}

std::optional<QString> ProtocolManager::reasonToAsk(const ProtocolCommand &command)
{
    const QStringList hosts = command.otherHosts();
    // Which page it is only the sender says: a yes to one on this computer would be one to every page that claims to be
    // it, and open the network to them.
    const bool isAgreed = !command.isPagePrivate() && knownPages().contains(command.pageHost());
    if ((hosts.isEmpty() && !command.isPagePrivate()) || isAgreed) {
        return std::nullopt;
    }
    QStringList sentences;
    if (command.isPagePrivate()) {
        sentences.append(
            zqFormat(zqLocalized("“%@” is on this computer or in its own network."), {command.pageHost()}));
    }
    if (!hosts.isEmpty()) {
        const QString named = hosts.mid(0, mostHostsNamed).join(QStringLiteral(", "));
        sentences.append(hosts.size() <= mostHostsNamed
                             ? zqFormat(zqLocalized("Its images come from %@."), {named})
                             : zqFormat(zqLocalized("Its images come from %@ and %d other hosts."),
                                        {named, hosts.size() - mostHostsNamed}));
    }
    return sentences.join(u' ');
}

bool ProtocolManager::isAllowed(const ProtocolCommand &command)
{
    const auto reason = reasonToAsk(command);
    if (!reason) {
        return true;
    }
    const QString host = command.pageHost();
    if (m_lastNo && m_uses.now() < *m_lastNo + quietAfterNo) {
        tell(zqFormat(zqLocalized("Nothing was taken from “%@”, since you said no a moment ago. Try again in a few "
                                  "seconds."),
                      {host}));
        return false;
    }
    const bool isSnap = command.kind == ProtocolCommand::Kind::Snap;
    const qsizetype count = command.images.images.size();
    UserQuestion asked;
    asked.message = isSnap       ? zqFormat(zqLocalized("Capture the page at “%@”?"), {host})
                    : count == 1 ? zqFormat(zqLocalized("Import an image from the page at “%@”?"), {host})
                                 : zqFormat(zqLocalized("Import %d images from the page at “%@”?"), {count, host});
    const QString advice = command.isPagePrivate()
                               ? zqLocalized("Go on only if you asked for this in the browser.")
                               : zqLocalized("Go on only if you asked for this in the browser. You will not be asked "
                                             "again for this page's host.");
    asked.informativeText = *reason + u' ' + advice;
    asked.buttons = {isSnap ? zqLocalized("Capture") : zqLocalized("Import"), zqLocalized("Cancel")};
    const QPointer<ProtocolManager> alive(this);
    const bool isWanted = m_uses.user.ask(asked) == 0;
    if (!alive) {
        return false;
    }
    if (isWanted) {
        if (!command.isPagePrivate()) {
            remember(host);
        }
        return true;
    }
    m_lastNo = m_uses.now();
    // Others that came meanwhile and would ask, too, were not what the person had in mind.
    m_waiting.removeIf([](const Waiting &waiting) { return waiting.command && reasonToAsk(*waiting.command); });
    return false;
}

void ProtocolManager::tell(const QString &text) const
{
    constexpr std::chrono::milliseconds longEnoughToRead{6000};
    m_uses.user.showNotificationWithText(text, NotificationPlace::Window, longEnoughToRead);
}
