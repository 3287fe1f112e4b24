#pragma once

#include <QtGlobal>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What a directory of a live folder holds, as far as it matters: sub-folders and files that can become items. A compact
// value, ordered by the bytes of the names; a hundred thousand of them are a few megabytes. Any thread.

enum class EntryKind : quint8 {
    Nothing, // left alone
    File,
    Package, // a directory that counts as one document
    Folder,
};

// Times are nanoseconds since 1970. Of a folder only the inode counts: whatever happens in it is its own matter.
struct FolderEntry
{
    quint64 inode = 0;
    qint64 size = 0;
    qint64 modification = 0;
    qint64 change = 0; // of its attributes
    quint32 nameOffset = 0;
    quint16 nameLength = 0;
    EntryKind kind = EntryKind::Nothing;
    quint8 gaveNothing = 0; // of a file, in a record: it could not be read, and made no item

    bool isFile() const { return kind == EntryKind::File || kind == EntryKind::Package; }
    // The same bytes, as far as can be told without reading them.
    bool hasContentOf(const FolderEntry &other) const
    {
        return kind == other.kind && size == other.size && modification == other.modification;
    }
    bool isAs(const FolderEntry &other) const
    {
        return hasContentOf(other) && inode == other.inode && change == other.change;
    }
};

class FolderEntries
{
public:
    void add(std::string_view name, FolderEntry entry);
    void sort(); // after the last was added, before anything below

    const std::vector<FolderEntry> &all() const { return m_entries; }
    std::vector<FolderEntry> &all() { return m_entries; }
    bool isEmpty() const { return m_entries.empty(); }
    std::string_view name(const FolderEntry &entry) const
    {
        return std::string_view(m_names).substr(entry.nameOffset, entry.nameLength);
    }
    const FolderEntry *find(std::string_view name) const; // null for none
    FolderEntry *find(std::string_view name);
    bool hasUnread() const; // a file that gave nothing
    bool isAs(const FolderEntries &other) const;
    // How many of `other` are here with the same name and content; of folders, the same name.
    qsizetype countOfSame(const FolderEntries &other) const;

    // The bytes of a record; nothing for what no `appendTo` made.
    void appendTo(std::string &bytes) const;
    static std::optional<FolderEntries> takenFrom(std::string_view &bytes);

private:
    std::vector<FolderEntry> m_entries;
    std::string m_names;
};
