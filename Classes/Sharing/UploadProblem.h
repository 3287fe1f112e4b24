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
// Whether its words were made here, and not by the service's own rules.
bool isOurs(const ZQError &error);
// What can be done about an error that keeps its domain, and so is told in words that say nothing of it: these follow.
void advise(ZQError &error, const QString &advice);
QString adviceOf(const ZQError &error); // empty: none

} // namespace UploadProblem
