#pragma once

#include <QString>
#include <QStringList>

// Which files can be imported, and by what: one table, by the name's extension alone. Any thread.

enum class Importer : quint8 { Image, QuickLook, Acorn, Sketch, Snap, SVG, PDF, Archive, EPS };

struct ImportKind
{
    enum class Match : quint8 { Type, ConformingType, Extension };
    enum class Takes : quint8 { File, Package, Nothing }; // a package is a folder that counts as one document

    const char *name; // the type or the extension
    Match match;
    Takes takes;
    Importer importer;
};

// The row for a name; null for a kind nobody knows here.
const ImportKind *importKindForPath(const QString &path);
// Of the files that are taken, in lower case: what a dialogue offers.
QStringList importableExtensions();
bool isArchivePath(const QString &path); // "zip" or "rar"
// A Sketch document that is a single file, as newer versions write it, and no package.
bool isSketchFile(const QString &path);
