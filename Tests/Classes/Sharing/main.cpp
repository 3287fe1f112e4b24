#include "Kit/Imaging/ZQImageSource.h"
#include "Tests/Support/ScratchMount.h"

#include <QGuiApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    ScratchMount::useOwnMounts(argv);
    const QTemporaryDir config; // the defaults of the whole run; every test has the other folders for itself
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    ZQImageSource::initialize(argv[0]);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
