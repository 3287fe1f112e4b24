#include "Kit/Imaging/ZQImageSource.h"
#include "Models/DataModel/_ZQEntities.h"
#include "Tests/Classes/CaptureWay/CaptureWayFixture.h"
#include "Tests/Support/VirtualDisplay.h"

#include <QApplication>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace {

int run(int argc, char **argv)
{
    const bool isChild = argc > 1 && std::strcmp(argv[1], CaptureWayFixture::onThisDisplay) == 0;
    const QTemporaryDir config; // the defaults of the whole run
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:"); // nobody's desktop is shown anything
    std::optional<VirtualDisplay> display;
    if (!isChild) {
        display.emplace();
    }
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    ZQImageSource::initialize(argv[0]);
    zqRegisterEntities();
    return RUN_ALL_TESTS();
}

} // namespace

// What the libraries of the display keep until the end is no leak of ours.
int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    const int status = run(argc, argv);
    std::fflush(nullptr);
    std::_Exit(status);
}
