#include "Models/DataModel/_ZQEntities.h"
#include "Tests/Support/ScratchMount.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    ScratchMount::useOwnMounts();
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    zqRegisterEntities();
    return RUN_ALL_TESTS();
}
