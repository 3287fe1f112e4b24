#pragma once

#include "Kit/Network/ZQHTTPRequest.h"

#include <QString>

// The folder that an upload made for its file alone, at a service, and left there when it was cancelled or failed. Any
// thread.
namespace AbandonedFolder {

// Whether the name can be that of such a folder, which is an identifier made for the upload: whatever else it may be,
// an empty one, or one that leads elsewhere, is never asked to be removed.
bool isOne(const QString &name);
// Sends the request that removes it, and waits for nobody: it may fail, and ends within seconds.
void remove(ZQHTTPRequest request);

} // namespace AbandonedFolder
