#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

#include <functional>

// Names for files: made of any text, and beside others that have theirs. Any thread.

constexpr qsizetype zqLongestName = 255; // bytes, of most file systems

bool zqIsSafeInName(QChar character); // no separator, line break or control character

// What becomes of a name that would hide its file.
enum class ZQLeadingDots : quint8 {
    Marked, // "_hidden": the person who gave it knows it again
    Dropped // "hidden": it is a stranger's
};

// A name for one file made of any text, without spaces around it; "-" stands for each character that is not safe, or
// is one of `alsoUnsafe`. `whenEmpty`: nothing is left. Its length is `zqNumberedName`'s business.
QString zqSafeName(const QString &text, const QString &whenEmpty, ZQLeadingDots dots = ZQLeadingDots::Marked,
                   QStringView alsoUnsafe = {});

// "Cat.png", "Cat 1.png", "Cat 2.png", … for 0, 1, 2; shortened to so many bytes.
QString zqNumberedName(const QString &name, int number, qsizetype longest = zqLongestName);

// Calls `put` with a path in the folder under that name, numbered from 1 on for as long as it fails with EEXIST: it has
// to refuse a name that is taken. The path it was put at; empty, with its error, when it failed otherwise.
QString zqUnderFreeName(const QString &folder, const QString &name,
                        const std::function<bool(const QString &path, ZQError *error)> &put, ZQError *error = nullptr);
