#pragma once

class MainWindowController;

// Until nothing is fetched, read or edited for what the window shows.
void settleWindow(const MainWindowController &controller);

// Removes what is shown of a project from it, has it back, rates it and takes that back; prints for each how long it
// takes, the most memory it adds meanwhile and what is left of that. Everything that is shown is selected.
void measureEdits(MainWindowController &controller);
