#include "Kit/Network/ZQServer.h"

int zqPortOf(const QUrl &url)
{
    return url.port(url.scheme() == u"https" ? 443 : 80);
}

bool zqIsSameServer(const QUrl &a, const QUrl &b)
{
    return a.scheme() == b.scheme() && a.host() == b.host() && zqPortOf(a) == zqPortOf(b);
}
