#pragma once

// Leaves this process, and what it starts, with the system calls that drawing takes: every other one, and every one
// that is newer than this list, answers ENOSYS, which libraries know how to do without. No network, no other process
// but the group it belongs to, no attributes, times, owners or modes of files, nothing of the system itself.
//
// `mayWrite`: rules of the system keep this process from a person's files, and it has use for a folder of its own and
// other programs. Otherwise the list is shorter: no file can be opened for writing, made, moved or removed, and no
// program started. Whether the system took the list.
// To be called before the process has a second thread.
bool zqRestrictCalls(bool mayWrite);
