#pragma once

#include "Classes/Command/CommandContext.h"
#include "Models/DataModel/ZQModelFetch.h"

#include <QHash>
#include <QJsonArray>

#include <functional>

class ZQLibraryBaseItem;

QString zqListedName(const ZQLibraryBaseItem &item); // title and extension

// Prints items: a line each with bundleID and name, or an array of objects where JSON was asked for. Some at a time, so
// that many take no more memory than their text; in the process of a window its loop runs in between. False, with a
// message, when nobody waits for it any more.
bool zqPrintItems(const QList<ZQObjectID> &items, CommandContext &context);
// The same, each with how far it is from what was asked for: a last column, or "distance".
bool zqPrintItems(const QList<ZQObjectID> &items, const QHash<ZQObjectID, int> &distances, CommandContext &context);

// The same of a list of anything: `count` of it, so many at a time from `first` on, each part as text, or as
// `zqJSONElements` has it. `partAt` holds no object when it returns.
bool zqPrintInParts(qsizetype count, qsizetype atATime, CommandContext &context,
                    const std::function<QByteArray(qsizetype first)> &partAt);
// The elements alone, as they stand in the text of a whole array; empty for none.
QByteArray zqJSONElements(const QJsonArray &array);
