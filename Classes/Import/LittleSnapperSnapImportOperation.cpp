#include "Classes/Import/LittleSnapperSnapImportOperation.h"

#include "Classes/Import/ImportKind.h"
#include "Kit/Files/ZQSnapInfo.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr qint64 largestInfo = 4LL * 1024 * 1024; // bytes

} // namespace

QString LittleSnapperSnapImportOperation::pictureInPackage(const ZQSnapInfo &info)
{
    const QString package = sourcePath();
    const QString relative = info.picture;
    if (relative.isEmpty()) {
        drop(zqLocalized(
            "Its Info.plist names no picture (imageGrabPath). Export the picture from the program that made "
            "the snap and import that."));
        return {};
    }
    const QString picture = package + u'/' + relative;
    const ImportKind *kind = importKindForPath(picture);
    if (!info.isPictureInside(package)) {
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
    const auto info = ZQSnapInfo::fromData(file.readAll());
    if (!info) {
        drop(zqLocalized("Its Info.plist is damaged. Get the snap once more, or import the picture in it alone."));
        return false;
    }
    const QString picture = pictureInPackage(*info);
    if (picture.isEmpty()) {
        return false;
    }
    QVariantMap all = metadata();
    all.insert(QStringLiteral("tags"), all.value(QStringLiteral("tags")).toStringList() + info->tags);
    if (!info->url.isEmpty() && !all.contains(QStringLiteral("webPageURL"))) {
        all.insert(QStringLiteral("webPageURL"), info->url);
    }
    setMetadata(all);
    setFilePath(picture);
    return true;
}
