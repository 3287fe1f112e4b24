#include "Classes/Application/UpdateChannel.h"

#include "Kit/Files/ZQUserDefaults.h"

QString UpdateChannel::feedOf(const QString &channel)
{
    return QStringLiteral("updates/") + channel + QStringLiteral("/feed.json");
}

QString UpdateChannel::channelOf(const QString &feed)
{
    return feed.section(u'/', -2, -2);
}

QString UpdateChannel::chosen(bool testKeysHeld)
{
    if (ZQUserDefaults::standardUserDefaults().boolForKey(betaKey)) {
        return QStringLiteral("beta");
    }
    return testKeysHeld ? QStringLiteral("test") : QStringLiteral("release");
}
