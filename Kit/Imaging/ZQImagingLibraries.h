#pragma once

// Starts the libraries the decoders stand on, once: one thread a decode, no operation cache, only the loaders that are
// wanted, and their messages in the log instead of on the terminal. Any thread, again and again.
void zqInitializeImagingLibraries(const char *programName);

// Put at the top of a function that calls libvips: what the library keeps for the calling thread is dropped when that
// thread ends.
void zqEnterVips();
