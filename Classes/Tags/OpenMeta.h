#pragma once

#include "Classes/Tags/OpenMetaSchema.h"
#include "Classes/Tags/TagAttributes.h"

// Tags, star rating and other metadata that a file carries in its extended attributes, for every program to see.
//
// Before a file's tags, rating or comment are read, they are brought up to date: tags of the older key that are newer,
// values that got lost with the attributes (`OpenMetaBackup`), and what file managers wrote since (`DesktopMirror`).
// Names, encoding and the plain readers are `AttributeStore`'s, writing is `TagAttributes`'. No state; any thread.
class OpenMeta : public TagAttributes, public OpenMetaSchema
{
public:
    static ZQError addUserTags(const QVariant &tags, const QString &path);
    static ZQError clearUserTags(const QVariant &tags, const QString &path);
    static std::optional<QStringList> getUserTags(const QString &path, ZQError *error = nullptr);
    static QStringList getCommonUserTags(const QStringList &paths, ZQError *error = nullptr);
    // Answers the error of the last file that failed.
    static ZQError setCommonUserTags(const QStringList &paths, const QStringList &originalCommonTags,
                                     const QStringList &replaceWith);

    static double getRating(const QString &path, ZQError *error = nullptr); // 0: none
    // 0 to 5, whatever another program put into a file.
    static int starsForRating(double rating);
    static std::optional<QString> getFinderComment(const QString &path, ZQError *error = nullptr);

    // Tags, comment and rating at once, which costs less than one after the other; nothing for what is missing.
    struct Values
    {
        std::optional<QStringList> tags;
        std::optional<QString> comment;
        std::optional<double> rating;
        ZQError tagsError;
        ZQError commentError;
        ZQError ratingError;
    };
    static Values getValues(const QString &path);
};
