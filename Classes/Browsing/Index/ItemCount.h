#pragma once

#include <QString>

// "1 item" or "1,024 items". Any thread.
QString zqItemCount(qint64 count);
