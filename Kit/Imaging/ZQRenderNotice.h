#pragma once

#include <functional>

struct ZQRenderAnswer;

// What a worker's greeting says about the system, for the log and, through ZQPreviewService, for the application. Any
// thread; each thing is said once in the life of the program.
void zqNoteRestrictions(const ZQRenderAnswer &hello);

// `handler` is called as soon as it is known that workers cannot be confined, also when it was known before.
void zqSetUnconfinedHandler(std::function<void()> handler);
