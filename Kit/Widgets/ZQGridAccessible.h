#pragma once

#include <QtGlobal>

class ZQGridView;

// Makes grids known to screen readers: a list whose entries are the items, made when asked for.
void zqInstallGridAccessibility();
// Forgets the entries handed out for this grid.
void zqGridContentChanged(ZQGridView *view);
// Tells that `changed` has come into the selection or left it; -1 for several.
void zqGridSelectionChanged(ZQGridView *view, qint64 changed);
