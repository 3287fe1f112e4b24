#include "Tests/Support/UserWorld.h"

#include <QDir>

void redirectUserWorld(const QTemporaryDir &world)
{
    for (const char *name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "TMPDIR", "HOME"}) {
        const QString folder = world.filePath(QString::fromLatin1(name).toLower());
        QDir().mkpath(folder);
        qputenv(name, folder.toLocal8Bit());
    }
}
