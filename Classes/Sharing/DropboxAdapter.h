#pragma once

#include "Classes/Sharing/DBRestClient.h"
#include "Classes/Sharing/MainThreadAdapter.h"

// Puts a file into a folder of its own in the linked Dropbox, so that names never collide, and gets its link.
class DropboxAdapter : public MainThreadAdapter, private DBRestClientDelegate
{
public:
    DropboxAdapter(const QString &fileToUploadURL, const QString &fileToUploadName, const QString &fileToUploadID,
                   CloudAdapterDelegate *delegate, DBSession &session = DBSession::sharedSession());
    ~DropboxAdapter() override;

    DBRestClient &dropboxClient() { return *m_dropboxClient; } // main thread, until it has finished

protected:
    void begin() override;
    void abandon() override;

private:
    void createdFolder(DBRestClient &client, const QVariantMap &metadata) override;
    void createFolderFailedWithError(DBRestClient &client, const ZQError &error) override;
    void uploadedFile(DBRestClient &client, const QString &path, const QString &from,
                      const QVariantMap &metadata) override;
    void uploadProgress(DBRestClient &client, double fraction, const QString &forFile, const QString &from) override;
    void uploadFileFailedWithError(DBRestClient &client, const ZQError &error) override;
    void loadedSharableLink(DBRestClient &client, const QString &link, const QString &forFile) override;
    void loadSharableLinkFailedWithError(DBRestClient &client, const ZQError &error) override;
    void removeFolder(); // once, and only what Dropbox said that it made
    QString folder() const { return u'/' + fileToUploadID(); }

    DBSession &m_session;
    std::unique_ptr<DBRestClient> m_dropboxClient;
    bool m_didMakeFolder = false; // Dropbox said so
};
