#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// The same tags, comment and rating under the names that file managers of this desktop know: `user.xdg.tags` (separated
// by commas), `user.xdg.comment` and `user.baloo.rating` (0 to 10). Kept while the preference "MirrorTagsToDesktop" is
// on. Any thread.
//
// These attributes carry no date, so a record of what was last mirrored lies beside them: a digest for each. A mirror
// that is neither what the file's own values give nor what was last mirrored was changed by another program since, and
// wins; a missing one that was mirrored means that its value was taken away. A mirror that found no room, or was never
// written, is not in the record, and its absence says nothing. A foreign mirror that nothing of ours preceded is added
// to the file's tags, and gives comment or rating to a file that has none.
//
// A tag that holds a comma, or begins or ends with a blank, cannot be written there: it is left out, and stays with the
// file whatever becomes of the others. Spellings that differ only in case or composition are the same tag; ours stays.
class DesktopMirror
{
public:
    enum class Kind { Tags, Comment, Rating };

    static inline const QString preferenceKey = QStringLiteral("MirrorTagsToDesktop");
    static inline const QString tagsName = QStringLiteral("xdg.tags");
    static inline const QString commentName = QStringLiteral("xdg.comment");
    static inline const QString ratingName = QStringLiteral("baloo.rating");
    static inline const QString recordName = QStringLiteral("org.zelto.mirrored");

    static bool isOn();

    // What another program wrote, where that is newer than the file's own.
    struct Newer
    {
        std::optional<QStringList> tags;
        std::optional<QString> comment;
        std::optional<double> rating;
        bool isEmpty() const { return !tags && !comment && !rating; }
    };
    static Newer newer(const QString &path);
    static bool isAmong(const QStringList &names); // whether a file with these attributes was mirrored by anybody

    // After the file's own value was written. A mirror that cannot be written is withdrawn.
    static void write(Kind kind, const QByteArray &text, const QString &path);

    // The record, and the mirrors that hold what it says: what may be removed without losing another program's words.
    static QStringList attributesOfOurs(const QString &path);

    static QByteArray textForTags(const QStringList &tags);
    static QByteArray textForRating(double rating); // empty: none
    static QStringList tagsOfText(const QByteArray &text);
    static std::optional<double> ratingOfText(const QByteArray &text); // nothing: no rating's text
};
