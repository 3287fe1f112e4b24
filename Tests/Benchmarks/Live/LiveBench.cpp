// Measures what watching live folders costs, for Benchmarks/live: zelto_live_bench MEASUREMENT FOLDER

#include "Tests/Benchmarks/Live/WatchBench.h"

#include <QDir>
#include <QGuiApplication>
#include <QHash>

#include <cstdio>

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    const QHash<QString, bool (*)(const QString &)> measurements = {{QStringLiteral("watches"), measureWatches},
                                                                    {QStringLiteral("latency"), measureLatency},
                                                                    {QStringLiteral("burst"), measureBurst}};
    const QStringList arguments = QCoreApplication::arguments();
    const auto measurement = measurements.constFind(arguments.value(1));
    if (arguments.size() != 3 || measurement == measurements.cend()) {
        std::fprintf(stderr, "zelto_live_bench watches|latency|burst FOLDER\n");
        return 2;
    }
    if (!(*measurement)(QDir(arguments[2]).absolutePath())) {
        std::fprintf(stderr, "%s could not be measured in %s\n", argv[1], argv[2]);
        return 1;
    }
    return 0;
}
