#include "Classes/Application/LibraryBackup.h"

#include "Classes/Application/LibraryLocation.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QFileInfo>
#include <QLocale>
#include <QStringList>

#include <algorithm>

namespace {

bool isAtOrBelow(const QString &path, const QString &folder)
{
    return path == folder || path.startsWith(folder + u'/');
}

} // namespace

LibraryBackup::LibraryBackup(std::shared_ptr<ZQPersistentStoreCoordinator> store, const QString &bundle)
    : m_store(std::move(store)), m_bundle(bundle)
{
}

QString LibraryBackup::libraryName(const QString &bundle)
{
    const QString name = QFileInfo(bundle).fileName();
    return name.endsWith(LibraryLocation::suffix) ? name.chopped(LibraryLocation::suffix.size()) : name;
}

ZQError LibraryBackup::refusal(const QString &bundle, const QString &directory)
{
    const auto refuse = [&directory](ErrorCode code, const QString &what) {
        return ZQError::with(errorDomain, code, zqFormat(what, {directory}),
                             zqLocalized("Choose another folder, best on another disk."));
    };
    if (directory.isEmpty() || !QFileInfo(directory).isDir()) {
        return refuse(NoFolder, zqLocalized("There is no folder “%@” for backups."));
    }
    const QString from = LibraryLocation::realPath(bundle);
    const QString to = LibraryLocation::realPath(directory);
    const QStringList parts = to.split(u'/');
    const bool isInLibrary = std::any_of(parts.begin(), parts.end(), [](const QString &part) {
        return part.endsWith(LibraryLocation::suffix, Qt::CaseInsensitive);
    });
    if (isAtOrBelow(to, from) || isInLibrary) {
        return refuse(InsideLibrary, zqLocalized("“%@” is inside a library."));
    }
    if (isAtOrBelow(from, to)) {
        return refuse(AroundLibrary, zqLocalized("The library is inside “%@” itself."));
    }
    return {};
}

QStringList BackupResult::lines() const
{
    if (path.isEmpty()) {
        return {error.localizedDescription()};
    }
    const QLocale locale;
    QStringList result = {zqFormat(zqLocalized("Backup made: %@"), {path}),
                          zqFormat(zqLocalized("Items: %@, files: %@, size: %@, of which new: %@"),
                                   {locale.toString(items), locale.toString(files), locale.formattedDataSize(bytes),
                                    locale.formattedDataSize(newBytes)})};
    result += problems;
    result += notes;
    for (const QString &old : removed) {
        result.append(zqFormat(zqLocalized("Older backup removed: %@"), {old}));
    }
    return result;
}
