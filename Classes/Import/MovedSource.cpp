#include "Classes/Import/MovedSource.h"

#include "Classes/Import/ImportQueries.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace {

bool isRegularFile(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISREG(status.st_mode);
}

} // namespace

void removeMovedSource(const QString &path, qint64 modification)
{
    const auto dates = zqFileDates(path);
    const QFileInfo info(path);
    if (info.isSymLink() || !dates || dates->modification != modification) {
        qCInfo(zqLogImport).noquote() << "The imported file" << path << "has changed and stays where it is";
        return;
    }
    const bool isRemoved = info.isDir() ? QDir(path).removeRecursively() : QFile::remove(path);
    if (!isRemoved) {
        qCInfo(zqLogImport).noquote() << "The imported file" << path
                                      << "could not be removed from the temporary folder";
    }
}

// A link anywhere on the way would lead past the place.
bool mayRemoveRecordedSource(const QString &path, const QString &itemFile)
{
    const QString library = QFileInfo(ZQLibraryEnvironment::current().libraryDirectory()).canonicalFilePath();
    const QString copy = QFileInfo(itemFile).canonicalFilePath();
    if (!isRegularFile(path) || QFileInfo(path).canonicalFilePath() != path ||
        !ImportQueries::fileIsInsideTemporaryDirectory(path)) {
        return false;
    }
    if (library.isEmpty() || !isRegularFile(itemFile) || !copy.startsWith(library + u'/') || copy == path) {
        return false;
    }
    const QByteArray digest = zqSHA1OfFile(copy);
    return !digest.isEmpty() && digest == zqSHA1OfFile(path);
}
