#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

#include <functional>

// Names for files that come where another one has theirs. Any thread.

constexpr qsizetype zqLongestName = 255; // bytes, of most file systems

// "Cat.png", "Cat 1.png", "Cat 2.png", … for 0, 1, 2; shortened to so many bytes.
QString zqNumberedName(const QString &name, int number, qsizetype longest = zqLongestName);

// Calls `put` with a path in the folder under that name, numbered from 1 on for as long as it fails with EEXIST: it has
// to refuse a name that is taken. The path it was put at; empty, with its error, when it failed otherwise.
QString zqUnderFreeName(const QString &folder, const QString &name,
                        const std::function<bool(const QString &path, ZQError *error)> &put, ZQError *error = nullptr);
