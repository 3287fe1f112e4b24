#pragma once

#include "Classes/Capture/ScreenshotSession.h"
#include "Classes/Interface/Capture/ScreenshotView.h"
#include "Classes/Interface/Capture/ZQScreenshotAreaView.h"
#include "Classes/Interface/Capture/ZQScreenshotSingleWindowView.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

class CaptureEffects;
class PickableWindows;
class ZQKeyboardHold;
class ZQLockWatch;

// A capture over all screens, in views that each cover one. An area is what was seen when the choice began; a window
// and whole screens are as they are when they are taken. Where the desktop lets no program see the screen, the choice
// is left to it. The keyboard is this session's until it has ended; so is the pointer's right button, which leaves.
// A choice that is forgotten, or meets the desktop's lock, ends as if the person had left it: the desktop could not
// lock as long as it has the keyboard.
class ZQScreenshotViewController : public QObject,
                                   public ScreenshotSession,
                                   private ZQScreenshotAreaViewDelegate,
                                   private ZQScreenshotSingleWindowViewDelegate
{
    Q_OBJECT
public:
    ZQScreenshotViewController(ScreenSource &source, ScreenshotSessionDelegate &delegate, CaptureEffects &effects);
    ~ZQScreenshotViewController() override;

    void begin(Kind kind) override;
    void cancel() override;

    // How long a choice waits for the next key, click or move of the pointer. Of those that begin later.
    void setIdleLimit(std::chrono::milliseconds limit) { m_idleTimer.setInterval(limit); }
    static constexpr std::chrono::minutes usualIdleLimit{2};
    bool eventFilter(QObject *object, QEvent *event) override; // of the views

    const std::vector<ScreenshotView *> &views() const { return m_views; } // while a person chooses

private:
    void screenshotAreaView(ZQScreenshotAreaView &view, const QRectF &didSelectScreenRect) override;
    void screenshotAreaViewDidBegin(ZQScreenshotAreaView &view) override;
    void screenshotSingleWindowView(ZQScreenshotSingleWindowView &view, quint32 didSelectWindow) override;

    void beginNow(Kind kind);
    void freezeScreens(std::function<ScreenshotView *(const FrozenScreen &screen, QWidget *parent)> makeView);
    void showViews(const QImage &desktop,
                   const std::function<ScreenshotView *(const FrozenScreen &screen, QWidget *parent)> &makeView);
    void captureScreens();
    void captureWindow(quint32 number);
    void giveKeyboardTo(ScreenshotView &view);
    void holdKeyboard(Kind kind);
    void grabKeyboard();
    void limitTheChoice();
    void closeViews();
    QRect desktopPixels() const;
    ScreenSource::Taken answer(std::function<void(const QImage &image)> use); // for this session, while it lasts
    void end(const QImage &image, const QString &name);
    void endWithout(const ZQError &error);

    ScreenSource &m_source;
    ScreenshotSessionDelegate &m_delegate;
    CaptureEffects &m_effects;
    std::vector<ScreenshotView *> m_views; // the first is the parent of the others
    PickableWindows *m_windows = nullptr;
    ScreenshotView *m_keyView = nullptr;
    QTimer m_grabTimer;
    QTimer m_idleTimer;
    std::unique_ptr<ZQLockWatch> m_lockWatch;       // while the views are there
    std::unique_ptr<ZQKeyboardHold> m_keyboardHold; // until the views have it; null: they do, or none come
    bool m_hasEnded = false;
};
