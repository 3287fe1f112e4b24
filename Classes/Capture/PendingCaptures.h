#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>
#include <QStringList>

// Captures from when they are on the disk until their import is noted, in the bundle's folder "pending-captures", each
// in a folder of its own: what a process that was killed leaves there, the next one finds. Any thread.
namespace PendingCaptures {

// Where a capture of that name is to be written. Empty with `error`.
QString newPath(const QString &bundle, const QString &name, ZQError *error = nullptr);
// The whole pictures that lie there, the oldest first; empty folders go. Before the first new one.
QStringList left(const QString &bundle);
// One of them, and nothing that lies elsewhere.
void remove(const QString &bundle, const QString &path);

} // namespace PendingCaptures
