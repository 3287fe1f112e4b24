#pragma once

#include "Classes/Sharing/SecretStore.h"

namespace QKeychain {
class Job;
}

// Over the secret service of the desktop and nothing else: where there is none, nothing is stored. Main thread.
class KeychainSecretStore : public SecretStore
{
public:
    QStringList accountsOfService(const QString &service) const override;
    void setPassword(const QByteArray &password, const QString &service, const QString &account,
                     Stored stored) override;
    void password(const QString &service, const QString &account, Read read) override;
    void deletePassword(const QString &service, const QString &account, Stored deleted) override;
    void forgetAccount(const QString &service, const QString &account) override;

private:
    // What the keyring said, in words; null: nothing went wrong. Never with a password in it.
    static ZQError errorOf(const QKeychain::Job &job);
    static bool noteAccount(bool isThere, const QString &service, const QString &account, ZQError *error);
};
