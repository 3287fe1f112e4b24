#pragma once

#include "Classes/Browsing/Index/LibraryColumns.h"

#include <QSet>

// Reads from the store what the columns of a library hold. Each call reads one state of the store; cancelled by the
// thread's ZQCancellation.
class IndexReader
{
public:
    // Rows that may have changed, by key.
    struct Asked
    {
        QSet<qint64> items;
        QSet<qint64> sidebar;
        QSet<qint64> memberships;

        void add(const ZQContextDidSave &saved);
        bool isEmpty() const { return items.isEmpty() && sidebar.isEmpty() && memberships.isEmpty(); }
    };

    // All of it but the places of titles, on two threads with a context each; what is saved meanwhile may be in it in
    // part, and has to be asked for afterwards.
    static std::unique_ptr<LibraryColumns> readAll(const std::shared_ptr<ZQPersistentStoreCoordinator> &coordinator,
                                                   ZQError *error);
    // What became of some rows, with what they lead to that `columns` does not have. Nothing after an error.
    static std::optional<LibraryColumns::Changes> read(ZQManagedObjectContext &context, const LibraryColumns &columns,
                                                       const Asked &asked, ZQError *error);
};
