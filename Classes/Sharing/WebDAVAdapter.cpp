#include "Classes/Sharing/WebDAVAdapter.h"

#include "Classes/Sharing/AbandonedFolder.h"
#include "Classes/Sharing/SecretStore.h"
#include "Classes/Sharing/ServiceAddress.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Network/ZQHTTPBody.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int methodNotAllowed = 405; // so servers answer for a folder that is there
constexpr int preconditionFailed = 412;

} // namespace

WebDAVAdapter::WebDAVAdapter(const QString &fileToUploadURL, const QString &fileToUploadName,
                             const QString &fileToUploadID, CloudAdapterDelegate *delegate,
                             const WebDAVSettings &settings)
    : MainThreadAdapter(fileToUploadURL, fileToUploadName, fileToUploadID, delegate), m_settings(settings)
{
}

void WebDAVAdapter::begin()
{
    ZQError error;
    const auto addresses = m_settings.addresses(&error);
    if (!addresses) {
        uploadFailed(UploadProblem::of(error));
        return;
    }
    m_addresses = *addresses;
    for (qsizetype end = m_addresses.folder.indexOf(u'/', 1); end > 0;
         end = m_addresses.folder.indexOf(u'/', end + 1)) {
        m_foldersToMake.append(m_addresses.folder.first(end));
    }
    if (!m_addresses.folder.isEmpty()) {
        m_foldersToMake.append(m_addresses.folder);
    }
    m_foldersToMake.append(ownFolder());
    SecretStore::shared().password(
        WebDAVSettings::serviceOfSecrets, m_settings.account(),
        [this, self = shared_from_this()](const std::optional<QByteArray> &password, const ZQError &problem) {
            if (!isCancelled()) {
                logIn(password, problem);
            }
        });
}

void WebDAVAdapter::logIn(const std::optional<QByteArray> &password, const ZQError &error)
{
    if (password) {
        m_password = ZQSecret(*password);
        makeNextFolder();
        return;
    }
    uploadFailed(error.isNull() ? UploadProblem::with(zqLocalized("The password of your server is not known."),
                                                      zqLocalized("Enter it in the preferences, under Cloud."))
                                : UploadProblem::of(error));
}

ZQHTTPRequest WebDAVAdapter::request(const QByteArray &method, const QUrl &url) const
{
    ZQHTTPRequest request;
    request.url = url;
    request.method = method;
    request.user = m_settings.user.trimmed();
    request.password = m_password;
    request.mostRedirects = 0; // would lead a password or a file elsewhere, and a PUT to a GET
    return request;
}

void WebDAVAdapter::makeNextFolder()
{
    const QString path = m_foldersToMake.takeFirst();
    const bool isOwn = m_foldersToMake.isEmpty();
    m_requests.perform(request("MKCOL", ServiceAddress::below(m_addresses.root, path + u'/')),
                       [this, isOwn, self = shared_from_this()](const ZQHTTPResponse &response) {
                           const bool wasThere = response.statusCode == methodNotAllowed && !isOwn;
                           if (!response.isWhole() && !wasThere) {
                               uploadFailed(problemOf(response));
                           } else if (isOwn) {
                               m_didMakeOwnFolder = true;
                               sendFile();
                           } else {
                               makeNextFolder();
                           }
                       });
}

void WebDAVAdapter::sendFile()
{
    ZQError error;
    ZQHTTPBody body;
    if (!body.appendFile(fileToUploadURL(), &error)) {
        removeOwnFolder();
        uploadFailed(UploadProblem::of(error));
        return;
    }
    ZQHTTPRequest put = request("PUT", ServiceAddress::below(m_addresses.root, ownFolder() + u'/' + nameForUpload()));
    put.headers = {{"If-None-Match", "*"}, {"Content-Type", "application/octet-stream"}};
    put.makeBody = body.maker();
    m_requests.perform(
        put,
        [this, self = shared_from_this()](const ZQHTTPResponse &response) {
            if (!response.isWhole()) {
                if (response.statusCode != preconditionFailed) { // else something is in it that is not ours
                    removeOwnFolder();
                }
                uploadFailed(problemOf(response));
            } else if (m_addresses.publicFolder.isEmpty()) {
                askForLink();
            } else {
                const QUrl link =
                    ServiceAddress::below(m_addresses.publicFolder, u'/' + fileToUploadID() + u'/' + nameForUpload());
                uploadSuccessful({{QStringLiteral("url"), link.toString(QUrl::FullyEncoded)}});
            }
        },
        [this](qint64 sent, qint64 total) { uploadProgess(double(sent) / double(total)); });
}

void WebDAVAdapter::askForLink()
{
    QUrl url = m_addresses.shares;
    url.setQuery(QStringLiteral("format=json"));
    ZQHTTPRequest post = request("POST", url);
    post.headers = {{"OCS-APIRequest", "true"},
                    {"Accept", "application/json"},
                    {"Content-Type", "application/x-www-form-urlencoded"}};
    post.body = "path=" + QUrl::toPercentEncoding(m_addresses.rootThere + ownFolder() + u'/' + nameForUpload()) +
                "&shareType=3&permissions=1";
    m_requests.perform(post, [this, self = shared_from_this()](const ZQHTTPResponse &response) { linkCame(response); });
}

void WebDAVAdapter::linkCame(const ZQHTTPResponse &response)
{
    const QJsonObject answer = QJsonDocument::fromJson(response.body).object().value(u"ocs").toObject();
    const QString link = ServiceAddress::link(answer.value(u"data").toObject().value(u"url").toString());
    if (response.isWhole() && !link.isEmpty()) {
        uploadSuccessful({{QStringLiteral("url"), link}});
        return;
    }
    const QJsonObject meta = answer.value(u"meta").toObject();
    const QString reason = meta.value(u"message").toString();
    if (!reason.isEmpty() && meta.value(u"status").toString() != u"ok") {
        uploadFailed(UploadProblem::with(
            zqFormat(zqLocalized("The file was uploaded, but your server makes no link: “%@”."), {zqShortened(reason)}),
            zqLocalized("Allow public links there, or share the file from the server's own pages.")));
    } else if (!response.isWhole() && response.statusCode != 404 && response.statusCode != methodNotAllowed) {
        removeOwnFolder(); // nobody would know that the file is there
        uploadFailed(problemOf(response));
    } else {
        uploadFailed(UploadProblem::with(
            zqLocalized("The file was uploaded, but your server makes no links."),
            zqLocalized("Enter the public address of the folder in the preferences, under Cloud.")));
    }
}

ZQError WebDAVAdapter::problemOf(const ZQHTTPResponse &response) const
{
    switch (response.statusCode) {
    case 401:
        return UploadProblem::with(zqLocalized("Your server does not accept the user name and the password."),
                                   zqLocalized("Enter them anew in the preferences, under Cloud. A server with a "
                                               "second factor wants an “app password” from its security settings."));
    case 404:
    case methodNotAllowed:
    case 409:
        return UploadProblem::of(response, zqLocalized("Check the address of your server and the folder in the "
                                                       "preferences, under Cloud."));
    case preconditionFailed:
        return UploadProblem::of(response, zqLocalized("There is a file of that name already. Share it again."));
    case 507:
        return UploadProblem::with(zqLocalized("Your server is full."),
                                   zqLocalized("Make room there and share the files again."));
    default:
        return UploadProblem::of(response);
    }
}

void WebDAVAdapter::abandon()
{
    m_requests.cancel();
    removeOwnFolder();
}

void WebDAVAdapter::removeOwnFolder()
{
    if (std::exchange(m_didMakeOwnFolder, false) && AbandonedFolder::isOne(fileToUploadID())) {
        AbandonedFolder::remove(request("DELETE", ServiceAddress::below(m_addresses.root, ownFolder() + u'/')));
    }
}
