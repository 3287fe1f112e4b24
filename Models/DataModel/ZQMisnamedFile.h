#pragma once

#include "Kit/Foundation/ZQError.h"

class ZQLibraryBaseItem;

// A managed item whose title is not what its file is called is one without a file, although it lies in the item's
// directory. On the thread of the item's context.

// The path of the one file there that can only be this item's; empty when its file is in its place, or when none or
// several could be it.
QString zqMisnamedFileOf(const ZQLibraryBaseItem &item);

// Gives the file the item's title as its name, and the item a title that can be one. Never over another file. The
// caller saves; where that fails the file is found as misnamed again.
bool zqNameFileAfterItem(ZQLibraryBaseItem &item, ZQError *error);
