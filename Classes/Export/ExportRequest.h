#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QList>
#include <QSizeF>
#include <QString>
#include <QStringList>

#include <optional>

struct ExportItem;

// What is to be written where. Values; may cross threads.
struct ExportRequest
{
    QList<ZQObjectID> items = {};         // library items, or memberships of them, saved; in the order of the names
    QString destinationURL = {};          // the path of a folder that is there
    std::optional<int> fileFormat = {};   // a ZQImageFileType; nothing: files as they are, without scaling
    std::optional<QSizeF> imageSize = {}; // pixels, a side of 0 is not given; used without a percentage
    std::optional<double> imageSizePercentage = {};
    bool archive = false;
    std::optional<int> imageQuality = {}; // 1 to 100; nothing: what the encoder takes
    QString namePattern = {};             // see ExportNames; empty: the title
    bool namesByType = false;             // also those types that are named with the extension of the item's file
    bool tellsPerson = true; // what is missing and what failed; a caller that says it itself takes the result

    static ExportRequest with(const ExportItem &preset, const QList<ZQObjectID> &items, const QString &destinationURL);
};

// What became of it.
struct ExportResult
{
    struct Problem
    {
        QString title;
        QString bundleID; // empty when the library has no such item any more
        QString reason;   // localized, and says what to do
    };
    QStringList written;       // paths below the destination, in the order of the items; of an archive: its path alone
    qsizetype count = 0;       // of the items in them
    QList<Problem> missing;    // their file is not there; a thumbnail may have been written in its place, and counted
    QList<Problem> failed;     // whatever else kept one from being written
    QList<Problem> incomplete; // written, but their file holds only a part of the picture
    QList<Problem> notes;      // written, but the format or the conversion left something out: frames, depth
    QString refusal;           // why it ended before it was done, a full disk for instance; null otherwise
    bool isCancelled = false;

    bool isComplete() const { return missing.isEmpty() && failed.isEmpty() && refusal.isNull() && !isCancelled; }
};
