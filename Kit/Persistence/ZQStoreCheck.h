#pragma once

#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"

#include <chrono>
#include <stop_token>

class ZQSQLiteConnection;

// Looks for damage in a store's database. Nothing is written.

// Everything: pages, indexes against their tables, references. Linear in the store. A stop makes the answer incomplete
// and empty, since what a broken-off check reports is not to be relied on.
ZQStoreCheckResult zqCheckStore(ZQSQLiteConnection &connection, const std::stop_token &stop);

// What can be seen within about `patience`: rows from all over every table, then the tables one after another; a store
// of at most `wholeBytes` is checked whole. Complete only then.
ZQStoreCheckResult zqCheckStoreQuickly(ZQSQLiteConnection &connection,
                                       std::chrono::milliseconds patience = std::chrono::milliseconds(1000),
                                       qint64 wholeBytes = qint64(24) * 1024 * 1024);

// The first line of what was found as a warning, which says enough for a person; the others for who looks closer.
void zqLogDamage(const QStringList &problems);
