#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

// What a person is told of an error that a change of their file ran into: why, and what to do about it. One or two
// sentences, localized. What it is not known for is said as the system says it.
QString zqAdviceForFileError(const ZQError &error);

// An error that says itself what to do: its sentence is the advice. The code is one of POSIX, the domain is not.
ZQError zqExplainedFileError(int code, const QString &sentence);

// Whether the next file there runs into it as well.
bool zqIsErrorOfPlace(const ZQError &error);
