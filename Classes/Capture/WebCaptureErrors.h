#pragma once

#include "Kit/Foundation/ZQError.h"

// Why a page could not be captured; each text says what to do.
namespace WebCaptureErrors {

inline const QString domain = QStringLiteral("zelto.webcapture");
enum Code {
    NoBrowser = 1,
    BadAddress,
    NotReached,
    NoPage, // a download, or nothing that is shown
    BrowserEnded,
    TookTooLong,
    Cancelled,
    CannotWrite,
    LeadsInside, // into this computer or its network, where who asked has no business
};

inline ZQError with(Code code, const QString &description, const QString &reason = {})
{
    return ZQError::with(domain, code, description, reason);
}

} // namespace WebCaptureErrors
