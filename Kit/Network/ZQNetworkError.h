#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

#include <chrono>
#include <optional>

// What can go wrong with a request, as the codes of the domain below. Each error has a sentence for the person that
// names the host, and what to do where there is something to do.
enum class ZQNetworkErrorCode {
    Cancelled = -999,
    BadAddress = -1000, // no http or https address, or none at all
    TimedOut = -1001,   // connecting, without a byte for too long, or as a whole
    HostNotFound = -1003,
    CannotConnect = -1004,
    ConnectionLost = -1005, // fewer bytes came than were stated
    TooManyRedirects = -1007,
    Offline = -1009,         // this machine has no connection at all
    RedirectRefused = -1010, // to where the request must not go, as from https to http
    BadResponse = -1011,     // the server said no: "status" in `userInfo`; or it does not speak the protocol
    NotAllowed = -1022,      // the address is one that the request must not go to
    TooLarge = -1103,
    UnwantedType = -1015,
    Untrusted = -1200,   // the encryption, or who vouches for the server
    CannotRead = -3001,  // what was to be sent
    CannotWrite = -3003, // the destination; the reason of the system is in it
};

inline const QString zqNetworkErrorDomain = QStringLiteral("zelto.network");
inline const QString zqNetworkErrorStatusKey = QStringLiteral("status");
// Of an answer that says no for the moment: after how many seconds it may be asked again.
inline const QString zqNetworkErrorRetryAfterKey = QStringLiteral("retryAfter");

ZQError zqNetworkError(ZQNetworkErrorCode code, const QString &description, const QString &whatToDo = {});
// What a status from 400 on says, in words: "The server answered 404 (not found)."
ZQError zqNetworkErrorForStatus(int status, const QString &host,
                                std::optional<std::chrono::seconds> retryAfter = std::nullopt);
bool zqIsNetworkError(const ZQError &error, ZQNetworkErrorCode code);
// Whether this machine has any connection beside the one to itself.
bool zqIsOnline();
