#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

// What the attributes are in which a file carries its tags, rating and comment: their names, their encoding, and what a
// list of tags is. Everything else that has to do with a file's tags builds on it; it knows of none of them.
//
// A metadata key is stored under up to three attribute names (`spotlightKey`, `openmetaKey`, `openmetaTimeKey`), each
// value a binary property list of at most `maximumDataSize` bytes. Readers answer nothing for what is missing, and fill
// `error` only when reading failed: in the domain of the system, or in `errorDomain` for what is no value of ours.
// Links are never followed. Each call costs one system call. No state; any thread; who reads or writes several
// attributes of one file together holds a `PathLock`.
class AttributeStore
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
    static inline const QString seenName = QStringLiteral("org.zelto.seen"); // a whole name

    static QString spotlightKey(const QString &key) { return QStringLiteral("com.apple.metadata:") + key; }
    static QString openmetaKey(const QString &key) { return QStringLiteral("org.openmetainfo:") + key; }
    static QString openmetaTimeKey(const QString &key) { return QStringLiteral("org.openmetainfo.time:") + key; }
    static bool isOurs(const QString &name); // one of the names above, by its whole name
    static bool canNameAFile(const QString &path);

    // One attribute by its whole name. An invalid value removes it. A null error on success.
    static ZQError write(const QVariant &value, const QString &name, const QString &path);
    static QVariant getXAttr(const QString &name, const QString &path, ZQError *error = nullptr);

    // Any key, as the file has it.
    static QVariant getXAttrMetaData(const QString &metaDataKey, const QString &path, ZQError *error = nullptr);
    static QVariant getXAttrMetaDataNoSpotlightMirror(const QString &metaDataKey, const QString &path,
                                                      ZQError *error = nullptr);
    static QString getString(const QString &keyName, const QString &path, ZQError *error = nullptr);
    static std::optional<QVariantList> getNSArrayMetaData(const QString &metaDataKey, const QString &path,
                                                          ZQError *error = nullptr);
    static std::optional<QStringList> getUserTagsNoRestore(const QString &path, ZQError *error = nullptr);

    // User tags: an ordered list without duplicates, case and composition ignored; the first spelling is kept,
    // decomposed.
    static std::optional<QStringList> validateAsArrayOfStrings(const QVariant &value);
    static QStringList removeDuplicateTags(const QStringList &tags);
    static QStringList decomposeArrayOfStrings(const QStringList &strings);
    // The members of `sortHint` whose comparison key `tagsByKey` holds, each once; after them what is left of it.
    static QStringList orderedArrayWithDict(const QHash<QString, QString> &tagsByKey, const QStringList &sortHint);
    // What two spellings of one tag have in common.
    static QString comparisonKey(const QString &tag) { return tag.normalized(QString::NormalizationForm_D).toLower(); }

    static ZQError parameterError();
    static QString errnoString(int errnoValue);
    // A value that the system could not read; one that is no property list is none.
    static bool isOfSystem(const ZQError &error);

protected:
    static bool isList(const QVariant &value);
};
