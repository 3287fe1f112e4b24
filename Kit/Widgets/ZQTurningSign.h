#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

// How far a sign has turned that stands for something under way, for whoever paints it. It costs time only while it is
// said to be in view, and stands still where the desktop asks for less motion. Main thread.
class ZQTurningSign : public QObject
{
    Q_OBJECT
public:
    explicit ZQTurningSign(QObject *parent = nullptr);

    void setInView(bool isInView);
    bool isTurning() const { return m_timer.isActive(); }
    double degrees() const; // clockwise, 0 up to 360

Q_SIGNALS:
    void turned(); // twenty times a second

private:
    QTimer m_timer;
    QElapsedTimer m_since;
};
