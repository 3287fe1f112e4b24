#pragma once

#include <QString>

// Who takes a page that was captured. Main thread.
class WebCaptureDelegate
{
public:
    virtual ~WebCaptureDelegate() = default;
    // A finished file, ".png" or ".psd", in a fresh folder of the temporary area. File and folder are the receiver's
    // from then on.
    virtual void screenshotWebWindowController(const QString &didTakeFile, const QString &forPageURL,
                                               const QString &andPageTitle) = 0;
};
