#pragma once

#include <QWidget>

class QLabel;
class QToolButton;

// One line of long work: its name, a bar and, when the work can be stopped, a button that does.
class ZQProgressLine : public QWidget
{
    Q_OBJECT
public:
    explicit ZQProgressLine(bool canCancel, QWidget *parent = nullptr);
    void setText(const QString &text);
    void setFraction(double fraction); // 0 to 1; negative: not known

Q_SIGNALS:
    void cancelled();

private:
    class Bar;
    class Label;
    QLabel *m_label;
    QToolButton *m_cancel;
    Bar *m_bar;
};
