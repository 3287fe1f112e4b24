#include "Classes/Interface/Capture/ZQScreenshotWebWindowController.h"

#include <QGuiApplication>
#include <QScreen>

#include <functional>

#include <gtest/gtest.h>

namespace {

class NobodyWaiting : public WebCaptureDelegate
{
public:
    void screenshotWebWindowController(const QString & /*didTakeFile*/, const QString & /*forPageURL*/,
                                       const QString & /*andPageTitle*/,
                                       std::function<void(const ZQError &error)> /*didStore*/) override
    {
    }
};

TEST(WebCaptureWindowTest, GoesWhereTheBrowserIsAndStaysOnTheScreen)
{
    NobodyWaiting delegate;
    ZQScreenshotWebWindowController window(delegate);
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    const QSize size = window.minimumSize() + QSize(20, 10);
    const QPoint place(available.right() + 1 - size.width() / 4, available.top() + 20);
    const QRect half(place, size); // its middle is on no screen
    window.showWebCapture({}, half);
    const QRect shown(QPoint(available.right() + 1 - size.width(), place.y()), size);
    EXPECT_EQ(window.geometry(), shown);
    window.showWebCapture({}, half.translated(available.width(), 0)); // on none at all
    EXPECT_EQ(window.geometry(), shown);
}

} // namespace
