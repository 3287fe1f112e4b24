#include "Classes/Browsing/OpenTabs.h"

#include "Kit/Files/ZQUserDefaults.h"

#include <QUuid>

#include <algorithm>
#include <utility>

namespace {
const QString tabsKey = QStringLiteral("OpenTabs");
const QString currentKey = QStringLiteral("SelectedTab");
const QString itemsKey = QStringLiteral("items");
const QString searchKey = QStringLiteral("search");
} // namespace

OpenTabs::OpenTabs(EditContext &edits, QObject *parent)
    : QObject(parent), m_edits(edits), m_tabs({std::make_shared<TabState>(edits)})
{
}

QStringList OpenTabs::titles() const
{
    QStringList result;
    for (const auto &tab : m_tabs) {
        result.append(tab->tabName());
    }
    return result;
}

void OpenTabs::select(int index)
{
    if (index >= 0 && index < count()) {
        m_current = index;
        Q_EMIT currentChanged();
    }
}

void OpenTabs::selectNext(int step)
{
    select((m_current + step + count()) % count());
}

void OpenTabs::insertBesideCurrent(std::shared_ptr<TabState> tab)
{
    m_tabs.insert(m_current + 1, std::move(tab));
    select(m_current + 1);
}

void OpenTabs::newTab()
{
    insertBesideCurrent(std::make_shared<TabState>(m_edits, current()->sidebarSelectedItems()));
}

void OpenTabs::closeTab(int index)
{
    if (count() < 2 || index < 0 || index >= count()) {
        return;
    }
    m_closed.append(m_tabs.takeAt(index));
    // The one in front stays there; when it is closed, the next one comes, or the last.
    const int next = index < m_current ? m_current - 1 : m_current;
    select(std::min(next, count() - 1));
}

void OpenTabs::reopenTab()
{
    if (canReopen()) {
        insertBesideCurrent(m_closed.takeLast());
    }
}

void OpenTabs::moveTab(int from, int to)
{
    m_tabs.move(from, to);
    m_current = to;
    Q_EMIT tabsChanged();
}

void OpenTabs::save() const
{
    QVariantList tabs;
    const QUuid store = m_edits.context.persistentStoreCoordinator()->storeUUID();
    for (const auto &tab : m_tabs) {
        QStringList items;
        for (const ZQObjectID &id : tab->sidebarSelectedItems()) {
            items.append(id.URIRepresentation(store));
        }
        tabs.append(QVariantMap{{itemsKey, items}, {searchKey, tab->searchString()}});
    }
    auto &defaults = ZQUserDefaults::standardUserDefaults();
    defaults.setObjectForKey(tabs, tabsKey);
    defaults.setObjectForKey(m_current, currentKey);
}

void OpenTabs::restore()
{
    const auto &defaults = ZQUserDefaults::standardUserDefaults();
    QList<std::shared_ptr<TabState>> tabs;
    for (const QVariant &value : defaults.objectForKey(tabsKey).toList()) {
        QList<ZQObjectID> items;
        for (const QString &uri : value.toMap().value(itemsKey).toStringList()) {
            const auto item = zqCast<ZQSidebarBaseItem>(m_edits.context.objectWithURIRepresentation(uri));
            if (item && item->active()) {
                items.append(item->objectID());
            }
        }
        if (!items.isEmpty()) {
            tabs.append(std::make_shared<TabState>(m_edits, items, value.toMap().value(searchKey).toString()));
        }
    }
    if (tabs.isEmpty()) {
        const auto library = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(m_edits.context);
        tabs.append(std::make_shared<TabState>(m_edits,
                                               library ? QList<ZQObjectID>{library->objectID()} : QList<ZQObjectID>()));
    }
    m_tabs = std::move(tabs);
    select(std::clamp(int(defaults.integerForKey(currentKey)), 0, count() - 1));
}
