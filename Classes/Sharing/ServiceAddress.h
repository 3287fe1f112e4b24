#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>
#include <QUrl>

#include <optional>

// Where services are found. Files and passwords go there, so that an address is refused unless it is encrypted, or of
// this machine or its network. Any thread.
namespace ServiceAddress {

inline const QString errorDomain = QStringLiteral("zelto.sharing.address");

// "example.org", "example.org:8443" or a whole address; https where no scheme is named. Without a login, a query and a
// fragment, and without a slash at its end. Nothing, with an error that says what is wrong.
std::optional<QUrl> from(const QString &text, ZQError *error = nullptr);
// What the person set under `key` of the user defaults, else `usual`.
std::optional<QUrl> ofDefault(const QString &key, const QString &usual, ZQError *error = nullptr);
// An error unless `url` is https, or http within this machine and its network.
ZQError refusalOf(const QUrl &url);
// `base` with `path` behind it, which begins with a slash and is plain text: each of its parts is escaped.
QUrl below(const QUrl &base, const QString &path);
// A link that a service gave: http or https, with a host, of a sensible length. Empty: it is none.
QString link(const QString &given);

} // namespace ServiceAddress
