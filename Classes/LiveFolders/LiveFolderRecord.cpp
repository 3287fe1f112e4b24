#include "Classes/LiveFolders/LiveFolderRecord.h"

#include "Kit/Files/ZQFileCopy.h"

#include <QFile>

#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr quint64 magic = 0x33444c464c51545aULL; // with the format's number
constexpr qint64 largestFile = qint64(4) << 30;

// Tells damage, not intent: nothing but the program's own writing is to be found here.
quint64 checksumOf(std::string_view bytes)
{
    constexpr quint64 factor = 0x9e3779b97f4a7c15ULL;
    quint64 sum = bytes.size() * factor;
    while (!bytes.empty()) {
        quint64 word = 0;
        const std::size_t count = std::min(bytes.size(), sizeof word);
        std::memcpy(&word, bytes.data(), count);
        bytes.remove_prefix(count);
        sum = (sum ^ word) * factor;
        sum ^= sum >> 29;
    }
    return sum;
}

template <class Number>
void append(std::string &bytes, Number number)
{
    bytes.append(reinterpret_cast<const char *>(&number), sizeof number);
}

void appendText(std::string &bytes, const QByteArray &text)
{
    append(bytes, quint64(text.size()));
    bytes.append(text.constData(), std::size_t(text.size()));
}

template <class Number>
bool take(std::string_view &bytes, Number &number)
{
    if (bytes.size() < sizeof number) {
        return false;
    }
    std::memcpy(&number, bytes.data(), sizeof number);
    bytes.remove_prefix(sizeof number);
    return true;
}

bool takeText(std::string_view &bytes, QByteArray &text)
{
    quint64 size = 0;
    if (!take(bytes, size) || size > bytes.size()) {
        return false;
    }
    text = QByteArray(bytes.data(), qsizetype(size));
    bytes.remove_prefix(size);
    return true;
}

bool takeFolder(std::string_view &bytes, RecordedFolder &folder)
{
    quint8 isKnown = 0;
    quint8 isMissing = 0;
    QByteArray place;
    if (!take(bytes, folder.key) || !take(bytes, folder.father) || !takeText(bytes, folder.path) ||
        !take(bytes, folder.device) || !take(bytes, folder.inode) || !takeText(bytes, place) || !take(bytes, isKnown) ||
        !take(bytes, isMissing)) {
        return false;
    }
    folder.place = ZQFolderIdentity::fromString(QString::fromLatin1(place));
    folder.isKnown = isKnown != 0;
    folder.isMissing = isMissing != 0;
    auto entries = FolderEntries::takenFrom(bytes);
    if (entries) {
        folder.entries = *std::move(entries);
    }
    return entries.has_value();
}

} // namespace

std::optional<LiveFolderRecord> LiveFolderRecord::readFrom(const QString &path, const QByteArray &store, qint64 rootKey)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > largestFile) {
        return std::nullopt;
    }
    const QByteArray content = file.readAll();
    std::string_view bytes(content.constData(), std::size_t(content.size()));
    quint64 mark = 0;
    quint64 checksum = 0;
    if (!take(bytes, mark) || mark != magic || !take(bytes, checksum) || checksum != checksumOf(bytes)) {
        return std::nullopt;
    }
    QByteArray ofStore;
    LiveFolderRecord record;
    quint64 count = 0;
    if (!takeText(bytes, ofStore) || ofStore != store || !take(bytes, record.m_rootKey) ||
        record.m_rootKey != rootKey || !take(bytes, record.m_stamp) || !take(bytes, count)) {
        return std::nullopt;
    }
    record.m_folders.reserve(qsizetype(std::min<quint64>(count, bytes.size())));
    for (quint64 i = 0; i < count; ++i) {
        RecordedFolder folder;
        if (!takeFolder(bytes, folder)) {
            return std::nullopt;
        }
        record.put(std::move(folder));
    }
    return bytes.empty() && record.root() ? std::optional(std::move(record)) : std::nullopt;
}

bool LiveFolderRecord::writeTo(const QString &path, const QByteArray &store, ZQError *error) const
{
    std::string content;
    appendText(content, store);
    append(content, m_rootKey);
    append(content, m_stamp);
    append(content, quint64(m_folders.size()));
    for (const RecordedFolder &folder : m_folders) {
        append(content, folder.key);
        append(content, folder.father);
        appendText(content, folder.path);
        append(content, folder.device);
        append(content, folder.inode);
        appendText(content, folder.place ? folder.place->toString().toLatin1() : QByteArray());
        append(content, quint8(folder.isKnown ? 1 : 0));
        append(content, quint8(folder.isMissing ? 1 : 0));
        folder.entries.appendTo(content);
    }
    std::string head;
    append(head, magic);
    append(head, checksumOf(content));
    QByteArray bytes;
    bytes.reserve(qsizetype(head.size() + content.size()));
    bytes.append(head.data(), qsizetype(head.size()));
    bytes.append(content.data(), qsizetype(content.size()));
    return zqWriteFileAtomically(path, bytes, error);
}

RecordedFolder *LiveFolderRecord::folder(qint64 key)
{
    const auto place = m_folders.find(key);
    return place == m_folders.end() ? nullptr : &*place;
}

RecordedFolder *LiveFolderRecord::folderAtPath(const QByteArray &path)
{
    const auto key = m_keys.constFind(path);
    return key == m_keys.constEnd() ? nullptr : folder(*key);
}

void LiveFolderRecord::forget(const RecordedFolder &folder)
{
    if (m_keys.value(folder.path) == folder.key) {
        m_keys.remove(folder.path);
    }
    if (const auto siblings = m_children.find(folder.father); siblings != m_children.end()) {
        siblings->removeOne(folder.key);
    }
}

RecordedFolder &LiveFolderRecord::put(RecordedFolder folder)
{
    if (const RecordedFolder *const earlier = this->folder(folder.key)) {
        forget(*earlier);
    }
    m_keys.insert(folder.path, folder.key);
    m_children[folder.father].append(folder.key);
    return *m_folders.insert(folder.key, std::move(folder));
}

void LiveFolderRecord::remove(qint64 key)
{
    const QList<qint64> gone = below(key) << key;
    for (const qint64 each : gone) {
        if (const RecordedFolder *const folder = this->folder(each)) {
            forget(*folder);
        }
        m_folders.remove(each);
        m_children.remove(each);
    }
}

QList<qint64> LiveFolderRecord::below(qint64 key) const
{
    QList<qint64> keys = children(key);
    for (qsizetype i = 0; i < keys.size(); ++i) {
        keys += children(keys.at(i));
    }
    return keys;
}

void LiveFolderRecord::move(qint64 key, const QByteArray &path, qint64 father)
{
    const RecordedFolder *const top = folder(key);
    if (!top) {
        return;
    }
    const qsizetype length = top->path.size();
    for (const qint64 each : below(key)) {
        RecordedFolder moved = *folder(each);
        moved.path = path + moved.path.mid(length);
        put(std::move(moved));
    }
    RecordedFolder moved = *folder(key);
    moved.path = path;
    moved.father = father;
    put(std::move(moved));
}
