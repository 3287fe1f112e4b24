#pragma once

#include <QString>

// What it costs to bring live folders in step. Each prints lines "NAME VALUE", and answers false when something failed.

// A tree that is as it was. Its library stays beside it, since making it takes minutes.
bool measureResync(const QString &folder);
// The first run over ten thousand small pictures, and the import of the same; the pictures are made in the folder.
bool measureMirror(const QString &folder);
