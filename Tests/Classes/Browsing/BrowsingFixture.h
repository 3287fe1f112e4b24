#pragma once

#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Tests/Classes/Editing/EditFixture.h"

// A scratch library with the fixed sidebar, and what looks at it.
class BrowsingFixture : public EditFixture
{
protected:
    ContentFetcher fetcher{library.coordinator()};
};
