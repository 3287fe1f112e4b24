#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <map>
#include <optional>
#include <stop_token>
#include <vector>

class ZQManagedObjectContext;

// What is in a library, in numbers. Items are those that were not deleted.
struct LibraryNumbers
{
    struct Named
    {
        QString name;
        qint64 items = 0;
        qint64 bytes = 0; // of originals in the library; 0 without sizes
    };
    qint64 items = 0;
    qint64 deleted = 0;  // and not purged
    qint64 managed = 0;  // whose files the library keeps itself
    qint64 untagged = 0; // without a tag of a person
    qint64 unrated = 0;
    qint64 duplicates = 0; // items beyond the first of each group with the same contents
    qint64 duplicateGroups = 0;
    QList<Named> kinds;          // the largest number of items first
    QList<Named> folders;        // sidebar entries that items were put into, the same
    std::map<int, qint64> years; // of import, local time

    bool hasSizes = false;
    qint64 bytes = 0; // of originals in the library
    qint64 thumbnailBytes = 0;
    qint64 missing = 0;   // originals that were not there
    QList<Named> largest; // files; the largest first

    QStringList lines() const; // for a person
};

// Counts it in one pass over the rows, and, for the sizes, with one look at each file. A million items take seconds
// without sizes; with them, what the disk needs for two million looks. No objects are made. On the thread of
// `context`. What is asked of the store ends with the thread's ZQCancellation, the looks at files with `stop`.
class LibraryStatistics
{
public:
    // `libraryDirectory`: where the item directories lie.
    LibraryStatistics(ZQManagedObjectContext &context, const QString &libraryDirectory);

    // Nothing after an error.
    std::optional<LibraryNumbers> count(bool withSizes, ZQError *error, const std::stop_token &stop = {});

private:
    bool countItems(ZQError *error);
    bool countUntagged(ZQError *error);
    bool countFolders(ZQError *error);
    bool addSizes(ZQError *error, const std::stop_token &stop);
    void countDuplicates(std::vector<std::array<quint8, 20>> &digests);

    ZQManagedObjectContext &m_context;
    QString m_libraryDirectory;
    LibraryNumbers m_numbers;
    std::vector<bool> m_isActive;                  // by key
    QHash<QString, LibraryNumbers::Named> m_kinds; // by extension
    QHash<qint64, qint64> m_itemsOfFolder;         // by the key of the sidebar entry
};
