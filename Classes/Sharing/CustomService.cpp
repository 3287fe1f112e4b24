#include "Classes/Sharing/CustomService.h"

#include "Classes/Sharing/CustomServiceAdapter.h"
#include "Classes/Sharing/CustomServices.h"
#include "Kit/Foundation/ZQLocalized.h"

QString CustomService::whatIsMissing() const
{
    return CustomServices::hasSecrets(m_description)
               ? QString()
               : zqFormat(zqLocalized("The passwords for “%@” are not known any more. Import its description again in "
                                      "the preferences, under Cloud."),
                          {m_description.name});
}

std::shared_ptr<CloudAdapter> CustomService::makeAdapter(const QString &fileURL, const QString &fileName,
                                                         const QString &fileID, CloudAdapterDelegate *delegate)
{
    return std::make_shared<CustomServiceAdapter>(fileURL, fileName, fileID, delegate, m_description);
}
