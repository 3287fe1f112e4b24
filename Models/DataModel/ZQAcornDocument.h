#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Imaging/ZQBitmap.h"

#include <QByteArray>
#include <QString>

#include <optional>

// The flattened picture that an Acorn document, an SQLite database, holds of itself. Any thread; the document is not
// changed.

// The encoded picture as stored; nothing when the document cannot be read or has none.
std::optional<QByteArray> zqAcornCompositeData(const QString &path);
// The same, decoded.
ZQBitmap zqAcornCompositeImage(const QString &path, ZQError *error = nullptr);
