#include "Classes/Sharing/CloudAppAccount.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Sharing/ForgetSecrets.h"
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
    const std::weak_ptr<Check> check = m_check;
    ZQError error;
    const std::optional<QUrl> host = APIHost(&error);
    if (!host) {
        refuse(check, [&error](UserInteraction &user) { user.presentError(error); });
        return;
    }
    ZQHTTPRequest request;
    request.url = ServiceAddress::below(*host, QStringLiteral("/account"));
    request.headers = {{"Accept", "application/json"}};
    request.user = m_check->email;
    request.password = password;
    m_requests->perform(request, [this, check](const ZQHTTPResponse &response) {
        answered(check, response.statusCode, response.isWhole());
    });
}

void CloudAppAccount::answered(const std::weak_ptr<Check> &check, int statusCode, bool isWhole)
{
    if (isWhole) {
        store(*m_check);
        return;
    }
    const QString reason = statusCode == unauthorized
                               ? zqLocalized("Username or Password are invalid")
                               : zqLocalized("Check your internet connection or your network settings.");
    refuse(check, [&reason](UserInteraction &user) {
        user.ask({.message = zqLocalized("Can't connect to Cloud App"),
                  .informativeText = reason,
                  .buttons = {zqLocalized("OK")},
                  .suppressionKey = {}});
    });
}

void CloudAppAccount::store(const Check &check)
{
    const std::weak_ptr<Check> weak = m_check;
    SecretStore::shared().setPassword(check.password.UTF8(), service, check.email, [this, weak](const ZQError &error) {
        if (weak.expired()) {
            return;
        }
        if (error.isNull()) {
            end(weak.lock(), Outcome::Connected);
        } else {
            refuse(weak, [&error](UserInteraction &user) { user.presentError(error); });
        }
    });
}

// Whoever shows the account may be gone when the person has read it.
void CloudAppAccount::refuse(const std::weak_ptr<Check> &check, const std::function<void(UserInteraction &user)> &tell)
{
    tell(m_user);
    if (const std::shared_ptr<Check> still = check.lock()) {
        end(still, Outcome::Refused);
    }
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
    giveUpSecrets(service, {account}, [ended](const ZQError &error) {
        if (!error.isNull()) {
            qCWarning(zqLogApplication, "Error while deleting keychain entry %s",
                      qUtf8Printable(error.localizedDescription()));
        }
        ended(error);
    });
}
