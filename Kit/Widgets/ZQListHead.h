#pragma once

#include "Kit/Widgets/ZQViewColumns.h"

#include <QWidget>

class QAbstractButton;

// The titles above the columns of a list. A click or Return sorts by a column, the line between two is dragged, and a
// menu chooses which are shown. Tab leads in and out, the arrow keys from one to the next; Alt with them moves the line
// behind a column.
//
// Actions that are added to it stand at the end of its menu.
class ZQListHead : public QWidget
{
    Q_OBJECT
public:
    static constexpr int height = 29;

    explicit ZQListHead(QWidget *parent = nullptr);

    const ZQViewColumns &columns() const { return m_columns; }
    void setColumns(const ZQViewColumns &columns);
    // What the rows are ordered by; an empty one when no column is.
    void setSort(const QString &identifier, bool isAscending);
    void showMenu(const QPoint &globalPoint);

Q_SIGNALS:
    void sortRequested(const QString &identifier);
    void columnsChanged(); // by a person

protected:
    bool eventFilter(QObject *watched, QEvent *event) override; // of the titles
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void layOut();
    int rowWidth() const;
    // From the side where reading begins, of a point and of a title.
    int readingX(int x) const;
    int titleStart(qsizetype place) const;
    qsizetype boundaryAt(int x) const; // of reading; the place before it; -1 for none
    void moveBoundary(qsizetype place, int by);
    void focusPlace(qsizetype place);

    ZQViewColumns m_columns;
    QString m_sort;
    bool m_isAscending = false;
    QList<QAbstractButton *> m_titles; // by place
    qsizetype m_dragged = -1;
    int m_draggedFrom = 0;
};
