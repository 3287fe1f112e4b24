#pragma once

#include <QObject>
#include <QTimer>

// How long a browser waits for the rows of another place: at first what it showed before stays, then it goes, and then
// a word says that they are read. Main thread.
class RowsPatience : public QObject
{
    Q_OBJECT
public:
    explicit RowsPatience(QObject *parent = nullptr);

    void begin(); // goes on when it has begun
    void end();
    bool isLong() const { return m_isLong; } // to be said

Q_SIGNALS:
    void rowsAreLate(); // what was shown of the place before goes
    void becameLong();

private:
    void goOn();

    QTimer m_timer;
    bool m_isLong = false;
};
