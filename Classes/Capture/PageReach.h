#pragma once

#include "Kit/Network/ZQPrivateAddress.h"

#include <QHash>
#include <QHostAddress>
#include <QList>
#include <QString>
#include <QUrl>

#include <functional>

// How far a page may lead that nobody but another page asked for: no farther into this computer or its network than its
// own address says. A name is judged by what it says and by the addresses that it leads to, which are looked up once
// for each name; whoever asks waits for it, a few seconds at most. One thread.
//
// What stays open: the browser looks names up by itself, so that a server of names can tell it another address than us;
// behind a proxy it is the proxy that does. And web sockets open without being asked about; what they receive is no
// part of a picture unless the server speaks their protocol.
class PageReach
{
public:
    using LookUp = std::function<QList<QHostAddress>(const QString &host)>; // empty: there is no such host

    explicit PageReach(ZQAddressReach farthest, LookUp lookUp = {}); // empty: asks the system

    bool allows(const QUrl &url);

private:
    bool leadsFarther(const QString &host) const;

    const ZQAddressReach m_farthest;
    const LookUp m_lookUp;
    QHash<QString, bool> m_allowed; // by host
};
