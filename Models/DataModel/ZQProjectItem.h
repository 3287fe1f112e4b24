#pragma once

#include "Models/DataModel/_ZQProjectItem.h"

// The membership of a library item in a project, with its position there.
class ZQProjectItem : public _ZQProjectItem
{
};
