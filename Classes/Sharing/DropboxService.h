#pragma once

#include "Classes/Sharing/CloudService.h"

class DropboxService : public CloudService
{
public:
    QString identifier() const override { return QStringLiteral("dropbox"); }
    QString title() const override;
    QString whatIsMissing() const override;
    ZQFeature feature() const override { return ZQFeature::UploadToDropbox; }
    std::shared_ptr<CloudAdapter> makeAdapter(const QString &fileURL, const QString &fileName, const QString &fileID,
                                              CloudAdapterDelegate *delegate) override;
};
