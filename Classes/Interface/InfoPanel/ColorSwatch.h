#pragma once

#include <QAbstractButton>

// A colour of an item, as a button.
class ColorSwatch : public QAbstractButton
{
    Q_OBJECT
public:
    ColorSwatch(int code, const QString &name, QWidget *parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    int m_code;
};
