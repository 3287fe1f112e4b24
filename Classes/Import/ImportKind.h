#pragma once

#include <QString>
#include <QStringList>

// Which files can be imported, and by what: one table, by the name's extension alone. Formats of today are in it as
// long as the person wants them (the default "ImportModernImages"). Any thread.

enum class Importer : quint8 { Image, QuickLook, Acorn, Sketch, Snap, SVG, PDF, Archive, EPS };

struct ImportKind
{
    enum class Match : quint8 { Type, ConformingType, Extension };
    enum class Takes : quint8 { File, Package, FileOrPackage, Nothing }; // a package: a folder that is one document

    bool takesFiles() const { return takes == Takes::File || takes == Takes::FileOrPackage; }
    bool takesPackages() const { return takes == Takes::Package || takes == Takes::FileOrPackage; }

    const char *name; // the type or the extension
    Match match;
    Takes takes;
    Importer importer;
};

enum class ModernImages : quint8 { AsWanted, Always };

// The row for a name; null for a kind nobody knows here.
const ImportKind *importKindForPath(const QString &path, ModernImages modern = ModernImages::AsWanted);
// Of the files that are taken, in lower case: what a dialogue offers.
QStringList importableExtensions();
bool isArchivePath(const QString &path); // "zip" or "rar"
// A Sketch document that is a single file, as newer versions write it, and no package.
bool isSketchFile(const QString &path);
