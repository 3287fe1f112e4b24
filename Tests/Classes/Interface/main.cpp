#include "Models/DataModel/_ZQEntities.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir config; // the defaults, which tests move about, are never those of who runs them
    // A screen that is large enough for the windows; the usual one is not.
    QFile screens(config.filePath(QStringLiteral("screens.json")));
    if (screens.open(QIODevice::WriteOnly)) {
        screens.write(R"({"screens": [{"name": "Screen", "x": 0, "y": 0, "width": 1920, "height": 1200,)"
                      R"( "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
        screens.close();
    }
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screens.fileName().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    const QApplication application(argc, argv);
    zqRegisterEntities();
    return RUN_ALL_TESTS();
}
