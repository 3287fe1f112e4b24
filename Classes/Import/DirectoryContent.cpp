#include "Classes/Import/DirectoryContent.h"

#include "Classes/Import/ImportQueries.h"
#include "Kit/Foundation/ZQError.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQSortDescriptor.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <memory>

namespace {

void sortLikeAPerson(QStringList &paths)
{
    std::sort(paths.begin(), paths.end(), [](const QString &a, const QString &b) {
        return zqCompareValues(a, b, ZQSortDescriptor::Comparison::LocalizedStandard) < 0;
    });
}

void addEntry(const QString &path, DirectoryContent &content)
{
    const QFileInfo info(path);
    if (info.isSymLink()) {
        content.dropped.append(
            {path, zqLocalized("It is a link. Import what it leads to."), DroppedFile::Telling::Quietly});
    } else if (ImportQueries::fileAtPathIsSupported(path)) {
        (ImportQueries::fileAtPathIsArchive(path) ? content.archives : content.files).append(path);
    } else if (info.isDir()) {
        content.subfolders.append(path);
    } else {
        content.refused.append(path);
    }
}

} // namespace

DirectoryContent DirectoryContent::ofDirectory(const QString &directory)
{
    DirectoryContent content;
    const std::unique_ptr<DIR, int (*)(DIR *)> stream(::opendir(QFile::encodeName(directory).constData()), ::closedir);
    if (!stream) {
        content.dropped.append(
            {directory,
             ZQError::posix(errno,
                            zqLocalized("The folder cannot be opened. Change its permissions and import it again"))
                 .localizedDescription()});
        return content;
    }
    while (const dirent *entry = ::readdir(stream.get())) {
        const QByteArray name(entry->d_name);
        if (name.startsWith('.')) {
            continue;
        }
        const QString path = directory + u'/' + QString::fromUtf8(name);
        if (QFile::encodeName(path).endsWith('/' + name)) {
            addEntry(path, content);
        } else {
            content.dropped.append({path, zqLocalized("Its name is not valid text. Rename it and import it again.")});
        }
    }
    for (QStringList *paths : {&content.subfolders, &content.archives, &content.files}) {
        sortLikeAPerson(*paths);
    }
    return content;
}
