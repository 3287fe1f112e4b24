#pragma once

#include "Kit/Widgets/ZQTheme.h"

#include <QIcon>
#include <QPixmap>

class QPainter;

// The application's line icons by file name ("plus"), drawn in the colour of a role at any scale.
// Main thread. An unknown name draws nothing.
class ZQIcon
{
public:
    // Follows the theme and the device pixel ratio; checked buttons take `checkedRole`, selected rows `selectedRole`.
    static QIcon icon(const QString &name, ZQColorRole role = ZQColorRole::TextMuted,
                      ZQColorRole checkedRole = ZQColorRole::Text, ZQColorRole selectedRole = ZQColorRole::AccentText);
    static void paint(QPainter &painter, const QRectF &rect, const QString &name, const QColor &color);
    static QStringList names();
    static QIcon application(); // in its own colours, for windows
};
