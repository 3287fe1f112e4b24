#include "Classes/LiveFolders/FolderEntries.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

static_assert(std::is_trivially_copyable_v<FolderEntry> && sizeof(FolderEntry) == 40);

void FolderEntries::add(std::string_view name, FolderEntry entry)
{
    if (name.size() > std::numeric_limits<quint16>::max() ||
        m_names.size() + name.size() > std::numeric_limits<quint32>::max()) {
        return;
    }
    entry.nameOffset = quint32(m_names.size());
    entry.nameLength = quint16(name.size());
    m_names.append(name);
    m_entries.push_back(entry);
}

void FolderEntries::sort()
{
    const auto isBefore = [this](const FolderEntry &a, const FolderEntry &b) { return name(a) < name(b); };
    if (!std::is_sorted(m_entries.begin(), m_entries.end(), isBefore)) {
        std::sort(m_entries.begin(), m_entries.end(), isBefore);
    }
    // A directory that changes while it is read can tell of one name twice.
    const auto last = std::unique(m_entries.begin(), m_entries.end(),
                                  [this](const FolderEntry &a, const FolderEntry &b) { return name(a) == name(b); });
    m_entries.erase(last, m_entries.end());
}

const FolderEntry *FolderEntries::find(std::string_view wanted) const
{
    const auto place =
        std::lower_bound(m_entries.begin(), m_entries.end(), wanted,
                         [this](const FolderEntry &entry, std::string_view text) { return name(entry) < text; });
    return place != m_entries.end() && name(*place) == wanted ? &*place : nullptr;
}

FolderEntry *FolderEntries::find(std::string_view wanted)
{
    return const_cast<FolderEntry *>(std::as_const(*this).find(wanted));
}

bool FolderEntries::hasUnread() const
{
    return std::any_of(m_entries.begin(), m_entries.end(),
                       [](const FolderEntry &entry) { return entry.gaveNothing != 0; });
}

bool FolderEntries::isAs(const FolderEntries &other) const
{
    return std::equal(
        m_entries.begin(), m_entries.end(), other.m_entries.begin(), other.m_entries.end(),
        [this, &other](const FolderEntry &a, const FolderEntry &b) { return a.isAs(b) && name(a) == other.name(b); });
}

qsizetype FolderEntries::countOfSame(const FolderEntries &other) const
{
    qsizetype count = 0;
    for (const FolderEntry &theirs : other.m_entries) {
        const FolderEntry *const ours = find(other.name(theirs));
        count += ours && ours->hasContentOf(theirs) ? 1 : 0;
    }
    return count;
}

void FolderEntries::appendTo(std::string &bytes) const
{
    const quint64 counts[] = {m_entries.size(), m_names.size()};
    bytes.append(reinterpret_cast<const char *>(counts), sizeof counts);
    bytes.append(reinterpret_cast<const char *>(m_entries.data()), m_entries.size() * sizeof(FolderEntry));
    bytes.append(m_names);
}

std::optional<FolderEntries> FolderEntries::takenFrom(std::string_view &bytes)
{
    quint64 counts[2] = {};
    if (bytes.size() < sizeof counts) {
        return std::nullopt;
    }
    std::memcpy(counts, bytes.data(), sizeof counts);
    bytes.remove_prefix(sizeof counts);
    if (counts[0] > bytes.size() / sizeof(FolderEntry)) {
        return std::nullopt;
    }
    const std::size_t size = counts[0] * sizeof(FolderEntry);
    if (counts[1] > bytes.size() - size) {
        return std::nullopt;
    }
    FolderEntries entries;
    entries.m_entries.resize(counts[0]);
    if (size > 0) {
        std::memcpy(entries.m_entries.data(), bytes.data(), size);
    }
    entries.m_names = bytes.substr(size, counts[1]);
    bytes.remove_prefix(size + counts[1]);
    for (std::size_t i = 0; i < entries.m_entries.size(); ++i) {
        const FolderEntry &entry = entries.m_entries[i];
        const bool isInside = quint64(entry.nameOffset) + entry.nameLength <= entries.m_names.size();
        if (!isInside || entry.kind == EntryKind::Nothing || entry.kind > EntryKind::Folder ||
            (i > 0 && entries.name(entries.m_entries[i - 1]) >= entries.name(entry))) {
            return std::nullopt;
        }
    }
    return entries;
}
