#pragma once

#include <QUrl>

// Which server an address leads to. Any thread.

// The port that it names, else the one that its scheme means.
int zqPortOf(const QUrl &url);
// Whether both lead to one server in one way: the same scheme, host and port, however they are written.
bool zqIsSameServer(const QUrl &a, const QUrl &b);
