#pragma once

#include <QRgb>
#include <QString>

#include <optional>

// What stands behind "#color": "blue" or "none", which ask for the main colour as a tag of it does; "#3366cc" or
// "#36c", which ask for pictures with a colour near to that; or either with how near, in hundredths of the way from
// black to white: "blue~5", "#3366cc 20".
struct ColorArgument
{
    std::optional<int> code; // of a main colour; 0 for none
    std::optional<QRgb> rgb; // of a colour to be near to; a named one has one, too, but for "none"
    std::optional<int> tolerance;

    bool isNearness() const { return tolerance || !code; }
    // Nothing for what is no colour. In any language's case and with the names of the current one.
    static std::optional<ColorArgument> of(const QString &text);
    // Whether the text begins as "#3366cc" does and is no token then.
    static bool isHex(QStringView text);
    // As it is typed behind the token.
    static QString textFor(QRgb color);
    static QString textFor(const QString &color, int tolerance);
};
