#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

// Generic passwords of this application in the desktop's secret service: one an account of a service, and nowhere else.
// What a session has not unlocked yet the desktop asks the person for, so that answers come later. Main thread.
//
// Which accounts there are is no secret: their names are kept in the user defaults (`accountsKey`), newest last, so
// that no password is read to know whether there is one.
class SecretStore
{
public:
    enum Error { Unavailable = 1, Denied, Failed, LeftBehind };
    static inline const QString errorDomain = QStringLiteral("zelto.secrets");
    static inline const QString accountsKey = QStringLiteral("SecretAccounts");
    using Stored = std::function<void(const ZQError &error)>; // null: done
    using Read = std::function<void(const std::optional<QByteArray> &password, const ZQError &error)>;

    virtual ~SecretStore() = default;
    static SecretStore &shared();
    // For tests; null: the desktop's again.
    static void setShared(std::unique_ptr<SecretStore> store);

    virtual QStringList accountsOfService(const QString &service) const = 0; // the last one is in use
    virtual void setPassword(const QByteArray &password, const QString &service, const QString &account,
                             Stored stored) = 0; // in place of the one that is there
    virtual void password(const QString &service, const QString &account, Read read) = 0;
    virtual void deletePassword(const QString &service, const QString &account, Stored deleted) = 0;
    // No account any more; its password stays wherever it is.
    virtual void forgetAccount(const QString &service, const QString &account) = 0;

    // Posted without an object when the keyring begins or ends to be asked.
    static inline const QString waitingDidChange = QStringLiteral("SecretStoreWaitingDidChange");
    static bool isWaiting();
    static std::shared_ptr<void> wait(); // the keyring is asked for as long as somebody holds it
};
