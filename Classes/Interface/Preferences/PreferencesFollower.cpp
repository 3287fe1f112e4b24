#include "Classes/Interface/Preferences/PreferencesFollower.h"

#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQGridView.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QPointer>

namespace {
const QString themeKey = QStringLiteral("UseDarkUI");
const QString titlesKey = QStringLiteral("ShowLibraryItemsTitles");
const QString extensionsKey = QStringLiteral("ShowLibraryItemsExtensions");
const QString fillsCellsKey = QStringLiteral("BrowserFillsCells");
const QString badgesKey = QStringLiteral("SidebarDisplayBadges");
const QStringList sizeKeys = {QStringLiteral("IconTagSize"), QStringLiteral("SmallTagSize"),
                              QStringLiteral("MediumTagSize")};
} // namespace

PreferencesFollower::PreferencesFollower(ProjectsSidebarViewController &sidebar, BrowserViewController &browser,
                                         QObject *parent)
    : QObject(parent), m_sidebar(sidebar), m_browser(browser)
{
    showItems();
    m_token = ZQUserDefaults::standardUserDefaults().observe([self = QPointer(this)](const QString &key) {
        zqOnMainThread([self, key] {
            if (self) {
                self->preferenceDidChange(key);
            }
        });
    });
}

void PreferencesFollower::showTheme()
{
    ZQTheme::current().setDark(ZQUserDefaults::standardUserDefaults().boolForKey(themeKey));
}

void PreferencesFollower::setDark(bool isDark)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(isDark, themeKey);
    showTheme();
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
    const ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    if (key == themeKey) {
        showTheme();
        Q_EMIT followed();
    } else if (key == titlesKey || key == extensionsKey || key == fillsCellsKey) {
        showItems();
    } else if (key == badgesKey) {
        m_sidebar.setShowsCounts(defaults.boolForKey(badgesKey));
    } else if (sizeKeys.contains(key)) {
        m_browser.refetch(); // groups and searches by size have other edges
    }
}
