#pragma once

#include <QList>
#include <QRect>

#include <chrono>

// What a capture is noticed by: the sound "snap_sound" and a flash, unless the preference says otherwise. Main thread.
class CaptureEffects
{
public:
    static constexpr const char *preference = "ScreenshotSoundAndFlash";
    // Until what lay below something that went has been drawn anew, by other programs too.
    static constexpr std::chrono::milliseconds repaintTime{100};

    virtual ~CaptureEffects() = default;
    virtual void playSound(); // returns at once
    // Over each of these, in points of the desktop. Not where the desktop asks for less motion.
    virtual void flash(const QList<QRect> &frames);
    virtual bool endFlash(); // whether there was one, which is on the screen until `repaintTime` is over
};
