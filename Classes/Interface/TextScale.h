#pragma once

#include <QtGlobal>

// How large everything is drawn: what the preference `TextScale` says, in percent, times what QT_FONT_DPI asks for,
// which fonts of fixed sizes would not follow. The whole window grows, so that no text outgrows its place. Said before
// the QApplication is made, and taken back behind it: programs started from here have their own size. One that is set
// from outside stays.
class TextScale
{
public:
    static constexpr int smallest = 50; // percent
    static constexpr int largest = 300;

    TextScale();
    ~TextScale();
    TextScale(const TextScale &) = delete;
    TextScale &operator=(const TextScale &) = delete;
    static double factor(qint64 percent, int fontDPI); // 0 for what nobody said

private:
    bool m_isSet = false;
};
