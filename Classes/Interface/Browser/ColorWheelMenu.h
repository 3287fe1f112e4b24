#pragma once

#include <QColor>
#include <QFrame>
#include <QTimer>

class ColorWheel;
class QLineEdit;
class QSlider;

// A colour to search, and how near to it: what is chosen is searched at once, until a press elsewhere or Esc closes it.
// Main thread.
class ColorWheelMenu : public QFrame
{
    Q_OBJECT
public:
    explicit ColorWheelMenu(QWidget *parent = nullptr);
    void popUp(const QWidget &anchor); // below it

Q_SIGNALS:
    void chosen(const QString &token, const QString &before); // of the search language; empty: it is the first

private:
    QSlider *addSlider(const QString &name, int most, int value);
    void turn();                      // the wheel has another colour
    void type(const QString &text);   // of one, or the beginning of it
    void choose(const QColor &color); // and search it soon
    void search();

    ColorWheel *m_wheel;
    QSlider *m_value = nullptr;
    QSlider *m_tolerance = nullptr;
    QLineEdit *m_code;
    QColor m_color;
    QString m_searched; // the token
    QTimer m_rest;      // while it is dragged, each colour would be searched
};
