#pragma once

#include <QString>
#include <QStringList>

// What the kinds of files are called, by their extensions. Any thread.
class KindNames
{
public:
    static QString nameOfExtension(const QString &extension); // "PNG image"; the extension itself when that is unknown
    // What a search for a kind calls that of an extension, in lower case: the first word of its name ("tiff"), where
    // that finds other kinds too the name ("jpeg image"), and else the extension itself.
    static QString wordOfExtension(const QString &extension);
    // The extensions, in order, of the kinds whose name contains `text`, or whose family ("image", "font", "video") it
    // is. What is no known kind may be an extension, which the answer always holds.
    static QStringList extensionsOfKind(const QString &text);
};
