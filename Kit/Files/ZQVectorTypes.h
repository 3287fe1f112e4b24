#pragma once

#include <QString>

// The formats of drawings, sharp at any size, by file name extension in any case. Any thread.
namespace ZQVectorTypes {

bool contains(const QString &extension);
bool havePages(const QString &extension); // with a size on paper

} // namespace ZQVectorTypes
