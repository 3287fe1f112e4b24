#include "Kit/Network/ZQHTTPConnections.h"

#include "Kit/Network/ZQNetworkThread.h"
#include "Kit/Network/ZQServer.h"
#include "Kit/Network/ZQTransferLoop.h"

#include <QPointer>
#include <QSet>
#include <QUrl>

namespace {

QString serverOf(const QUrl &url)
{
    return url.scheme() + QStringLiteral("://") + url.host() + u':' + QString::number(zqPortOf(url));
}

} // namespace

struct ZQHTTPConnections::Held
{
    QPointer<ZQTransferLoop> loop;
    QSet<QString> servers;
    QHash<QString, std::optional<ZQHTTPChallenge>> challenges;
};

std::shared_ptr<ZQHTTPConnections> ZQHTTPConnections::make()
{
    return std::shared_ptr<ZQHTTPConnections>(new ZQHTTPConnections);
}

ZQHTTPConnections::~ZQHTTPConnections()
{
    if (m_held) { // where the thread has ended, they went with it
        ZQNetworkThread::run([held = m_held] { delete held->loop; });
    }
}

ZQHTTPConnections::Held &ZQHTTPConnections::held()
{
    if (!m_held) {
        m_held = std::make_shared<Held>();
        auto *const loop = new ZQTransferLoop;
        m_held->loop = loop;
        // After what uses it. Whoever lets go of these connections from now on must not delete it a second time.
        ZQNetworkThread::whenItEnds(loop, [loop, held = std::weak_ptr(m_held)] {
            if (const auto there = held.lock()) {
                there->loop.clear();
            }
            loop->deleteLater();
        });
    }
    return *m_held;
}

ZQTransferLoop &ZQHTTPConnections::loop()
{
    return *held().loop;
}

bool ZQHTTPConnections::haveBeenUsedFor(const QUrl &url) const
{
    return m_held && m_held->servers.contains(serverOf(url));
}

void ZQHTTPConnections::noteUseOf(const QUrl &url)
{
    held().servers.insert(serverOf(url));
}

std::optional<ZQHTTPChallenge> &ZQHTTPConnections::challengeOf(const QUrl &url, const QString &user)
{
    return held().challenges[serverOf(url) + u'\n' + user];
}
