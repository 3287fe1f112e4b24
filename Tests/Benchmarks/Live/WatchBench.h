#pragma once

#include <QString>

// Each prints figures as "name value", a line each, and answers false when what it does cannot be done. They need a
// QCoreApplication.

// How long it takes until all folders below `root` are watched, how long bare calls of the system take for the same,
// and the memory that the watcher adds for a folder.
bool measureWatches(const QString &root);
// How long it takes until a file in `root` is told that was closed, in the middle and at most.
bool measureLatency(const QString &root);
// 10 000 changes below `root`, by another process: for how long the main thread was not free at most, how many
// announcements were made, and how long after the last change the last one was.
bool measureBurst(const QString &root);
