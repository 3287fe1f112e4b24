#pragma once

#include "Classes/Capture/ScreenshotSession.h"
#include "Classes/Capture/WebCaptureDelegate.h"
#include "Classes/Interface/Capture/CaptureEffects.h"

#include <memory>

class StatusIcon;
class ZQScreenshotWebWindowController;
class tamberin_AppDelegate;

// What a person sees of captures. Main thread.
class CaptureViews : public CaptureInterface, private WebCaptureDelegate
{
public:
    CaptureViews();
    ~CaptureViews() override;

    std::unique_ptr<ScreenshotSession> makeSession(ScreenSource &source, ScreenshotSessionDelegate &delegate) override;
    void showWebCapture(const QString &pageURL, const QRect &frame) override;
    void hotKeysDidChange() override;

    // For a process that stays. It goes with the application object, or before.
    void makeStatusIcon(tamberin_AppDelegate &delegate);
    void removeStatusIcon();

private:
    void screenshotWebWindowController(const QString &didTakeFile, const QString &forPageURL,
                                       const QString &andPageTitle,
                                       std::function<void(const ZQError &error)> didStore) override;

    CaptureEffects m_effects;
    std::unique_ptr<StatusIcon> m_statusIcon;
    std::unique_ptr<ZQScreenshotWebWindowController> m_webWindow; // once it was asked for
};
