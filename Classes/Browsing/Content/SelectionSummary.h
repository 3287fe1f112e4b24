#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class ZQLibraryBaseItem;
class ZQManagedObjectContext;

// A value of several items: what they have in common, or that they differ.
struct CommonText
{
    QString text;
    bool differs = false;

    void add(const QString &next, bool isFirst);
    QString shown() const; // "Multiple values" when they differ
};

// What a selection has in common.
struct SelectionSummary
{
    qint64 count = 0;
    qint64 bytes = 0;
    qint64 missing = 0; // items whose file is not where it was
    CommonText title;
    CommonText kind;
    CommonText notes;
    CommonText size;
    CommonText imported;
    CommonText modified;
    CommonText source;
    CommonText license;
    CommonText liveFolder; // the path of the one they lie in; empty: in none
    int rating = 0;        // 0 to 5 stars
    bool ratingDiffers = false;
    QStringList tags; // the user's tags that all have, by name
    bool hasOtherTags = false;

    // On the context's thread. Reads each item and the size of its file; nothing when `isWanted` says no
    // meanwhile.
    static std::optional<SelectionSummary> of(const QList<ZQObjectID> &items, ZQManagedObjectContext &context,
                                              const std::function<bool()> &isWanted);
};
