#include "Kit/Imaging/ZQImageSource.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char *argv[])
{
    const QTemporaryDir scratch;
    for (const char *name :
         {"HOME", "TMPDIR", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
        qputenv(name, scratch.path().toUtf8());
    }
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    ZQImageSource::initialize(argv[0]);
    return RUN_ALL_TESTS();
}
