#pragma once

#include "Classes/Import/ImportReport.h"

#include <QList>
#include <QStringList>

// What a folder directly holds for an import, each list in the order of a file browser; hidden entries are left out.
// Links are not followed. Any thread; reads the folder once and opens no file in it.
struct DirectoryContent
{
    QStringList subfolders = {};
    QStringList archives = {};
    QStringList files = {};
    QStringList refused = {};        // of kinds that cannot be imported
    QList<DroppedFile> dropped = {}; // what cannot be read at all, with why; the folder itself may be among it

    static DirectoryContent ofDirectory(const QString &directory);
};
