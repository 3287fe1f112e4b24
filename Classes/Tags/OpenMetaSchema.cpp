#include "Classes/Tags/OpenMetaSchema.h"

#include "Classes/Tags/AttributeStore.h"
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

QString OpenMetaSchema::schemaDirectory()
{
    return ZQPaths::dataHome() + QStringLiteral("/OpenMeta/schemaregister");
}

ZQError OpenMetaSchema::registerUsualOMAttributes()
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

ZQError OpenMetaSchema::registerOMAttributes(const QVariantMap &typicalAttributes, const QString &appName)
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

bool OpenMetaSchema::removeSchemaFile(const QString &path)
{
    // Cleaned, so that no ".." leads out of the directory.
    return AttributeStore::canNameAFile(path) && QDir::cleanPath(path).startsWith(schemaDirectory() + u'/') &&
           QFile::remove(path);
}
