#include "Classes/Interface/Capture/CaptureViews.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Capture/CaptureCommands.h"
#include "Classes/Interface/Capture/StatusIcon.h"
#include "Classes/Interface/Capture/ZQScreenshotViewController.h"
#include "Classes/Interface/Capture/ZQScreenshotWebWindowController.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <utility>

CaptureViews::CaptureViews() = default;

CaptureViews::~CaptureViews() = default;

std::unique_ptr<ScreenshotSession> CaptureViews::makeSession(ScreenSource &source, ScreenshotSessionDelegate &delegate)
{
    return std::make_unique<ZQScreenshotViewController>(source, delegate, m_effects);
}

void CaptureViews::showWebCapture(const QString &pageURL, const QRect &frame)
{
    if (!m_webWindow) {
        m_webWindow = std::make_unique<ZQScreenshotWebWindowController>(static_cast<WebCaptureDelegate &>(*this));
    }
    m_webWindow->showWebCapture(pageURL, frame);
}

// The window outlives the controller, which goes when the application quits.
void CaptureViews::screenshotWebWindowController(const QString &didTakeFile, const QString &forPageURL,
                                                 const QString &andPageTitle,
                                                 std::function<void(const ZQError &error)> didStore)
{
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    ScreenCaptureControlling *const controller = delegate ? delegate->zeltoKunViewController() : nullptr;
    if (CaptureCommands *const capture = controller ? controller->captureCommands() : nullptr) {
        capture->screenshotWebWindowController(didTakeFile, forPageURL, andPageTitle, std::move(didStore));
    } else if (didStore) {
        didStore(ZQError::with(QStringLiteral("Screenshot"), 1,
                               zqLocalized("Zelto is quitting, and takes nothing into the library any more.")));
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
