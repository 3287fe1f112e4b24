#include "Classes/Sharing/CloudServices.h"

#include "Classes/Sharing/CloudAppService.h"
#include "Classes/Sharing/CustomService.h"
#include "Classes/Sharing/CustomServices.h"
#include "Classes/Sharing/DropboxService.h"
#include "Classes/Sharing/ImgurService.h"
#include "Classes/Sharing/WebDAVService.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <algorithm>

CloudServices &CloudServices::sharedCloudServices()
{
    static CloudServices services;
    static const bool isFilled = [] {
        services.setServices({std::make_shared<CloudAppService>(), std::make_shared<DropboxService>(),
                              std::make_shared<ImgurService>(), std::make_shared<WebDAVService>()});
        services.setSource([] {
            List described;
            for (const UploadDescription &each : CustomServices::all()) {
                described.append(std::make_shared<CustomService>(each));
            }
            return described;
        });
        return true;
    }();
    Q_UNUSED(isFilled)
    return services;
}

CloudServices::List CloudServices::services() const
{
    return m_source ? m_services + m_source() : m_services;
}

std::shared_ptr<CloudService> CloudServices::serviceNamed(const QString &identifier) const
{
    const List all = services();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto &each) { return each->identifier() == identifier; });
    return found == all.end() ? nullptr : *found;
}

std::shared_ptr<CloudService> CloudServices::adapterClassForUpload() const
{
    const QString chosen = ZQUserDefaults::standardUserDefaults().stringForKey(choiceKey);
    if (!chosen.isEmpty()) {
        return serviceNamed(chosen);
    }
    const List all = services();
    const auto ready = std::find_if(all.begin(), all.end(), [](const auto &each) { return each->isReady(); });
    return ready == all.end() ? serviceNamed(QStringLiteral("imgur")) : *ready;
}

ZQError CloudServices::problemOf(const CloudService *service)
{
    const QString title = zqLocalized("Cannot upload the files");
    if (!service) {
        return ZQError::with(errorDomain, 1, title,
                             zqLocalized("The service that was chosen for uploads is not there any more. Choose "
                                         "another one in the preferences, under Cloud."));
    }
    if (service->isReady()) {
        return {};
    }
    const List all = sharedCloudServices().services();
    const bool isAnyReady = std::any_of(all.begin(), all.end(), [](const auto &each) { return each->isReady(); });
    const QString others =
        isAnyReady
            ? QString()
            : u' ' + zqLocalized("Any other one that is set up there does as well: a server of your own (WebDAV, "
                                 "Nextcloud), Dropbox, Imgur, or a service that a description file explains.");
    return ZQError::with(errorDomain, 2, title, service->whatIsMissing() + others);
}
