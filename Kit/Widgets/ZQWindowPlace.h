#pragma once

#include <QRect>

class QByteArray;
class QWidget;

// `window` moved, and where it has to be made smaller, so that all of it lies in `room`.
QRect zqRectWithin(const QRect &window, const QRect &room);

// `QWidget::restoreGeometry`, and the window lies whole on its screen, which may be another one, or at another scale,
// than when its place was kept. False, with nothing done, when `kept` is no such place. Before it is shown.
bool zqRestoreGeometry(QWidget &window, const QByteArray &kept);

// To where it drops down from `anchor`: below it, from the side where reading begins, and on its screen as far as there
// is room. Its size has to be known.
void zqMoveBelow(QWidget &popUp, const QWidget &anchor);
