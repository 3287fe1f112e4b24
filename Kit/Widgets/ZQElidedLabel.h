#pragma once

#include <QLabel>

// A label of one line that ends in an ellipsis where its text finds no room; its hint has the whole text then. Main
// thread.
class ZQElidedLabel : public QLabel
{
public:
    using QLabel::QLabel;

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool isCut() const;
};
