#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QList>
#include <QString>

#include <optional>

class ZQManagedObjectContext;

// Which directories can be live folders. The context's thread.
namespace LiveFolderPlaces {

// Why a directory is refused, localized, with what to do about it; empty: it can be one. `path` is absolute and clean.
QString refusal(const QString &path, const QString &libraryBundle);
// The live folder that shows the directory already; nothing for none.
std::optional<ZQObjectID> folderThatShows(const QString &path, ZQManagedObjectContext &context);

} // namespace LiveFolderPlaces
