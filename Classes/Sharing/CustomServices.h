#pragma once

#include "Classes/Sharing/SecretStore.h"
#include "Classes/Sharing/UploadDescription.h"

#include <QHash>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

// The services that the person imported descriptions of, in the order in which they did (user default
// `listKey`: their texts). Secrets lie in the secret service, each for its service and server. Main
// thread.
namespace CustomServices {

inline const QString serviceOfSecrets = QStringLiteral("ZeltoUploadService");
inline const QString listKey = QStringLiteral("CustomUploadServices");
inline constexpr qsizetype most = 50;
using Done = std::function<void(const ZQError &error)>; // null: done

QList<UploadDescription> all();
std::optional<UploadDescription> named(const QString &name);

// What stands in a file, to be shown (`destination`, `secrets`) before it is added. Nothing, with an error, for what is
// no description.
std::optional<UploadDescription> read(const QString &path, ZQError *error = nullptr);
// Takes the place of the one of that name, whose secrets are forgotten. Refused while a secret has no value, or one
// that cannot be sent.
void add(const UploadDescription &description, const QHash<QString, ZQSecret> &secrets, Done done);
// Forgets its secrets, and then the service, which stays listed while the keyring is locked.
void remove(const QString &name, const Done &done);

// The values of all secrets of a description; what is missing is an error that says what to do.
void secretsOf(const UploadDescription &description,
               std::function<void(const QHash<QString, ZQSecret> &secrets, const ZQError &error)> told);
bool hasSecrets(const UploadDescription &description);

} // namespace CustomServices
