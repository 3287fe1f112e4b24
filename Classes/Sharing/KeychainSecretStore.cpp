#include "Classes/Sharing/KeychainSecretStore.h"

#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQSecret.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

#include <qt6keychain/keychain.h>

#include <memory>

namespace {

const QString accountsKey = QStringLiteral("SecretAccounts");

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

template <class Job>
Job *makeJob(const QString &service, const QString &account)
{
    auto *const job = new Job(service); // deletes itself when it is done
    job->setInsecureFallback(false);
    job->setKey(account);
    return job;
}

} // namespace

ZQError KeychainSecretStore::errorOf(const QKeychain::Job &job)
{
    switch (job.error()) {
    case QKeychain::NoError:
        return {};
    case QKeychain::AccessDenied:
    case QKeychain::AccessDeniedByUser:
        return denied();
    case QKeychain::NoBackendAvailable:
    case QKeychain::NotImplemented:
        return unavailable();
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
                               zqFormat(zqLocalized("The keyring cannot be used: %@"), {job.errorString()}),
                               zqLocalized("Look whether it is unlocked, in the desktop's program for passwords, and "
                                           "try again."))
               : unavailable();
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
    auto *const job = makeJob<QKeychain::WritePasswordJob>(service, account);
    QString text = QString::fromUtf8(password);
    job->setTextData(text);
    zqWipe(text);
    QObject::connect(job, &QKeychain::Job::finished, [service, account, stored](QKeychain::Job *done) {
        ZQError error = errorOf(*done);
        if (error.isNull() && !noteAccount(true, service, account, &error)) { // nobody would ever remove it
            makeJob<QKeychain::DeletePasswordJob>(service, account)->start();
        }
        stored(error);
    });
    job->start();
}

void KeychainSecretStore::password(const QString &service, const QString &account, Read read)
{
    auto *const job = makeJob<QKeychain::ReadPasswordJob>(service, account);
    QObject::connect(job, &QKeychain::Job::finished, [job, read](QKeychain::Job *) {
        const ZQError error = errorOf(*job);
        if (!error.isNull()) {
            read(std::nullopt, error);
            return;
        }
        QString text = job->textData();
        std::optional<QByteArray> password = text.toUtf8();
        zqWipe(text);
        read(password, {});
        zqWipe(*password);
    });
    job->start();
}

void KeychainSecretStore::deletePassword(const QString &service, const QString &account, Stored deleted)
{
    auto *const job = makeJob<QKeychain::DeletePasswordJob>(service, account);
    QObject::connect(job, &QKeychain::Job::finished, [service, account, deleted](QKeychain::Job *done) {
        ZQError error = done->error() == QKeychain::EntryNotFound ? ZQError() : errorOf(*done);
        if (error.isNull()) {
            noteAccount(false, service, account, &error);
        }
        deleted(error);
    });
    job->start();
}
