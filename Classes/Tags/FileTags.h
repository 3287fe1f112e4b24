#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

// The tags, the comment and the rating of one file as one side has them.
struct FileTags
{
    QStringList tags;
    QString comment;
    int rating = 0; // 0 to 5 stars
    // Those of `tags` that the library gave by itself. A program that replaces a file's tags does not know of them, so
    // that a file without them took none away.
    QStringList measured = {};
    bool isEmpty() const { return tags.isEmpty() && comment.isEmpty() && rating == 0; }

    // Two comments for one file that both count: `second` below `first`, unless one of them says the other already.
    static QString joinedComments(const QString &first, const QString &second);
};

// What the library held when it last wrote to a file, kept in an attribute of that file as digests. Without it nobody
// could tell a tag that another program added from one that the library took away. Values; any thread.
//
// It is written after the values, and only when all of them reached the file. What the file holds beyond it, or lacks
// of it, is another program's change that the library has not confirmed yet, also after a crash.
struct SeenFileTags
{
    static const QString attributeName;

    QSet<QByteArray> tags;
    QByteArray comment; // empty: none
    int rating = 0;     // -1: unknown

    static SeenFileTags of(const FileTags &values);
    static std::optional<SeenFileTags> fromText(const QByteArray &text); // nothing: no such record
    QByteArray text() const;
    bool hasTag(const QString &tag) const;
    bool hasComment(const QString &text) const;

    static std::optional<SeenFileTags> ofFile(const QString &path, ZQError *error = nullptr);
    // A record that finds no room is removed: an old one would say wrong things.
    enum class Empty { IsLeftOut, IsWritten }; // a record of nothing, where there is none yet
    static void write(const SeenFileTags &seen, const QString &path, Empty empty = Empty::IsLeftOut);

    bool operator==(const SeenFileTags &) const = default;
};

// What another program's changes of a file mean for the library.
struct FileTagsChange
{
    QStringList added;
    QStringList removed; // as the library spells them
    std::optional<QString> comment;
    std::optional<int> rating;
    FileTags from; // what the library held when they were found
    bool isEmpty() const { return added.isEmpty() && removed.isEmpty() && !comment && !rating; }
};

// A file and the library, brought together. Additions and removals of both sides count. Where both gave another
// comment, the library's comes first and the file's below it; where both gave another rating, the library's stays.
// Tags are compared as the library's names of tags are (`zqPlainLine`): Logo and logo are two. A file holds only one of
// such a pair, so the library's other one counts as there while it does.
struct FileTagsMerge
{
    // When nothing is known of what was last seen: both sides' values stay, or the file's take the place of the
    // library's.
    enum class Unknown { KeepsBoth, TakesFile };

    FileTags merged;
    FileTagsChange change;           // from the library's values to `merged`
    std::optional<QStringList> tags; // of the file; nothing: it says nothing of them
    std::optional<QString> comment;
    std::optional<double> rating;
    bool isRecorded = false; // the file holds `merged`, and the record says so

    // An empty item that takes the file's values takes all of them: it may be made anew of a file with a record.
    // Nothing, with an error, when the file's values cannot be read, or it is replaced again and again while they are:
    // that never counts as having none. `ignoresSeen`
    // treats a record as not there, which a copy brought along from elsewhere.
    static std::optional<FileTagsMerge> ofFile(const QString &path, const FileTags &library, Unknown unknown,
                                               bool ignoresSeen, ZQError *error);
    // What of `merged` the file can hold; of tags that differ only in case the one that is there, else the first.
    QStringList tagsForFile() const;
};
