#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Capture/CaptureCommands.h"
#include "Classes/Capture/CaptureStore.h"
#include "Classes/Capture/ScreenSource.h"
#include "Classes/Capture/ScreenshotSession.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQNotificationCenter.h"

#include <functional>
#include <memory>

struct HotKeyCommand;

// What captures are made with. Any may be null: there is no display, no window, nobody who takes keys.
struct CaptureParts
{
    std::unique_ptr<ScreenSource> screenSource = nullptr;
    CaptureInterface *interface = nullptr;
    std::unique_ptr<HotKeyRegistering> hotKeys = nullptr;
};

// The screen-capture controller, living in this process: starts captures for menus, hot keys and commands, one at a
// time, and has what they take stored. Main thread.
class ZeltoKunViewController : public CaptureCommands, public ScreenCaptureControlling, public ScreenshotSessionDelegate
{
    Q_OBJECT
public:
    explicit ZeltoKunViewController(CaptureParts parts);
    ~ZeltoKunViewController() override;

    void loadView() override; // takes the keys of the user defaults, and follows them
    void snapArea() override { snap(ScreenshotSession::Kind::Area, {}); }
    void snapWindow() override { snap(ScreenshotSession::Kind::Window, {}); }
    void snapFullScreen() override { snap(ScreenshotSession::Kind::FullScreen, {}); }
    void snapWebsite(const QString &pageURL, const QRect &frame) override;
    void openZelto() override;
    CaptureCommands *captureCommands() override { return this; }
    quint64 snap(ScreenshotSession::Kind kind, Ended ended) override;
    void cancel(); // the choice that goes on, as the person would
    void cancel(quint64 number) override;
    QString problemOfHotKey(const QString &command) const override;
    void setHotKeysPaused(bool paused) override;
    bool finishStoring() override { return m_store.finish(); }
    bool isStoring() const override { return m_store.isStoring(); }

    void screenshotViewController(ScreenshotSession &session, const QImage &didTakeScreenshotImage) override;
    void screenshotViewController(ScreenshotSession &session, const QImage &didTakeScreenshotImage,
                                  const QString &imageName) override;
    void screenshotViewControllerDidEnd(ScreenshotSession &session, const ZQError &error) override;
    void screenshotWebWindowController(const QString &didTakeFile, const QString &forPageURL,
                                       const QString &andPageTitle,
                                       std::function<void(const ZQError &error)> didStore) override;
    void storeWebCapture(const QString &didTakeFile, const QString &forPageURL, const QString &andPageTitle,
                         Ended ended) override;

private:
    void registerHotKey(const HotKeyCommand &command);
    void fail(const ZQError &error, const Ended &ended);
    void letGoOfSession();
    CaptureStore::Told tellerFor(Ended ended);
    static void comeForward(); // as the person wants it after a capture

    std::unique_ptr<ScreenSource> m_screenSource;
    CaptureInterface *const m_interface;
    std::unique_ptr<HotKeyRegistering> m_hotKeys;
    CaptureStore m_store;
    std::unique_ptr<ScreenshotSession> m_session;
    Ended m_ended; // of the session
    quint64 m_number = 0;
    bool m_areHotKeysPaused = false;
    ZQUserDefaults::Token m_defaults;
    ZQNotificationCenter::Token m_hotKeyState;
};
