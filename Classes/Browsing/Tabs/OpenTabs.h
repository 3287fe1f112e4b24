#pragma once

#include "Classes/Browsing/Tabs/OpenTabsFile.h"

#include <QHash>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <memory>

// The open tabs of a window in their order, those that were closed, and which one is in front. There is always one.
// Kept in a file from one launch to the next. Main thread.
class OpenTabs : public QObject
{
    Q_OBJECT
public:
    OpenTabs(EditContext &edits, const QString &path, QObject *parent = nullptr);

    int count() const { return int(m_tabs.size()); }
    int currentIndex() const { return m_current; }
    const std::shared_ptr<TabState> &current() const { return m_tabs[m_current]; }
    bool canReopen() const { return !m_closed.isEmpty(); }
    QStringList titles() const;

    void select(int index); // nothing for the one in front, and when there is no such tab
    void selectNext(int step);
    void selectTabForState(const TabState &state);
    void newTab(); // beside the one in front, with the same sidebar items
    void openTab(const QList<ZQObjectID> &sidebarItems, const QString &searchText); // beside the one in front
    // Who closes the one in front comes back to the one it was opened from, unless a third one was chosen since;
    // else to the next one.
    void closeTab(int index);
    void reopenTab();
    void moveTab(int from, int to);

    void save();
    void saveSoon(); // at most once a second
    // Of the file; else of what an older version kept in the user defaults, which goes when the file is written.
    void restore();

Q_SIGNALS:
    void aboutToLeave();   // the one in front
    void currentChanged(); // another state is in front
    void tabsChanged();    // their number, order or titles
    void aboutToSave();    // the one in front may be told how it looks at the moment

private:
    void show(int index);
    void leaveCurrent();
    std::shared_ptr<TabState> openerOf(const std::shared_ptr<TabState> &tab) const; // null for none
    void adopt(const std::shared_ptr<TabState> &tab);
    void insertBesideCurrent(const std::shared_ptr<TabState> &tab);
    std::optional<OpenTabsFile::Tabs> tabsOfDefaults() const;

    EditContext &m_edits;
    OpenTabsFile m_file;
    QList<std::shared_ptr<TabState>> m_tabs;
    QList<std::shared_ptr<TabState>> m_closed;
    QHash<const TabState *, std::weak_ptr<TabState>> m_openers; // of open tabs: what was in front when they came
    int m_current = 0;
    QTimer m_saveTimer;
    ZQManagedObjectContext::Token m_contextToken;
};
