#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QSet>
#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

// The names that exported files get. Any thread.
//
// A name is the title, or what the pattern makes of it, and the extension. Titles are anything a person wrote, so they
// are made safe: what separates folders, and every control character (a line break too), becomes "-"; a dot in front,
// which would hide the file, becomes "_"; spaces around go; nothing is left is "Untitled"; and a name longer than 255
// bytes is cut before its extension. So a name is always one component of a path, and the file lies in the destination.
//
// Another file's name is never taken: a link counts as a file wherever it leads, even nowhere.
namespace ExportNames {

// What a name is made of.
struct Source
{
    QString title;
    QString extension; // of its own file
    bool hasFile = true;
    QSize pixelSize = {}; // of the picture that is written
    QDateTime date = {};
};

struct Names
{
    QStringList paths; // of those with a file: shorter than the sources when files are missing
    qsizetype missing = 0;
};

// For pictures that are converted, that of the type; for those that are not, and types that have none of their own to
// be named with, that of the file.
QString extensionForFormat(std::optional<int> fileFormat, const QString &ownExtension);

// One component without separator, as above; not cut, as its extension is to come.
QString safeTitle(const QString &title);
// The same with its extension: whatever names a file by a title names it by this. Without an extension the title stands
// alone, with no dot behind it.
QString nameForTitle(const QString &title, const QString &extension);

// "{title}", "{index}" (from 1 on), "{width}", "{height}" (pixels), "{date}" (YYYY-MM-DD); other braces stay, as those
// of presets that were made when anything could stand in them. Without a title in it, equal names are numbered like any
// others. Empty: the title.
QString titleForPattern(const QString &pattern, const Source &source, qsizetype index);
// Null, or why this is no pattern, a word in braces that stands for nothing for one, and what to do: localized.
QString problemOfPattern(const QString &pattern);

// A path where no file is: the path itself, else "photo 1.jpg", "photo 2.jpg", …
QString safeNameForFile(const QString &path);
// The same for a path that is not in the list. `number` is the first one tried (0: the path itself), and afterwards the
// one taken: thousands may have one title.
QString safeNameForFile(const QString &path, const QSet<QString> &withinFiles, int &number);

// Each name is made safe against the disk and then against those before it; what that gives is not looked for on the
// disk again (a file "a.png" there and "a 1.png" among those before: "a 1 1.png").
Names filenames(const QList<Source> &sources, const QString &destinationURL, std::optional<int> fileFormat,
                const QString &pattern = {});
// Of one in a folder with nothing in it, which is not looked at.
QString filename(const Source &source, std::optional<int> fileFormat, const QString &pattern, qsizetype index);
inline const QString archive = QStringLiteral("Archive.zip");
QString archiveName(const QString &destinationURL); // "Archive.zip", "Archive 1.zip", …

} // namespace ExportNames
