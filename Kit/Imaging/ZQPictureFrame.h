#pragma once

#include "Kit/Imaging/ZQBitmap.h"

#include <QRect>

// What of a picture is within a frame of one colour, as thick on the one side as on the opposite one, or between two
// such bars; all of it where there is none. What only touches the end of an even ground has no frame: where it touches
// would change with a mark or a shadow. Any thread.
QRect zqWithoutFrame(const ZQBitmap &bitmap);
