#include "Classes/Services/SoftwareUpdater.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Services/InstalledBy.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QDateTime>
#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPointer>
#include <QScopedValueRollback>
#include <QThreadPool>

using namespace std::chrono_literals;

namespace {

constexpr auto usualInterval = 1h; // a day has passed within it, or a machine has slept over it
constexpr qint64 aDay = 24 * 60 * 60;
SoftwareUpdater *theUpdater = nullptr;

ZQUserDefaults &defaults()
{
    return ZQUserDefaults::standardUserDefaults();
}

UserInteraction *personAtWindow()
{
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    return delegate && delegate->applicationLauched() && !delegate->isTerminating() ? &delegate->userInteraction()
                                                                                    : nullptr;
}

bool isADaySince(const QDateTime &date)
{
    const qint64 seconds = date.secsTo(QDateTime::currentDateTimeUtc());
    return !date.isValid() || seconds >= aDay || seconds < -aDay; // a clock that was wrong must not end it
}

} // namespace

SoftwareUpdater::SoftwareUpdater()
    : SoftwareUpdater({&personAtWindow, [](const QUrl &page) { QDesktopServices::openUrl(page); }, {}})
{
}

SoftwareUpdater::SoftwareUpdater(Uses uses) : m_uses(std::move(uses))
{
    if (m_uses.executable.isEmpty()) {
        m_uses.executable = QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath();
    }
    connect(&m_timer, &QTimer::timeout, this, &SoftwareUpdater::checkIfDue);
    theUpdater = this;
}

SoftwareUpdater::~SoftwareUpdater()
{
    if (theUpdater == this) {
        theUpdater = nullptr;
    }
}

SoftwareUpdater *SoftwareUpdater::current()
{
    return theUpdater;
}

bool SoftwareUpdater::areTestKeysHeld() const
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        return false;
    }
    const Qt::KeyboardModifiers held = QGuiApplication::queryKeyboardModifiers();
    return held.testFlag(Qt::AltModifier) && held.testFlag(Qt::ControlModifier);
}

void SoftwareUpdater::setAutomaticChecks(bool automatic)
{
    if (automatic) {
        m_timer.start(m_uses.firstLook);
    } else {
        m_timer.stop();
    }
}

QString SoftwareUpdater::whyNot(const UpdateCheck::Settings &settings, const QString &executable)
{
    if (const auto manager = InstalledBy::managerOf(executable, QProcessEnvironment::systemEnvironment())) {
        return zqFormat(zqLocalized("Zelto was installed by %@, which brings new versions, too."), {manager->text()});
    }
    return settings.isComplete() ? QString()
                                 : zqLocalized("This Zelto was built without an address that announces new versions. "
                                               "Look where you got it.");
}

// The package manager's database is large and may have to come from a slow disk.
void SoftwareUpdater::findWhyNot(std::function<void(const QString &)> then)
{
    const UpdateCheck::Settings settings = UpdateCheck::settingsFor(m_appCastURL);
    QThreadPool::globalInstance()->start(
        [self = QPointer(this), settings, executable = m_uses.executable, then = std::move(then)] {
            const QString reason = whyNot(settings, executable);
            zqOnMainThread([self, reason, then] {
                if (self) {
                    then(reason);
                }
            });
        });
}

void SoftwareUpdater::checkIfDue()
{
    m_timer.start(usualInterval);
    const bool isRefused = defaults().isSet(checksKey) && !defaults().boolForKey(checksKey);
    if (isRefused || m_check || m_isAsking || !isADaySince(defaults().objectForKey(lastCheckKey).toDateTime())) {
        return;
    }
    findWhyNot([this](const QString &reason) {
        if (reason.isEmpty() && isAgreedTo()) {
            check(false);
        }
    });
}

bool SoftwareUpdater::isAgreedTo()
{
    if (defaults().isSet(checksKey)) {
        return defaults().boolForKey(checksKey);
    }
    UserInteraction *const user = m_uses.user();
    if (!user || m_isAsking) {
        return false;
    }
    const QScopedValueRollback asking(m_isAsking, true);
    UserQuestion question;
    question.message = zqLocalized("May Zelto look for new versions?");
    question.informativeText = zqLocalized("It asks its makers' server once a day which version is the newest. Nothing "
                                           "about you or your library is sent, and nothing is installed by itself.");
    question.buttons = {zqLocalized("Look Once a Day"), zqLocalized("Don't Look")};
    const QPointer self(this);
    const bool isAgreed = user->ask(question) == 0;
    if (self) {
        defaults().setObjectForKey(isAgreed, checksKey);
    }
    return self && isAgreed;
}

void SoftwareUpdater::checkForUpdates()
{
    findWhyNot([this](const QString &reason) {
        UserInteraction *const user = m_uses.user();
        if (reason.isEmpty()) {
            check(true);
        } else if (user) {
            user->ask({zqLocalized("Zelto does not look for new versions"), reason, {zqLocalized("OK")}, {}});
        }
    });
}

void SoftwareUpdater::check(bool isAsked)
{
    m_isAsked = m_isAsked || isAsked;
    if (m_check) {
        return; // what it finds is told the person, too
    }
    m_check = UpdateCheck::start(UpdateCheck::settingsFor(m_appCastURL), [this](const UpdateAnswer &answer) {
        const bool isToldAnyway = std::exchange(m_isAsked, false);
        m_check.reset();
        if (answer.kind != UpdateAnswer::Kind::Failed) {
            defaults().setObjectForKey(QDateTime::currentDateTimeUtc(), lastCheckKey);
        }
        show(answer, isToldAnyway);
    });
}

void SoftwareUpdater::show(const UpdateAnswer &answer, bool isAsked)
{
    UserInteraction *const user = m_uses.user();
    const bool isNewer = answer.kind == UpdateAnswer::Kind::Newer;
    if (!isAsked && answer.kind == UpdateAnswer::Kind::Failed) {
        qCInfo(zqLogApplication) << "no answer about new versions" << answer.error.domain << answer.error.code;
    }
    if (!user) {
        return;
    }
    if (isNewer && (isAsked || defaults().stringForKey(skippedKey) != answer.feed->version)) {
        showNewer(answer, *user);
    } else if (isAsked && !isNewer) {
        const QString title = answer.kind == UpdateAnswer::Kind::Failed
                                  ? zqLocalized("Zelto could not look for new versions")
                                  : zqLocalized("Zelto is up to date");
        user->ask({title, answer.text(), {zqLocalized("OK")}, {}});
    }
}

void SoftwareUpdater::showNewer(const UpdateAnswer &answer, UserInteraction &user)
{
    enum Button { OpenPage, Skip, Later };
    const UpdateFeed feed = *answer.feed;
    UserQuestion question;
    question.message = zqFormat(zqLocalized("Zelto %@ is there"), {feed.version});
    question.informativeText = zqFormat(zqLocalized("You have %@."), {answer.version});
    if (!feed.notes.isEmpty()) {
        constexpr qsizetype longestShown = 1200;
        question.informativeText += QStringLiteral("\n\n") + zqForLabel(feed.notes, longestShown);
    }
    question.buttons = {zqLocalized("Open Download Page"), zqLocalized("Skip This Version"), zqLocalized("Later")};
    const QPointer self(this);
    const int answered = user.ask(question);
    if (!self) {
        return;
    }
    if (answered == OpenPage) {
        m_uses.openPage(feed.page);
    } else if (answered == Skip) {
        defaults().setObjectForKey(feed.version, skippedKey);
    }
}
