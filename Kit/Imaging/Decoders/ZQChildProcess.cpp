#include "Kit/Imaging/Decoders/ZQChildProcess.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/ZQImagingError.h"
#include "Kit/Imaging/ZQRenderProtocol.h"

#include <QProcess>

#include <atomic>
#include <csignal>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

std::atomic_bool areForbidden = false;

constexpr rlim_t memoryLimit = rlim_t(2) << 30;
constexpr rlim_t fileLimit = rlim_t(1) << 30;

void limitSelf(rlim_t seconds)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit processor{seconds, seconds};
    const rlimit memory{memoryLimit, memoryLimit};
    const rlimit file{fileLimit, fileLimit};
    const rlimit core{0, 0};
    ::setrlimit(RLIMIT_CPU, &processor);
    ::setrlimit(RLIMIT_AS, &memory);
    ::setrlimit(RLIMIT_FSIZE, &file);
    ::setrlimit(RLIMIT_CORE, &core);
    ::alarm(unsigned(seconds)); // outlasts the start of the program
}

// Drawing programs let documents write into the temporary folder; that shall be one that holds nothing else.
QProcessEnvironment environmentWithin(const QString &folder)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"TMPDIR", "TEMP", "TMP"}) {
        environment.insert(QLatin1String(name), folder);
    }
    return environment;
}

} // namespace

void zqForbidDrawingPrograms()
{
    areForbidden = true;
}

bool zqMayRunDrawingPrograms()
{
    return !areForbidden;
}

ZQError zqNoDrawingProgramsError(const QString &name)
{
    return zqImagingError(ZQImagingErrorCode::ToolFailed, name,
                          zqLocalized("Another program would have to draw it, and this system cannot keep such a "
                                      "program from your files (its kernel has no Landlock). Convert it to PDF or PNG "
                                      "and import that."));
}

bool zqRunDrawingProgram(const QString &program, const QStringList &arguments, const QString &folder,
                         std::chrono::milliseconds limit)
{
    if (areForbidden) {
        return false;
    }
    QProcess process;
    const rlim_t seconds = rlim_t(limit.count() / 1000 + 1);
    process.setChildProcessModifier([seconds] { limitSelf(seconds); });
    process.setWorkingDirectory(folder);
    process.setProcessEnvironment(environmentWithin(folder));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    constexpr std::chrono::seconds graceTime{3};
    if (!process.waitForStarted()) {
        qCDebug(zqLogImaging, "%s: %s", qUtf8Printable(program), qUtf8Printable(process.errorString()));
        return false;
    }
    if (!process.waitForFinished(int(std::chrono::milliseconds(limit + graceTime).count()))) {
        ::_exit(zqRenderExitTookTooLong);
    }
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}
