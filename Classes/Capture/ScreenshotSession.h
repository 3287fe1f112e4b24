#pragma once

#include "Classes/Capture/ScreenSource.h"

#include <QImage>
#include <QString>

#include <memory>

class ScreenshotSession;

// Who hears of what a session took. Main thread.
class ScreenshotSessionDelegate
{
public:
    virtual ~ScreenshotSessionDelegate() = default;
    virtual void screenshotViewController(ScreenshotSession &session, const QImage &didTakeScreenshotImage) = 0;
    virtual void screenshotViewController(ScreenshotSession &session, const QImage &didTakeScreenshotImage,
                                          const QString &imageName) = 0;
    // Called off, or not possible: the error says why, and is null when the person ended it.
    virtual void screenshotViewControllerDidEnd(ScreenshotSession &session, const ZQError &error) = 0;
};

// One capture over all screens: the views that the person chooses in, the sound, the flash. Implemented by the
// interface; it ends itself, and tells its delegate exactly once. Main thread.
class ScreenshotSession
{
public:
    enum class Kind { Area, Window, FullScreen };

    virtual ~ScreenshotSession() = default;
    virtual void begin(Kind kind) = 0;
    virtual void cancel() = 0; // tells the delegate; nothing when it has ended
};

// Makes sessions and what else of a capture a person sees; implemented by the interface.
class CaptureInterface
{
public:
    virtual ~CaptureInterface() = default;
    virtual std::unique_ptr<ScreenshotSession> makeSession(ScreenSource &source,
                                                           ScreenshotSessionDelegate &delegate) = 0;
    // The window for pages, forward, with that address and at that place.
    virtual void showWebCapture(const QString &pageURL, const QRect &frame) = 0;
    // The keys of a command changed, or whether they could be taken: what shows them does so anew.
    virtual void hotKeysDidChange() = 0;
};
