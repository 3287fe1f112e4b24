#include "Kit/Imaging/ZQImagingLibraries.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char *argv[])
{
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    zqInitializeImagingLibraries(argv[0]);
    return RUN_ALL_TESTS();
}
