#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    for (const char *variable : {"http_proxy", "https_proxy", "all_proxy", "HTTP_PROXY", "HTTPS_PROXY", "ALL_PROXY"}) {
        qunsetenv(variable);
    }
    const QTemporaryDir config; // the defaults of the whole run
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
