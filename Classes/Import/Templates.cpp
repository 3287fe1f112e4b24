#include "Classes/Import/Templates.h"

#include "Classes/Application/TemplateFolder.h"
#include "Classes/Application/TemporaryArea.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Import/ImportErrors.h"
#include "Classes/Import/ImportKind.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/TemporaryFolder.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDir>
#include <QFileInfo>
#include <QMimeDatabase>

#include <algorithm>

namespace {

bool isAsset(const QString &path)
{
    return ImportQueries::fileAtPathIsSupported(path) && !ImportQueries::fileAtPathIsArchive(path);
}

// What the name before the template's extension says, else what the content is.
QString extensionOfFile(const QString &path)
{
    const QString named = zqPathExtension(zqBaseName(path));
    if (isAsset(QStringLiteral("file.") + named)) {
        return named;
    }
    const QStringList suffixes = QMimeDatabase().mimeTypeForFile(path, QMimeDatabase::MatchContent).suffixes();
    const auto found = std::find_if(suffixes.begin(), suffixes.end(),
                                    [](const QString &suffix) { return isAsset(QStringLiteral("file.") + suffix); });
    return found == suffixes.end() ? QString() : *found;
}

TemplateFile fromPackage(const QString &path)
{
    TemplateFile made{path, zqBaseName(path), {}, {}, {}};
    // A link would take in what lies elsewhere.
    const QFileInfoList entries = QDir(path).entryInfoList(
        QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks, QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo &entry : entries) {
        if (!isAsset(entry.filePath())) {
            continue;
        }
        const bool isPicture = entry.baseName().compare(u"preview", Qt::CaseInsensitive) == 0;
        QString &place = isPicture ? made.picture : made.file;
        place = place.isEmpty() ? entry.absoluteFilePath() : place;
    }
    if (made.file.isEmpty()) { // the only one it has
        made.file = made.picture;
    }
    if (made.picture.isEmpty()) {
        made.picture = made.file;
    }
    made.extension = zqPathExtension(made.file);
    return made;
}

ZQError noCopy(const TemplateFile &source, const QString &reason)
{
    return ZQError::with(TemplateFolder::errorDomain, TemplateFolder::NoCopy,
                         zqFormat(zqLocalized("No asset could be made of the template “%@”."), {source.title}), reason);
}

std::shared_ptr<TemporaryFolder> copyFolder(const TemplateFile &source, ZQError *error)
{
    ZQError problem;
    const QString path = TemporaryArea::newFolder(&problem);
    if (path.isEmpty()) {
        zqSetError(error, noCopy(source, zqFormat(zqLocalized("No temporary folder can be made. Free some space there, "
                                                              "or name another folder in TMPDIR, and try again (%@)."),
                                                  {problem.localizedDescription()})));
        return nullptr;
    }
    return std::make_shared<TemporaryFolder>(path);
}

} // namespace

TemplateFile Templates::atPath(const QString &path)
{
    const bool isFolder = QFileInfo(path).isDir();
    const ImportKind *const kind = isFolder ? importKindForPath(zqBaseName(path)) : nullptr;
    if (isFolder && (!kind || !kind->takesPackages())) { // it is not itself the asset, as a package of a program is
        return fromPackage(path);
    }
    TemplateFile made{path, zqBaseName(path), path, {}, path};
    made.extension = isFolder ? zqPathExtension(made.title) : extensionOfFile(path);
    if (made.extension.isEmpty()) {
        made.file.clear();
    } else if (zqPathExtension(made.title) == made.extension) {
        made.title = zqBaseName(made.title);
    }
    return made;
}

QList<TemplateFile> Templates::inFolder(const QString &directory)
{
    QList<TemplateFile> found;
    for (const QString &path : TemplateFolder::paths(directory)) {
        found.append(atPath(path));
    }
    return found;
}

std::optional<TemplateFile> Templates::named(const QString &name, const QString &directory, ZQError *error)
{
    const QList<TemplateFile> all = inFolder(directory);
    QStringList titles;
    for (const TemplateFile &each : all) {
        if (each.title == name || QFileInfo(each.path).fileName() == name) {
            return each;
        }
        titles.append(each.title);
    }
    zqSetError(error, ZQError::with(TemplateFolder::errorDomain, TemplateFolder::NoTemplate,
                                    titles.isEmpty()
                                        ? zqFormat(zqLocalized("there are no templates; put files whose names end in "
                                                               ".zttemplate into “%@”"),
                                                   {directory})
                                        : zqFormat(zqLocalized("there is no template “%@”; there are: %@"),
                                                   {name, titles.join(QStringLiteral(", "))})));
    return std::nullopt;
}

std::shared_ptr<ImportOperation> Templates::makeAsset(const TemplateFile &source, const ZQSidebarBaseItem &into,
                                                      ZQError *error)
{
    if (source.file.isEmpty()) {
        zqSetError(error, ZQError::with(TemplateFolder::errorDomain, TemplateFolder::NoTemplate,
                                        zqFormat(zqLocalized("The template “%@” holds nothing that can be an asset"),
                                                 {source.title})));
        return nullptr;
    }
    const auto folder = copyFolder(source, error);
    if (!folder) {
        return nullptr;
    }
    const QString copy = folder->path() + u'/' + source.title + u'.' + source.extension;
    if (ZQError problem; !zqCopyFile(source.file, copy, &problem)) {
        zqSetError(error, noCopy(source, importReasonForError(problem)));
        return nullptr;
    }
    auto operation = AImportManager::sharedAImportManager().startImport({
        .paths = {copy}, // under the name that the asset's file is to have
        .target = into.objectID(),
        .metadata = {{QStringLiteral("title"), source.title}},
        .holder = folder,
        .duplicates = DuplicateChoice::KeepBoth, // that is what a template is for
    });
    if (!operation && into.isWatchedFolder()) {
        folder->keep(); // it is copied from there later
    }
    return operation;
}
