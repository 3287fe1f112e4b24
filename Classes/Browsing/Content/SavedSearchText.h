#pragma once

#include "Classes/Browsing/Content/Content.h"

#include <functional>
#include <optional>

class LibraryIndex;

// A search as it is saved: a text that finds in the whole library what a tab shows, as nearly as the search language
// can say it. A name in a text stands for whatever bears it, so the same rows are not promised: `compare` tells.
class SavedSearchText
{
public:
    // More places than that are left out, so that the whole library is searched.
    static constexpr qsizetype mostPlaces = 20;

    // The filter and where it was typed: "#project", "#tag", "#color", "#size", "#folder", the texts of smart folders,
    // several joined by OR. Without the place where that is the library, cannot be said or makes the text longer than
    // can be saved; a smart folder that is shown alone always stays. On the thread of the context; sidebar items are
    // read.
    static QString forQuery(const ContentQuery &query, ZQManagedObjectContext &context);

    struct Shown
    {
        ContentQuery query;
        // Of its rows, where they are known: a smart folder that is shown has another text once that is saved.
        std::optional<QList<ZQObjectID>> items = {};
    };
    // Library items, each counted once.
    struct Comparison
    {
        qint64 shown = 0;
        qint64 found = 0;  // by the text in the whole library
        qint64 common = 0; // of both
        bool isSame() const { return shown == common && found == common; }
        QString sentence() const; // localised: what a person is told who expects the same
    };
    // Rows come from `index` where that is ready. Nothing after an error, which was logged, or when it was given up. On
    // the thread of the context, as the rows of a tab are.
    static std::optional<Comparison> compare(const Shown &shown, const QString &text, ZQManagedObjectContext &context,
                                             LibraryIndex *index, const std::function<bool()> &isWanted);
};
