#pragma once

#include <QString>

// A text as one line in one form, so that two of them can be compared: without line breaks and tabs, composed. Upper
// and lower case stay apart. Any thread.
QString zqPlainLine(const QString &text);
