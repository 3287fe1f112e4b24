#pragma once

#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQSaveWork.h"

// One save of a context: what is to be saved, one transaction that writes it, and then the objects as they are stored.
// Up to and including a `write` that fails, no object and no change is touched. On the context's thread.
class ZQSave
{
public:
    // What others are to be told, and what this context's own observers are: those also hear of what others deleted.
    struct Outcome
    {
        ZQContextDidSave notification;
        ZQContextDidSave announcement;
    };

    explicit ZQSave(ZQManagedObjectContext::Private &context) : m_context(context) {}

    // False when something may not be saved as it is.
    bool collect(ZQError *error);
    bool isEmpty() const { return m_work.isEmpty(); }
    // False after an error or, where the merge policy says so, a conflict. Waits for other saves of the process.
    bool write(ZQError *error);
    Outcome apply();

private:
    using Object = ZQRef<ZQManagedObject>;

    bool validate(ZQError *error);
    void applyKeys();
    void replaceTemporaryKeys(ZQManagedObject *object);

    ZQManagedObjectContext::Private &m_context;
    ZQSaveWork m_work;
};
