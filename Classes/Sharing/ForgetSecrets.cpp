#include "Classes/Sharing/ForgetSecrets.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <memory>

void forgetSecrets(const QString &service, const QStringList &accounts, SecretStore::Stored done)
{
    struct Ends
    {
        qsizetype left;
        ZQError first = {};
    };
    const auto ends = std::make_shared<Ends>(Ends{.left = accounts.size()});
    if (accounts.isEmpty()) {
        done({});
    }
    for (const QString &account : accounts) {
        SecretStore::shared().deletePassword(service, account, [ends, done](const ZQError &error) {
            ends->first = ends->first.isNull() ? error : ends->first;
            if (--ends->left == 0) {
                done(ends->first);
            }
        });
    }
}

void giveUpSecrets(const QString &service, const QStringList &accounts, const SecretStore::Stored &done)
{
    forgetSecrets(service, accounts, [service, accounts, done](const ZQError &error) {
        const bool isOutOfReach = error.domain == SecretStore::errorDomain &&
                                  (error.code == SecretStore::Unavailable || error.code == SecretStore::Failed);
        if (!isOutOfReach) {
            done(error);
            return;
        }
        for (const QString &account : accounts) {
            SecretStore::shared().forgetAccount(service, account);
        }
        done(ZQError::with(
            SecretStore::errorDomain, SecretStore::LeftBehind,
            zqLocalized("The account is forgotten, but its stored password cannot be reached."),
            zqFormat(zqLocalized("If there is a keyring, it stays there: remove what is named “%@” in the desktop's "
                                 "program for passwords."),
                     {service})));
    });
}

bool areSecretsGivenUp(const ZQError &error)
{
    return error.isNull() || (error.domain == SecretStore::errorDomain && error.code == SecretStore::LeftBehind);
}
