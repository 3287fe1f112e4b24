#pragma once

#include "Classes/Browsing/TabState.h"

#include <QObject>
#include <QStringList>

#include <memory>

// The open tabs of a window in their order, those that were closed, and which one is in front. There is always one.
// Kept in the user defaults from one launch to the next. Main thread.
class OpenTabs : public QObject
{
    Q_OBJECT
public:
    explicit OpenTabs(EditContext &edits, QObject *parent = nullptr);

    int count() const { return int(m_tabs.size()); }
    int currentIndex() const { return m_current; }
    const std::shared_ptr<TabState> &current() const { return m_tabs[m_current]; }
    bool canReopen() const { return !m_closed.isEmpty(); }
    QStringList titles() const;

    void select(int index); // none when there is no such tab
    void selectNext(int step);
    void newTab(); // beside the one in front, with the same sidebar items
    void closeTab(int index);
    void reopenTab();
    void moveTab(int from, int to);

    void save() const;
    void restore(); // sidebar items that are gone are left out, and tabs of only those

Q_SIGNALS:
    void currentChanged(); // another state is in front
    void tabsChanged();    // their number, order or titles

private:
    void insertBesideCurrent(std::shared_ptr<TabState> tab);

    EditContext &m_edits;
    QList<std::shared_ptr<TabState>> m_tabs;
    QList<std::shared_ptr<TabState>> m_closed;
    int m_current = 0;
};
