#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// What a clause of a search asks about.
enum class SearchField {
    Word,
    Title,
    Notes,
    Extension,
    Tag,
    Project,
    Hash,
    Width,
    Height,
    Modified,
    Imported,
    Created,
    Rating,
    Color,
    Like,
    Kind,
    Size,
    Folder,
    Live,
    Untagged,
    NoTag,
    NoProject,
    Duplicates,
    DuplicatesHashes,
};

enum class SearchArgument { None, Text, Pixels, Rating, Date, Color, Kind, Size, Hashes };

// One token of the search language: "#width" and what else it is called. The one table of them. Any thread.
struct SearchToken
{
    SearchField field;
    SearchArgument argument;
    QStringList names;    // the long form first, then the short one, each with its "#"
    const char *hint;     // of the argument, a key of `zqLocalized`
    const char *sentence; // what it finds, a key of `zqLocalized`

    bool compares() const; // needs "<", "=" or ">"
    const QString &name() const { return names.first(); }
    QString shortName() const { return names.value(1); } // empty for none
    QString argumentHint() const;                        // localised; empty without an argument
    QString meaning() const;                             // localised, one line

    static const QList<SearchToken> &all();
    // `name` with its "#", in any case; null for none. One name may mean two tokens, of which one compares.
    static const SearchToken *named(const QString &name, bool hasComparison);
    static const SearchToken &ofField(SearchField field); // not for `Word`
};
