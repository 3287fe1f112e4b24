#pragma once

#include <QWidget>

class QFontMetrics;
class QToolButton;

// One line of long work: its name, a bar and, when the work can be stopped, a button that does.
class ZQProgressLine : public QWidget
{
    Q_OBJECT
public:
    explicit ZQProgressLine(bool canCancel, QWidget *parent = nullptr);
    // Where there is little room `text` is shortened, and `kept`, which follows it, is not: how far the work is.
    void setText(const QString &text, const QString &kept = {});
    static QString fitted(const QString &text, const QString &kept, const QFontMetrics &metrics, int width);
    void setFraction(double fraction); // 0 to 1; negative: not known

Q_SIGNALS:
    void cancelled();

private:
    class Bar;
    class Label;
    Label *m_label;
    QToolButton *m_cancel;
    Bar *m_bar;
};
