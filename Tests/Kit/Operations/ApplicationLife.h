#pragma once

// What happens to calls on the main thread before an application object is there, when it ends and afterwards. It needs
// a process of its own: this program, started with the argument. Prints what happened, one event a line.
inline constexpr char applicationLifeArgument[] = "--application-life";
int liveAnApplicationsLife(int argc, char **argv);
