#pragma once

#include <QAbstractButton>

// One of an asset's colours, to be searched with a click. Main thread.
class ColorSwatch : public QAbstractButton
{
    Q_OBJECT
public:
    // `code`: see ZQTheme::swatch.
    ColorSwatch(int code, const QString &name, QWidget *parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    int m_code;
};
