#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

#include <optional>

// Tags, star rating and other metadata that a file carries in its extended attributes, for every program to see.
//
// A metadata key is stored under up to three attribute names (`spotlightKey`, `openmetaKey`, `openmetaTimeKey`), each
// value a binary property list of at most `maximumDataSize` bytes. Writers answer a null error on success. Readers
// answer nothing for what is missing, and fill `error` only when reading failed. Links are never followed. No state;
// any thread.
//
// Tags, comment and rating go to the names of this desktop's file managers as well, and come back from there when
// they are newer (`DesktopMirror`). Where a file system has too little room, what only repeats a value gives way to it
// (`AttributeRoom`); a value is never removed to make room for its successor.
class OpenMeta
{
public:
    static inline const QString errorDomain = QStringLiteral("openmeta");
    static inline const QString errorInfoKey = QStringLiteral("info"); // the text, in `userInfo`
    enum ErrorCode { ParameterError = -1, PropertyListError = -2, TooBigError = -5 };
    static constexpr qsizetype maximumDataSize = 4096;

    static inline const QString userTagsKey = QStringLiteral("kMDItemOMUserTags");
    static inline const QString olderUserTagsKey = QStringLiteral("kOMUserTags");
    static inline const QString userTagTimeKey = QStringLiteral("kMDItemOMUserTagTime");
    static inline const QString starRatingKey = QStringLiteral("kMDItemStarRating");
    static inline const QString finderCommentKey = QStringLiteral("kMDItemFinderComment");
    static inline const QString whereFromsKey = QStringLiteral("kMDItemWhereFroms");

    static QString spotlightKey(const QString &key) { return QStringLiteral("com.apple.metadata:") + key; }
    static QString openmetaKey(const QString &key) { return QStringLiteral("org.openmetainfo:") + key; }
    static QString openmetaTimeKey(const QString &key) { return QStringLiteral("org.openmetainfo.time:") + key; }

    // User tags: an ordered list without duplicates, case and composition ignored; the first spelling is kept,
    // decomposed.
    static ZQError setUserTags(const QVariant &tags, const QString &path);
    static ZQError addUserTags(const QVariant &tags, const QString &path);
    static ZQError clearUserTags(const QVariant &tags, const QString &path);
    static std::optional<QStringList> getUserTags(const QString &path, ZQError *error = nullptr);
    static std::optional<QStringList> getUserTagsNoRestore(const QString &path, ZQError *error = nullptr);
    static QStringList getCommonUserTags(const QStringList &paths, ZQError *error = nullptr);
    // Answers the error of the last file that failed.
    static ZQError setCommonUserTags(const QStringList &paths, const QStringList &originalCommonTags,
                                     const QStringList &replaceWith);

    // 0 < rating <= 5; at most 0 removes it, above 5 is stored as 5.
    static ZQError setRating(double rating, const QString &path);
    static double getRating(const QString &path, ZQError *error = nullptr); // 0: none
    // 0 to 5, whatever another program put into a file.
    static int starsForRating(double rating);

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

    // The item's notes, under their spotlight name only.
    static ZQError setFinderComment(const QString &comment, const QString &path);
    static std::optional<QString> getFinderComment(const QString &path, ZQError *error = nullptr);

    static ZQError setString(const QString &string, const QString &keyName, const QString &path);
    static QString getString(const QString &keyName, const QString &path, ZQError *error = nullptr);
    static std::optional<QVariantList> getNSArrayMetaData(const QString &metaDataKey, const QString &path,
                                                          ZQError *error = nullptr);
    static ZQError setNSArrayMetaData(const QVariant &array, const QString &metaDataKey, const QString &path);
    static ZQError addToNSArrayMetaData(const QVariant &array, const QString &metaDataKey, const QString &path);

    // Any key. An invalid value removes it.
    static QVariant getXAttrMetaData(const QString &metaDataKey, const QString &path, ZQError *error = nullptr);
    static QVariant getXAttrMetaDataNoSpotlightMirror(const QString &metaDataKey, const QString &path,
                                                      ZQError *error = nullptr);
    static ZQError setXAttrMetaData(const QVariant &value, const QString &metaDataKey, const QString &path);
    static ZQError setXAttrNoSpotlightMirror(const QVariant &value, const QString &omKey, const QString &path);

    // One attribute by its whole name.
    static ZQError setXAttr(const QVariant &value, const QString &forKey, const QString &path);
    static QVariant getXAttr(const QString &name, const QString &path, ZQError *error = nullptr);

    // Tells indexers which keys exist and the types of their values: a property list in `schemaDirectory`, taken away
    // again two seconds later while the application's event loop runs.
    static QString schemaDirectory();
    static ZQError registerUsualOMAttributes();
    static ZQError registerOMAttributes(const QVariantMap &typicalAttributes, const QString &appName);
    static bool removeSchemaFile(const QString &path); // only what lies in that directory

    static std::optional<QStringList> validateAsArrayOfStrings(const QVariant &value);
    static QStringList removeDuplicateTags(const QStringList &tags);
    static QStringList decomposeArrayOfStrings(const QStringList &strings);
    // The members of `sortHint` whose comparison key `tagsByKey` holds, each once; after them what is left of it.
    static QStringList orderedArrayWithDict(const QHash<QString, QString> &tagsByKey, const QStringList &sortHint);
    static QString errnoString(int errnoValue);
    static bool canNameAFile(const QString &path);

    // What two spellings of one tag have in common.
    static QString comparisonKey(const QString &tag) { return tag.normalized(QString::NormalizationForm_D).toLower(); }
};
