#pragma once

#include "Kit/Files/ZQWatchTable.h"

#include <QByteArray>

#include <vector>

// Has the system tell when what stands around a folder may have moved it: a folder on the way to it that takes another
// name, or a link on the way that is replaced. It tells too much rather than too little; the answer is to look. One
// thread.
class ZQRootGuard
{
public:
    // `path` as it was asked for, `resolved` where it leads.
    ZQRootGuard(ZQWatchTable &table, const QByteArray &path, const QByteArray &resolved);
    ~ZQRootGuard();
    ZQRootGuard(const ZQRootGuard &) = delete;
    ZQRootGuard &operator=(const ZQRootGuard &) = delete;

private:
    void guardFoldersAround(const QByteArray &path);
    void guard(const QByteArray &folder, bool tellsEntries);

    ZQWatchTable &m_table;
    std::vector<int> m_watches;
};
