#include "Classes/Sharing/CloudAppService.h"

#include "Classes/Sharing/CloudAppAccount.h"
#include "Classes/Sharing/CloudAppAdapter.h"
#include "Kit/Foundation/ZQLocalized.h"

// A host that is no address is told of when something is uploaded: who has an account means no other service.
QString CloudAppService::whatIsMissing() const
{
    return !CloudAppAccount::current().isEmpty()
               ? QString()
               : zqFormat(zqLocalized("Connect your CloudApp account in the preferences, under Cloud. Who has "
                                      "none makes one at %@."),
                          {CloudAppAccount::webHost().host()});
}

std::shared_ptr<CloudAdapter> CloudAppService::makeAdapter(const QString &fileURL, const QString &fileName,
                                                           const QString &fileID, CloudAdapterDelegate *delegate)
{
    return std::make_shared<CloudAppAdapter>(fileURL, fileName, fileID, delegate, CloudAppAccount::current());
}
