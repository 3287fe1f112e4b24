#pragma once

#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QHash>
#include <QList>
#include <QStringList>
#include <QVariantMap>

// Makes library items of what importers found out about files: the item with its digest and its other attributes, its
// tags, and its place in the sidebar. Whoever brings files in (imports, directories that are taken back) makes items
// through this alone.
//
// Works in the context it was made for, on that context's thread, and saves nothing. Each tag is looked up once and
// held from then on, so that an item costs no query beyond those of its new tags. What cannot be inserted is answered
// with a null item; nothing is told to anybody.
class ItemInserter
{
public:
    struct Inserted
    {
        ZQRef<ZQLibraryBaseItem> item; // null: the library has no items of this kind
        QStringList tags;              // titles
    };

    // Where items go, one behind the other.
    struct Place
    {
        ZQRef<ZQSidebarBaseItem> project;
        quint32 position = 0;
        bool isExplicit = false; // what is behind the place moves on
        // Those of an explicit place that `putWaiting` puts there: each time moves all members behind it.
        QList<ZQRef<ZQLibraryBaseItem>> waiting = {};
        QList<quint32> waitingPositions = {};
    };

    explicit ItemInserter(ZQManagedObjectContext &context) : m_context(context) {}

    // `fileData` as in `ImportedFile`.
    Inserted insert(const QVariantMap &fileData);
    // A tag as the place becomes one of the item's; the library has no order of its own.
    void put(Inserted &inserted, Place &place);
    void putWaiting(Place &place);

    // After a rollback or a reset of the context.
    void forgetTags() { m_tags.clear(); }
    void removeNewTags(); // those that were made here go out of the context again

private:
    void tag(Inserted &inserted, const QStringList &names);
    ZQRef<ZQSidebarTag> tagWithName(const QString &text);

    ZQManagedObjectContext &m_context;
    QHash<QString, ZQRef<ZQSidebarTag>> m_tags;
    QList<ZQRef<ZQSidebarTag>> m_newTags;
};
