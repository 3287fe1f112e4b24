#pragma once

#include "Classes/Sharing/SecretStore.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QList>

#include <functional>
#include <utility>

// Passwords in memory, for tests. It answers from the main loop, as the desktop's store does, and fails when the test
// says so.
class MemorySecretStore : public SecretStore
{
public:
    struct Entry
    {
        QString service;
        QString account;
        QByteArray password;
    };
    QList<Entry> entries;             // newest last
    ZQError failure = {};             // of whatever is asked; null: all goes well
    std::function<void()> onSet = {}; // what happens, once, before the next setting of a password is answered

    QStringList accountsOfService(const QString &service) const override
    {
        QStringList accounts;
        for (const Entry &each : entries) {
            if (each.service == service) {
                accounts.append(each.account);
            }
        }
        return accounts;
    }
    void setPassword(const QByteArray &password, const QString &service, const QString &account, Stored stored) override
    {
        if (failure.isNull()) {
            remove(service, account);
            entries.append({service, account, QByteArray(password.constData(), password.size())});
        }
        zqOnMainThread([happens = std::exchange(onSet, nullptr), stored, error = failure] {
            if (happens) {
                happens();
            }
            stored(error);
        });
    }
    void password(const QString &service, const QString &account, Read read) override
    {
        std::optional<QByteArray> found;
        ZQError error = failure.isNull() ? ZQError{errorDomain, Failed, {}} : failure;
        for (const Entry &each : std::as_const(entries)) {
            if (failure.isNull() && each.service == service && each.account == account) {
                found = each.password;
                error = {};
            }
        }
        zqOnMainThread([read, found, error] { read(found, error); });
    }
    void deletePassword(const QString &service, const QString &account, Stored deleted) override
    {
        if (failure.isNull()) {
            remove(service, account);
        }
        zqOnMainThread([deleted, error = failure] { deleted(error); });
    }
    void forgetAccount(const QString &service, const QString &account) override { remove(service, account); }

private:
    void remove(const QString &service, const QString &account)
    {
        entries.removeIf([&](const Entry &each) { return each.service == service && each.account == account; });
    }
};
