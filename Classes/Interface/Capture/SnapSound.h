#pragma once

// The sound of a capture: what the desktop's sound theme has for it, else "snap_sound" of the resources. Main thread.
namespace SnapSound {

// Returns at once. Where nothing can play it, or a sound server does not answer, nothing is heard.
void play();

} // namespace SnapSound
