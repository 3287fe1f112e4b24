#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QList>
#include <QStringList>

#include <functional>
#include <stop_token>

class ZQManagedObjectContext;

// What a look at the whole library found.
struct LibraryFindings
{
    qint64 items = 0;
    bool isWhole = true;    // false: stopped on the way
    QStringList problems;   // what is wrong, a sentence each
    QStringList orphans;    // item directories that no item names
    QStringList otherNames; // they differ from those of items in their letters alone
    QStringList links;      // in the place of item directories
    // Whose file lies in its directory under another name; `problem` is among the problems.
    struct Misnamed
    {
        ZQObjectID item;
        QString problem;
    };
    QList<Misnamed> misnamed;

    QStringList lines() const; // for a person
};

// Looks at the store, and whether each item has its file and its thumbnail, and each item directory its item. Changes
// nothing. On the thread of `context`; linear in the library, and with `deep` in the bytes of its files, which are
// digested and compared with what was imported.
class LibraryCheck
{
public:
    LibraryCheck(ZQManagedObjectContext &context, const QString &libraryDirectory);

    using Progress = std::function<void(qint64 done, qint64 total)>; // items
    LibraryFindings run(bool deep, const std::stop_token &stop = {}, const Progress &didCheck = {});

private:
    void checkItems(bool deep, const std::stop_token &stop, const Progress &didCheck);
    void checkDirectories();

    ZQManagedObjectContext &m_context;
    QString m_libraryDirectory;
    LibraryFindings m_findings;
    QStringList m_known; // bundleIDs
};
