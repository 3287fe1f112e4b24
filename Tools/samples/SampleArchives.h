#pragma once

#include <QByteArray>
#include <QList>

// Archives of any content, sound or hostile, byte by byte.
namespace SampleArchives {

struct Entry
{
    enum class Kind { File, Folder, Link, Pipe };

    QByteArray name;     // as it is to be written, in whatever encoding
    QByteArray contents; // of a link: what it leads to
    Kind kind = Kind::File;
    bool isEncrypted = false; // says so; the contents are no less readable
    bool saysUTF8 = false;    // zip only
};

QByteArray zipFile(const QList<Entry> &entries);
// Uncompressed.
QByteArray rarFile(const QList<Entry> &entries); // of version 4
QByteArray rar5File(const QList<Entry> &entries);

} // namespace SampleArchives
