#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QString>

#include <algorithm>
#include <memory>

// A library as a person may have it, but with any number of items: titles in several scripts, nested folders of
// projects, tags of which a few are on very many items and most on a few, ratings, notes, dates over ten years, live
// folders. Made through the model, save by save; the same every time. There are no files.
struct SyntheticLibrary
{
    qint64 items = 0;

    static QString largeProject() { return QStringLiteral("Archive"); } // with a tenth of the items
    static QString largeTag() { return QStringLiteral("photo"); }       // on a tenth of the items
    static QString largeFolder() { return QStringLiteral("Clients"); }  // with all other projects, some folders deep
    int projects() const { return int(std::clamp<qint64>(items / 100, 10, 1000)); }
    int tags() const { return int(std::clamp<qint64>(items / 50, 20, 3000)); }

    // Makes it at `path`, where nothing may be, at some ten thousand items a second. False after an error, which is
    // printed.
    bool make(const QString &path) const;
};
