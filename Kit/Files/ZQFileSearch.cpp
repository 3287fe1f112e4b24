#include "Kit/Files/ZQFileSearch.h"

#include <dirent.h>

#include <cstring>
#include <memory>

namespace {

QByteArray below(const QByteArray &folder, const char *name)
{
    return (folder == "/" ? folder : folder + '/') + name;
}

} // namespace

ZQFileSearch::ZQFileSearch(const QList<const ZQFileReference *> &references, std::atomic<qint64> &looked)
    : m_looked(looked)
{
    for (const ZQFileReference *reference : references) {
        m_wanted.insert(reference->file.inode, reference);
        ++m_folders[reference->folder.inode];
    }
}

QHash<const ZQFileReference *, QByteArray> ZQFileSearch::run(const QByteArray &start, Reach reach)
{
    const auto found = zqLookAtFile(start);
    if (!found || !found->isFolder) {
        return {};
    }
    m_found.clear();
    m_device = found->device;
    m_left = mostEntries;
    m_ahead = {start};
    if (reach == Reach::Below) {
        m_ahead.clear();
        lookIn(start, reach, false); // where it was is looked through whole, however large it is
    }
    while (!m_ahead.empty() && m_left > 0 && !m_wanted.isEmpty()) {
        const QByteArray folder = m_ahead.front();
        m_ahead.pop_front();
        lookIn(folder, reach, true);
    }
    return m_found;
}

void ZQFileSearch::lookIn(const QByteArray &folder, Reach reach, bool isCounted)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(opendir(folder.constData()), closedir);
    while (directory && m_left > 0 && !m_wanted.isEmpty()) {
        const dirent *const entry = readdir(directory.get());
        if (!entry) {
            break;
        }
        if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) {
            continue;
        }
        m_left -= isCounted ? 1 : 0;
        ++m_looked;
        const QByteArray path = below(folder, entry->d_name);
        for (const ZQFileReference *reference : m_wanted.values(entry->d_ino)) {
            if (reference->hasMovedTo(path)) {
                m_found.insert(reference, path);
                m_wanted.remove(entry->d_ino, reference);
            }
        }
        if (reach == Reach::Below && (entry->d_type == DT_DIR || entry->d_type == DT_UNKNOWN)) {
            note(path, entry->d_ino);
        }
    }
}

void ZQFileSearch::note(const QByteArray &path, quint64 inode)
{
    const auto found = zqLookAtFile(path);
    if (!found || !found->isFolder || found->device != m_device) {
        return; // another volume, or one not mounted yet
    }
    if (m_folders.contains(inode)) {
        m_ahead.push_front(path);
    } else {
        m_ahead.push_back(path);
    }
}
