// What a person is told of a transfer that came to nothing, where no server of a test can make it happen.

#include "Kit/Network/ZQHTTPExchange.h"
#include "Kit/Network/ZQTransferError.h"

#include <QUrl>

#include <gtest/gtest.h>

#include <cerrno>

TEST(TransferErrorTest, AMachineWithoutARouteIsOffline)
{
    const struct
    {
        const char *url;
        int systemError;
        ZQNetworkErrorCode code;
    } cases[] = {
        {"https://192.0.2.7/up", ENETUNREACH, ZQNetworkErrorCode::Offline},
        {"https://192.0.2.7/up", ENETDOWN, ZQNetworkErrorCode::Offline},
        {"http://127.0.0.1:81/up", ENETUNREACH, ZQNetworkErrorCode::CannotConnect},
    };
    for (const auto &each : cases) {
        const ZQHTTPEnd end{.code = CURLE_COULDNT_CONNECT, .systemError = each.systemError};
        const ZQError error = ZQTransferError::of(end, QUrl(QString::fromLatin1(each.url)), false);
        EXPECT_TRUE(zqIsNetworkError(error, each.code)) << each.url << error.localizedDescription().toStdString();
    }
    EXPECT_EQ(int(ZQNetworkErrorCode::Offline), -1009);
}

TEST(TransferErrorTest, TheWordsOfOthersEndBeforeOursBegin)
{
    for (const char *reason : {"self-signed certificate", "self-signed certificate."}) {
        const ZQHTTPEnd end{.code = CURLE_PEER_FAILED_VERIFICATION, .reason = QString::fromLatin1(reason)};
        const QString text =
            ZQTransferError::of(end, QUrl(QStringLiteral("https://127.0.0.1/")), false).localizedDescription();
        EXPECT_TRUE(text.contains(QStringLiteral("certificate. Look"))) << text.toStdString();
    }
}
