#pragma once

#include <QByteArray>

// Whether `signature` (64 bytes) is that of `data` by the Ed25519 key whose public half is `publicKey` (32 bytes). What
// has another length is no signature. Any thread.
bool zqIsSignedBy(const QByteArray &publicKey, const QByteArray &data, const QByteArray &signature);
