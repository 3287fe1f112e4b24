#pragma once

class CrashText;

// The last messages that were logged, by their time, weight and category. What a message says is not kept: it may quote
// a name, a path, an address or a tag, and nothing in it tells which of its words are whose. Categories stand in the
// code, of this program and of the toolkit.
namespace CrashLog {

void follow();               // beside who handles messages so far; once, main thread
void write(CrashText &text); // allowed in a handler of signals

} // namespace CrashLog
