#include "Kit/Network/ZQServer.h"

#include <gtest/gtest.h>

TEST(ServerTest, OneServerIsOneHoweverItsAddressIsWritten)
{
    const struct
    {
        const char *a;
        const char *b;
        bool isSame;
    } cases[] = {
        {"https://h/up", "https://h:443/x", true},   {"http://h:80", "http://H/x?y", true},
        {"https://me@h/", "https://h/", true},       {"https://h:8443/", "https://h:8443/x", true},
        {"https://h/", "https://h:80/", false},      {"https://h/", "http://h:443/", false},
        {"https://h/", "https://h.example/", false}, {"https://h:8443/", "https://h/", false},
    };
    for (const auto &each : cases) {
        const QUrl a(QString::fromLatin1(each.a));
        const QUrl b(QString::fromLatin1(each.b));
        EXPECT_EQ(zqIsSameServer(a, b), each.isSame) << each.a << ' ' << each.b;
        EXPECT_EQ(zqIsSameServer(b, a), each.isSame) << each.b << ' ' << each.a;
    }
}
