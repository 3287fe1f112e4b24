#pragma once

#include "Classes/Browsing/Search/SearchCompletion.h"

#include <functional>
#include <optional>

class LibraryIndex;
class ZQManagedObjectContext;

// The names of the library that can stand behind a token: its tags, projects, live folders, kinds and extensions.
class SearchNames
{
public:
    static bool has(SearchField field); // the library has names for it

    // All of them, those of the most items first where `index` is ready, by name otherwise. On the thread of the
    // context. Nothing after an error, or when it was given up.
    static std::optional<QList<SearchCompletion>> of(SearchField field, ZQManagedObjectContext &context,
                                                     LibraryIndex *index, const std::function<bool()> &isWanted);
    // Those that begin with `typed`, then those that contain it, whatever the case and accents; at most `most`.
    static QList<SearchCompletion> matching(const QList<SearchCompletion> &names, const QString &typed, qsizetype most);
};
