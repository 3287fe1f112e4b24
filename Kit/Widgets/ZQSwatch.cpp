#include "Kit/Widgets/ZQSwatch.h"

#include "Kit/Widgets/ZQTheme.h"

QColor zqSwatchRing(int code, const QColor &ground)
{
    constexpr double seen = 1.5;
    constexpr double ring = 3;
    const QColor border = zqColor(ZQColorRole::Border);
    const bool isSeen = ZQTheme::contrast(ZQTheme::swatch(code), ground) >= seen;
    return isSeen ? border : ZQTheme::withContrast(border, ground, ring);
}
