#pragma once

#include "Classes/Import/ImportReport.h"
#include "Kit/Foundation/ZQError.h"

#include <QString>

// How the failures of imports are told. Any thread.

bool isFullDisk(const ZQError &error);
QString fullDiskReason();
// Why a file could not be imported, and what to do about it: a sentence for its line in the report.
QString importReasonForError(const ZQError &error);
// Of what a cancel kept out.
QString cancelledImportReason();
// Why a path can be no item, whatever it is.
DroppedFile unsupportedFile(const QString &path);
void logImportSaveError(const ZQError &error);
// Logged, and shown to the person as soon as the main thread comes to it, if there is an application then.
void presentImportError(const ZQError &error);
