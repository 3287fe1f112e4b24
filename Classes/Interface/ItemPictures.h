#pragma once

#include "Kit/Widgets/ZQThumbnailLoader.h"

#include <QImage>

class ZQLibraryBaseItem;

// The pictures of library items, as thumbnail loaders ask for them.
namespace ItemPictures {

ZQThumbnailRequest thumbnailOf(const ZQLibraryBaseItem &item);    // on the thread of its context
QImage pictureFor(const ZQThumbnailRequest &request, int pixels); // any thread

} // namespace ItemPictures
