#pragma once

#include "Kit/Widgets/ZQAccessible.h"

#include <QStringList>
#include <QWidget>

class QToolButton;

// Tabs with a close mark each and a button for a new one, in the direction of reading. Tabs are dragged to reorder; the
// middle button closes. Where they would get too narrow to be told apart only some are shown, the current one among
// them, and a menu lists all. It only draws and tells: the owner changes the titles in answer to its signals.
class ZQTabStrip : public QWidget, public ZQAccessibleParts
{
    Q_OBJECT
public:
    explicit ZQTabStrip(QWidget *parent = nullptr);
    void setTabs(const QStringList &titles, int current);
    int currentIndex() const { return m_current; }
    int count() const { return int(m_titles.size()); }
    int visibleCount() const;      // tabs that have room
    QList<QWidget *> focusStops(); // in the order of Tab
    QSize sizeHint() const override;

    QAccessible::Role accessibleRole() const override { return QAccessible::PageTabList; }
    QAccessible::Role accessiblePartRole() const override { return QAccessible::PageTab; }
    int accessiblePartCount() const override { return count(); }
    ZQAccessiblePart accessiblePart(int index) const override;
    void pressAccessiblePart(int index) override { Q_EMIT currentChanged(index); }

Q_SIGNALS:
    void currentChanged(int index);
    void closeRequested(int index);
    void newRequested();
    void moved(int from, int to);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QRect mirrored(const QRect &rect) const; // in a language written from right to left
    int tabStart(int index) const;           // in the direction of reading
    QRect tabRect(int index) const;
    QRect closeRect(int index) const;
    int newStart() const;
    int tabAt(const QPoint &point) const;
    int naturalWidth(int index) const;
    int tabWidth(int index) const;
    int room() const; // for tabs
    void showCurrent();
    void fillMenu();

    QStringList m_titles;
    QToolButton *m_new; // for a new tab
    QToolButton *m_all; // the menu of all tabs
    int m_current = -1;
    int m_first = 0; // the first that is shown
    int m_hovered = -1;
    int m_dragged = -1;
    QPoint m_pressPoint;
};
