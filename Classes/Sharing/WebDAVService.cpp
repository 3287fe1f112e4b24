#include "Classes/Sharing/WebDAVService.h"

#include "Classes/Sharing/ForgetSecrets.h"
#include "Classes/Sharing/ServiceAddress.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Classes/Sharing/WebDAVAdapter.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"

QString WebDAVService::title() const
{
    const auto address = ServiceAddress::from(WebDAVSettings::stored().address);
    return address ? address->host() : zqLocalized("Own server (WebDAV)");
}

bool WebDAVService::isReady() const
{
    return whatIsMissing().isEmpty();
}

QString WebDAVService::whatIsMissing() const
{
    const WebDAVSettings settings = WebDAVSettings::stored();
    const bool hasPassword =
        SecretStore::shared().accountsOfService(WebDAVSettings::serviceOfSecrets).contains(settings.account());
    return settings.addresses() && hasPassword
               ? QString()
               : zqLocalized("Enter your server, your name and your password there in the preferences, under Cloud.");
}

std::shared_ptr<CloudAdapter> WebDAVService::makeAdapter(const QString &fileURL, const QString &fileName,
                                                         const QString &fileID, CloudAdapterDelegate *delegate)
{
    return std::make_shared<WebDAVAdapter>(fileURL, fileName, fileID, delegate, WebDAVSettings::stored());
}

void WebDAVCheck::connectTo(const WebDAVSettings &settings, const QByteArray &password, Done done)
{
    m_requests.cancel();
    ZQError error;
    const auto addresses = settings.addresses(&error);
    if (!addresses) {
        done(error);
        return;
    }
    ZQHTTPRequest request;
    request.url = ServiceAddress::below(addresses->root, QStringLiteral("/"));
    request.method = "PROPFIND";
    request.headers = {{"Depth", "0"}, {"Content-Type", "application/xml"}};
    request.body = "<?xml version=\"1.0\"?><propfind xmlns=\"DAV:\"><prop><resourcetype/></prop></propfind>";
    request.user = settings.user.trimmed();
    request.password = ZQSecret(password);
    request.mostRedirects = 0;
    m_requests.perform(request, [settings, password, done](const ZQHTTPResponse &response) {
        if (response.statusCode == 207) {
            keep(settings, password, done);
        } else if (response.statusCode == 401) {
            done(UploadProblem::with(zqLocalized("Your server does not accept the user name and the password."),
                                     zqLocalized("A server with a second factor wants an “app password” from its "
                                                 "security settings.")));
        } else if (response.statusCode != 0) {
            done(UploadProblem::with(zqFormat(zqLocalized("There is no WebDAV folder at “%@”."),
                                              {response.url.toString(QUrl::RemoveUserInfo)}),
                                     zqLocalized("Check the address and the name of the user.")));
        } else {
            done(response.error);
        }
    });
}

void WebDAVCheck::keep(const WebDAVSettings &settings, const QByteArray &password, const Done &done)
{
    const QStringList before = SecretStore::shared().accountsOfService(WebDAVSettings::serviceOfSecrets);
    SecretStore::shared().setPassword(password, WebDAVSettings::serviceOfSecrets, settings.account(),
                                      [settings, before, done](const ZQError &error) {
                                          ZQError problem = error;
                                          if (problem.isNull() && settings.store(&problem)) {
                                              QStringList others = before;
                                              others.removeAll(settings.account());
                                              forgetSecrets(WebDAVSettings::serviceOfSecrets, others, done);
                                              return;
                                          }
                                          done(problem);
                                      });
}

void WebDAVCheck::disconnect(const Done &done)
{
    const QStringList accounts = SecretStore::shared().accountsOfService(WebDAVSettings::serviceOfSecrets);
    // A server that is still known can be disconnected again when the keyring refused.
    forgetSecrets(WebDAVSettings::serviceOfSecrets, accounts, [done](const ZQError &error) {
        if (error.isNull()) {
            for (const char *key : {"WebDAVAddress", "WebDAVUser", "WebDAVFolder", "WebDAVPublicAddress"}) {
                ZQUserDefaults::standardUserDefaults().removeObjectForKey(QString::fromLatin1(key));
            }
        }
        done(error);
    });
}
