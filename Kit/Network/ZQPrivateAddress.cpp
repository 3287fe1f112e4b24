#include "Kit/Network/ZQPrivateAddress.h"

#include <QStringList>

#include <array>
#include <cstdint>

namespace {

struct Range
{
    std::uint32_t first;
    int bits;
    ZQAddressReach reach;
};

constexpr std::uint32_t address(std::uint32_t a, std::uint32_t b, std::uint32_t c)
{
    return (a << 24U) | (b << 16U) | (c << 8U);
}

// The registry of special-purpose addresses, as far as it is not for everybody.
constexpr std::array ranges = {
    Range{address(0, 0, 0), 8, ZQAddressReach::Machine},      Range{address(127, 0, 0), 8, ZQAddressReach::Machine},
    Range{address(10, 0, 0), 8, ZQAddressReach::Network},     Range{address(100, 64, 0), 10, ZQAddressReach::Network},
    Range{address(169, 254, 0), 16, ZQAddressReach::Network}, Range{address(172, 16, 0), 12, ZQAddressReach::Network},
    Range{address(192, 0, 0), 24, ZQAddressReach::Network},   Range{address(192, 168, 0), 16, ZQAddressReach::Network},
    Range{address(198, 18, 0), 15, ZQAddressReach::Network},  Range{address(224, 0, 0), 3, ZQAddressReach::Network},
};

ZQAddressReach reachOfIPv4(std::uint32_t value)
{
    for (const Range &range : ranges) {
        if ((value ^ range.first) >> unsigned(32 - range.bits) == 0) {
            return range.reach;
        }
    }
    return ZQAddressReach::Everybody;
}

std::uint32_t wordAt(const Q_IPV6ADDR &bytes, int first)
{
    std::uint32_t value = 0;
    for (int i = first; i < first + 4; ++i) {
        value = (value << 8U) | bytes[i];
    }
    return value;
}

ZQAddressReach reachOfIPv6(const Q_IPV6ADDR &bytes)
{
    const std::uint32_t start = wordAt(bytes, 0);
    const std::uint32_t end = wordAt(bytes, 12);
    const bool isZeroThenPacked = start == 0 && wordAt(bytes, 4) == 0;
    if (isZeroThenPacked && wordAt(bytes, 8) == 0) { // unspecified, loopback, or compatible
        return end <= 1 ? ZQAddressReach::Machine : reachOfIPv4(end);
    }
    if (isZeroThenPacked && (wordAt(bytes, 8) == 0xffffU || wordAt(bytes, 8) == 0xffff0000U)) { // mapped, translated
        return reachOfIPv4(end);
    }
    if (start == 0x0064ff9bU) { // NAT64
        return wordAt(bytes, 4) == 0 && wordAt(bytes, 8) == 0 ? reachOfIPv4(end) : ZQAddressReach::Network;
    }
    if (start >> 16U == 0x2002U) { // 6to4
        return reachOfIPv4((start << 16U) | (wordAt(bytes, 4) >> 16U));
    }
    return start >> 29U == 1 ? ZQAddressReach::Everybody : ZQAddressReach::Network; // 2000::/3 is what is given out
}

// A number as the C library reads the parts of an address: decimal, octal with a leading 0, hexadecimal with 0x.
bool readPart(const QString &part, std::uint64_t &value)
{
    bool isNumber = false;
    value = part.toULongLong(&isNumber, 0);
    return isNumber && !part.startsWith(u'-') && !part.startsWith(u'+') && !part.startsWith(u"0b");
}

// "a", "a.b", "a.b.c" and "a.b.c.d", where the last part fills what is left.
bool readIPv4(const QString &host, std::uint32_t &value)
{
    const QStringList parts = host.split(u'.');
    if (parts.size() > 4) {
        return false;
    }
    std::uint64_t sum = 0;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        std::uint64_t part = 0;
        const bool isLast = i + 1 == parts.size();
        const unsigned bits = isLast ? unsigned(8 * (5 - parts.size())) : 8U;
        if (!readPart(parts.at(i), part) || part >> bits != 0) {
            return false;
        }
        sum = (sum << bits) | part;
    }
    value = std::uint32_t(sum);
    return true;
}

} // namespace

ZQAddressReach zqReachOfAddress(const QHostAddress &address)
{
    switch (address.protocol()) {
    case QAbstractSocket::IPv4Protocol:
        return reachOfIPv4(address.toIPv4Address());
    case QAbstractSocket::IPv6Protocol:
        return reachOfIPv6(address.toIPv6Address());
    default:
        return ZQAddressReach::Machine; // none, or any
    }
}

ZQAddressReach zqReachOfHostName(const QString &host)
{
    QString name = host.trimmed().toLower();
    while (name.endsWith(u'.')) {
        name.chop(1);
    }
    if (name.startsWith(u'[') && name.endsWith(u']')) {
        name = name.mid(1, name.size() - 2);
    }
    if (name.isEmpty() || name == u"localhost" || name.endsWith(u".localhost") || name == u"localhost.localdomain" ||
        name == u"ip6-localhost" || name == u"ip6-loopback") {
        return ZQAddressReach::Machine;
    }
    std::uint32_t value = 0;
    if (readIPv4(name, value)) {
        return reachOfIPv4(value);
    }
    if (QHostAddress literal; name.contains(u':')) {
        return literal.setAddress(name.section(u'%', 0, 0)) ? zqReachOfAddress(literal) : ZQAddressReach::Machine;
    }
    static const QStringList privateEndings = {QStringLiteral(".local"),    QStringLiteral(".localdomain"),
                                               QStringLiteral(".internal"), QStringLiteral(".intranet"),
                                               QStringLiteral(".lan"),      QStringLiteral(".home"),
                                               QStringLiteral(".corp"),     QStringLiteral(".home.arpa")};
    for (const QString &ending : privateEndings) {
        if (name.endsWith(ending)) {
            return ZQAddressReach::Network;
        }
    }
    return name.contains(u'.') ? ZQAddressReach::Everybody : ZQAddressReach::Network;
}

bool zqIsSafeOnTheWay(const QUrl &url)
{
    const bool isHere = url.scheme() == u"http" && zqReachOfHostName(url.host()) == ZQAddressReach::Machine;
    return url.isValid() && !url.host().isEmpty() && (isHere || url.scheme() == u"https");
}
