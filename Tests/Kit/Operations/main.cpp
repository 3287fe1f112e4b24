#include "Tests/Kit/Operations/ApplicationLife.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <cstring>

int main(int argc, char **argv)
{
    if (argc == 2 && std::strcmp(argv[1], applicationLifeArgument) == 0) {
        return liveAnApplicationsLife(argc, argv);
    }
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
