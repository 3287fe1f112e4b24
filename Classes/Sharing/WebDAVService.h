#pragma once

#include "Classes/Sharing/CloudService.h"
#include "Classes/Sharing/ServiceRequests.h"
#include "Classes/Sharing/WebDAVSettings.h"
#include "Kit/Foundation/ZQSecret.h"

#include <functional>
#include <memory>

// A server of the person's own.
class WebDAVService : public CloudService
{
public:
    QString identifier() const override { return QStringLiteral("webdav"); }
    QString title() const override;
    QString whatIsMissing() const override;
    std::shared_ptr<CloudAdapter> makeAdapter(const QString &fileURL, const QString &fileName, const QString &fileID,
                                              CloudAdapterDelegate *delegate) override;
};

// Whether a server can be reached and lets the person in; and, when it does, the keeping of it, with the password in
// the secret service. When it goes, or is cancelled, nobody is told and nothing is kept, also when the desktop asks the
// person for its keyring just then. Main thread.
class WebDAVCheck
{
public:
    ~WebDAVCheck() { cancel(); }
    using Done = std::function<void(const ZQError &error)>; // null: it is kept
    void connectTo(const WebDAVSettings &settings, const ZQSecret &password, const Done &done);
    void cancel();
    // Forgets its passwords, and then the server, which stays while the keyring is locked.
    static void disconnect(const Done &done);

private:
    // Outlives the check in what a store answers late.
    struct Attempt
    {
        int number = 0;
        QString account = {}; // that is being kept, or was; empty: none
    };
    void keep(const WebDAVSettings &settings, const ZQSecret &password, const Done &done);
    static void kept(const WebDAVSettings &settings, const QStringList &before, const Done &done);

    ServiceRequests m_requests;
    const std::shared_ptr<Attempt> m_attempt = std::make_shared<Attempt>();
};
