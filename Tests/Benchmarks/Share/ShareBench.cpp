// Uploads files as the application does, without its window and its library: one batch, to a service by its identifier.
// Prints the seconds from the click to the last link, the kilobytes of memory at the start and the most at any time.

#include "Classes/Sharing/CloudService.h"
#include "Classes/Sharing/CloudServices.h"
#include "Classes/Sharing/CloudUploader.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <optional>

namespace {

long peakMemory()
{
    struct rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

int fail(const QString &message)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(message));
    return 2;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Zelto"));
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        return fail(QStringLiteral("zelto_share_bench SERVICE FILE…"));
    }
    const auto service = CloudServices::sharedCloudServices().serviceNamed(arguments[1]);
    if (const ZQError problem = CloudServices::problemOf(service.get()); !problem.isNull()) {
        return fail(problem.localizedDescription());
    }
    QList<CloudFile> files;
    for (const QString &path : arguments.mid(2)) {
        files.append({path, QFileInfo(path).completeBaseName()});
    }
    const long before = peakMemory();
    const auto start = std::chrono::steady_clock::now();
    std::optional<CloudUploadResult> result;
    CloudUploader::sharedCloudUploader().upload(files, *service,
                                                [&result](const CloudUploadResult &ended) { result = ended; });
    zqRunMainLoopUntil([&result] { return result.has_value(); });
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    if (result->links.size() != files.size()) {
        return fail(result->error.localizedDescription());
    }
    std::printf("%.3f %ld %ld\n", took.count(), before, peakMemory());
    return 0;
}
