#include "Classes/Import/LittleSnapperSnapImportOperation.h"

#include "Classes/Import/AImportManager.h"
#include "Classes/Import/ImportKind.h"
#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr qint64 largestInfo = 4LL * 1024 * 1024; // bytes

QStringList textsOf(const QVariant &value)
{
    QStringList texts;
    const QVariantList values = value.typeId() == QMetaType::QVariantList ? value.toList() : QVariantList{value};
    for (const QVariant &entry : values) {
        if (entry.typeId() == QMetaType::QString) {
            texts.append(entry.toString().trimmed());
        }
    }
    return texts;
}

// Whether the path stays in the folder it begins at, and no part of it is a link.
bool staysInside(const QString &package, const QString &relative)
{
    QString path = package;
    for (const QString &part : relative.split(u'/', Qt::SkipEmptyParts)) {
        path += u'/' + part;
        if (part == u".." || QFileInfo(path).isSymLink()) {
            return false;
        }
    }
    return !relative.startsWith(u'/') && !relative.contains(QChar(u'\0'));
}

} // namespace

QString LittleSnapperSnapImportOperation::pictureInPackage(const QVariant &imageGrabPath)
{
    const QString package = sourcePath();
    const QString relative = imageGrabPath.typeId() == QMetaType::QString ? imageGrabPath.toString() : QString();
    if (relative.isEmpty()) {
        drop(zqLocalized(
            "Its Info.plist names no picture (imageGrabPath). Export the picture from the program that made "
            "the snap and import that."));
        return {};
    }
    const QString picture = package + u'/' + relative;
    const ImportKind *kind = importKindForPath(picture);
    if (!staysInside(package, relative)) {
        drop(zqFormat(zqLocalized("Its picture “%@” does not lie in the package itself. Import that picture alone."),
                      {relative}));
    } else if (!QFileInfo(picture).isFile()) {
        drop(
            zqFormat(zqLocalized("Its picture “%@” is missing from the package. Get the snap once more."), {relative}));
    } else if (!kind || kind->importer != Importer::Image) {
        drop(
            zqFormat(zqLocalized("Its picture “%@” is of a kind that cannot be imported. Convert it to PNG or JPEG and "
                                 "import that."),
                     {relative}));
    } else {
        return QDir::cleanPath(picture);
    }
    return {};
}

bool LittleSnapperSnapImportOperation::prepare()
{
    const QString infoPath = sourcePath() + QStringLiteral("/Info.plist");
    QFile file(infoPath);
    const QFileInfo fileInfo(infoPath);
    if (fileInfo.isSymLink() || !fileInfo.isFile() || fileInfo.size() > largestInfo ||
        !file.open(QIODevice::ReadOnly)) {
        drop(zqLocalized(
            "Its Info.plist is missing or cannot be read. Get the snap once more, or import the picture in it "
            "alone."));
        return false;
    }
    ZQError error;
    const auto info = ZQPropertyList::fromData(file.readAll(), &error);
    if (!info || info->typeId() != QMetaType::QVariantMap) {
        drop(zqLocalized("Its Info.plist is damaged. Get the snap once more, or import the picture in it alone."));
        return false;
    }
    const QVariantMap values = info->toMap();
    const QString picture = pictureInPackage(values.value(QStringLiteral("imageGrabPath")));
    if (picture.isEmpty()) {
        return false;
    }
    QVariantMap all = metadata();
    all.insert(QStringLiteral("tags"),
               all.value(QStringLiteral("tags")).toStringList() + textsOf(values.value(QStringLiteral("tags"))));
    const QVariant url = values.value(QStringLiteral("url"));
    if (url.typeId() == QMetaType::QString && !url.toString().isEmpty() &&
        !all.contains(QStringLiteral("webPageURL"))) {
        all.insert(QStringLiteral("webPageURL"), url.toString());
    }
    setMetadata(all);
    setFilePath(picture);
    return true;
}
