#pragma once

#include "Models/DataModel/_ZQLibraryBrush.h"

// A set of brushes.
class ZQLibraryBrush : public _ZQLibraryBrush
{
};
