#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

// Extended attributes of files. Names are given without the `user.` name space, which is added here and nowhere else.
// Links are never followed. Errors are of the POSIX domain; a file system without attributes answers ENOTSUP. Any
// thread.
namespace ZQExtendedAttributes {

// Nothing, with no error, when the attribute is not there.
std::optional<QByteArray> get(const QString &path, const QString &name, ZQError *error = nullptr);
bool set(const QString &path, const QString &name, const QByteArray &value, ZQError *error = nullptr);
bool remove(const QString &path, const QString &name, ZQError *error = nullptr); // true when it was not there
QStringList list(const QString &path, ZQError *error = nullptr);

} // namespace ZQExtendedAttributes
