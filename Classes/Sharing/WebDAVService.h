#pragma once

#include "Classes/Sharing/CloudService.h"
#include "Classes/Sharing/ServiceRequests.h"
#include "Classes/Sharing/WebDAVSettings.h"

#include <functional>
#include <memory>

// A server of the person's own.
class WebDAVService : public CloudService
{
public:
    QString identifier() const override { return QStringLiteral("webdav"); }
    QString title() const override;
    bool isReady() const override;
    QString whatIsMissing() const override;
    QString featureName() const override { return QStringLiteral("Cloud Upload (WebDAV)"); }
    std::shared_ptr<CloudAdapter> makeAdapter(const QString &fileURL, const QString &fileName, const QString &fileID,
                                              CloudAdapterDelegate *delegate) override;
};

// Whether a server can be reached and lets the person in; and, when it does, the keeping of it, with the password in
// the secret service. When it goes, nobody is told. Main thread.
class WebDAVCheck
{
public:
    using Done = std::function<void(const ZQError &error)>; // null: it is kept
    void connectTo(const WebDAVSettings &settings, const QByteArray &password, Done done);
    void cancel() { m_requests.cancel(); }
    // Forgets its passwords, and then the server, which stays while one could not be forgotten.
    static void disconnect(const Done &done);

private:
    static void keep(const WebDAVSettings &settings, const QByteArray &password, const Done &done);
    ServiceRequests m_requests;
};
