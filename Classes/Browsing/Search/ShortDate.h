#pragma once

#include <QDateTime>
#include <QString>

// "Today, 14:00", "Yesterday, 9:12" or "12 Mar 2026", in local time; empty for an invalid one. Any thread.
QString zqShortDate(const QDateTime &date);
