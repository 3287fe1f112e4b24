#include "Classes/Export/ExportReport.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Export/ExportRequest.h"
#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QFile>
#include <QFileInfo>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>

namespace {

void onUser(const std::function<void(UserInteraction &)> &tell)
{
    zqOnMainThread([tell] {
        if (const tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate()) {
            tell(delegate->userInteraction());
        }
    });
}

void notify(const QString &text)
{
    onUser([text](UserInteraction &user) {
        user.showNotificationWithText(text, NotificationPlace::Browser, usualNotificationTime);
    });
}

QString failureText(const ExportResult &result)
{
    const ExportResult::Problem &first = result.failed.first();
    return result.failed.size() == 1 ? zqFormat(zqLocalized("“%@” was not exported. %@"), {first.title, first.reason})
                                     : zqFormat(zqLocalized("%d files were not exported. The first is “%@”: %@"),
                                                {result.failed.size(), first.title, first.reason});
}

// Empty for none.
QString notWrittenText(const QList<ExportResult::Problem> &failed)
{
    constexpr qsizetype mostNamed = 5; // an alert is no list
    QStringList titles;
    for (const ExportResult::Problem &problem : failed.first(std::min(mostNamed, failed.size()))) {
        titles.append(zqFormat(zqLocalized("“%@”"), {problem.title}));
    }
    const QString named = titles.join(QStringLiteral(", "));
    const qsizetype more = failed.size() - titles.size();
    return failed.isEmpty() ? QString()
           : more == 0      ? u' ' + zqFormat(zqLocalized("Not written: %@."), {named})
                            : u' ' + zqFormat(zqLocalized("Not written: %@, and %d more."), {named, more});
}

// A line of its own; empty for none.
QString notesText(const QList<ExportResult::Problem> &notes)
{
    if (notes.isEmpty()) {
        return {};
    }
    const ExportResult::Problem &first = notes.first();
    return u'\n' + (notes.size() == 1 ? zqFormat(zqLocalized("“%@”: %@"), {first.title, first.reason})
                                      : zqFormat(zqLocalized("“%@”: %@ There are %d more notes like this."),
                                                 {first.title, first.reason, notes.size() - 1}));
}

} // namespace

void ExportReport::tellOfMissing(qsizetype count)
{
    if (count > 0) {
        notify(zqCounted(
            {"Export incomplete\n %d original file is missing!", "Export incomplete\n%d original files are missing!"},
            count));
    }
}

ZQError ExportReport::stopped(const ExportRequest &request, const ExportResult &result)
{
    const qsizetype all = request.items.size();
    const QString what =
        request.archive ? zqFormat(zqLocalized("The archive could not be written to “%@”."), {request.destinationURL})
                        : zqFormat(zqLocalized("The export to “%@” was stopped: %d of %d files were written."),
                                   {request.destinationURL, result.count, all}) +
                              notWrittenText(result.failed);
    return ZQError::with(QStringLiteral("zelto.export"), 1, what, result.refusal);
}

void ExportReport::tell(const ExportRequest &request, const ExportResult &result)
{
    if (!result.refusal.isNull()) {
        const ZQError error = stopped(request, result);
        onUser([error](UserInteraction &user) { user.presentError(error); });
    } else if (!result.failed.isEmpty() && !result.isCancelled) {
        notify(failureText(result));
    } else if (!result.incomplete.isEmpty() && !result.isCancelled) {
        const ExportResult::Problem &first = result.incomplete.first();
        notify(zqFormat(result.incomplete.size() == 1
                            ? zqLocalized("Of “%@” only a part was exported. %@")
                            : zqLocalized("Of some pictures, “%@” for one, only a part was exported. %@"),
                        {first.title, first.reason}));
    } else if (result.missing.isEmpty() && !result.isCancelled && result.count > 0) {
        const QString exported = zqCounted({"%d file exported", "%d files exported"}, result.count);
        notify(exported + notesText(result.notes)); // a line of its own
    }
}

QString ExportReport::refusalOfFolder(const QString &folder)
{
    if (QFileInfo(folder).isFile()) {
        return zqFormat(zqLocalized("“%@” is a file; give a folder."), {folder});
    }
    if (folder.isEmpty() || !QFileInfo(folder).isDir()) {
        return zqFormat(zqLocalized("There is no folder “%@”. Choose another one, or look whether its disk is there."),
                        {folder});
    }
    if (access(QFile::encodeName(folder).constData(), W_OK | X_OK) == 0) {
        return {};
    }
    return errno == EACCES ? zqFormat(zqLocalized("You may not write into “%@”. Change its permissions, or choose "
                                                  "another folder."),
                                      {folder})
                           : zqAdviceForFileError(ZQError::posix(errno, folder));
}

QString ExportReport::refusalWithinLibrary(const QString &folder, const QString &library)
{
    const QString bundle = QFileInfo(library).canonicalFilePath();
    const bool isWithin = !bundle.isEmpty() && (QFileInfo(folder).canonicalFilePath() + u'/').startsWith(bundle + u'/');
    return isWithin ? zqFormat(zqLocalized("“%@” is in the library itself. Choose a folder outside it."), {folder})
                    : QString();
}

QString ExportReport::refusalAfterError(const QString &folder, const ZQError &error)
{
    static constexpr std::array ofPlace = {ENOSPC, EDQUOT, EROFS};
    const bool isOfPlace =
        error.domain == ZQError::posixDomain && std::find(ofPlace.begin(), ofPlace.end(), error.code) != ofPlace.end();
    return isOfPlace ? zqAdviceForFileError(error) : refusalOfFolder(folder);
}
