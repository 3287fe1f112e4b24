#pragma once

#include "Classes/Sharing/CloudService.h"

// CloudApp, for who connected an account.
class CloudAppService : public CloudService
{
public:
    QString identifier() const override { return QStringLiteral("cloudapp"); }
    QString title() const override { return QStringLiteral("CloudApp"); }
    QString whatIsMissing() const override;
    std::shared_ptr<CloudAdapter> makeAdapter(const QString &fileURL, const QString &fileName, const QString &fileID,
                                              CloudAdapterDelegate *delegate) override;
};
