#pragma once

class FileProblems;
class ZQLibraryBaseItem;
class ZQOwnMoves;

// Deletes an item, or restores it, with its file where that lies in a live folder: hidden, and shown again. What
// happened to the file is noted in `moves`. False, with the item and its file as they were, when the file cannot be
// renamed or, for restoring, is not there.
bool zqDeleteItem(ZQLibraryBaseItem &item, ZQOwnMoves &moves, FileProblems &problems);
bool zqRestoreItem(ZQLibraryBaseItem &item, ZQOwnMoves &moves, FileProblems &problems);
