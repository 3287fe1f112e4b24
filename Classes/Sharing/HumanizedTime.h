#pragma once

#include <QDateTime>
#include <QString>

#include <functional>

// How long ago, or how long from now, `date` is: "2 days 3 hours ago". Localized; of two values the smaller one is left
// out where it is none, and years stand alone.
QString stringWithHumanizedTimeDifference(const QDateTime &date,
                                          const QDateTime &now = QDateTime::currentDateTimeUtc());

// The same for a number of seconds from now, negative in the past, with the words that `localized` gives for their
// keys ("AgoKey", "DaysKey").
QString zqHumanizedTimeDifference(double seconds, const std::function<QString(const char *key)> &localized);
