#pragma once

#include "Classes/Browsing/Tabs/TabState.h"
#include "Classes/Interface/WindowCommand.h"

#include <QWidget>

#include <utility>

class BrowserContent;
class QLabel;
class QToolButton;

// The line above what a browser shows: its title and count, and what is chosen of groups and order. What is chosen here
// or by a command of it changes the content's tab at once.
class BrowserHead : public QWidget
{
    Q_OBJECT
public:
    explicit BrowserHead(BrowserContent &content, QWidget *parent = nullptr);

    void showTab(const QString &count); // what the tab says of itself, and how many there are
    void setSort(ZQSortValue value, bool ascending);
    void setDisplayStyle(BrowserDisplayStyle style);
    bool canSortBy(ZQSortValue value) const;
    bool hasDirection() const;
    QList<WindowCommand> commands();
    void setShowsOrder(bool showsOrder); // while nothing else says it
    // After title and count, before what can be chosen. It gives way where there is little room, so a command does the
    // same.
    void addButton(QWidget *button);

Q_SIGNALS:
    void orderChanged(); // or the groups

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void orderStops(); // of the Tab key
    std::pair<QLabel *, QToolButton *> makeChoice(const QString &caption, const QString &tip);
    void showSortMenu();
    void showGroupMenu();
    void makeRoom();

    BrowserContent &m_content;
    QLabel *m_title;
    QLabel *m_count;
    QWidget *m_buttons;
    QLabel *m_groupCaption;
    QLabel *m_sortCaption;
    QToolButton *m_group;
    QToolButton *m_sort;
    QToolButton *m_direction;
    bool m_showsOrder = true;
};
