#include "Classes/Sharing/CloudAppAccount.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Sharing/SecretStore.h"
#include "Classes/Sharing/ServiceAddress.h"
#include "Classes/Sharing/ServiceRequests.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

namespace {

constexpr int unauthorized = 401;

} // namespace

struct CloudAppAccount::Check
{
    QString email;
    ZQSecret password;
    std::function<void(Outcome outcome)> ended;
};

CloudAppAccount::CloudAppAccount(UserInteraction &user) : m_user(user), m_requests(std::make_unique<ServiceRequests>())
{
}

CloudAppAccount::~CloudAppAccount() = default;

QString CloudAppAccount::current()
{
    const QStringList accounts = SecretStore::shared().accountsOfService(service);
    return accounts.isEmpty() ? QString() : accounts.last();
}

std::optional<QUrl> CloudAppAccount::APIHost(ZQError *error)
{
    return ServiceAddress::ofDefault(APIHostKey, QStringLiteral("my.cl.ly"), error);
}

QUrl CloudAppAccount::webHost()
{
    return ServiceAddress::ofDefault(webHostKey, QStringLiteral("cl.ly")).value_or(QUrl());
}

void CloudAppAccount::testCloudAppCredentials(const QString &email, const ZQSecret &password,
                                              std::function<void(Outcome outcome)> ended)
{
    cancel();
    m_check = std::make_shared<Check>(Check{email.trimmed(), password, std::move(ended)});
    const std::shared_ptr<Check> check = m_check;
    ZQError error;
    const std::optional<QUrl> host = APIHost(&error);
    if (!host) {
        m_user.presentError(error);
        end(check, Outcome::Refused);
        return;
    }
    ZQHTTPRequest request;
    request.url = ServiceAddress::below(*host, QStringLiteral("/account"));
    request.headers = {{"Accept", "application/json"}};
    request.user = check->email;
    request.password = password;
    m_requests->perform(request, [this, check](const ZQHTTPResponse &response) {
        answered(check, response.statusCode, response.isWhole());
    });
}

void CloudAppAccount::answered(const std::shared_ptr<Check> &check, int statusCode, bool isWhole)
{
    if (isWhole) {
        store(check);
        return;
    }
    m_user.ask({.message = zqLocalized("Can't connect to Cloud App"),
                .informativeText = statusCode == unauthorized
                                       ? zqLocalized("Username or Password are invalid")
                                       : zqLocalized("Check your internet connection or your network settings."),
                .buttons = {zqLocalized("OK")},
                .suppressionKey = {}});
    end(check, Outcome::Refused);
}

void CloudAppAccount::store(const std::shared_ptr<Check> &check)
{
    const std::weak_ptr<Check> weak = check; // without this account object, or after a cancel, there is nobody to tell
    SecretStore::shared().setPassword(check->password.UTF8(), service, check->email,
                                      [this, weak](const ZQError &error) {
                                          const std::shared_ptr<Check> stored = weak.lock();
                                          if (!stored) {
                                              return;
                                          }
                                          if (!error.isNull()) {
                                              m_user.presentError(error);
                                          }
                                          end(stored, error.isNull() ? Outcome::Connected : Outcome::Refused);
                                      });
}

void CloudAppAccount::end(const std::shared_ptr<Check> &check, Outcome outcome)
{
    if (m_check == check) {
        m_check.reset();
    }
    if (const auto ended = std::exchange(check->ended, nullptr)) {
        ended(outcome);
    }
}

void CloudAppAccount::cancel()
{
    m_requests->cancel();
    if (const auto check = m_check) {
        end(check, Outcome::Cancelled);
    }
}

void CloudAppAccount::disconnect(std::function<void(const ZQError &error)> ended)
{
    cancel();
    const QString account = current();
    if (account.isEmpty()) {
        ended({});
        return;
    }
    SecretStore::shared().deletePassword(service, account, [ended](const ZQError &error) {
        if (!error.isNull()) {
            qCWarning(zqLogApplication, "Error while deleting keychain entry %s",
                      qUtf8Printable(error.localizedDescription()));
        }
        ended(error);
    });
}
