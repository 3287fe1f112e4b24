#pragma once

#include "Classes/Interface/WindowContext.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"

// A scratch library with the fixed sidebar and what the parts of a window share on it.
class WindowFixture : public BrowsingFixture
{
protected:
    WindowContext window{editing, fetcher};
};
