#pragma once

#include "Kit/Persistence/ZQManagedObjectModel.h"

#include <QList>

class ZQSQLiteConnection;

// The indexes of a store and what the planner knows of them. Neither is part of a row's form: a store works without
// them, only slower, so that a compatible model may want others than the store has. Our own are told by their names;
// one whose definition changes gets another name.

struct ZQStoreIndex
{
    QString name;
    QString sql; // as the database keeps it
};

// Every index that the model asks for: of entity codes, to-one relationships, indexed attributes and join tables, and
// those it declares. A plain one is left out where a declared one begins with its column and holds the same rows.
QList<ZQStoreIndex> zqIndexesOfModel(const ZQManagedObjectModel &model);
bool zqCreateIndexes(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model); // in a store without any

// Whether the store has the model's indexes and no others of ours; true when that cannot be read.
bool zqHasIndexes(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model);
// Makes what is missing, then removes what is not asked for any more. Each step is a transaction of its own: one that
// is cut off goes on at the next call, and so do the statistics. Linear in the store, seconds for a million rows; on
// the disk where it does not fit in the cache. Not within a transaction. False after an error, which the connection
// knows.
bool zqUpdateIndexes(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model);

// Has the planner look at a sample of each index: milliseconds at any size. Not within a transaction. False after an
// error.
bool zqGatherStatistics(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model); // in any case
bool zqForgetStatistics(ZQSQLiteConnection &connection); // the next `zqUpdateStatistics` takes them
// When it has not yet, or as many rows were added since as make it a multiple.
bool zqUpdateStatistics(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model);
