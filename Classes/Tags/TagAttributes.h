#pragma once

#include "Classes/Tags/AttributeStore.h"

// Writes a file's tags, comment, rating and other keys under all the names they go by, and has the backup note what
// counts.
//
// Writers answer a null error on success. Tags, comment and rating go to the names of this desktop's file managers as
// well (`DesktopMirror`). Where a file system has too little room, what only repeats a value gives way to it
// (`AttributeRoom`); a value is never removed to make room for its successor. Nothing is read back or given back first:
// that is `OpenMeta`'s. Costs some ten system calls for tags. No state; any thread.
class TagAttributes : public AttributeStore
{
public:
    static ZQError setUserTags(const QVariant &tags, const QString &path);
    // 0 < rating <= 5; at most 0 removes it, above 5 is stored as 5.
    static ZQError setRating(double rating, const QString &path);
    // The item's notes, under their spotlight name only.
    static ZQError setFinderComment(const QString &comment, const QString &path);

    static ZQError setString(const QString &string, const QString &keyName, const QString &path);
    static ZQError setNSArrayMetaData(const QVariant &array, const QString &metaDataKey, const QString &path);
    static ZQError addToNSArrayMetaData(const QVariant &array, const QString &metaDataKey, const QString &path);

    // Any key. An invalid value removes it.
    static ZQError setXAttrMetaData(const QVariant &value, const QString &metaDataKey, const QString &path);
    static ZQError setXAttrNoSpotlightMirror(const QVariant &value, const QString &omKey, const QString &path);
    // One attribute by its whole name; each of a file's tags asks for a backup.
    static ZQError setXAttr(const QVariant &value, const QString &forKey, const QString &path);
};
