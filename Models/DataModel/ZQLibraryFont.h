#pragma once

#include "Models/DataModel/_ZQLibraryFont.h"

// A font.
class ZQLibraryFont : public _ZQLibraryFont
{
};
