#pragma once

#include <QStringList>
#include <QWidget>

// A row of segments of which one is on, chosen with the pointer, the arrow keys or a screen reader.
class ZQSwitch : public QWidget
{
    Q_OBJECT
public:
    explicit ZQSwitch(const QStringList &segments, QWidget *parent = nullptr);
    int currentIndex() const { return m_current; }
    void setCurrentIndex(int index);
    QSize sizeHint() const override;

Q_SIGNALS:
    void currentIndexChanged(int index);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QRect segmentRect(int index) const;

    QStringList m_segments;
    int m_current = 0;
};
