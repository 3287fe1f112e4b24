#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QVariant>

#include <chrono>
#include <optional>

// A reference of a keyed archive to one of its objects (see `ZQKeyedArchive`); of the binary form only.
struct ZQPropertyListUID
{
    quint64 value = 0;
    friend bool operator==(const ZQPropertyListUID &, const ZQPropertyListUID &) = default;
};

// Property lists as variants: QString, qlonglong, double, bool, QDateTime (UTC), QByteArray, QVariantList, QVariantMap,
// ZQPropertyListUID.
// A `std::chrono::system_clock::time_point` is written as a date with microseconds, which QDateTime does not have.
// Reads the binary and the XML form (the format of property list files on another desktop); bounded in depth. Any
// thread.
namespace ZQPropertyList {

std::optional<QVariant> fromData(const QByteArray &data, ZQError *error = nullptr);
std::optional<QByteArray> toBinary(const QVariant &value, ZQError *error = nullptr); // format 1.0 binary
std::optional<QByteArray> toXML(const QVariant &value, ZQError *error = nullptr);

} // namespace ZQPropertyList

Q_DECLARE_METATYPE(ZQPropertyListUID)
Q_DECLARE_METATYPE(std::chrono::system_clock::time_point)
