#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir world(QCoreApplication::applicationDirPath() + QStringLiteral("/tags-world-XXXXXX"));
    for (const char *name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
        const QString folder = world.filePath(QString::fromLatin1(name).toLower());
        QDir().mkpath(folder);
        qputenv(name, folder.toLocal8Bit());
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
