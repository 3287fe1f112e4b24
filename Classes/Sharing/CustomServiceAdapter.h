#pragma once

#include "Classes/Sharing/MainThreadAdapter.h"
#include "Classes/Sharing/ServiceRequests.h"
#include "Classes/Sharing/UploadDescription.h"

// Uploads a file as a description says, in one request.
class CustomServiceAdapter : public MainThreadAdapter
{
public:
    CustomServiceAdapter(const QString &fileToUploadURL, const QString &fileToUploadName, const QString &fileToUploadID,
                         CloudAdapterDelegate *delegate, const UploadDescription &description);

protected:
    void begin() override;
    void abandon() override;

private:
    void send(const QHash<QString, ZQSecret> &secrets);
    bool giveBody(ZQHTTPRequest &request, const QHash<QString, ZQSecret> &secrets, ZQError *error) const;
    ZQHTTPRequest request() const;
    ZQError refusedLogin() const;
    void answered(const ZQHTTPResponse &response);

    const UploadDescription m_description;
    ServiceRequests m_requests;
};
