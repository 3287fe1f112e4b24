#include "Kit/Files/ZQRootGuard.h"

#include <sys/stat.h>

namespace {
bool isLink(const QByteArray &path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 && S_ISLNK(status.st_mode);
}
} // namespace

ZQRootGuard::ZQRootGuard(ZQWatchTable &table, const QByteArray &path, const QByteArray &resolved) : m_table(table)
{
    guardFoldersAround(path);
    if (resolved != path) {
        guardFoldersAround(resolved);
    }
}

ZQRootGuard::~ZQRootGuard()
{
    for (const int watch : m_watches) {
        m_table.removeGuard(watch);
    }
}

void ZQRootGuard::guardFoldersAround(const QByteArray &path)
{
    QByteArray inner = path;
    for (qsizetype slash = inner.lastIndexOf('/'); slash > 0; slash = inner.lastIndexOf('/')) {
        const QByteArray around = inner.first(slash);
        guard(around, isLink(inner));
        inner = around;
    }
    if (isLink(inner)) {
        guard(QByteArrayLiteral("/"), true);
    }
}

void ZQRootGuard::guard(const QByteArray &folder, bool tellsEntries)
{
    const int watch = m_table.addGuard(folder, tellsEntries);
    if (watch >= 0) {
        m_watches.push_back(watch);
    }
}
