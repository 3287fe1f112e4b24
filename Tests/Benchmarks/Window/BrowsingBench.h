#pragma once

#include <QString>

class MainWindowController;

// Prints what a person waits for in the window of a synthetic library: a line "NAME VALUE" for each figure.
// `pictures`: a folder of files to import; empty measures nothing that changes the library.
void measureBrowsing(MainWindowController &controller, const QString &pictures);

// Waits until what the window opens with is painted, and prints since when this process runs.
void measureFirstScreen(MainWindowController &controller);
