#pragma once

#include "Classes/Command/CommandContext.h"
#include "Models/DataModel/ZQModelFetch.h"

// Prints items: a line each with bundleID and name, or an array of objects where JSON was asked for.
void zqPrintItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, CommandContext &context);
