#pragma once

#include "Classes/Tags/FileTags.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QHash>
#include <QList>

#include <memory>

class LibraryStore;
class ZQLibraryBaseItem;

// Brings what other programs changed in items' files into the store: many changes with one save, on the main thread,
// and announced item by item. Each item is written to its file again, which confirms what was taken in; a change that
// never arrives here is found in the file the next time.
class FileTagAdoption : public std::enable_shared_from_this<FileTagAdoption>
{
public:
    explicit FileTagAdoption(LibraryStore &store) : m_store(store) {}

    // Any thread. A change of nothing only has the item written to its file.
    void add(const QString &bundleID, const FileTagsChange &change);
    // Main thread: what came so far. Answers whether there was anything that the store could look up, and so is
    // written.
    bool apply();

private:
    static bool applyTo(ZQLibraryBaseItem &item, const FileTagsChange &change);

    LibraryStore &m_store;
    ZQMutex m_mutex;
    QHash<QString, QList<FileTagsChange>> m_changes ZQ_GUARDED_BY(m_mutex); // by the item's bundleID
};
