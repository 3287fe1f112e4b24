#pragma once

#include "Kit/Widgets/ZQTurningSign.h"

#include <QWidget>

// Says that something is waited for: turns while it can be seen. Main thread.
class TurningIcon : public QWidget
{
    Q_OBJECT
public:
    explicit TurningIcon(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    ZQTurningSign m_sign;
};
