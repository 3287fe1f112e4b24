#pragma once

#include "Classes/Capture/ScreenshotSession.h"
#include "Classes/Interface/Capture/CaptureEffects.h"

#include <functional>
#include <memory>

class StatusIcon;
class tamberin_AppDelegate;

// What a person sees of captures. Main thread.
class CaptureViews : public CaptureInterface
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

    std::function<void(const QString &pageURL, const QRect &frame)> webCapture; // null: pages cannot be captured

private:
    CaptureEffects m_effects;
    std::unique_ptr<StatusIcon> m_statusIcon;
};
