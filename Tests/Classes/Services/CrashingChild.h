#pragma once

#include <QString>

// This test program once more, as a process that ends by a fault.
namespace CrashingChild {

inline const QString planted = QStringLiteral("Brandfisch"); // a name in its memory, its log and its exception

int crash(const char *folder, const char *how); // does not return where `how` is a fault

} // namespace CrashingChild
