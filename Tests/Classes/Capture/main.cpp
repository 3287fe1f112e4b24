#include "Classes/Capture/XScreenSource.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Tests/Classes/Capture/PrivateBus.h"
#include "Tests/Support/VirtualDisplay.h"

#include <QGuiApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

int printScreens(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    const XScreenSource source(ZQXConnection::open());
    for (const ScreenInfo &screen : source.screens()) {
        std::printf("%d,%d %dx%d of %dx%d at %g\n", screen.frame.x(), screen.frame.y(), screen.frame.width(),
                    screen.frame.height(), screen.pixelFrame.width(), screen.pixelFrame.height(), screen.scale);
    }
    return 0;
}

int runTests(int argc, char **argv)
{
    const QTemporaryDir config; // the defaults of the whole run
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    const VirtualDisplay display;
    const PrivateBus bus;
    const QGuiApplication application(argc, argv);
    ZQImageSource::initialize(argv[0]);
    return RUN_ALL_TESTS();
}

} // namespace

// What the libraries of the display keep until the end is no leak of ours.
int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    const bool isChild = argc > 1 && std::strcmp(argv[1], "--print-screens") == 0;
    const int status = isChild ? printScreens(argc, argv) : runTests(argc, argv);
    std::fflush(nullptr);
    std::_Exit(status);
}
