#pragma once

#include "Kit/Imaging/ZQBitmap.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// Names the colours that a picture is made of. Colour names are localised. Any thread.
class ColorFinder
{
public:
    struct Count
    {
        QString name;
        qint32 pixels;
    };

    // Hue in whole degrees 0 to 360; the rest in 0 to 1.
    struct HSL
    {
        int hue;
        double saturation;
        double lightness;
        double alpha;
    };

    static constexpr int decodedSize = 512; // pixels on the longer side are enough to look at
    // The names of a picture's dominating colours, the most frequent first. Empty when it cannot be read or shows no
    // colour.
    static QStringList colorsForImageURL(const QString &path);
    static QStringList colorsForBitmap(const ZQBitmap &bitmap);

    // Chooses the dominating ones of `counts`, the most frequent first; of two with the same count the later one
    // survives.
    static QStringList estractPredominantColors(const QList<Count> &counts, qint32 inNumberOfPixels);

    // The name of one colour, components in 0 to 1, alpha not multiplied in. Empty for one that is nearly transparent.
    static QString compareUsingHUE(double red, double green, double blue, double alpha);
    static HSL getHue(double red, double green, double blue, double alpha);

    // Main colour codes: 1000 "white" to 1009 "pink"; -1 for any other name. Takes the localised or the English name.
    static qint32 colorValueForName(const QString &name);
    // The localised name; "None" for an unknown code.
    static QString colorNameForValue(qint32 value);
};
