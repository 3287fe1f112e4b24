#pragma once

// Becomes what a worker becomes that may write in `folder`, asks the system about every system call there may be, and
// prints the names of those that would be carried out, one a line ("#NUMBER" for one without a name), then those of
// some arguments as "NAME:WHAT". None is carried out. The exit status.
int walkCalls(const char *folder, bool useFileRules);
