#pragma once

#include <QString>
#include <QStringList>

// What the kinds of files are called, by their extensions. Any thread.
class KindNames
{
public:
    static QString nameOfExtension(const QString &extension); // "PNG image"; the extension itself when that is unknown
    // The extensions, in order, of the kinds whose name contains `text`, or whose family ("image", "font", "video") it
    // is. What is no known kind may be an extension, which the answer always holds.
    static QStringList extensionsOfKind(const QString &text);
};
