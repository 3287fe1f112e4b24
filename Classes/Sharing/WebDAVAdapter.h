#pragma once

#include "Classes/Sharing/MainThreadAdapter.h"
#include "Classes/Sharing/ServiceRequests.h"
#include "Classes/Sharing/WebDAVSettings.h"
#include "Kit/Foundation/ZQSecret.h"

#include <QStringList>

// Puts a file into a new folder of its own on the person's server, so that it takes the place of none, and gets a link
// that everybody can read.
class WebDAVAdapter : public MainThreadAdapter
{
public:
    WebDAVAdapter(const QString &fileToUploadURL, const QString &fileToUploadName, const QString &fileToUploadID,
                  CloudAdapterDelegate *delegate, const WebDAVSettings &settings);

protected:
    void begin() override;
    void abandon() override;

private:
    void logIn(const std::optional<QByteArray> &password, const ZQError &error);
    void makeNextFolder();
    void sendFile();
    void askForLink();
    void linkCame(const ZQHTTPResponse &response);
    void removeOwnFolder(); // once, and only what the server said that it made
    ZQHTTPRequest request(const QByteArray &method, const QUrl &url) const;
    ZQError problemOf(const ZQHTTPResponse &response) const;
    QString ownFolder() const { return m_addresses.folder + u'/' + fileToUploadID(); }

    const WebDAVSettings m_settings;
    WebDAVSettings::Addresses m_addresses;
    ZQSecret m_password;
    QStringList m_foldersToMake;     // paths, the outermost first
    bool m_didMakeOwnFolder = false; // the server said so
    ServiceRequests m_requests;
};
