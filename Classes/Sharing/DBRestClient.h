#pragma once

#include "Classes/Sharing/DBUpload.h"

#include <QString>
#include <QVariantMap>

#include <memory>

class DBRestClient;

// Who hears how operations of a client end: each ends with one of its two calls, unless it was cancelled. Main thread.
class DBRestClientDelegate
{
public:
    virtual ~DBRestClientDelegate() = default;
    virtual void createdFolder(DBRestClient &client, const QVariantMap &metadata) = 0;
    virtual void createFolderFailedWithError(DBRestClient &client, const ZQError &error) = 0;
    virtual void uploadedFile(DBRestClient &client, const QString &path, const QString &from,
                              const QVariantMap &metadata) = 0;
    virtual void uploadProgress(DBRestClient &client, double fraction, const QString &forFile, const QString &from) = 0;
    virtual void uploadFileFailedWithError(DBRestClient &client, const ZQError &error) = 0;
    virtual void loadedSharableLink(DBRestClient &client, const QString &link, const QString &forFile) = 0;
    virtual void loadSharableLinkFailedWithError(DBRestClient &client, const ZQError &error) = 0;
};

// Folders, files and links of the Dropbox that a session is linked with. Paths begin with a slash, at the root that the
// app key gives. One operation of a kind at a time; a client that goes tells nobody any more. Main thread.
class DBRestClient
{
public:
    explicit DBRestClient(DBSession &initWithSession);
    void setDelegate(DBRestClientDelegate *delegate) { m_delegate = delegate; } // outlives it
    void setSizes(const DBUpload::Sizes &sizes) { m_sizes = sizes; }

    void createFolder(const QString &path); // fails where there is one
    // `name` is the file's in the folder `toPath`. Without a revision it takes the place of none.
    void uploadFile(const QString &name, const QString &toPath, const QString &withParentRev, const QString &fromPath);
    void cancelFileUpload(const QString &path);
    void loadSharableLinkForFile(const QString &path); // the one that there is, if there is one

private:
    void linkAnswered(const QString &path, const ZQHTTPResponse &response);
    void askForExistingLink(const QString &path);
    void tellLink(const QString &path, const QString &link, const ZQHTTPResponse &response);

    DBSession &m_session;
    DBRestClientDelegate *m_delegate = nullptr;
    DBUpload::Sizes m_sizes;
    DBCalls m_folders;
    DBCalls m_links;
    std::unique_ptr<DBUpload> m_upload; // null: none
};
