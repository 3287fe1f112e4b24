#include "Classes/Sharing/DropboxService.h"

#include "Classes/Sharing/DBSession.h"
#include "Classes/Sharing/DropboxAdapter.h"
#include "Kit/Foundation/ZQLocalized.h"

QString DropboxService::title() const
{
    return zqLocalized("Dropbox");
}

QString DropboxService::whatIsMissing() const
{
    if (!DBSession::hasAppKey()) {
        return zqLocalized("Enter a Dropbox app key in the preferences, under Cloud, and link your Dropbox.");
    }
    return DBSession::sharedSession().isLinked() ? QString()
                                                 : zqLocalized("Link your Dropbox in the preferences, under Cloud.");
}

std::shared_ptr<CloudAdapter> DropboxService::makeAdapter(const QString &fileURL, const QString &fileName,
                                                          const QString &fileID, CloudAdapterDelegate *delegate)
{
    return std::make_shared<DropboxAdapter>(fileURL, fileName, fileID, delegate);
}
