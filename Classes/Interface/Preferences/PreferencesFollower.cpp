#include "Classes/Interface/Preferences/PreferencesFollower.h"

#include "Classes/Application/HotKeyCommand.h"
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

namespace {
const QString themeKey = QStringLiteral("UseDarkUI");
const QString contrastKey = QStringLiteral("HighContrast");
const QString motionKey = QStringLiteral("ReduceMotion");
const QString titlesKey = QStringLiteral("ShowLibraryItemsTitles");
const QString extensionsKey = QStringLiteral("ShowLibraryItemsExtensions");
const QString fillsCellsKey = QStringLiteral("BrowserFillsCells");
const QString badgesKey = QStringLiteral("SidebarDisplayBadges");
const QStringList sizeKeys = {QStringLiteral("IconTagSize"), QStringLiteral("SmallTagSize"),
                              QStringLiteral("MediumTagSize")};
} // namespace

PreferencesFollower::PreferencesFollower(ProjectsSidebarViewController &sidebar, BrowserViewController &browser,
                                         UserInteraction &user, QObject *parent)
    : QObject(parent), m_sidebar(sidebar), m_browser(browser), m_user(user), m_watcher(new ZQFileWatcher(this)),
      m_desktop(new ZQDesktopSettings(this))
{
    connect(m_desktop, &ZQDesktopSettings::changed, this, [this] { showTheme(m_desktop->wishes()); });
    showItems();
    m_token = ZQUserDefaults::standardUserDefaults().observe([self = QPointer(this)](const QString &key) {
        zqOnMainThread([self, key] {
            if (self) {
                self->preferenceDidChange(key);
            }
        });
    });
    connect(m_watcher, &ZQFileWatcher::folderDidChange, this, &PreferencesFollower::lookAtFile);
    // The folder may come, or come back, at any time. The file is read after it is watched: what is written from then
    // on is heard of.
    connect(m_watcher, &ZQFileWatcher::watchingDidStart, this, &PreferencesFollower::lookAtFile);
    connect(m_watcher, &ZQFileWatcher::rootDidVanish, this, &PreferencesFollower::lookAtFile);
    m_watcher->addPath(QFileInfo(ZQUserDefaults::standardUserDefaults().path()).path());
    connect(qApp, &QGuiApplication::applicationStateChanged, this, &PreferencesFollower::lookAtFile);
    lookAtFile();
}

void PreferencesFollower::lookAtFile()
{
    ZQUserDefaults::standardUserDefaults().refresh();
}

void PreferencesFollower::showTheme(const ZQDesktopSettings::Wishes &wishes)
{
    const ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    ZQTheme::current().setDark(defaults.boolForKey(themeKey));
    ZQTheme::current().setHighContrast(wishes.hasHighContrast || defaults.boolForKey(contrastKey));
    ZQTheme::current().setReducesMotion(wishes.reducesMotion || defaults.boolForKey(motionKey));
}

void PreferencesFollower::setDark(bool isDark)
{
    if (ZQError error; !ZQUserDefaults::standardUserDefaults().storeObjectForKey(isDark, themeKey, &error)) {
        m_user.showNotificationWithText(error.localizedDescription(), NotificationPlace::Window,
                                        PreferencesPane::refusalTime);
    }
    showTheme(m_desktop->wishes());
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
        showTheme(m_desktop->wishes());
        Q_EMIT followed();
    } else if (key == contrastKey || key == motionKey) {
        showTheme(m_desktop->wishes());
    } else if (HotKeyCommand::find(key)) {
        Q_EMIT followed(); // menus show them
    } else if (key == titlesKey || key == extensionsKey || key == fillsCellsKey) {
        showItems();
    } else if (key == badgesKey) {
        showCounts();
    } else if (sizeKeys.contains(key)) {
        m_browser.refetch(); // groups and searches by size have other edges
    }
}
