#include "Kit/Network/ZQHTTPConnections.h"

#include "Kit/Network/ZQNetworkThread.h"

#include <QNetworkAccessManager>
#include <QNetworkCookieJar>
#include <QPointer>
#include <QSet>
#include <QUrl>

namespace {

QString serverOf(const QUrl &url)
{
    return url.toString(QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment);
}

} // namespace

struct ZQHTTPConnections::Held
{
    QPointer<QNetworkAccessManager> manager;
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
        ZQNetworkThread::run([held = m_held] { delete held->manager; });
    }
}

void ZQHTTPConnections::setUp(QNetworkAccessManager &manager)
{
    manager.setCookieJar(new QNetworkCookieJar(&manager)); // that nothing is put into
    manager.setStrictTransportSecurityEnabled(false);
}

QNetworkAccessManager &ZQHTTPConnections::manager()
{
    if (!m_held) {
        m_held = std::make_shared<Held>();
        m_held->manager = new QNetworkAccessManager;
        setUp(*m_held->manager);
        QNetworkAccessManager *const manager = m_held->manager;
        ZQNetworkThread::whenItEnds(manager, [manager] { manager->deleteLater(); }); // after what uses it
    }
    return *m_held->manager;
}

bool ZQHTTPConnections::haveBeenUsedFor(const QUrl &url) const
{
    return m_held && m_held->servers.contains(serverOf(url));
}

void ZQHTTPConnections::noteUseOf(const QUrl &url)
{
    m_held->servers.insert(serverOf(url));
}

std::optional<ZQHTTPChallenge> &ZQHTTPConnections::challengeOf(const QUrl &url, const QString &user)
{
    return m_held->challenges[serverOf(url) + u'\n' + user];
}
