#pragma once

#include "Classes/Export/ExportNames.h"
#include "Kit/Persistence/ZQObjectID.h"
#include "Models/DataModel/ZQExportRepresentation.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <QList>
#include <QSize>
#include <QString>

#include <vector>

class ZQLibraryBaseItem;
class ZQManagedObjectContext;
struct ExportRequest;
template <class T>
class ZQRef;

// What an export needs of one item, read once, so that several threads can write without the store.
struct ExportSource
{
    QString title;
    QString bundleID; // empty when the library has no such item any more
    QString file;     // empty when it is missing
    QString extension;
    QSize pixelSize;
    QDateTime date;
    ZQExportRepresentation picture; // only where pictures are converted
    ZQFileTags tags;

    bool hasFile() const { return !file.isEmpty(); }

    // On the context's thread, in the order of the identifiers; an entry for each of them. Looks for files that were
    // moved, and waits for that.
    static std::vector<ExportSource> sources(const ExportRequest &request, ZQManagedObjectContext &context);
    // For names alone. Looks for no file.
    static ExportSource sourceOfItem(const ZQLibraryBaseItem &item);
    // The same as if its file were missing, which is not looked at.
    static ExportSource sourceWithoutFile(const ZQLibraryBaseItem &item);
    // The items that the identifiers, of items or memberships, lead to; null where there is none.
    static QList<ZQRef<ZQLibraryBaseItem>> itemsWithIDs(const QList<ZQObjectID> &ids, ZQManagedObjectContext &context);

    ExportNames::Source name(const ExportRequest &request) const;
};
