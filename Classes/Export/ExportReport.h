#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

struct ExportRequest;
struct ExportResult;

// What a person is told of an export. Any thread: it is said on the main one.
namespace ExportReport {

void tellOfMissing(qsizetype count); // nothing for none

// At the end, once: an alert when it was stopped, else a notification when something failed or came only in part.
void tell(const ExportRequest &request, const ExportResult &result);
// The alert's text: how many of how many were written where, the first of those that were not, and why. For the command
// line, too.
ZQError stopped(const ExportRequest &request, const ExportResult &result);

// Why the folder cannot be written into at this moment; null when it can.
QString refusalOfFolder(const QString &folder);
// The library is no place for files that it knows nothing of.
QString refusalWithinLibrary(const QString &folder, const QString &library);
// The same after an error with a file in it, which may as well have been the file's own.
QString refusalAfterError(const QString &folder, const ZQError &error);

} // namespace ExportReport
