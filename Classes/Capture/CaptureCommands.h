#pragma once

#include "Classes/Capture/ScreenshotSession.h"
#include "Classes/Capture/WebCaptureDelegate.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

// Captures for who waits for them to be in the library: the command line, and the window of pages. It goes before the
// application object does. Main thread.
class CaptureCommands : public QObject, public WebCaptureDelegate
{
    Q_OBJECT
public:
    enum class Outcome { Stored, CalledOff, Failed };
    struct End
    {
        Outcome outcome = Outcome::CalledOff;
        ZQError error = {};     // of what failed
        QStringList items = {}; // stored: the item directories' names
    };
    // Called once, what is stored being in the library by then. Where there is one, it is who tells the person what
    // failed.
    using Ended = std::function<void(const End &end)>;

    // The number is for `cancel`, which leaves alone those that others began since.
    virtual quint64 snap(ScreenshotSession::Kind kind, Ended ended) = 0;
    virtual void cancel(quint64 number) = 0;
    // What `screenshotWebWindowController` does, for who wants to know the items.
    virtual void storeWebCapture(const QString &didTakeFile, const QString &forPageURL, const QString &andPageTitle,
                                 Ended ended) = 0;
};
