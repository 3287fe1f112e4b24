#pragma once

#include <QtGlobal>

// What a worker gives up before it reads anything: every file but the system's own and those it is handed as
// descriptors, writing outside its folder, and all calls that drawing does not take. Its children inherit that. Where
// the system has no rules for files, it can read what the person can, but write nothing and start no program. To be
// called before the process has a second thread.
struct ZQRenderRestrictions
{
    bool files = false; // false: the system cannot
    bool calls = false;

    bool areWhole() const { return files && calls; }
};

struct ZQRenderNeeds
{
    const char *folder = nullptr; // null: it writes nothing at all and starts no program
    qint64 memory = 0;            // the most address space in bytes
    int thumbnailed = -1;         // a descriptor whose file may also be opened by its path, or -1
    bool useFileRules = true;     // false does as on a system that has none
};
ZQRenderRestrictions zqEnterRenderSandbox(const ZQRenderNeeds &needs);
