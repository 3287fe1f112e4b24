#pragma once

#include "Classes/Sharing/SecretStore.h"

#include <QStringList>

// Deletes the passwords of `accounts` of a service; `done` is told the first error once all were tried. Main thread.
void forgetSecrets(const QString &service, const QStringList &accounts, SecretStore::Stored done);

// The same for accounts that the person gives up: they go also where the keyring that has their passwords is not there
// or does not work, which the error `SecretStore::LeftBehind` says. One that is only locked keeps them. Main thread.
void giveUpSecrets(const QString &service, const QStringList &accounts, const SecretStore::Stored &done);
// Whether after that error nothing is known of the accounts any more.
bool areSecretsGivenUp(const ZQError &error);
