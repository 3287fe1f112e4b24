#pragma once

#include "Classes/Editing/EditContext.h"

class ContentFetcher;
class LiveFolderStates;

// What the parts of one window share. Main thread.
struct WindowContext : EditContext
{
    ContentFetcher &fetcher;
    LiveFolderStates *liveFolders = nullptr; // null: nobody keeps live folders in step
};
