#pragma once

class ZQGridView;

// Makes grids known to screen readers: a list whose entries are the items, made when asked for.
void zqInstallGridAccessibility();
// Forgets the entries handed out for this grid.
void zqGridContentChanged(ZQGridView *view);
