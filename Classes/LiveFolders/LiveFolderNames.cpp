#include "Classes/LiveFolders/LiveFolderNames.h"

#include "Classes/Import/ImportKind.h"

#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QString>

#include <algorithm>
#include <array>
#include <string>

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

// As it is written; empty for none.
std::string_view extensionOf(std::string_view name)
{
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? std::string_view() : name.substr(dot + 1);
}

QByteArray inLowerCase(std::string_view text)
{
    QByteArray lower(text.data(), qsizetype(text.size()));
    std::transform(lower.begin(), lower.end(), lower.begin(), lowered);
    return lower;
}

// The table is walked once for each ending, and not once for each file.
ImportKind::Takes takenAs(std::string_view extension)
{
    thread_local QHash<QByteArray, ImportKind::Takes> known;
    thread_local std::string last; // most files of a folder end alike
    thread_local ImportKind::Takes lastAnswer = ImportKind::Takes::Nothing;
    if (extension == last) {
        return lastAnswer;
    }
    last = extension;
    const QByteArray lower = inLowerCase(extension);
    if (const auto answer = known.constFind(lower); answer != known.constEnd()) {
        return lastAnswer = *answer;
    }
    constexpr qsizetype mostKnown = 4096; // names are anybody's
    if (known.size() >= mostKnown) {
        known.clear();
    }
    // What is an item already stays one, also when the person wants no more of its kind.
    const ImportKind *const kind =
        importKindForPath(QStringLiteral("file.") + QString::fromUtf8(lower), ModernImages::Always);
    const bool isTaken = kind && kind->importer != Importer::Archive;
    return lastAnswer = *known.insert(lower, isTaken ? kind->takes : ImportKind::Takes::Nothing);
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
    const std::string_view extension = extensionOf(name);
    const ImportKind::Takes taken = extension.empty() ? ImportKind::Takes::Nothing : takenAs(extension);
    const bool isTaken = taken == ImportKind::Takes::File || taken == ImportKind::Takes::FileOrPackage;
    return isTaken ? EntryKind::File : EntryKind::Nothing;
}

EntryKind LiveFolderNames::kindOfDirectory(std::string_view name)
{
    const std::string_view extension = extensionOf(name);
    if (extension.empty()) {
        return EntryKind::Folder;
    }
    if (std::find(packages.begin(), packages.end(), inLowerCase(extension).toStdString()) != packages.end()) {
        return EntryKind::Nothing;
    }
    const ImportKind::Takes taken = takenAs(extension);
    const bool isPackage = taken == ImportKind::Takes::Package || taken == ImportKind::Takes::FileOrPackage;
    return isPackage ? EntryKind::Package : EntryKind::Folder;
}
