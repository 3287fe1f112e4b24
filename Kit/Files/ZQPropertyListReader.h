#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QDateTime>
#include <QVariant>

#include <optional>

// The two readers behind `ZQPropertyList::fromData`. They trust nothing: lists come out of files' attributes and of
// strangers' documents. Each answers nothing and says why in `problem`.
namespace ZQPropertyListReader {

constexpr int deepest = 128;            // lists and maps within each other
constexpr qint64 mostValues = 1000000;  // counted as if shared ones were written out
constexpr qsizetype largest = 64 << 20; // bytes

std::optional<QVariant> binary(const QByteArray &data, QString *problem);
std::optional<QVariant> xml(const QByteArray &data, QString *problem);

// 2001-01-01 00:00 UTC in seconds since 1970; the zero of a binary list's dates.
constexpr qint64 epoch = 978307200;

} // namespace ZQPropertyListReader
