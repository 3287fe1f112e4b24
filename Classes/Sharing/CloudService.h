#pragma once

#include "Classes/Sharing/CloudAdapter.h"
#include "Kit/Foundation/ZQFeatures.h"

#include <QString>

#include <functional>
#include <memory>

// A place that files can be uploaded to. Main thread.
//
// All stand in one list, which says which of them is used: `CloudServices`.
class CloudService
{
public:
    virtual ~CloudService() = default;
    virtual QString identifier() const = 0; // "cloudapp", "dropbox", "imgur", "webdav", "custom:NAME"
    virtual QString title() const = 0;      // for the person
    bool isReady() const { return whatIsMissing().isEmpty(); } // has the account, address or key it needs
    virtual QString whatIsMissing() const = 0;                 // localized, and says what to do; empty when it is ready
    virtual ZQFeature feature() const { return ZQFeature::UploadElsewhere; } // as its use is counted
    virtual std::shared_ptr<CloudAdapter> makeAdapter(const QString &fileURL, const QString &fileName,
                                                      const QString &fileID, CloudAdapterDelegate *delegate) = 0;
};
