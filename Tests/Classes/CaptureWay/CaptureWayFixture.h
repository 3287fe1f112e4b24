#pragma once

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Command/CommandContext.h"
#include "Classes/Command/CommandUserInteraction.h"
#include "Classes/Interface/Capture/CaptureViews.h"
#include "Classes/Interface/Capture/ScreenshotView.h"
#include "Classes/Interface/Window/MainWindowController.h"
#include "Classes/Interface/Window/WindowUserInteraction.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Tests/Classes/Capture/XDesktop.h"
#include "Tests/Support/UserWorld.h"

#include <QImage>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

// The application as a person has it, or as one command is, on a display with a window manager, with keys and a pointer
// that come from the server. Another program has windows there: a green one, a red one over its right half, and a blue
// patch over its left one.
class CaptureWayFixture : public testing::Test
{
protected:
    static constexpr const char *opensZelto = "AfterScreenshotOpenZelto";
    static constexpr const char *goesToScreenshots = "AfterScreenshotGotToScreenshots";

    void SetUp() override;
    void TearDown() override;
    void launchWithWindow();
    void openForCommand();
    void showOtherProgram(); // above what is there

    MainWindowController &window() { return *dynamic_cast<MainWindowController *>(delegate->mainWindowController()); }
    static bool waitFor(const std::function<bool()> &condition); // false when it takes far too long
    static void press(const QStringList &keysAndPointer);        // as xdotool has it
    // Presses the keys; returns once the choice lies over the screen and has the keyboard.
    ScreenshotView *begin(const char *keys);
    // The status of a command as a window runs it for another process, or as a process without one does.
    int run(const std::function<int(CommandContext &)> &command, bool isForAnother);

    QList<ZQRef<ZQLibraryBaseItem>> screenshots() const;
    // Of the only screenshot, once it is there; the picture is read by a program that knows nothing of this one.
    ZQRef<ZQLibraryBaseItem> waitForItem();
    static QImage plain(QImage image); // its pixels alone
    static QImage picture(const ZQLibraryBaseItem &item);
    QImage drawn(const QRect &pixels) const; // of the display, within the windows, as their program drew them
    QRect frameOf(xcb_window_t window);      // with what the window manager draws around it
    ZQObjectID screenshotsEntry() const;

    static constexpr QSize displaySize{1400, 900};
    static constexpr QSize windowSize{400, 300};
    static constexpr quint32 green = 0x00c040;
    static constexpr quint32 red = 0xe02010;
    static constexpr quint32 blue = 0x1030f0;

    UserWorld world{"capture-way"};
    XDesktop desktop;
    QRect greenRect; // in pixels of the display, as the window manager placed it
    QRect redRect;
    QRect blueRect;
    xcb_window_t greenWindow = XCB_WINDOW_NONE;
    QList<xcb_window_t> windows;
    WindowUserInteraction person;
    CommandUserInteraction shell;
    CaptureViews views;
    CommandContext context; // of the last command
    std::unique_ptr<tamberin_AppDelegate> delegate;

public:
    static constexpr const char *onThisDisplay = "--on-this-display"; // the argument of a child process
};
