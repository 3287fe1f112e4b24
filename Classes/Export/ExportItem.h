#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QImage>
#include <QList>
#include <QSizeF>
#include <QString>
#include <QVariantMap>

#include <optional>

// An export preset: how pictures go out by one click. A value; main thread where it is read from the user defaults or
// stored in them.
//
// Stored as a dictionary of the values that are set; title and identifier are not among them, so that a preset that is
// read back has no title and is known by its icon.
struct ExportItem
{
    // What is taken of numbers; from 1 on.
    static constexpr int mostPixels = 1 << 24; // a side
    static constexpr int mostPercent = 100000;
    static constexpr int mostQuality = 100;

    static inline const QString storageKey = QStringLiteral("ExportItems"); // of the user defaults: the list, in order

    QString identifier;                 // a UUID of its own
    std::optional<int> imageFileType;   // a ZQImageFileType; nothing: the file as it is
    std::optional<int> imageWidth;      // pixels; nothing: "Auto"
    std::optional<int> imageHeight;     // pixels; nothing: "Auto"
    std::optional<int> imagePercentage; // used only when there is neither width nor height
    bool archive = false;
    int iconColor = 0; // 0 to 5
    QString title;
    QImage dragIcon; // handed to a drag as it is: no file holds it, and none is left to delete with the preset
    // Beyond the first formats.
    std::optional<int> imageQuality; // 1 to 100; only for types that `hasQuality`
    QString namePattern;             // see ExportNames; empty: the title

    ExportItem(); // with a fresh identifier

    // The presets that are stored; the three of the beginning while nothing was. Entries that are none are left out.
    static QList<ExportItem> exportItems();
    static QList<ExportItem> firstExportItems();
    // False with an error, and what is stored as it was, where it cannot be written.
    static bool storeExportItems(const QList<ExportItem> &items, ZQError *error = nullptr);

    QVariantMap dictionary() const;
    // Values of other types or out of range are as if they were not set.
    static ExportItem exportItemWithDictionary(const QVariantMap &dictionary);

    // What is asked of the picture, a side that is "Auto" as 0; nothing when neither side is set.
    std::optional<QSizeF> imageSize() const;
    // The percentage that holds: none beside a width or height.
    std::optional<double> imageSizePercentage() const;

    QString extensionString() const; // the label: "jpg", the localized "orig"; null for a number without one
    QString sizeString() const;      // "50%", "800xAuto", the localized "Original size"
    QString iconName() const;        // the base image of its colour; null for a number without one

    static bool hasQuality(std::optional<int> imageFileType);
};
