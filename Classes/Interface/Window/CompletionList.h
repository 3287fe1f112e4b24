#pragma once

#include "Classes/Browsing/Search/SearchCompletion.h"

#include <QWidget>

// What can be put into the search field, below it, a line each. Never has the focus: the field passes its keys on.
class CompletionList : public QWidget
{
    Q_OBJECT
public:
    explicit CompletionList(QWidget *window);

    void setOptions(const QList<SearchCompletion> &options); // none of them is chosen then
    const QList<SearchCompletion> &options() const { return m_options; }
    // What is chosen; null for nothing.
    const SearchCompletion *current() const;
    int currentRow() const { return m_current; }
    void step(int by); // from nothing to the first or the last, and to nothing behind them
    void page(int by);
    QRect rowRect(int row) const;
    QSize sizeHint() const override;

Q_SIGNALS:
    void taken(int row);
    void currentChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void makeCurrent(int row);
    void scrollTo(int first);
    void paintRow(QPainter &painter, int row) const;
    static void paintName(QPainter &painter, const SearchCompletion &option, QRect place);
    int shownRows() const;
    int rowAt(const QPoint &place) const; // -1: none

    QList<SearchCompletion> m_options;
    int m_current = -1;
    int m_first = 0; // that is shown
};
