#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QImage>
#include <QList>
#include <QRect>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <optional>

// One screen of the desktop.
struct ScreenInfo
{
    QString name;
    QRect frame;      // in points, as Qt places widgets on the desktop
    QRect pixelFrame; // in pixels of the whole desktop
    double scale = 1; // pixels a point
};

// What captures need of the display: which screens and windows there are, and their pixels. Main thread.
//
// A window is a dictionary, as the predicate for those that can be picked reads it:
// "kCGWindowNumber" (quint32), "kCGWindowLayer" (int: 0 a usual window, below 0 the desktop itself, 20 and above docks,
// panels, menus and tool tips), "kCGWindowBounds" (QRect in pixels of the whole desktop, with its frame, without its
// shadow), "kCGWindowOwnerName" (its program), "kCGWindowName" (its title, may be missing).
class ScreenSource
{
public:
    // A picture in pixels, its device pixel ratio that of its screen; or null with why not, for the person. Cancelled
    // by the person: null without an error.
    using Taken = std::function<void(const QImage &image, const ZQError &error)>;

    virtual ~ScreenSource() = default;

    // False where the desktop lets no program see windows and pixels (Wayland): the views cannot be drawn over the
    // screen, and `captureInteractively` leaves the choice to the desktop.
    virtual bool canSeeScreen() const = 0;
    virtual QList<ScreenInfo> screens() const = 0;
    virtual QList<QVariantMap> onScreenWindows() const = 0; // front to back; empty where they cannot be seen
    virtual std::optional<QVariantMap> windowDescription(quint32 number) const = 0;
    // All that is seen there, over all windows. `rect` in pixels of the whole desktop; what lies on no screen is
    // transparent.
    virtual void captureRect(const QRect &rect, Taken taken) = 0;
    // That window alone, also where others cover it, within its own bounds.
    virtual void captureWindow(quint32 number, Taken taken) = 0;
    virtual void captureAllScreens(Taken taken) = 0;
    virtual void captureInteractively(Taken taken) = 0;
};
