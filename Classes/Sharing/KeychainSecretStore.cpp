#include "Classes/Sharing/KeychainSecretStore.h"

#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQSecret.h"
#include "Kit/Foundation/ZQShortened.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QLibrary>

#include <qt6keychain/keychain.h>

#include <functional>

namespace {

// Whether somebody on this session's bus keeps secrets, or would be started to.
bool hasKeeper()
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface()) {
        return false;
    }
    const QStringList all =
        bus.interface()->registeredServiceNames().value() + bus.interface()->activatableServiceNames().value();
    for (const char *name : {"org.freedesktop.secrets", "org.kde.kwalletd6", "org.kde.kwalletd5"}) {
        if (all.contains(QString::fromLatin1(name))) {
            return true;
        }
    }
    return false;
}

ZQError unavailable()
{
    return ZQError::with(SecretStore::errorDomain, SecretStore::Unavailable,
                         zqLocalized("There is no keyring in which a password could be kept safely."),
                         zqLocalized("Install one, such as GNOME Keyring or KWallet, log in to the desktop again, and "
                                     "try once more. Nothing was stored."));
}

ZQError denied()
{
    return ZQError::with(SecretStore::errorDomain, SecretStore::Denied,
                         zqLocalized("The keyring with your passwords is locked."),
                         zqLocalized("Unlock it and try again."));
}

ZQError unreachable()
{
    return ZQError::with(SecretStore::errorDomain, SecretStore::Unavailable,
                         zqLocalized("The stored password cannot be reached: there is no keyring."),
                         zqLocalized("Start the one it was kept in, such as GNOME Keyring or KWallet, or log in to the "
                                     "desktop again, and try once more."));
}

// Whether the keyring was started anew since this was asked last.
bool isKeeperAnother()
{
    static QString last;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    const QString owner = bus.isConnected() && bus.interface()
                              ? bus.interface()->serviceOwner(QStringLiteral("org.freedesktop.secrets")).value()
                              : QString();
    const bool isAnother = !last.isEmpty() && !owner.isEmpty() && owner != last;
    last = owner.isEmpty() ? last : owner;
    return isAnother;
}

// The library that speaks to the keyring keeps a session with it, which a keyring that was started anew knows nothing
// of.
void forgetSession()
{
    QLibrary library(QStringLiteral("secret-1"), 0);
    if (const auto disconnect = library.resolve("secret_service_disconnect")) {
        disconnect();
    }
}

// `prepare` may be called twice.
template <class Job>
void run(const QString &service, const QString &account, const std::function<void(Job &job)> &prepare,
         const std::function<void(Job &job)> &done, bool mayTryAgain = true)
{
    auto *const job = new Job(service); // deletes itself when it is done
    job->setInsecureFallback(false);
    job->setKey(account);
    prepare(*job);
    QObject::connect(job, &QKeychain::Job::finished, [=, wait = SecretStore::wait()](QKeychain::Job * /*job*/) mutable {
        if (isKeeperAnother() && mayTryAgain && job->error() == QKeychain::OtherError) {
            forgetSession();
            run<Job>(service, account, prepare, done, false);
        } else {
            wait.reset();
            done(*job);
        }
    });
    job->start();
}

} // namespace

ZQError KeychainSecretStore::errorOf(const QKeychain::Job &job)
{
    const bool isWriting = qobject_cast<const QKeychain::WritePasswordJob *>(&job);
    const auto withoutKeeper = [isWriting] { return isWriting ? unavailable() : unreachable(); };
    switch (job.error()) {
    case QKeychain::NoError:
        return {};
    case QKeychain::AccessDenied:
    case QKeychain::AccessDeniedByUser:
        return denied();
    case QKeychain::NoBackendAvailable:
    case QKeychain::NotImplemented:
        return withoutKeeper();
    case QKeychain::EntryNotFound:
        return ZQError::with(errorDomain, Failed,
                             zqFormat(zqLocalized("The keyring has no password for “%@” any more."), {job.key()}),
                             zqLocalized("Connect the account again in the preferences, under Cloud."));
    case QKeychain::CouldNotDeleteEntry:
    case QKeychain::OtherError:
        break;
    }
    return hasKeeper()
               ? ZQError::with(errorDomain, Failed,
                               zqFormat(zqLocalized("The keyring cannot be used: %@"), {zqSentence(job.errorString())}),
                               zqLocalized("Look whether it is unlocked, in the desktop's program for passwords, and "
                                           "try again."))
               : withoutKeeper();
}

QStringList KeychainSecretStore::accountsOfService(const QString &service) const
{
    const QVariantMap all = ZQUserDefaults::standardUserDefaults().objectForKey(accountsKey).toMap();
    return all.value(service).toStringList();
}

bool KeychainSecretStore::noteAccount(bool isThere, const QString &service, const QString &account, ZQError *error)
{
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    QVariantMap all = defaults.objectForKey(accountsKey).toMap();
    QStringList accounts = all.value(service).toStringList();
    accounts.removeAll(account);
    if (isThere) {
        accounts.append(account);
    }
    if (accounts.isEmpty()) {
        all.remove(service);
    } else {
        all.insert(service, accounts);
    }
    return defaults.storeObjectForKey(all.isEmpty() ? QVariant() : QVariant(all), accountsKey, error);
}

void KeychainSecretStore::setPassword(const QByteArray &password, const QString &service, const QString &account,
                                      Stored stored)
{
    using Job = QKeychain::WritePasswordJob;
    const auto prepare = [secret = ZQSecret(password)](Job &job) {
        QString text = QString::fromUtf8(secret.UTF8());
        job.setTextData(text);
        zqWipe(text);
    };
    run<Job>(service, account, prepare, [service, account, stored](Job &job) {
        ZQError error = errorOf(job);
        if (error.isNull() && !noteAccount(true, service, account, &error)) { // nobody would ever remove it
            run<QKeychain::DeletePasswordJob>(
                service, account, [](auto &) {}, [](auto &) {});
        }
        stored(error);
    });
}

void KeychainSecretStore::password(const QString &service, const QString &account, Read read)
{
    using Job = QKeychain::ReadPasswordJob;
    run<Job>(
        service, account, [](Job &) {},
        [read](Job &job) {
            const ZQError error = errorOf(job);
            if (!error.isNull()) {
                read(std::nullopt, error);
                return;
            }
            QString text = job.textData();
            std::optional<QByteArray> password = text.toUtf8();
            zqWipe(text);
            read(password, {});
            zqWipe(*password);
        });
}

void KeychainSecretStore::deletePassword(const QString &service, const QString &account, Stored deleted)
{
    using Job = QKeychain::DeletePasswordJob;
    run<Job>(
        service, account, [](Job &) {},
        [service, account, deleted](Job &job) {
            ZQError error = job.error() == QKeychain::EntryNotFound ? ZQError() : errorOf(job);
            if (error.isNull()) {
                noteAccount(false, service, account, &error);
            }
            deleted(error);
        });
}

void KeychainSecretStore::forgetAccount(const QString &service, const QString &account)
{
    noteAccount(false, service, account, nullptr);
}
