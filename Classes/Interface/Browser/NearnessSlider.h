#pragma once

#include <QTimer>
#include <QWidget>

class QSlider;

// How near to a picture what a search by likeness finds has to be. Shown while the search text has such a token, in
// which the value stands. Main thread.
class NearnessSlider : public QWidget
{
    Q_OBJECT
public:
    explicit NearnessSlider(QWidget *parent = nullptr);

    void setText(const QString &searchText); // as it is typed

Q_SIGNALS:
    void searchRequested(const QString &searchText);

private:
    void write();
    void describe(); // what its value means

    QString m_text;
    QSlider *m_slider;
    QTimer m_rest; // while it is dragged, each value would be searched
};
