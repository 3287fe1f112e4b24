#pragma once

#include "Classes/Editing/EditContext.h"

class ContentFetcher;

// What the parts of one window share. Main thread.
struct WindowContext : EditContext
{
    ContentFetcher &fetcher;
};
