#pragma once

#include <chrono>
#include <functional>

bool zqIsMainThread();

// Runs `block` on the main thread's event loop, later; in the order of the calls. Kept until there is an application
// object.
void zqOnMainThread(std::function<void()> block);

// Runs `block` on the main thread and waits for it; at once when called there. False, with `block` never run, when the
// application stopped serving such calls (`zqStopMainThreadCalls`) first or there is no application object, so that no
// pair of threads can wait for each other.
bool zqOnMainThreadAndWait(std::function<void()> block);

// From here on waiting callers give up and new ones are refused; used at the very end of the application.
void zqStopMainThreadCalls();
void zqResumeMainThreadCalls(); // for tests

// Runs the blocks whose callers are waiting in `zqOnMainThreadAndWait`, and no other event. For a main thread that has
// to block on something those callers hold up. Does nothing on another thread.
void zqServeWaitingMainThreadCalls();

// Main thread: runs the event loop in steps of `step` until `isDone` answers true. The form without a condition runs it
// once for that time. Works without a running `exec()`.
void zqRunMainLoopUntil(const std::function<bool()> &isDone,
                        std::chrono::milliseconds step = std::chrono::milliseconds(20));
void zqRunMainLoopFor(std::chrono::milliseconds time);
