#include "Classes/Sharing/DropboxAdapter.h"

#include "Classes/Sharing/AbandonedFolder.h"

DropboxAdapter::DropboxAdapter(const QString &fileToUploadURL, const QString &fileToUploadName,
                               const QString &fileToUploadID, CloudAdapterDelegate *delegate, DBSession &session)
    : MainThreadAdapter(fileToUploadURL, fileToUploadName, fileToUploadID, delegate), m_session(session),
      m_dropboxClient(std::make_unique<DBRestClient>(session))
{
    m_dropboxClient->setDelegate(this);
}

DropboxAdapter::~DropboxAdapter()
{
    release(std::move(m_dropboxClient));
}

void DropboxAdapter::begin()
{
    m_dropboxClient->createFolder(folder());
}

void DropboxAdapter::abandon()
{
    m_dropboxClient.reset();
    removeFolder();
}

// With the token that made it: a new one may take longer than anybody waits for this.
void DropboxAdapter::removeFolder()
{
    const ZQSecret token = m_session.currentAccessToken();
    const auto url = DBSession::APIAddress(QStringLiteral("/2/files/delete_v2"));
    if (!std::exchange(m_didMakeFolder, false) || token.isEmpty() || !url ||
        !AbandonedFolder::isOne(fileToUploadID())) {
        return;
    }
    ZQHTTPRequest request = DBCalls::request(*url, {{QStringLiteral("path"), folder()}});
    request.headers.append({"Authorization", "Bearer " + token.UTF8()});
    AbandonedFolder::remove(request);
}

void DropboxAdapter::createdFolder(DBRestClient &client, const QVariantMap & /*metadata*/)
{
    m_didMakeFolder = true;
    client.uploadFile(nameForUpload(), folder(), {}, fileToUploadURL());
}

void DropboxAdapter::createFolderFailedWithError(DBRestClient & /*client*/, const ZQError &error)
{
    uploadFailed(error);
}

void DropboxAdapter::uploadProgress(DBRestClient &client, double fraction, const QString &forFile,
                                    const QString & /*from*/)
{
    if (!isCancelled()) {
        uploadProgess(fraction);
    } else if (isExecuting()) {
        client.cancelFileUpload(forFile);
        removeFolder();
        finish();
    }
}

void DropboxAdapter::uploadedFile(DBRestClient &client, const QString &path, const QString & /*from*/,
                                  const QVariantMap & /*metadata*/)
{
    client.loadSharableLinkForFile(path);
}

void DropboxAdapter::uploadFileFailedWithError(DBRestClient & /*client*/, const ZQError &error)
{
    removeFolder();
    uploadFailed(error);
}

void DropboxAdapter::loadedSharableLink(DBRestClient & /*client*/, const QString &link, const QString & /*forFile*/)
{
    uploadSuccessful({{QStringLiteral("url"), link}});
}

void DropboxAdapter::loadSharableLinkFailedWithError(DBRestClient & /*client*/, const ZQError &error)
{
    removeFolder();
    uploadFailed(error);
}
