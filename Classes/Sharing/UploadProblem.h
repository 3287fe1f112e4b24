#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Network/ZQHTTPRequest.h"

#include <QString>

// What the person is told, word for word, when an upload to a service of their own choice fails. Any thread.
namespace UploadProblem {

inline const QString errorDomain = QStringLiteral("CloudUploadErrorDomain");

ZQError with(const QString &description, const QString &whatToDo = {});
// Of a request that failed. A missing connection stays the network's error, which is told in words of its own.
ZQError of(const ZQHTTPResponse &response, const QString &whatToDo = {});
ZQError of(const ZQError &error);

} // namespace UploadProblem
