#include "Classes/Sharing/WebDAVService.h"

#include "Classes/Sharing/ForgetSecrets.h"
#include "Classes/Sharing/ServiceAddress.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Classes/Sharing/WebDAVAdapter.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQNetworkError.h"
#include "Kit/Network/ZQPrivateAddress.h"

namespace {

// Why a server gave no answer at all. Where the person named no scheme it may be one without encryption.
ZQError withoutScheme(const WebDAVSettings &settings, const ZQHTTPResponse &response)
{
    const auto address = ServiceAddress::from(settings.address);
    const bool isHTTPAllowed = address && zqIsPrivateHostName(address->host()) && !settings.address.contains(u"://");
    if (!isHTTPAllowed || !zqIsNetworkError(response.error, ZQNetworkErrorCode::Untrusted)) {
        return response.error;
    }
    ZQError error = response.error;
    error.userInfo.insert(ZQError::failureReasonKey,
                          zqLocalized("If it has no encryption, write http:// before its address."));
    return error;
}

} // namespace

QString WebDAVService::title() const
{
    const auto address = ServiceAddress::from(WebDAVSettings::stored().address);
    return address ? address->host() : zqLocalized("Own server (WebDAV)");
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

void WebDAVCheck::connectTo(const WebDAVSettings &settings, const ZQSecret &password, const Done &done)
{
    cancel();
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
    request.password = password;
    request.mostRedirects = 0;
    m_requests.perform(request, [this, settings, password, done](const ZQHTTPResponse &response) {
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
            done(withoutScheme(settings, response));
        }
    });
}

void WebDAVCheck::cancel()
{
    m_requests.cancel();
    ++m_attempt->number;
    m_attempt->account.clear();
}

void WebDAVCheck::keep(const WebDAVSettings &settings, const ZQSecret &password, const Done &done)
{
    const QString account = settings.account();
    const QStringList before = SecretStore::shared().accountsOfService(WebDAVSettings::serviceOfSecrets);
    m_attempt->account = account;
    SecretStore::shared().setPassword(
        password.UTF8(), WebDAVSettings::serviceOfSecrets, account,
        [settings, before, done, account, attempt = m_attempt, number = m_attempt->number](const ZQError &error) {
            if (number != attempt->number) { // cancelled while the desktop asked the person
                if (error.isNull() && !before.contains(account) && attempt->account != account) {
                    forgetSecrets(WebDAVSettings::serviceOfSecrets, {account}, [](const ZQError &) {});
                }
                return;
            }
            if (!error.isNull()) {
                attempt->account.clear();
                done(error);
                return;
            }
            const Done current = [done, attempt, number](const ZQError &problem) {
                if (number == attempt->number) {
                    done(problem);
                }
            };
            kept(settings, before, current);
        });
}

void WebDAVCheck::kept(const WebDAVSettings &settings, const QStringList &before, const Done &done)
{
    ZQError error;
    if (!settings.store(&error)) {
        const QString account = settings.account();
        const QStringList unused = before.contains(account) ? QStringList() : QStringList(account);
        forgetSecrets(WebDAVSettings::serviceOfSecrets, unused, [done, error](const ZQError &) { done(error); });
        return;
    }
    QStringList others = before;
    others.removeAll(settings.account());
    forgetSecrets(WebDAVSettings::serviceOfSecrets, others, done);
}

void WebDAVCheck::disconnect(const Done &done)
{
    const QStringList accounts = SecretStore::shared().accountsOfService(WebDAVSettings::serviceOfSecrets);
    // A server that is still known can be disconnected again when the keyring refused.
    giveUpSecrets(WebDAVSettings::serviceOfSecrets, accounts, [done](const ZQError &error) {
        if (areSecretsGivenUp(error)) {
            const QStringList keys = WebDAVSettings::keys();
            for (const QString &key : keys) {
                ZQUserDefaults::standardUserDefaults().removeObjectForKey(key);
            }
        }
        done(error);
    });
}
