#pragma once

#include <QtGlobal>

// What a worker gives up before it reads anything: every file but the system's own and those it is handed as
// descriptors, writing outside `folder`, the network, and the calls that reach into other processes. Its children
// inherit that. To be called before the process has a second thread.
struct ZQRenderRestrictions
{
    bool files = false; // false: the system cannot
    bool calls = false;
};

// `memory`: the most address space in bytes. `thumbnailed`: a descriptor whose file may also be opened by its path, or
// -1.
ZQRenderRestrictions zqEnterRenderSandbox(const char *folder, qint64 memory, int thumbnailed);
