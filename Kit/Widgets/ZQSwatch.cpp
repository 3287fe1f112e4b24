#include "Kit/Widgets/ZQSwatch.h"

#include "Kit/Widgets/ZQTheme.h"

QColor zqSwatchRing(const QColor &color, const QColor &ground)
{
    constexpr double seen = 1.5;
    constexpr double ring = 3;
    const QColor border = zqColor(ZQColorRole::Border);
    const bool isSeen = ZQTheme::contrast(color, ground) >= seen;
    return isSeen ? border : ZQTheme::withContrast(border, ground, ring);
}

QColor zqSwatchRing(int code, const QColor &ground)
{
    return zqSwatchRing(ZQTheme::swatch(code), ground);
}
