#include "Classes/Interface/Preferences/PreferencesFollower.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Preferences/PreferencesPane.h"
#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"
#include "Kit/Files/ZQFileWatcher.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQGridView.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QPointer>

#include <chrono>

namespace {
constexpr std::chrono::seconds returnInterval(1);
const QString themeKey = QStringLiteral("UseDarkUI");
const QString titlesKey = QStringLiteral("ShowLibraryItemsTitles");
const QString extensionsKey = QStringLiteral("ShowLibraryItemsExtensions");
const QString fillsCellsKey = QStringLiteral("BrowserFillsCells");
const QString badgesKey = QStringLiteral("SidebarDisplayBadges");
const QStringList sizeKeys = {QStringLiteral("IconTagSize"), QStringLiteral("SmallTagSize"),
                              QStringLiteral("MediumTagSize")};
} // namespace

PreferencesFollower::PreferencesFollower(ProjectsSidebarViewController &sidebar, BrowserViewController &browser,
                                         UserInteraction &user, QObject *parent)
    : QObject(parent), m_sidebar(sidebar), m_browser(browser), m_user(user), m_watcher(new ZQFileWatcher(this))
{
    showItems();
    m_token = ZQUserDefaults::standardUserDefaults().observe([self = QPointer(this)](const QString &key) {
        zqOnMainThread([self, key] {
            if (self) {
                self->preferenceDidChange(key);
            }
        });
    });
    connect(m_watcher, &ZQFileWatcher::folderDidChange, this, &PreferencesFollower::lookAtFile);
    connect(m_watcher, &ZQFileWatcher::rootDidVanish, this, [this](const QString &root) {
        m_watcher->removePath(root);
        lookAtFile();
    });
    m_return.setInterval(returnInterval);
    connect(&m_return, &QTimer::timeout, this, &PreferencesFollower::lookAtFile);
    connect(qApp, &QGuiApplication::applicationStateChanged, this, &PreferencesFollower::lookAtFile);
    lookAtFile();
}

// The folder may come, or come back, at any time, which its own watch does not tell. The file is read after that is
// set: what is written from then on is heard of.
void PreferencesFollower::lookAtFile()
{
    const ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    const QString folder = QFileInfo(defaults.path()).path();
    const bool isWatched = !m_watcher->paths().isEmpty() || (QFileInfo(folder).isDir() && m_watcher->addPath(folder));
    if (isWatched) {
        m_return.stop();
    } else if (!m_return.isActive()) {
        m_return.start();
    }
    defaults.refresh();
}

void PreferencesFollower::showTheme()
{
    ZQTheme::current().setDark(ZQUserDefaults::standardUserDefaults().boolForKey(themeKey));
}

void PreferencesFollower::setDark(bool isDark)
{
    if (ZQError error; !ZQUserDefaults::standardUserDefaults().storeObjectForKey(isDark, themeKey, &error)) {
        m_user.showNotificationWithText(error.localizedDescription(), NotificationPlace::Window,
                                        PreferencesPane::refusalTime);
    }
    showTheme();
}

void PreferencesFollower::showCounts()
{
    m_sidebar.setShowsCounts(ZQUserDefaults::standardUserDefaults().boolForKey(badgesKey));
}

void PreferencesFollower::showItems()
{
    const ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    const bool hasTitles = defaults.boolForKey(titlesKey);
    m_browser.grid().setShowsTitles(hasTitles, hasTitles && defaults.boolForKey(extensionsKey));
    m_browser.grid().setFillsCells(defaults.boolForKey(fillsCellsKey));
}

void PreferencesFollower::preferenceDidChange(const QString &key)
{
    if (key == themeKey) {
        showTheme();
        Q_EMIT followed();
    } else if (key == titlesKey || key == extensionsKey || key == fillsCellsKey) {
        showItems();
    } else if (key == badgesKey) {
        showCounts();
    } else if (sizeKeys.contains(key)) {
        m_browser.refetch(); // groups and searches by size have other edges
    }
}
