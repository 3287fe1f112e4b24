#include "Classes/Services/CrashReports.h"

#include "Classes/Services/CrashHandler.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cerrno>

namespace {
constexpr QLatin1StringView suffixOfNew(CrashHandler::newSuffix);
} // namespace

CrashReports::CrashReports(QString folder) : m_folder(std::move(folder)) {}

QString CrashReports::usualFolder()
{
    return ZQPaths::stateHome() + QStringLiteral("/Zelto/crash-reports");
}

bool CrashReports::make()
{
    return zqMakeFolder(m_folder) &&
           QFile::setPermissions(m_folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

// Nothing but what the handler makes is ever read, or removed.
QList<CrashReports::Report> CrashReports::all() const
{
    static const QRegularExpression form(QStringLiteral(R"(\Acrash-(\d{1,12})-\d{1,10}\.(new|txt)\z)"));
    QList<Report> reports;
    for (const QFileInfo &file : QDir(m_folder).entryInfoList(QDir::Files | QDir::NoSymLinks)) {
        const QRegularExpressionMatch match = form.match(file.fileName());
        if (match.hasMatch()) {
            reports.append({file.filePath(), QDateTime::fromSecsSinceEpoch(match.captured(1).toLongLong()),
                            file.fileName().endsWith(suffixOfNew)});
        }
    }
    std::sort(reports.begin(), reports.end(),
              [](const Report &a, const Report &b) { return std::pair(b.date, b.path) < std::pair(a.date, a.path); });
    return reports;
}

QString CrashReports::text(const Report &report) const
{
    QFile file(report.path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(largest)) : QString();
}

void CrashReports::removeOld() const
{
    const QList<Report> reports = all();
    for (const Report &report : reports.mid(mostKept)) {
        remove(report);
    }
}

bool CrashReports::setSeen(const Report &report) const
{
    return !report.isNew ||
           zqMoveNoReplace(report.path, report.path.chopped(suffixOfNew.size()) + QStringLiteral(".txt"));
}

bool CrashReports::remove(const Report &report, ZQError *error) const
{
    QFile file(report.path);
    if (!file.remove() && file.exists()) {
        zqSetError(error,
                   ZQError::with(QStringLiteral("zelto.reports"), EACCES,
                                 zqFormat(zqLocalized("The report could not be removed: %@"), {file.errorString()})));
        return false;
    }
    return true;
}
