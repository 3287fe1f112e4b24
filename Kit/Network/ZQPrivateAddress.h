#pragma once

#include <QHostAddress>
#include <QString>
#include <QUrl>

// Who can be reached at an address, as seen from this machine: what a stranger's page names must not lead to services
// that answer only the machine or the network it stands in. Any thread.
enum class ZQAddressReach {
    Everybody, // an address of the public network
    Network,   // private, shared or link-local ranges, multicast and what is reserved
    Machine,   // loopback, and the addresses that mean "this one"
};

// IPv4 addresses that are packed into IPv6 ones (mapped, compatible, NAT64, 6to4) count as what they are.
ZQAddressReach zqReachOfAddress(const QHostAddress &address);

// What the name alone says, without asking anybody: "localhost", ".local", ".internal" and the like, names without a
// dot, and addresses in every spelling that resolvers take ("127.1", "2130706433", "0x7f.1", "[::1]"). Everybody: it
// may still resolve to anything.
ZQAddressReach zqReachOfHostName(const QString &host);

inline bool zqIsPrivateHostName(const QString &host)
{
    return zqReachOfHostName(host) != ZQAddressReach::Everybody;
}

// Whether nobody on the way can read or change what goes to and comes from it: https, or http within this machine.
bool zqIsSafeOnTheWay(const QUrl &url);
