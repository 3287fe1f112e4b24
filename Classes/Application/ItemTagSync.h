#pragma once

#include "Classes/Tags/FileTags.h"
#include "Kit/Foundation/ZQRef.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class FileReferenceRenewal;
class FileTagAdoption;
class LibraryPlaces;
class LibraryStore;
class TagFileJournal;
class ZQLibraryBaseItem;
struct ZQFileTags;
struct ZQObjectID;

// Keeps items and their files in step while the store is open: writes are noted in the bundle's journal before they are
// queued, what other programs changed comes into the store, and so does where files were moved to. Before `open` and
// after `close` writes are only queued, and nothing is taken in. Main thread, except `write` and
// `willWriteTagsOfItems`. Errors are logged by whoever does the work; what is not done stays noted for the next launch.
class ItemTagSync
{
public:
    ItemTagSync(LibraryPlaces &places, LibraryStore &store);
    ~ItemTagSync();

    // With the store open: has the tags written again that a killed process was writing. Once.
    void open();
    // Before the store closes: returns when everything is in the files.
    void close();

    // Reads the items' files on a queue of its own.
    void takeInTagsOfFiles(const QList<ZQRef<ZQLibraryBaseItem>> &items);
    bool fileOfItemDidMove(const ZQObjectID &item, const QByteArray &reference, const QByteArray &renewed);
    std::shared_ptr<void> willWriteTagsOfItems(const QStringList &bundleIDs); // waits for the disk
    // `find` gives the path where it takes a search.
    void write(const QString &bundleID, const QString &path, const ZQFileTags &tags,
               const std::function<QString()> &find = {});

    static FileTags valuesOf(const ZQFileTags &tags);

private:
    LibraryPlaces &m_places;
    LibraryStore &m_store;
    std::shared_ptr<TagFileJournal> m_journal;
    std::shared_ptr<FileTagAdoption> m_adoption;
    std::shared_ptr<FileReferenceRenewal> m_renewal; // while the store is open
    ZQOperationQueue m_readings;
    ZQManagedObjectContext::Token m_willSaveObserver; // what files are to be written is on the disk before the store
    ZQManagedObjectContext::Token m_saveObserver;
};
