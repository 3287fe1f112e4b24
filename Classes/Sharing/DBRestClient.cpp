#include "Classes/Sharing/DBRestClient.h"

#include "Classes/Sharing/ServiceAddress.h"

#include <QJsonArray>

DBRestClient::DBRestClient(DBSession &initWithSession)
    : m_session(initWithSession), m_folders(initWithSession), m_links(initWithSession)
{
}

void DBRestClient::createFolder(const QString &path)
{
    const QJsonObject argument{{QStringLiteral("path"), path}, {QStringLiteral("autorename"), false}};
    m_folders.call(QStringLiteral("/2/files/create_folder_v2"), argument, [this](const ZQHTTPResponse &response) {
        const QJsonObject metadata = DBCalls::objectOf(response).value(u"metadata").toObject();
        if (response.isWhole() && !metadata.isEmpty()) {
            m_delegate->createdFolder(*this, metadata.toVariantMap());
        } else {
            m_delegate->createFolderFailedWithError(*this, DBCalls::errorOf(response));
        }
    });
}

void DBRestClient::uploadFile(const QString &name, const QString &toPath, const QString &withParentRev,
                              const QString &fromPath)
{
    const QString path = (toPath.endsWith(u'/') ? toPath : toPath + u'/') + name;
    m_upload = std::make_unique<DBUpload>(
        m_session, fromPath, path, withParentRev, m_sizes,
        [this, path, fromPath](double fraction) { m_delegate->uploadProgress(*this, fraction, path, fromPath); },
        [this, path, fromPath](const QVariantMap &metadata, const ZQError &error) {
            const auto upload = std::move(m_upload); // which is calling
            if (error.isNull()) {
                const QString stored = metadata.value(QStringLiteral("path_display")).toString();
                m_delegate->uploadedFile(*this, stored.startsWith(u'/') ? stored : path, fromPath, metadata);
            } else {
                m_delegate->uploadFileFailedWithError(*this, error);
            }
        });
    m_upload->start();
}

void DBRestClient::cancelFileUpload(const QString &path)
{
    if (m_upload && m_upload->path() == path) {
        m_upload.reset();
    }
}

void DBRestClient::loadSharableLinkForFile(const QString &path)
{
    m_links.call(QStringLiteral("/2/sharing/create_shared_link_with_settings"), {{QStringLiteral("path"), path}},
                 [this, path](const ZQHTTPResponse &response) { linkAnswered(path, response); });
}

void DBRestClient::linkAnswered(const QString &path, const ZQHTTPResponse &response)
{
    const QJsonObject answer = DBCalls::objectOf(response);
    if (response.isWhole()) {
        tellLink(path, answer.value(u"url").toString(), response);
        return;
    }
    if (!DBCalls::summaryOf(response).startsWith(u"shared_link_already_exists")) {
        m_delegate->loadSharableLinkFailedWithError(*this, DBCalls::errorOf(response));
        return;
    }
    const QJsonObject existing =
        answer.value(u"error").toObject().value(u"shared_link_already_exists").toObject().value(u"metadata").toObject();
    const QString link = ServiceAddress::link(existing.value(u"url").toString());
    if (link.isEmpty()) {
        askForExistingLink(path);
    } else {
        m_delegate->loadedSharableLink(*this, link, path);
    }
}

void DBRestClient::askForExistingLink(const QString &path)
{
    const QJsonObject argument{{QStringLiteral("path"), path}, {QStringLiteral("direct_only"), true}};
    m_links.call(QStringLiteral("/2/sharing/list_shared_links"), argument,
                 [this, path](const ZQHTTPResponse &response) {
                     const QJsonObject first = DBCalls::objectOf(response).value(u"links").toArray().first().toObject();
                     tellLink(path, first.value(u"url").toString(), response);
                 });
}

void DBRestClient::tellLink(const QString &path, const QString &link, const ZQHTTPResponse &response)
{
    if (const QString plain = ServiceAddress::link(link); response.isWhole() && !plain.isEmpty()) {
        m_delegate->loadedSharableLink(*this, plain, path);
    } else {
        m_delegate->loadSharableLinkFailedWithError(*this, DBCalls::errorOf(response));
    }
}
