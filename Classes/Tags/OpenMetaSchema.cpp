// The description of the keys for programs that index files.

#include "Classes/Tags/OpenMeta.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQPropertyList.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <chrono>

namespace {
constexpr std::chrono::seconds indexersHaveSeenIt{2};
}

QString OpenMeta::schemaDirectory()
{
    return ZQPaths::dataHome() + QStringLiteral("/OpenMeta/schemaregister");
}

ZQError OpenMeta::registerUsualOMAttributes()
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const QVariantMap typical{
        {QStringLiteral("kMDItemOMUserTags"), QStringList{QStringLiteral("openMeta1"), QStringLiteral("openMeta2")}},
        {QStringLiteral("kMDItemOMUserTagTime"), now},
        {QStringLiteral("kMDItemOMDocumentDate"), now},
        {QStringLiteral("kMDItemOMManaged"), true},
        {QStringLiteral("kMDItemOMBookmarks"), QStringList{QStringLiteral("bookmark1"), QStringLiteral("bookmark2")}},
    };
    return registerOMAttributes(typical, QFileInfo(QCoreApplication::applicationFilePath()).fileName());
}

ZQError OpenMeta::registerOMAttributes(const QVariantMap &typicalAttributes, const QString &appName)
{
    ZQError error;
    const auto data = ZQPropertyList::toXML(typicalAttributes, &error);
    if (!data) {
        return error;
    }
    QDir().mkpath(schemaDirectory());
    const QString path = schemaDirectory() + u'/' + QFileInfo(appName).fileName() + QStringLiteral(".openmetaschema");
    if (!zqWriteFileAtomically(path, *data, &error)) {
        return error;
    }
    if (QCoreApplication *application = QCoreApplication::instance()) {
        QTimer::singleShot(indexersHaveSeenIt, application, [path] { removeSchemaFile(path); });
    }
    return {};
}

bool OpenMeta::removeSchemaFile(const QString &path)
{
    // Cleaned, so that no ".." leads out of the directory.
    return canNameAFile(path) && QDir::cleanPath(path).startsWith(schemaDirectory() + u'/') && QFile::remove(path);
}
