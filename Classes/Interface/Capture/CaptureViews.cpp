#include "Classes/Interface/Capture/CaptureViews.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Interface/Capture/StatusIcon.h"
#include "Classes/Interface/Capture/ZQScreenshotViewController.h"

CaptureViews::CaptureViews() = default;

CaptureViews::~CaptureViews() = default;

std::unique_ptr<ScreenshotSession> CaptureViews::makeSession(ScreenSource &source, ScreenshotSessionDelegate &delegate)
{
    return std::make_unique<ZQScreenshotViewController>(source, delegate, m_effects);
}

void CaptureViews::showWebCapture(const QString &pageURL, const QRect &frame)
{
    if (webCapture) {
        webCapture(pageURL, frame);
    }
}

void CaptureViews::hotKeysDidChange()
{
    if (m_statusIcon) {
        m_statusIcon->update();
    }
}

void CaptureViews::makeStatusIcon(tamberin_AppDelegate &delegate)
{
    m_statusIcon = std::make_unique<StatusIcon>(delegate);
    QObject::connect(&delegate, &QObject::destroyed, m_statusIcon.get(), [this] { removeStatusIcon(); });
}

void CaptureViews::removeStatusIcon()
{
    m_statusIcon.reset();
}
