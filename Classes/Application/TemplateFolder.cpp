#include "Classes/Application/TemplateFolder.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQFreeName.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Files/ZQTrash.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QCollator>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace {

bool liesIn(const QFileInfo &file, const QString &directory)
{
    const QString folder = QFileInfo(directory).canonicalFilePath();
    return !folder.isEmpty() && QFileInfo(file.absolutePath()).canonicalFilePath() == folder;
}

const QString copyingName = QStringLiteral(".copying-");

// Whole under its name, or not at all: it is copied into a folder beside, which nobody lists.
bool copyInto(const QString &source, const QString &target, ZQError *error)
{
    QTemporaryDir beside(QFileInfo(target).absolutePath() + u'/' + copyingName + QStringLiteral("XXXXXX"));
    if (!beside.isValid()) {
        zqSetError(error, ZQError::posix(errno, zqFormat(zqLocalized("“%@” could not be written"), {target})));
        return false;
    }
    const QString copy = beside.filePath(QStringLiteral("copy"));
    return zqCopyFile(source, copy, error) && zqSyncFileSystem(copy, error) && zqMoveNoReplace(copy, target, error);
}

// What a process that was killed left of its copy. A day is longer than any copy takes.
void removeAbandonedCopies(const QString &directory)
{
    const QDateTime old = QDateTime::currentDateTime().addDays(-1);
    const QRegularExpression made(u'^' + QRegularExpression::escape(copyingName) + QStringLiteral("[A-Za-z]{6}$"));
    const auto entries =
        QDir(directory).entryInfoList({copyingName + u'*'}, QDir::Dirs | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &entry : entries) {
        const bool isOurs = made.match(entry.fileName()).hasMatch() && entry.ownerId() == ::geteuid();
        if (isOurs && entry.lastModified() < old) {
            zqRemoveTree(QFile::encodeName(entry.absoluteFilePath()));
        }
    }
}

} // namespace

bool TemplateFolder::isTemplatePath(const QString &path)
{
    return zqPathExtension(QDir::cleanPath(path)) == extension;
}

QStringList TemplateFolder::paths(const QString &directory)
{
    removeAbandonedCopies(directory);
    QStringList found;
    const QFileInfoList entries = QDir(directory).entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (isTemplatePath(entry.filePath())) {
            found.append(entry.absoluteFilePath());
        }
    }
    QCollator collator;
    collator.setNumericMode(true);
    std::stable_sort(found.begin(), found.end(), [&collator](const QString &one, const QString &other) {
        return collator.compare(zqBaseName(one), zqBaseName(other)) < 0;
    });
    return found;
}

namespace {

bool isPosix(const ZQError &error, int code)
{
    return error.domain == ZQError::posixDomain && error.code == code;
}

bool moveOrCopy(const QFileInfo &source, const QString &target, ZQError *error)
{
    if (source.isSymLink()) { // what it leads to is somebody's, and moved it would lead elsewhere
        return copyInto(source.canonicalFilePath(), target, error);
    }
    ZQError whyNot;
    if (zqMoveNoReplace(source.filePath(), target, &whyNot)) {
        return true;
    }
    if (!isPosix(whyNot, EXDEV)) {
        zqSetError(error, whyNot);
        return false;
    }
    if (!copyInto(source.filePath(), target, error)) {
        return false;
    }
    ZQTrash::recycle(source.filePath()); // where that cannot be, it is there twice, and nothing is lost
    return true;
}

} // namespace

bool TemplateFolder::moveIn(const QString &path, const QString &directory, ZQError *error)
{
    const QFileInfo source(QDir::cleanPath(path));
    if (liesIn(source, directory) && source.exists()) {
        return true;
    }
    ZQError whyNot;
    if (moveOrCopy(source, directory + u'/' + source.fileName(), &whyNot)) {
        return true;
    }
    zqSetError(error, isPosix(whyNot, EEXIST)
                          ? ZQError::with(errorDomain, NameTaken,
                                          zqFormat(zqLocalized("There is a template “%@” already. Rename the new one, "
                                                               "or remove the other one, and open it again."),
                                                   {zqBaseName(source.fileName())}))
                          : whyNot);
    return false;
}

std::optional<QString> TemplateFolder::add(const QString &file, const QString &directory, ZQError *error)
{
    const QString clean = QDir::cleanPath(file);
    const QString name = QFileInfo(clean).fileName();
    const auto numbered = [&](int number) {
        return directory + u'/' + zqNumberedName(name, number, zqLongestName - extension.size() - 1) + u'.' + extension;
    };
    for (int number = 0;; ++number) {
        ZQError whyNot;
        const QString target = numbered(number);
        if (QFileInfo::exists(target)) {
            continue;
        }
        if (copyInto(clean, target, &whyNot)) {
            return target;
        }
        if (!isPosix(whyNot, EEXIST)) { // else somebody was faster
            zqSetError(error, whyNot);
            return std::nullopt;
        }
    }
}

bool TemplateFolder::remove(const QString &path, const QString &directory, ZQError *error)
{
    const QFileInfo file(QDir::cleanPath(path));
    if (!isTemplatePath(file.filePath()) || !liesIn(file, directory)) {
        zqSetError(error, ZQError::with(errorDomain, NoTemplate,
                                        zqFormat(zqLocalized("“%@” is none of the templates"), {file.fileName()})));
        return false;
    }
    return ZQTrash::recycle(file.absoluteFilePath(), nullptr, error);
}
