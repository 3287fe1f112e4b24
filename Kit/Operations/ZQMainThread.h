#pragma once

#include <chrono>
#include <functional>

bool zqIsMainThread();

// Runs `block` on the main thread's event loop, later.
void zqOnMainThread(std::function<void()> block);

// Runs `block` on the main thread and waits for it; at once when called there. False, with `block` never run, when the
// application stopped serving such calls (`zqStopMainThreadCalls`) first, so that no pair of threads can wait for each other.
bool zqOnMainThreadAndWait(std::function<void()> block);

// From here on waiting callers give up and new ones are refused; used at the very end of the application.
void zqStopMainThreadCalls();
void zqResumeMainThreadCalls(); // for tests

// Main thread: runs the event loop in steps of `step` until `isDone` answers true. The form without a condition runs it
// once for that time. Works without a running `exec()`.
void zqRunMainLoopUntil(const std::function<bool()> &isDone, std::chrono::milliseconds step = std::chrono::milliseconds(20));
void zqRunMainLoopFor(std::chrono::milliseconds time);
