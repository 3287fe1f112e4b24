#pragma once

#include "Classes/Editing/EditContext.h"

// Changes to what items say of themselves, each one undo step: tags, rating, texts. A few items are changed at once in
// the caller's context; many on the edit queue, a batch at a time. Files are rewritten after the store was saved. Main
// thread.
class ItemEdits
{
public:
    explicit ItemEdits(EditContext &edits) : m_edits(edits) {}

    // Tags by identifier, or by title and then made when there is none; those an item has, or lacks, already change
    // nothing there.
    void changeTags(const QList<ZQObjectID> &items, const QList<ZQObjectID> &add, const QList<ZQObjectID> &remove,
                    const QStringList &addByTitle = {});
    // What a field with the tags that all items share (`shared`) says once it was edited (`entered`): those missing in
    // it are taken away, new ones added; the tags of only some items, for which "Multiple values" stands, stay. False
    // when nothing changes.
    bool tagItems(const QList<ZQObjectID> &items, const QStringList &shared, const QStringList &entered);
    void setNotes(const QList<ZQObjectID> &items, const QString &notes);
    void setLicense(const QList<ZQObjectID> &items, const QString &license);
    void setSource(const QList<ZQObjectID> &items, const QString &address);
    void setRating(const QList<ZQObjectID> &items, int rating); // 0 to 5 stars, 0 for none

    // Saves, and writes the items' tags, notes and ratings to their files, all of them; no undo step of its own.
    void saveAndRewriteFiles(const QList<ZQObjectID> &items);

    // Beyond so many items the edit queue does it.
    static constexpr qsizetype mostAtOnce = 200;

private:
    EditContext &m_edits;
};
