#pragma once

#include "Kit/Foundation/ZQRef.h"
#include "Kit/Persistence/ZQObjectID.h"

#include <QByteArray>
#include <QList>

#include <memory>

class LibraryStore;
class ZQLibraryBaseItem;
class ZQManagedObjectContext;

// Brings into the store where files of unmanaged items were found, many at a save: with a folder all its files move.
// Each file gets its item's tags, which could not be written while it was missing. An item that cannot be read now is
// told of again when its file is asked for the next time. Main thread. Made with `make_shared`.
class FileReferenceRenewal : public std::enable_shared_from_this<FileReferenceRenewal>
{
public:
    struct Found
    {
        ZQObjectID item;
        QByteArray reference; // which led elsewhere
        QByteArray renewed;   // empty when the file is gone again
    };

    explicit FileReferenceRenewal(LibraryStore &store) : m_store(store) {}
    void add(const Found &found);

private:
    void applyLater();
    void apply();
    QList<ZQRef<ZQLibraryBaseItem>> renew(const QList<Found> &batch, ZQManagedObjectContext &context);

    LibraryStore &m_store;
    QList<Found> m_found;
};
