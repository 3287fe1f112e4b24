#include "Classes/Browsing/Tabs/OpenTabs.h"

#include "Kit/Files/ZQUserDefaults.h"

#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {
// Of the user defaults, as an older version kept them.
const QString tabsKey = QStringLiteral("OpenTabs");
const QString currentKey = QStringLiteral("SelectedTab");
const QString itemsKey = QStringLiteral("items");
const QString searchKey = QStringLiteral("search");

constexpr auto saveDelay = 1s;
constexpr qsizetype mostRowsBehind = 100000; // that a tab behind another keeps
constexpr qsizetype mostClosed = 50;         // that can be opened again
} // namespace

OpenTabs::OpenTabs(EditContext &edits, const QString &path, QObject *parent)
    : QObject(parent), m_edits(edits), m_file(path), m_tabs({std::make_shared<TabState>(edits)})
{
    adopt(m_tabs.first());
    m_saveTimer.setSingleShot(true);
    m_saveTimer.setInterval(saveDelay);
    connect(&m_saveTimer, &QTimer::timeout, this, &OpenTabs::save);
    for (const auto signal : {&OpenTabs::currentChanged, &OpenTabs::tabsChanged}) {
        connect(this, signal, this, &OpenTabs::saveSoon);
    }
    m_contextToken = edits.context.observeObjectsDidChange([this](const ZQContextDidSave &change) {
        for (const auto &tab : std::as_const(m_tabs)) {
            tab->evaluateCache(change);
        }
        for (const auto &tab : std::as_const(m_closed)) {
            tab->evaluateCache(change);
        }
    });
}

QStringList OpenTabs::titles() const
{
    QStringList result;
    for (const auto &tab : m_tabs) {
        result.append(tab->tabName());
    }
    return result;
}

void OpenTabs::adopt(const std::shared_ptr<TabState> &tab)
{
    tab->selectTabForState = [this](TabState &state) { selectTabForState(state); };
}

// Which one is in front.

void OpenTabs::leaveCurrent()
{
    Q_EMIT aboutToLeave();
    current()->savePersistentStateInformations();
    if (current()->content() && current()->content()->rows.ids.size() > mostRowsBehind) {
        current()->invalidateCache();
    }
}

void OpenTabs::show(int index)
{
    m_current = index;
    Q_EMIT currentChanged();
}

void OpenTabs::select(int index)
{
    if (index >= 0 && index < count() && index != m_current) {
        if (openerOf(m_tabs[index]) != current() && openerOf(current()) != m_tabs[index]) {
            m_openers.clear(); // a person went on
        }
        leaveCurrent();
        show(index);
    }
}

void OpenTabs::selectNext(int step)
{
    select((m_current + step + count()) % count());
}

void OpenTabs::selectTabForState(const TabState &state)
{
    for (int index = 0; index < count(); ++index) {
        if (m_tabs[index].get() == &state) {
            select(index);
        }
    }
}

// Which ones there are.

std::shared_ptr<TabState> OpenTabs::openerOf(const std::shared_ptr<TabState> &tab) const
{
    return m_openers.value(tab.get()).lock();
}

void OpenTabs::insertBesideCurrent(const std::shared_ptr<TabState> &tab)
{
    leaveCurrent();
    m_openers.insert(tab.get(), current());
    m_tabs.insert(m_current + 1, tab);
    show(m_current + 1);
}

void OpenTabs::newTab()
{
    const QList<ZQObjectID> items = current()->sidebarSelectedItems();
    openTab(items, {});
}

void OpenTabs::openTab(const QList<ZQObjectID> &sidebarItems, const QString &searchText)
{
    if (count() >= OpenTabsFile::mostTabs) {
        return;
    }
    const auto tab = std::make_shared<TabState>(m_edits);
    adopt(tab);
    tab->goToSidebarItems(sidebarItems);
    tab->setSearchString(searchText);
    insertBesideCurrent(tab);
}

void OpenTabs::closeTab(int index)
{
    if (count() < 2 || index < 0 || index >= count()) {
        return;
    }
    if (index == m_current) {
        leaveCurrent();
    }
    m_tabs[index]->savePersistentStateInformations();
    m_tabs[index]->invalidateCache();
    const auto opener = openerOf(m_tabs[index]);
    m_openers.remove(m_tabs[index].get());
    m_closed.append(m_tabs.takeAt(index));
    if (m_closed.size() > mostClosed) {
        m_closed.removeFirst();
    }
    if (index != m_current) {
        m_current -= index < m_current ? 1 : 0;
        Q_EMIT tabsChanged();
        return;
    }
    const auto back = opener ? m_tabs.indexOf(opener) : -1; // which may be closed, too
    show(back >= 0 ? int(back) : std::min(index, count() - 1));
}

void OpenTabs::reopenTab()
{
    if (canReopen() && count() < OpenTabsFile::mostTabs) {
        insertBesideCurrent(m_closed.takeLast());
    }
}

void OpenTabs::moveTab(int from, int to)
{
    if (from < 0 || to < 0 || from >= count() || to >= count()) {
        return;
    }
    const auto inFront = current();
    m_tabs.move(from, to);
    m_current = int(m_tabs.indexOf(inFront));
    Q_EMIT tabsChanged();
}

// From one launch to the next.

void OpenTabs::saveSoon()
{
    if (!m_saveTimer.isActive()) {
        m_saveTimer.start();
    }
}

void OpenTabs::save()
{
    m_saveTimer.stop();
    Q_EMIT aboutToSave();
    if (!m_file.write({m_tabs, m_current}, m_edits)) {
        return;
    }
    auto &defaults = ZQUserDefaults::standardUserDefaults();
    for (const QString &key : {tabsKey, currentKey}) {
        if (defaults.isSet(key)) {
            defaults.removeObjectForKey(key);
        }
    }
}

std::optional<OpenTabsFile::Tabs> OpenTabs::tabsOfDefaults() const
{
    const auto &defaults = ZQUserDefaults::standardUserDefaults();
    OpenTabsFile::Tabs result;
    for (const QVariant &value : defaults.objectForKey(tabsKey).toList()) {
        QList<ZQObjectID> items;
        for (const QString &uri : value.toMap().value(itemsKey).toStringList()) {
            const auto item = zqCast<ZQSidebarBaseItem>(m_edits.context.objectWithURIRepresentation(uri));
            if (item && item->active()) {
                items.append(item->objectID());
            }
        }
        if (!items.isEmpty()) {
            auto tab = std::make_shared<TabState>(m_edits);
            tab->goToSidebarItems(items);
            tab->setSearchString(value.toMap().value(searchKey).toString());
            result.tabs.append(std::move(tab));
        }
    }
    if (result.tabs.isEmpty()) {
        return std::nullopt;
    }
    result.indexOfSelectedTab = int(std::clamp<qint64>(defaults.integerForKey(currentKey), 0, result.tabs.size() - 1));
    return result;
}

void OpenTabs::restore()
{
    auto found = m_file.read(m_edits);
    if (!found) {
        found = tabsOfDefaults();
    }
    if (!found) {
        const auto library = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(m_edits.context);
        const QList<ZQObjectID> items = library ? QList<ZQObjectID>{library->objectID()} : QList<ZQObjectID>();
        found = OpenTabsFile::Tabs{{std::make_shared<TabState>(m_edits, items)}, 0};
    }
    m_tabs = found->tabs;
    for (const auto &tab : std::as_const(m_tabs)) {
        adopt(tab);
    }
    show(found->indexOfSelectedTab);
}
