#include "Models/DataModel/_ZQEntities.h"

#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir config; // the defaults, which tests move about, are never those of who runs them
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    const QApplication application(argc, argv);
    zqRegisterEntities();
    return RUN_ALL_TESTS();
}
