#include "Models/DataModel/_ZQEntities.h"
#include "Tests/Support/VirtualDisplay.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace {

int run(int argc, char **argv)
{
    const VirtualDisplay display;
    const QApplication application(argc, argv);
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
