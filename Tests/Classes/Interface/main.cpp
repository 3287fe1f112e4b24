#include "Models/DataModel/_ZQEntities.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    zqRegisterEntities();
    return RUN_ALL_TESTS();
}
