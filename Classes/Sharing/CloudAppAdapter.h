#pragma once

#include "Classes/Sharing/MainThreadAdapter.h"
#include "Classes/Sharing/ServiceRequests.h"

#include <QUrl>

// Uploads one file to CloudApp: asks it for a slot, and posts the file with what it named to the storage that it named,
// which sends on to CloudApp for the link.
class CloudAppAdapter : public MainThreadAdapter
{
public:
    enum Error { LimitReached = -1 }; // of UploadProblem::errorDomain

    // The password of `username` is read from the secret store when it begins.
    CloudAppAdapter(const QString &fileToUploadURL, const QString &fileToUploadName, const QString &fileToUploadID,
                    CloudAdapterDelegate *delegate, const QString &username);

    QString username() const { return m_username; }
    ZQSecret password() const { return m_password; } // only while it is needed

protected:
    void begin() override;
    void abandon() override;

private:
    void requestSlot();
    void slotCame(const ZQHTTPResponse &response);
    void sendFile(const QUrl &storage, const QVariantMap &parameters, const QStringList &names);
    void fileSent(const ZQHTTPResponse &response);
    ZQHTTPRequest request(const QUrl &url) const;

    const QString m_username;
    QUrl m_host;
    ZQSecret m_password;
    ServiceRequests m_requests;
};
