#include "Kit/Files/ZQPaths.h"

#include <QDir>
#include <QFile>

namespace {
// A relative path in these variables is to be ignored.
QString fromEnvironment(const char *variable, const QString &otherwise)
{
    const QString value = QFile::decodeName(qgetenv(variable));
    return value.startsWith(u'/') ? QDir::cleanPath(value) : otherwise;
}
} // namespace

QString ZQPaths::dataHome()
{
    return fromEnvironment("XDG_DATA_HOME", QDir::homePath() + QStringLiteral("/.local/share"));
}

QString ZQPaths::configHome()
{
    return fromEnvironment("XDG_CONFIG_HOME", QDir::homePath() + QStringLiteral("/.config"));
}

QString ZQPaths::cacheHome()
{
    return fromEnvironment("XDG_CACHE_HOME", QDir::homePath() + QStringLiteral("/.cache"));
}

QString ZQPaths::stateHome()
{
    return fromEnvironment("XDG_STATE_HOME", QDir::homePath() + QStringLiteral("/.local/state"));
}

QString ZQPaths::runtimeDir()
{
    return fromEnvironment("XDG_RUNTIME_DIR", temporaryDir());
}

QString ZQPaths::temporaryDir()
{
    return fromEnvironment("TMPDIR", QStringLiteral("/tmp"));
}
