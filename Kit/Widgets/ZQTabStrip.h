#pragma once

#include <QStringList>
#include <QWidget>

// Tabs with a close mark each and a button for a new one. Tabs are dragged to reorder; the middle button closes.
// It only draws and tells: the owner changes the titles in answer to its signals.
class ZQTabStrip : public QWidget
{
    Q_OBJECT
public:
    explicit ZQTabStrip(QWidget *parent = nullptr);
    void setTabs(const QStringList &titles, int current);
    int currentIndex() const { return m_current; }
    int count() const { return int(m_titles.size()); }
    QSize sizeHint() const override;

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
    bool event(QEvent *event) override;

private:
    QRect tabRect(int index) const;
    QRect closeRect(int index) const;
    QRect newRect() const;
    int tabAt(const QPoint &point) const;
    int tabWidth(int index) const;

    QStringList m_titles;
    int m_current = -1;
    int m_hovered = -1;
    int m_dragged = -1;
    QPoint m_pressPoint;
};
