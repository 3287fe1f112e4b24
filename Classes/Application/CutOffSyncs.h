#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

// Notes in the bundle that live folders are being read, so that the item directories which a killed process made for
// files that became no items are accounted for. Any thread. Errors are logged: then there is a question about them.
namespace CutOffSyncs {

// Before the first directory is made; `end` takes what it answers, once none is left without its item.
QString begin(const QString &bundle);
void end(const QString &note);
// When the first of those began that did not come to their end before `launch`.
std::optional<QDateTime> since(const QString &bundle, const QDateTime &launch);
// What those before `launch` left was seen to.
void forget(const QString &bundle, const QDateTime &launch);

} // namespace CutOffSyncs
