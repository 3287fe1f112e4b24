#pragma once

#include "Kit/Widgets/ZQAccessible.h"

#include <QWidget>

// Five stars, the first where reading begins. A click on a star rates; on the last lit one it takes the rating away.
// The arrow keys change it by one, 0 to 5 set it.
class RatingField : public QWidget, public ZQAccessibleNumber
{
    Q_OBJECT
public:
    explicit RatingField(QWidget *parent = nullptr);
    void setRating(double rating, bool differs); // 0 to 5; differs: among several items
    double rating() const { return m_differs ? 0 : m_rating; }
    QString text() const; // what stands in place of the stars; empty when they are shown
    QSize sizeHint() const override;
    double accessibleNumber() const override { return rating(); }
    double accessibleLimit() const override;
    QString accessibleNumberText() const override;
    void setAccessibleNumber(double number) override { edit(number); }

Q_SIGNALS:
    void edited(double rating);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    int starAt(const QPointF &position) const; // 1 to 5
    void edit(double rating);
    void paintStars(QPainter &painter) const;

    double m_rating = 0;
    bool m_differs = false;
    int m_hovered = 0;
};
