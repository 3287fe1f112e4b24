#include "Tests/Classes/Capture/PrivateBus.h"
#include "Tests/Classes/Services/CrashingChild.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstring>

int main(int argc, char **argv)
{
    if (argc == 4 && std::strcmp(argv[1], "--crash") == 0) {
        return CrashingChild::crash(argv[2], argv[3]);
    }
    testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir config; // the defaults of the whole run
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    const PrivateBus bus;
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral("1.2.0"));
    return RUN_ALL_TESTS();
}
