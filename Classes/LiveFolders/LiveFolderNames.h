#pragma once

#include "Classes/LiveFolders/FolderEntries.h"

#include <string_view>

// What the names of a directory say: which entries a live folder takes, before any of them is looked at. Names are the
// bytes the system sees. Any thread.
namespace LiveFolderNames {

// Hidden, or of a file that some program has not finished, or keeps only while it works.
bool isLeftAlone(std::string_view name);
// Whether a text can stand for the name: one in another encoding than the system's cannot be told from others.
bool isText(std::string_view name);
// File, Package or Nothing for what is no directory.
EntryKind kindOfFile(std::string_view name);
// Folder, Package or Nothing: documents and programs that are directories are nobody's folders.
EntryKind kindOfDirectory(std::string_view name);

} // namespace LiveFolderNames
