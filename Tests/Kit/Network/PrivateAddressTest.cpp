#include "Kit/Network/ZQDataAddress.h"
#include "Kit/Network/ZQNetworkError.h"
#include "Kit/Network/ZQPrivateAddress.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>

void PrintTo(ZQAddressReach reach, std::ostream *out)
{
    *out << (reach == ZQAddressReach::Everybody ? "Everybody"
             : reach == ZQAddressReach::Network ? "Network"
                                                : "Machine");
}

namespace {

struct Case
{
    const char *text;
    ZQAddressReach reach;
};
constexpr auto everybody = ZQAddressReach::Everybody;
constexpr auto network = ZQAddressReach::Network;
constexpr auto machine = ZQAddressReach::Machine;

TEST(PrivateAddressTest, AnAddressIsKnownByItsRangeAlsoAtItsEnds)
{
    constexpr std::array cases = {
        Case{"127.0.0.1", machine},
        Case{"127.255.255.255", machine},
        Case{"0.0.0.0", machine},
        Case{"9.255.255.255", everybody},
        Case{"10.0.0.0", network},
        Case{"10.255.255.255", network},
        Case{"11.0.0.0", everybody},
        Case{"172.15.255.255", everybody},
        Case{"172.16.0.0", network},
        Case{"172.31.255.255", network},
        Case{"172.32.0.0", everybody},
        Case{"192.168.0.1", network},
        Case{"192.167.255.255", everybody},
        Case{"169.254.169.254", network},
        Case{"100.63.255.255", everybody},
        Case{"100.64.0.0", network},
        Case{"100.127.255.255", network},
        Case{"100.128.0.0", everybody},
        Case{"224.0.0.251", network},
        Case{"255.255.255.255", network},
        Case{"93.184.216.34", everybody},
        Case{"::1", machine},
        Case{"::", machine},
        Case{"::ffff:127.0.0.1", machine},
        Case{"::ffff:192.168.1.1", network},
        Case{"::ffff:93.184.216.34", everybody},
        Case{"::10.0.0.1", network},
        Case{"64:ff9b::7f00:1", machine},
        Case{"64:ff9b::5db8:d822", everybody},
        Case{"2002:7f00:1::", machine},
        Case{"2002:c0a8:101::1", network},
        Case{"fe80::1", network},
        Case{"fc00::1", network},
        Case{"fdff::1", network},
        Case{"ff02::fb", network},
        Case{"2606:2800:220:1::1", everybody},
    };
    for (const Case &each : cases) {
        EXPECT_EQ(zqReachOfAddress(QHostAddress(QString::fromLatin1(each.text))), each.reach) << each.text;
    }
    EXPECT_EQ(zqReachOfAddress(QHostAddress()), machine) << "no address is for nobody";
}

TEST(PrivateAddressTest, AHostNameIsKnownByWhatResolversMakeOfItsSpelling)
{
    constexpr std::array cases = {
        Case{"localhost", machine},
        Case{"LOCALHOST.", machine},
        Case{"app.localhost", machine},
        Case{"127.1", machine},
        Case{"2130706433", machine},
        Case{"0x7f000001", machine},
        Case{"0x7f.1", machine},
        Case{"0177.0.0.1", machine},
        Case{"0", machine},
        Case{"3232235777", network},
        Case{"[::1]", machine},
        Case{"::ffff:7f00:1", machine},
        Case{"fe80::1%eth0", network},
        Case{"nas.local", network},
        Case{"printer", network},
        Case{"router.home.arpa", network},
        Case{"example.com", everybody},
        Case{"local.example.com", everybody},
        Case{"127.0.0.1.example.com", everybody},
        Case{"8.8.8.8", everybody},
        Case{"134744072", everybody},
        Case{"", machine},
    };
    for (const Case &each : cases) {
        EXPECT_EQ(zqReachOfHostName(QString::fromLatin1(each.text)), each.reach) << each.text;
    }
}

TEST(PrivateAddressTest, OnlyWhatIsEncryptedOrStaysHereIsSafeOnTheWay)
{
    const struct
    {
        const char *url;
        bool isSafe;
    } cases[] = {{"https://example.org/a", true},
                 {"http://example.org/a", false},
                 {"http://127.0.0.1:80/", true},
                 {"http://localhost/", true},
                 {"http://[::1]/", true},
                 {"http://192.168.1.2/", false},
                 {"http://nas.local/", false},
                 {"ftp://localhost/", false},
                 {"file:///etc/passwd", false},
                 {"https:///no-host", false},
                 {"http:///no-host", false},
                 {"https://a b/", false},
                 {"", false}};
    for (const auto &each : cases) {
        EXPECT_EQ(zqIsSafeOnTheWay(QUrl(QString::fromLatin1(each.url))), each.isSafe) << each.url;
    }
}

TEST(DataAddressTest, WhatStandsInAnAddressIsReadWithinItsLimits)
{
    const auto base64 = ZQDataAddress::from(QStringLiteral("data:image/PNG;charset=x;base64,aGVs%0AbG8="), 5);
    ASSERT_TRUE(base64);
    EXPECT_EQ(base64->MIMEType, QStringLiteral("image/png"));
    EXPECT_EQ(base64->contents, QByteArray("hello"));
    const auto plain = ZQDataAddress::from(QStringLiteral("data:image/svg+xml,%3Csvg/%3E"), 100);
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->contents, QByteArray("<svg/>"));

    const auto codeOf = [](const QString &address, qint64 limit) {
        ZQError error;
        EXPECT_FALSE(ZQDataAddress::from(address, limit, &error));
        return ZQNetworkErrorCode(error.code);
    };
    EXPECT_EQ(codeOf(QStringLiteral("data:image/png;base64,aGVsbG8="), 4), ZQNetworkErrorCode::TooLarge);
    EXPECT_EQ(codeOf(QStringLiteral("data:image/png;base64,") + QString(1'000'000, u'A'), 4),
              ZQNetworkErrorCode::TooLarge);
    EXPECT_EQ(codeOf(QStringLiteral("data:image/png;base64,aGV*"), 100), ZQNetworkErrorCode::BadAddress);
    EXPECT_EQ(codeOf(QStringLiteral("data:image/png"), 100), ZQNetworkErrorCode::BadAddress);
}

} // namespace
