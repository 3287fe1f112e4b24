#pragma once

#include "Kit/Persistence/ZQContextStore.h"
#include "Kit/Persistence/ZQIDList.h"
#include "Kit/Persistence/ZQObjectList.h"

#include <optional>

struct ZQContextDidSave;

// What became different in a context: the objects since its last save, which are kept alive for the next, and their
// identifiers since the last announcement. What of an object changed, the object says itself.
//
// On the context's thread; reads nothing and cannot fail.
class ZQChangeTracker
{
public:
    explicit ZQChangeTracker(const ZQContextStore &store) : m_store(store) {}

    const ZQObjectList &inserted() const { return m_inserted; }
    const ZQObjectList &updated() const { return m_updated; } // touched; perhaps without a difference
    const ZQObjectList &deleted() const { return m_deleted; }
    QList<ZQRef<ZQManagedObject>> reallyUpdated() const;
    bool isUntouched() const { return m_inserted.isEmpty() && m_updated.isEmpty() && m_deleted.isEmpty(); }
    bool hasChanges() const; // linear in the touched objects
    template <class Visit>
    void visit(const Visit &visitor) const // inserted, touched and deleted
    {
        m_inserted.visit(visitor);
        m_updated.visit(visitor);
        m_deleted.visit(visitor);
    }
    static bool isDirty(const ZQManagedObject *object);
    // Whether it is deleted, or one of these fields or of the lists at these positions changed.
    static bool isTouched(const ZQManagedObject &object, quint64 fields, const QSet<int> &lists);

    void didInsert(ZQManagedObject *object);
    void touch(ZQManagedObject *object); // something of it changed
    // One that was never saved is forgotten.
    void didDelete(ZQManagedObject *object);
    void didDiscard(ZQManagedObject *object); // it is again as it was stored
    void forget(ZQManagedObject *object);     // it is to be saved no more, and perhaps soon gone
    // When an object leaves the context.
    void willOrphan(const ZQManagedObject *object)
    {
        if (m_lastTouched == object) {
            m_lastTouched = nullptr;
        }
    }

    void didFindNothingToSave();
    // Everything is stored now. Answers the temporary identifiers that were announced and stand for nothing any more.
    QList<ZQObjectID> didSave();
    // Forgets the changes; what was announced of them will be taken back by the next announcement.
    void didRollBack();
    void clear();
    // What to announce since the last time; nothing when nothing became different.
    std::optional<ZQContextDidSave> takeAnnouncement(const void *source);

private:
    static bool hasListChanges(const ZQManagedObject *object);
    void clearNews();
    void clearObjects();

    const ZQContextStore &m_store;
    ZQObjectList m_inserted;
    ZQObjectList m_updated;
    ZQObjectList m_deleted;
    ZQManagedObject *m_lastTouched = nullptr; // spares the bookkeeping when one object is changed many times in a row
    ZQIDList m_newlyInserted;                 // since the last announcement
    ZQIDList m_newlyUpdated;
    ZQIDList m_newlyDeleted;
    QSet<ZQObjectID> m_announcedTemporary;
};
