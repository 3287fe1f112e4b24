#pragma once

#include "Classes/Capture/ScreenSource.h"

#include <memory>

// The screens of the display that this process has. Main thread.
namespace DisplaySource {

std::unique_ptr<ScreenSource> make(); // null where there is none that can be captured

} // namespace DisplaySource
