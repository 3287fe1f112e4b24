#include "Classes/Capture/ZeltoKunViewController.h"

#include "Classes/Application/HotKeyCommand.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QPointer>

#include <utility>

namespace {

const QString defaultName = QStringLiteral("Screenshot");

bool isOn(const char *preference)
{
    return ZQUserDefaults::standardUserDefaults().boolForKey(QString::fromLatin1(preference));
}

ZQError captureError(const QString &text)
{
    return ZQError::with(QStringLiteral("Screenshot"), 1, text);
}

} // namespace

ZeltoKunViewController::ZeltoKunViewController(CaptureParts parts)
    : m_screenSource(std::move(parts.screenSource)), m_interface(parts.interface), m_hotKeys(std::move(parts.hotKeys))
{
}

ZeltoKunViewController::~ZeltoKunViewController()
{
    if (const auto session = std::move(m_session)) {
        session->cancel();
    }
    m_store.finish(); // while everything is there that it asks
}

// Hot keys.

void ZeltoKunViewController::registerHotKey(const HotKeyCommand &command)
{
    if (!m_hotKeys || m_areHotKeysPaused) {
        return;
    }
    const QVariantMap setting = ZQUserDefaults::standardUserDefaults().objectForKey(command.preference).toMap();
    const QString problem =
        m_hotKeys->registerHotKey(command.preference, setting, [this, run = command.run] { (this->*run)(); });
    if (!problem.isEmpty()) {
        qCInfo(zqLogApplication).noquote() << command.preference << "is without effect:" << problem;
    }
}

void ZeltoKunViewController::loadView()
{
    const auto announce = [this] {
        if (m_interface) {
            m_interface->hotKeysDidChange();
        }
    };
    for (const HotKeyCommand &command : HotKeyCommand::all()) {
        registerHotKey(command);
    }
    m_hotKeyState = ZQNotificationCenter::defaultCenter().addObserver(
        HotKeyRegistering::stateDidChange, nullptr, [announce](const ZQNotification &) { announce(); });
    // On whatever thread sees that another process wrote them.
    m_defaults = ZQUserDefaults::standardUserDefaults().observe([self = QPointer(this), announce](const QString &key) {
        if (const HotKeyCommand *const changed = HotKeyCommand::find(key)) {
            zqOnMainThread([self, announce, changed] {
                if (self) {
                    self->registerHotKey(*changed);
                    announce();
                }
            });
        }
    });
    announce();
    m_store.takeUpLeft();
}

QString ZeltoKunViewController::problemOfHotKey(const QString &command) const
{
    return m_hotKeys ? m_hotKeys->problemOfHotKey(command) : QString();
}

void ZeltoKunViewController::setHotKeysPaused(bool paused)
{
    if (!m_hotKeys || m_areHotKeysPaused == paused) {
        return;
    }
    m_areHotKeysPaused = paused;
    for (const HotKeyCommand &command : HotKeyCommand::all()) {
        if (paused) {
            m_hotKeys->registerHotKey(command.preference, {}, {});
        } else {
            registerHotKey(command);
        }
    }
}

// Captures.

quint64 ZeltoKunViewController::snap(ScreenshotSession::Kind kind, Ended ended)
{
    cancel();
    const quint64 number = ++m_number;
    if (!m_screenSource) {
        fail(captureError(zqLocalized("There is no display here that could be captured. Start Zelto within a desktop "
                                      "session.")),
             ended);
        return number;
    }
    if (!m_interface) {
        fail(captureError(zqLocalized("Without its window Zelto takes no pictures of the screen.")), ended);
        return number;
    }
    m_ended = std::move(ended);
    m_session = m_interface->makeSession(*m_screenSource, *this);
    m_session->begin(kind);
    return number;
}

void ZeltoKunViewController::cancel()
{
    if (m_session) {
        m_session->cancel(); // comes back, and lets go of it
    }
}

void ZeltoKunViewController::cancel(quint64 number)
{
    if (number == m_number) {
        cancel();
    }
}

void ZeltoKunViewController::snapWebsite(const QString &pageURL, const QRect &frame)
{
    if (m_interface) {
        m_interface->showWebCapture(pageURL, frame);
    }
}

void ZeltoKunViewController::openZelto()
{
    if (tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate()) {
        delegate->reopenMainWindow();
    }
}

void ZeltoKunViewController::fail(const ZQError &error, const Ended &ended)
{
    const bool isKnown = error.domain == CaptureStore::errorDomain && error.code != CaptureStore::NotOpen &&
                         error.code != CaptureStore::Held;
    if (tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate(); delegate && !ended && !isKnown) {
        delegate->reopenMainWindow(); // a hot key was pressed in another program, where nobody sees this
        delegate->userInteraction().presentError(error);
    }
    if (ended) {
        ended({Outcome::Failed, error});
    }
}

// It calls from inside itself.
void ZeltoKunViewController::letGoOfSession()
{
    if (m_session) {
        QMetaObject::invokeMethod(
            this, [session = std::shared_ptr<ScreenshotSession>(std::move(m_session))] {}, Qt::QueuedConnection);
    }
}

void ZeltoKunViewController::screenshotViewController(ScreenshotSession &session, const QImage &didTakeScreenshotImage)
{
    screenshotViewController(session, didTakeScreenshotImage, defaultName);
}

void ZeltoKunViewController::screenshotViewController(ScreenshotSession & /*session*/,
                                                      const QImage &didTakeScreenshotImage, const QString &imageName)
{
    letGoOfSession();
    m_store.store(didTakeScreenshotImage, imageName, {}, tellerFor(std::exchange(m_ended, nullptr)));
}

void ZeltoKunViewController::screenshotViewControllerDidEnd(ScreenshotSession & /*session*/, const ZQError &error)
{
    letGoOfSession();
    const Ended ended = std::exchange(m_ended, nullptr);
    if (!error.isNull()) {
        fail(error, ended);
    } else if (ended) {
        ended({Outcome::CalledOff});
    }
}

void ZeltoKunViewController::screenshotWebWindowController(const QString &didTakeFile, const QString &forPageURL,
                                                           const QString &andPageTitle,
                                                           std::function<void(const ZQError &error)> didStore)
{
    storeWebCapture(didTakeFile, forPageURL, andPageTitle,
                    [didStore = std::move(didStore)](const End &end) { didStore(end.error); });
}

void ZeltoKunViewController::storeWebCapture(const QString &didTakeFile, const QString &forPageURL,
                                             const QString &andPageTitle, Ended ended)
{
    QVariantMap metadata;
    if (!forPageURL.isEmpty()) {
        metadata.insert(QStringLiteral("webPageURL"), forPageURL);
    }
    if (const QString title = andPageTitle.simplified(); !title.isEmpty()) {
        metadata.insert(QStringLiteral("title"), title);
    }
    m_store.importFile(didTakeFile, metadata, tellerFor(std::move(ended)));
}

CaptureStore::Told ZeltoKunViewController::tellerFor(Ended ended)
{
    return {.importDidBegin = &comeForward,
            .didEnd = [this, ended = std::move(ended)](const QStringList &items, const ZQError &error) {
                if (!error.isNull()) {
                    fail(error, ended);
                } else if (ended) {
                    ended({Outcome::Stored, {}, items});
                }
            }};
}

// Not once the import has ended: others may be before it, and a window that comes forward much later only disturbs.
void ZeltoKunViewController::comeForward()
{
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    if (!delegate) {
        return;
    }
    if (isOn("AfterScreenshotOpenZelto")) {
        delegate->reopenMainWindow();
    }
    if (MainWindowControlling *const window = delegate->mainWindowController();
        window && isOn("AfterScreenshotGotToScreenshots")) {
        const auto screenshots =
            ZQSidebarBaseItem::screenshotProjectInManagedObjectContext(*delegate->managedObjectContext());
        if (screenshots) {
            window->selectSidebarItem(screenshots->objectID());
        }
    }
}
