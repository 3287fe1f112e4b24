#include "Classes/Capture/PageReach.h"

#include "Kit/Foundation/ZQCancellation.h"

#include <QEventLoop>
#include <QHostInfo>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto longestLookUp = 5s;
constexpr auto cancelStep = 50ms;

// One that is not known in time counts as this computer: who answers us slowly may answer the browser soon.
QList<QHostAddress> addressesFromSystem(const QString &host)
{
    QList<QHostAddress> addresses{QHostAddress(QHostAddress::LocalHost)};
    QEventLoop loop;
    QTimer step;
    const auto end = std::chrono::steady_clock::now() + longestLookUp;
    QObject::connect(&step, &QTimer::timeout, &loop, [&loop, end] {
        if (ZQCancellation::isCurrentCancelled() || std::chrono::steady_clock::now() >= end) {
            loop.quit();
        }
    });
    step.start(cancelStep);
    const int number = QHostInfo::lookupHost(host, &loop, [&](const QHostInfo &info) {
        addresses = info.addresses();
        loop.quit();
    });
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    QHostInfo::abortHostLookup(number);
    return addresses;
}

} // namespace

PageReach::PageReach(ZQAddressReach farthest, LookUp lookUp)
    : m_farthest(farthest), m_lookUp(lookUp ? std::move(lookUp) : LookUp(&addressesFromSystem))
{
}

bool PageReach::allows(const QUrl &url)
{
    if (url.scheme() != QStringLiteral("http") && url.scheme() != QStringLiteral("https")) {
        return true;
    }
    const auto known = m_allowed.constFind(url.host());
    return known != m_allowed.constEnd() ? *known : *m_allowed.insert(url.host(), !leadsFarther(url.host()));
}

bool PageReach::leadsFarther(const QString &host) const
{
    if (m_farthest == ZQAddressReach::Machine) {
        return false;
    }
    if (zqReachOfHostName(host) > m_farthest) {
        return true;
    }
    if (!QHostAddress(host).isNull()) {
        return false;
    }
    const QList<QHostAddress> addresses = m_lookUp(host);
    return std::any_of(addresses.begin(), addresses.end(),
                       [this](const QHostAddress &each) { return zqReachOfAddress(each) > m_farthest; });
}
