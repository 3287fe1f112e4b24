#include "Classes/LiveFolders/LiveFolderNames.h"

#include "Classes/Import/ImportKind.h"

#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QString>

#include <algorithm>
#include <array>

namespace {

constexpr std::array<std::string_view, 5> unfinishedEndings = {".part", ".crdownload", ".tmp", ".filepart", ".partial"};

// Directories that stand for one document or program and are no import's.
constexpr std::array<std::string_view, 12> packages = {"app",       "bundle",     "framework",     "plugin",
                                                       "kext",      "pkg",        "rtfd",          "lrdata",
                                                       "ztlibrary", "zttemplate", "ztlibraryitem", "photoslibrary"};

char lowered(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? char(letter - 'A' + 'a') : letter;
}

bool endsWithAnyCase(std::string_view name, std::string_view ending)
{
    return name.size() >= ending.size() &&
           std::equal(ending.begin(), ending.end(), name.end() - std::ptrdiff_t(ending.size()),
                      [](char a, char b) { return a == lowered(b); });
}

QByteArray extensionOf(std::string_view name)
{
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) {
        return {};
    }
    QByteArray extension(name.data() + dot + 1, qsizetype(name.size() - dot - 1));
    std::transform(extension.begin(), extension.end(), extension.begin(), lowered);
    return extension;
}

// The table is walked once for each ending, and not once for each file.
ImportKind::Takes takenAs(const QByteArray &extension)
{
    thread_local QHash<QByteArray, ImportKind::Takes> known;
    if (const auto answer = known.constFind(extension); answer != known.constEnd()) {
        return *answer;
    }
    constexpr qsizetype mostKnown = 4096; // names are anybody's
    if (known.size() >= mostKnown) {
        known.clear();
    }
    const QString name = QStringLiteral("file.") + QString::fromUtf8(extension);
    const ImportKind *const kind = importKindForPath(name);
    const bool isTaken = kind && kind->importer != Importer::Archive;
    return *known.insert(extension, isTaken ? kind->takes : ImportKind::Takes::Nothing);
}

} // namespace

bool LiveFolderNames::isLeftAlone(std::string_view name)
{
    if (name.empty() || name.front() == '.' || name.back() == '~' || name.starts_with("~$")) {
        return true;
    }
    return std::any_of(unfinishedEndings.begin(), unfinishedEndings.end(),
                       [name](std::string_view ending) { return endsWithAnyCase(name, ending); });
}

bool LiveFolderNames::isText(std::string_view name)
{
    if (std::all_of(name.begin(), name.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; })) {
        return true;
    }
    const QByteArray bytes(name.data(), qsizetype(name.size()));
    return QFile::encodeName(QFile::decodeName(bytes)) == bytes;
}

EntryKind LiveFolderNames::kindOfFile(std::string_view name)
{
    const QByteArray extension = extensionOf(name);
    return !extension.isEmpty() && takenAs(extension) == ImportKind::Takes::File ? EntryKind::File : EntryKind::Nothing;
}

EntryKind LiveFolderNames::kindOfDirectory(std::string_view name)
{
    const QByteArray extension = extensionOf(name);
    if (extension.isEmpty()) {
        return EntryKind::Folder;
    }
    const std::string_view text(extension.constData(), std::size_t(extension.size()));
    if (std::find(packages.begin(), packages.end(), text) != packages.end()) {
        return EntryKind::Nothing;
    }
    return takenAs(extension) == ImportKind::Takes::Package ? EntryKind::Package : EntryKind::Folder;
}
