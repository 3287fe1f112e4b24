#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

#include <functional>

// Who takes a page that was captured. Main thread.
class WebCaptureDelegate
{
public:
    virtual ~WebCaptureDelegate() = default;
    // A finished file, ".png" or ".psd", in a fresh folder of the temporary area. File and folder are the receiver's
    // from then on. `didStore` is called once, without an error when it is in the library; not when the application
    // ends before.
    virtual void screenshotWebWindowController(const QString &didTakeFile, const QString &forPageURL,
                                               const QString &andPageTitle,
                                               std::function<void(const ZQError &error)> didStore) = 0;
};
