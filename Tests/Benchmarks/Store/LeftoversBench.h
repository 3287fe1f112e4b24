#pragma once

#include <QString>

// The check for item directories of no item, in the library whose store is `path`: prints the memory it adds, in MB,
// and the longest time that the main thread was not free, in ms. False when something was found or it did not come to
// an end.
bool measureLeftovers(const QString &path);

// Makes a directory for each item of the store, beside it. False after an error.
bool makeItemDirectories(const QString &path);
