#include "Classes/Import/ForLiveFolder.h"

#include "Classes/Import/ImportErrors.h"
#include "Classes/Import/ImportQueries.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QFileInfo>

ForLiveFolder ForLiveFolder::of(const QStringList &paths)
{
    ForLiveFolder files;
    for (const QString &path : paths) {
        const bool isArchive = ImportQueries::fileAtPathIsArchive(path);
        if (QFileInfo(path).isDir() || (ImportQueries::fileAtPathIsSupported(path) && !isArchive)) {
            files.paths.append(path);
        } else if (isArchive && QFileInfo::exists(path)) {
            files.leftOut.append({path, zqLocalized("Live folders do not unpack archives. Unpack it, and copy what was "
                                                    "in it.")});
        } else {
            files.leftOut.append(unsupportedFile(path));
        }
    }
    return files;
}
