#pragma once

class CrashText;

// The places in the program that led to a fault, as "module+0xoffset": the name of the module's file without its
// folder, which may hold the person's name, and the offset from where its file is mapped, as debuggers want it.
// Everything but `prepare` is allowed in a handler of signals.
namespace CrashStack {

void prepare(); // loads what unwinding needs
void write(CrashText &text);

} // namespace CrashStack
