#pragma once

#include <QString>
#include <QVariantMap>

// What one file gave. `fileData` holds attribute values of the item to be, by attribute name, and besides "itemClass"
// and "tags".
struct ImportedFile
{
    QVariantMap fileData; // empty: nothing came of the file
    QString sourcePath;   // what was asked for
    QString filePath;     // where the item's file is
    // What is to be removed once the item is saved, and when it had last been written (milliseconds since 1970 UTC).
    // Empty: nothing, the file was copied.
    QString movedPath;
    qint64 movedModification = 0;
};
