#pragma once

#include "Kit/Persistence/ZQManagedObjectModel.h"

#include <memory>

// The library's model versions, compiled in. Read once, shared afterwards; any thread.

// The version this application writes. Never null.
std::shared_ptr<const ZQManagedObjectModel> zqCurrentModel();
// An older (or the current) version by identifier, as "Version5"; null for an unknown one.
std::shared_ptr<const ZQManagedObjectModel> zqModelVersion(const QString &identifier);
