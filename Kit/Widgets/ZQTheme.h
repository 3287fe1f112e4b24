#pragma once

#include <QColor>
#include <QFont>
#include <QObject>

class QApplication;

// What a colour is for. Widgets ask for these and hold no colour of their own.
enum class ZQColorRole {
    Ground,        // browser
    Sunken,        // toolbar, sidebar, info panel
    Raised,        // fields, sheets
    Raised2,       // pressed, badges, buttons
    Hover,         // under the pointer
    Cell,          // the calm ground behind a picture
    Border,        // the one hairline
    ControlBorder, // of fields, boxes and lists: told from what is around it
    Text,
    TextMuted,
    TextFaint,  // what may be missed
    Accent,     // lines, icons, links
    AccentFill, // filled buttons and selected titles, under AccentText
    AccentText,
    Select, // the ground of what is selected
    Danger,
    DangerFill, // destructive buttons, under AccentText
    ScrollHandle,
    Shadow,
    ArtworkLight, // behind dark artwork with transparent places, and the other squares of a checkerboard
    ArtworkLight2,
    ArtworkDark, // behind light artwork
    ArtworkDark2,
    ArtworkMiddle, // behind what is both
    ArtworkMiddle2,
    Mask,     // over what is not chosen of a screen, whatever lies there
    MaskLine, // lines and text on it, and a flash
    MaskTag,  // the ground of such text
};

// Lengths in device-independent pixels.
struct ZQMeasure
{
    static constexpr int toolbarHeight = 44;
    static constexpr int headHeight = 44;
    static constexpr int groupHeadHeight = 34;
    static constexpr int rowHeight = 28;
    static constexpr int rowRadius = 6;
    static constexpr int sidebarWidth = 232;
    static constexpr int infoPanelWidth = 276;
    static constexpr int statusHeight = 34;
    static constexpr int textSize = 13;
    static constexpr int smallTextSize = 12;
    static constexpr int tinyTextSize = 11;
    static constexpr int iconSize = 16;
};

// The look of the application: colours by role in a dark and a light set, fonts and the style sheet made from them.
// Main thread.
class ZQTheme : public QObject
{
    Q_OBJECT
public:
    static ZQTheme &current();

    bool isDark() const { return m_dark; }
    void setDark(bool dark); // restyles the application when it was styled before

    QColor color(ZQColorRole role) const;
    QFont font(int pixelSize = ZQMeasure::textSize, QFont::Weight weight = QFont::Normal) const;

    // The desktop's accent colour; an invalid one means the theme's own. Shades of it are moved until text on and in it
    // can be read.
    void setAccent(const QColor &accent);
    // The same font, for a name: with all it can do, the typeface draws the x of 5120x2880 as a multiplication sign.
    static QFont fontForName(QFont font, QStringView name);

    // Installs style, palette, font and style sheet, and takes the accent from the desktop's palette where it tells
    // one.
    void apply(QApplication &application);

    // How long an explaining movement may take; 0 when less motion is asked for.
    int animationMilliseconds() const;
    void setReducesMotion(bool reducesMotion);

    // Text at 7 : 1, and lines that are as strong.
    bool hasHighContrast() const { return m_hasHighContrast; }
    void setHighContrast(bool hasHighContrast);

    // Least contrast of text, and of what tells a control from its surroundings.
    double textContrast() const { return m_hasHighContrast ? 7 : 4.5; }
    double controlContrast() const { return m_hasHighContrast ? 4.5 : 3; }

    // The colour that stands for a colour code 1000 (white) to 1009 (pink); invalid for another code.
    static QColor swatch(int code);

    // (L1 + 0.05) / (L2 + 0.05) of the relative luminances: 1 to 21.
    static double contrast(const QColor &a, const QColor &b);
    // `color` made lighter or darker until it stands out from `ground` by `ratio`.
    static QColor withContrast(QColor color, const QColor &ground, double ratio);

Q_SIGNALS:
    void changed();

private:
    ZQTheme();
    void restyle();
    QString styleSheet() const;

    QColor ownColor(ZQColorRole role) const; // without an accent of the desktop
    QColor accented(ZQColorRole role) const;

    bool m_dark = true;
    bool m_hasHighContrast = false;
    bool m_reducesMotion = false;
    QColor m_accent;
    QString m_family;
    QApplication *m_application = nullptr;
};

// The colour of a role in the theme now in use.
inline QColor zqColor(ZQColorRole role)
{
    return ZQTheme::current().color(role);
}
