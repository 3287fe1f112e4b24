#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

#include <optional>

// Puts a recovered store in the place of the damaged one. The files involved, beside PATH:
//   PATH.recovered-STAMP   the recovered store, whole and on the disk; from here on the replacement is certain
//   PATH.damaged-STAMP     the damaged store, with its -wal
// A process killed before the first exists leaves the damaged store as it was; killed after, the next call of
// `zqFinishReplacingStore` does the rest. The log of the damaged store is never beside the new one, which would take it
// for its own.

// `recovered` is a closed database file in the folder of `path`. The answer is where the damaged store is kept;
// nothing, with the damaged store untouched, after an error.
std::optional<QString> zqReplaceStore(const QString &path, const QString &recovered, ZQError *error);

// For the start of everything that opens a store: does what a killed process left undone. Cheap when there is nothing.
void zqFinishReplacingStore(const QString &path);

// What a recovery writes on its way, beside PATH: the new store, and a copy of the damaged one to read from. A killed
// recovery leaves them, and nothing is to be had from them.
QString zqUnfinishedStore(const QString &path);
QString zqUnfinishedSource(const QString &path);
// Nobody may be recovering `path`.
void zqRemoveUnfinishedRecovery(const QString &path);

bool zqSyncToDisk(const QString &path); // a file or a folder
