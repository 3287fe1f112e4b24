#pragma once

#include "Classes/Sharing/SecretStore.h"

#include <QStringList>

// Deletes the passwords of `accounts` of a service; `done` is told the first error once all were tried. Main thread.
void forgetSecrets(const QString &service, const QStringList &accounts, SecretStore::Stored done);
