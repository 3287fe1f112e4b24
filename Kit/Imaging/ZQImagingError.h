#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

// What can go wrong with a picture. The numbers cross processes.
enum class ZQImagingErrorCode {
    CannotRead = 1,
    Empty,
    UnknownFormat,
    Damaged,
    TooBig,
    NoSuchFrame,
    ToolFailed,
    RendererStopped,
    TookTooLong,
    TooMuchMemory,
    NoRenderer,
    Cancelled
};

// An error of the domain "zelto.imaging"; `reason` is a text a person understands.
ZQError zqImagingError(ZQImagingErrorCode code, const QString &path, const QString &reason);
// The same of a picture that was to be written in another format.
ZQError zqExportError(ZQImagingErrorCode code, const QString &path, const QString &reason);
