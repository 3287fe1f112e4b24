#include "Tests/Support/UserWorld.h"

#include <QCoreApplication>
#include <QDir>

namespace {
QString templateFor(const char *name)
{
    return QCoreApplication::applicationDirPath() + u'/' + QString::fromLatin1(name) + QStringLiteral("-XXXXXX");
}
} // namespace

UserWorld::UserWorld(const char *name) : m_folder(templateFor(name))
{
    for (const char *variable :
         {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR", "TMPDIR", "HOME"}) {
        m_variablesBefore.insert(variable, qEnvironmentVariableIsSet(variable) ? qgetenv(variable) : QByteArray());
        const QString folder = filePath(QString::fromLatin1(variable).toLower());
        QDir().mkpath(folder);
        qputenv(variable, folder.toLocal8Bit());
    }
}

UserWorld::~UserWorld()
{
    for (auto variable = m_variablesBefore.cbegin(); variable != m_variablesBefore.cend(); ++variable) {
        if (variable.value().isNull()) {
            qunsetenv(variable.key().constData());
        } else {
            qputenv(variable.key().constData(), variable.value());
        }
    }
}
