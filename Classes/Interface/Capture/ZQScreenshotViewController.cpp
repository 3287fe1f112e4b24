#include "Classes/Interface/Capture/ZQScreenshotViewController.h"

#include "Classes/Interface/Capture/CaptureEffects.h"
#include "Classes/Interface/Capture/PickableWindows.h"
#include "Kit/Desktop/ZQKeyboardHold.h"
#include "Kit/Desktop/ZQLockWatch.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QApplication>
#include <QCursor>
#include <QInputEvent>
#include <QPointer>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace {

const QString defaultName = QStringLiteral("Screenshot");
constexpr std::chrono::milliseconds grabPause(10);

bool isX()
{
    return QGuiApplication::platformName() == QStringLiteral("xcb");
}

ZQError cannotSee()
{
    return ZQError::with(QStringLiteral("Screenshot"), 1, zqLocalized("There is no screen that could be captured"));
}

} // namespace

ZQScreenshotViewController::ZQScreenshotViewController(ScreenSource &source, ScreenshotSessionDelegate &delegate,
                                                       CaptureEffects &effects)
    : m_source(source), m_delegate(delegate), m_effects(effects)
{
    m_grabTimer.setInterval(grabPause);
    connect(&m_grabTimer, &QTimer::timeout, this, &ZQScreenshotViewController::grabKeyboard);
    m_idleTimer.setSingleShot(true);
    m_idleTimer.setInterval(usualIdleLimit);
    // Queued, since the session goes with its timer.
    connect(&m_idleTimer, &QTimer::timeout, this, &ZQScreenshotViewController::cancel, Qt::QueuedConnection);
    // What lies where is another matter then.
    connect(qApp, &QGuiApplication::screenAdded, this, &ZQScreenshotViewController::cancel);
    connect(qApp, &QGuiApplication::screenRemoved, this, &ZQScreenshotViewController::cancel);
}

ZQScreenshotViewController::~ZQScreenshotViewController()
{
    closeViews();
}

// What is typed right after the hot key is meant for the choice, and must not reach the program that has the focus.
void ZQScreenshotViewController::holdKeyboard(Kind kind)
{
    if (kind != Kind::FullScreen && isX() && m_source.canSeeScreen()) {
        m_keyboardHold = std::make_unique<ZQKeyboardHold>();
    }
}

void ZQScreenshotViewController::begin(Kind kind)
{
    holdKeyboard(kind);
    if (m_effects.endFlash()) { // of the capture before
        QTimer::singleShot(CaptureEffects::repaintTime, this, [this, kind] { beginNow(kind); });
    } else {
        beginNow(kind);
    }
}

void ZQScreenshotViewController::beginNow(Kind kind)
{
    if (m_hasEnded) {
        return;
    }
    if (kind == Kind::FullScreen) {
        captureScreens();
    } else if (!m_source.canSeeScreen()) {
        m_source.captureInteractively(answer([this](const QImage &image) { end(image, defaultName); }));
    } else if (kind == Kind::Area) {
        freezeScreens([this](const FrozenScreen &screen, QWidget *parent) {
            return new ZQScreenshotAreaView(screen, *this, parent);
        });
    } else {
        m_windows = new PickableWindows(m_source, this);
        freezeScreens([this](const FrozenScreen &screen, QWidget *parent) {
            return new ZQScreenshotSingleWindowView(screen, *m_windows, *this, parent);
        });
    }
}

void ZQScreenshotViewController::cancel()
{
    endWithout(ZQError());
}

ScreenSource::Taken ZQScreenshotViewController::answer(std::function<void(const QImage &image)> use)
{
    return [self = QPointer(this), use = std::move(use)](const QImage &image, const ZQError &error) {
        if (!self || self->m_hasEnded) {
            return;
        }
        if (image.isNull()) {
            self->endWithout(error);
        } else {
            use(image);
        }
    };
}

QRect ZQScreenshotViewController::desktopPixels() const
{
    QRect all;
    for (const ScreenInfo &screen : m_source.screens()) {
        all |= screen.pixelFrame;
    }
    return all;
}

void ZQScreenshotViewController::captureScreens()
{
    m_effects.playSound();
    m_source.captureAllScreens(answer([this](const QImage &image) {
        QList<QRect> frames;
        for (const ScreenInfo &screen : m_source.screens()) {
            frames.append(screen.frame);
        }
        m_effects.flash(frames);
        end(image, defaultName);
    }));
}

// The choice.

void ZQScreenshotViewController::freezeScreens(
    std::function<ScreenshotView *(const FrozenScreen &screen, QWidget *parent)> makeView)
{
    const QRect all = desktopPixels();
    if (all.isEmpty()) {
        endWithout(cannotSee());
        return;
    }
    m_source.captureRect(
        all, answer([this, makeView = std::move(makeView)](const QImage &image) { showViews(image, makeView); }));
}

void ZQScreenshotViewController::showViews(
    const QImage &desktop, const std::function<ScreenshotView *(const FrozenScreen &screen, QWidget *parent)> &makeView)
{
    const QPoint origin = desktopPixels().topLeft();
    for (const ScreenInfo &info : m_source.screens()) {
        QWidget *const parent = m_views.empty() ? nullptr : m_views.front();
        ScreenshotView *const view = makeView({info, desktop.copy(info.pixelFrame.translated(-origin))}, parent);
        view->left = [this] { cancel(); };
        view->entered = [this, view] {
            const auto *area = qobject_cast<ZQScreenshotAreaView *>(m_keyView);
            if (!area || area->selection().isEmpty()) { // the keys go on moving what is selected
                giveKeyboardTo(*view);
            }
        };
        m_views.push_back(view);
    }
    // A sheet that asks something must not take the clicks of what lies over it; children of what is modal have them.
    m_views.front()->setWindowModality(Qt::ApplicationModal);
    while (QWidget *popup = QApplication::activePopupWidget()) {
        popup->close(); // it is in the picture, and holds pointer and keyboard
    }
    ScreenshotView *underPointer = m_views.front();
    for (ScreenshotView *view : m_views) {
        view->coverScreen();
        if (view->geometry().contains(QCursor::pos())) {
            underPointer = view;
        }
    }
    giveKeyboardTo(*underPointer);
    limitTheChoice();
}

void ZQScreenshotViewController::limitTheChoice()
{
    for (ScreenshotView *const view : m_views) {
        view->installEventFilter(this);
    }
    m_idleTimer.start();
    m_lockWatch = std::make_unique<ZQLockWatch>();
    connect(m_lockWatch.get(), &ZQLockWatch::willLock, this, &ZQScreenshotViewController::cancel, Qt::QueuedConnection);
}

bool ZQScreenshotViewController::eventFilter(QObject *object, QEvent *event)
{
    if (m_idleTimer.isActive() && dynamic_cast<QInputEvent *>(event)) {
        m_idleTimer.start();
    }
    return QObject::eventFilter(object, event);
}

void ZQScreenshotViewController::giveKeyboardTo(ScreenshotView &view)
{
    if (m_keyView != &view) {
        m_keyboardHold.reset();
        m_keyView = &view;
        view.setFocus();
        view.grabKeyboard();
        grabKeyboard();
    }
}

// Not granted while a menu of another program is open, or the hot key is still held.
void ZQScreenshotViewController::grabKeyboard()
{
    QWindow *const window = m_keyView ? m_keyView->windowHandle() : nullptr;
    if (!isX() || !window || window->setKeyboardGrabEnabled(true)) {
        m_grabTimer.stop();
    } else if (!m_grabTimer.isActive()) {
        m_grabTimer.start();
    }
}

// Views are left to the event loop, since what they tell may end the session.
void ZQScreenshotViewController::closeViews()
{
    m_keyboardHold.reset();
    m_grabTimer.stop();
    m_idleTimer.stop();
    m_lockWatch.reset();
    if (m_keyView) {
        m_keyView->releaseKeyboard();
        m_keyView = nullptr;
    }
    const std::vector<ScreenshotView *> views = std::exchange(m_views, {});
    for (auto view = views.rbegin(); view != views.rend(); ++view) {
        (*view)->uncoverScreen();
    }
    if (!views.empty()) {
        views.front()->deleteLater();
    }
}

void ZQScreenshotViewController::screenshotAreaViewDidBegin(ZQScreenshotAreaView &view)
{
    for (ScreenshotView *other : m_views) {
        if (other != &view) {
            static_cast<ZQScreenshotAreaView *>(other)->clearSelection();
        }
    }
    giveKeyboardTo(view);
}

void ZQScreenshotViewController::screenshotAreaView(ZQScreenshotAreaView &view, const QRectF &didSelectScreenRect)
{
    const FrozenScreen &screen = view.screen();
    QImage image = screen.image.copy(view.pixelRect(didSelectScreenRect));
    image.setDevicePixelRatio(screen.info.scale);
    const QRect flashed = didSelectScreenRect.toAlignedRect().translated(screen.info.frame.topLeft());
    closeViews();
    m_effects.playSound();
    m_effects.flash({flashed});
    end(image, defaultName);
}

void ZQScreenshotViewController::screenshotSingleWindowView(ZQScreenshotSingleWindowView & /*view*/,
                                                            quint32 didSelectWindow)
{
    closeViews();
    QTimer::singleShot(CaptureEffects::repaintTime, this, [this, didSelectWindow] { captureWindow(didSelectWindow); });
}

void ZQScreenshotViewController::captureWindow(quint32 number)
{
    if (m_hasEnded) {
        return;
    }
    const QVariantMap description = m_source.windowDescription(number).value_or(QVariantMap());
    const QString owner = description.value(QStringLiteral("kCGWindowOwnerName")).toString();
    const QRect bounds = description.value(QStringLiteral("kCGWindowBounds")).toRect();
    m_source.captureWindow(
        number, answer([this, owner, bounds](const QImage &image) {
            QList<QRect> frames;
            for (const ScreenInfo &screen : m_source.screens()) {
                const QRect here = bounds.intersected(screen.pixelFrame).translated(-screen.pixelFrame.topLeft());
                const double scale = screen.scale;
                const QRectF points(here.x() / scale, here.y() / scale, here.width() / scale, here.height() / scale);
                if (!here.isEmpty()) {
                    frames.append(points.toAlignedRect().translated(screen.frame.topLeft()));
                }
            }
            m_effects.playSound();
            m_effects.flash(frames);
            end(image, owner.isEmpty() ? defaultName : owner);
        }));
}

// The end; the delegate may delete the session meanwhile.

void ZQScreenshotViewController::end(const QImage &image, const QString &name)
{
    if (std::exchange(m_hasEnded, true)) {
        return;
    }
    closeViews();
    if (name == defaultName) {
        m_delegate.screenshotViewController(*this, image);
    } else {
        m_delegate.screenshotViewController(*this, image, name);
    }
}

void ZQScreenshotViewController::endWithout(const ZQError &error)
{
    if (std::exchange(m_hasEnded, true)) {
        return;
    }
    closeViews();
    m_delegate.screenshotViewControllerDidEnd(*this, error);
}
