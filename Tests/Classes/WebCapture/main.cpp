#include "Kit/Imaging/ZQImageSource.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    ZQImageSource::initialize(argv[0]);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
