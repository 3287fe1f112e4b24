#include "Classes/Command/AbandonWatch.h"
#include "Classes/Command/Commands.h"
#include "Classes/Command/ShareJob.h"
#include "Classes/Sharing/CloudService.h"
#include "Classes/Sharing/CloudServices.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"

namespace {

// Null, with a message, for one that nothing can be uploaded to.
std::shared_ptr<CloudService> serviceFor(const QString &identifier, CommandContext &context)
{
    const CloudServices &services = CloudServices::sharedCloudServices();
    auto service = identifier.isEmpty() ? services.adapterClassForUpload() : services.serviceNamed(identifier);
    if (!service && !identifier.isEmpty()) {
        QStringList names;
        for (const auto &each : services.services()) {
            names.append(each->identifier());
        }
        context.fail(zqFormat(zqLocalized("there is no service “%@”; there are %@"),
                              {identifier, names.join(QStringLiteral(", "))}));
        return nullptr;
    }
    if (const ZQError problem = CloudServices::problemOf(service.get()); !problem.isNull()) {
        context.fail(problem.userInfo.value(ZQError::failureReasonKey).toString());
        return nullptr;
    }
    return service;
}

} // namespace

int zqRunShare(const ShareRequest &request, CommandContext &context)
{
    if (request.items.isEmpty() && request.in.isEmpty()) {
        return context.fail(zqLocalized("name the items to share, or write --in with a sidebar entry"));
    }
    const auto service = serviceFor(request.service, context);
    const auto preset = service && request.preset != 0 ? zqExportPreset(request.preset, context) : std::nullopt;
    if (!service || (request.preset != 0 && !preset)) {
        return 2;
    }
    const auto items = zqItemsNamed(request.items, request.in, context);
    if (!items) {
        return 2;
    }
    if (items->isEmpty()) {
        return context.fail(
            zqLocalized("there are no items to share there; of a folder of projects name one of the projects"));
    }
    if (CloudUploader::sharedCloudUploader().isUploading()) {
        return context.fail(zqLocalized("Zelto is uploading other files; try again when that is done"));
    }
    const auto job = std::make_shared<ShareJob>(*items, service, context);
    if (const QString refusal = job->start(preset, context.store()); !refusal.isNull()) {
        return context.fail(refusal);
    }
    if (context.mayBeFinishedLater) {
        context.pending =
            PendingCommand{[job] { return job->isDone(); },
                           [job](CommandContext &finished) { return job->finish(finished); }, CloudUploader::didFinish};
        return 0;
    }
    const AbandonWatch watch(context, [&job] { job->cancel(); });
    zqRunMainLoopUntil([&job] { return job->isDone(); }, std::chrono::milliseconds(5));
    return job->finish(context);
}
