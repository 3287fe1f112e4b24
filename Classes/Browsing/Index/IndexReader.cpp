#include "Classes/Browsing/Index/IndexReader.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace {

const QString tagsKey = QStringLiteral("tags");

const QStringList &membershipProperties()
{
    static const QStringList names = {QStringLiteral("item"), QStringLiteral("project"), QStringLiteral("order")};
    return names;
}

LibraryColumns::Changes::Membership membershipOf(const ZQRowStream::Row &row)
{
    return {row.key, row.number(0), row.number(1), row.isNull(2) ? std::nullopt : std::optional(row.number(2))};
}

// Finds rows of keys that come nearly in order.
class Finder
{
public:
    explicit Finder(const IndexKeys &keys) : m_keys(keys) {}
    std::optional<quint32> rowOf(qint64 key)
    {
        for (const size_t row : {m_last, m_last + 1}) {
            if (row < m_keys.size() && m_keys[row] == key) {
                m_last = row;
                return quint32(row);
            }
        }
        const auto row = m_keys.rowOf(key);
        m_last = row.value_or(quint32(m_last));
        return row;
    }

private:
    const IndexKeys &m_keys;
    size_t m_last = 0;
};

// What one of the threads reads: items from one key to before another one, and memberships likewise. What they lead to
// is looked for in `sidebar`, which is not changed meanwhile.
struct Part
{
    ZQRowStream::Keys itemKeys;
    ZQRowStream::Keys membershipKeys;
    IndexItems items;
    IndexTags::Links tags;                               // by row of the part and number
    std::vector<std::pair<quint32, qint64>> unknownTags; // by row of the part and key
    ZQPagedVector<LibraryColumns::Changes::Membership> memberships;
    ZQError error;
    bool isRead = false;

    // For so many, as far as keys say it: memory that is not written to costs nothing, and growing writes it twice.
    void reserve(size_t rows, size_t membershipRows)
    {
        constexpr size_t usualTags = 4;
        items.reserve(rows);
        items.folderKeys.reserve(rows);
        tags.reserve(rows * usualTags);
        memberships.reserve(membershipRows);
    }
    void read(ZQRowStream &stream, const IndexSidebar &sidebar)
    {
        isRead = stream.rows(
                     ZQLibraryBaseItem::entityName(), IndexItems::properties(), itemKeys,
                     [this](const ZQRowStream::Row &row) { items.append(row); }, &error) &&
                 readTags(stream, sidebar) &&
                 stream.rows(
                     ZQProjectItem::entityName(), membershipProperties(), membershipKeys,
                     [this](const ZQRowStream::Row &row) { memberships.push_back(membershipOf(row)); }, &error);
        items.resolveFolders(sidebar);
    }

private:
    bool readTags(ZQRowStream &stream, const IndexSidebar &sidebar)
    {
        Finder finder(items.keys);
        const auto take = [&](qint64 item, qint64 tag) {
            const auto row = finder.rowOf(item);
            const auto number = row ? sidebar.numberOf(tag) : std::nullopt;
            if (number) {
                tags.emplace_back(*row, *number);
            } else if (row) {
                unknownTags.emplace_back(*row, tag);
            }
        };
        return stream.links(ZQLibraryBaseItem::entityName(), tagsKey, itemKeys, take, &error);
    }
};

void takeMemberships(LibraryColumns &columns, const Part (&parts)[2])
{
    columns.memberships.reserve(parts[0].memberships.size() + parts[1].memberships.size());
    Finder finder(columns.items.keys);
    for (const Part &part : parts) {
        for (const LibraryColumns::Changes::Membership &membership : part.memberships) {
            const auto item = finder.rowOf(membership.item);
            columns.memberships.append(
                {membership.key, item.value_or(IndexMemberships::none),
                 membership.project ? columns.sidebar.numberFor(membership.project) : IndexSidebar::none,
                 membership.order});
        }
    }
    columns.memberships.link(columns.items.size(), columns.sidebar.size());
}

void takeTags(LibraryColumns &columns, Part (&parts)[2], size_t firstOfSecond)
{
    IndexTags::Links links = std::move(parts[0].tags);
    links.reserve(links.size() + parts[1].tags.size() + parts[0].unknownTags.size() + parts[1].unknownTags.size());
    for (const auto &[row, tag] : std::exchange(parts[1].tags, {})) {
        links.emplace_back(quint32(firstOfSecond + row), tag);
    }
    for (const Part &part : parts) {
        const size_t first = &part == parts ? 0 : firstOfSecond;
        for (const auto &[row, tag] : part.unknownTags) {
            links.emplace_back(quint32(first + row), columns.sidebar.numberFor(tag));
        }
    }
    columns.tags.build(columns.items.size(), columns.sidebar.size(), links);
}

// On two threads: the second one's items are copied behind the first one's, while ways to all of them are made.
void join(LibraryColumns &columns, Part (&parts)[2])
{
    columns.items = std::move(parts[0].items);
    const size_t firstOfSecond = columns.items.size();
    columns.items.appendKeys(parts[1].items);
    std::thread values([&items = columns.items, &more = parts[1].items] {
        items.appendValues(more);
        more = {};
    });
    takeTags(columns, parts, firstOfSecond);
    takeMemberships(columns, parts);
    values.join();
    columns.items.shrink();
}

// Rows that are missing between the keys would take no memory; that keys were damaged is no reason to ask for all there
// is.
size_t rowsUpTo(qint64 key)
{
    constexpr qint64 most = qint64(1) << 22;
    return size_t(std::clamp<qint64>(key, 0, most));
}

// Reads rows of which only some keys are known, and notes those that are not there.
class Rereading
{
public:
    Rereading(ZQManagedObjectContext &context, const LibraryColumns &columns, ZQError *error)
        : m_stream(context), m_columns(columns), m_error(error)
    {
    }
    bool read(const IndexReader::Asked &asked)
    {
        if (!readMemberships(asked.memberships) || !readItems(asked.items) || !readSidebar(asked.sidebar)) {
            return false;
        }
        // What was saved since may lead to rows that nobody told of yet.
        return readItems(missingItems()) && readSidebar(missingSidebar());
    }
    LibraryColumns::Changes changes;

private:
    static ZQRowStream::Keys keysOf(const QSet<qint64> &keys) { return {.list = QList<qint64>(keys.values())}; }
    bool readItems(const QSet<qint64> &keys);
    bool readSidebar(QSet<qint64> keys);
    bool readMemberships(const QSet<qint64> &keys);
    QSet<qint64> missingItems() const;
    QSet<qint64> missingSidebar() const;
    bool isMissing(qint64 key) const
    {
        const auto number = m_columns.sidebar.numberOf(key);
        return key && !changes.sidebar.contains(key) && !(number && m_columns.sidebar.exists(*number));
    }

    ZQRowStream m_stream;
    const LibraryColumns &m_columns;
    ZQError *m_error;
};

bool Rereading::readItems(const QSet<qint64> &keys)
{
    if (keys.isEmpty()) {
        return true;
    }
    QSet<qint64> left = keys;
    const auto take = [&](const ZQRowStream::Row &row) {
        changes.items.append(row);
        left.remove(row.key);
    };
    const bool isRead =
        m_stream.rows(ZQLibraryBaseItem::entityName(), IndexItems::properties(), keysOf(keys), take, m_error) &&
        m_stream.links(
            ZQLibraryBaseItem::entityName(), tagsKey, keysOf(keys),
            [this](qint64 item, qint64 tag) { changes.tags[item].push_back(tag); }, m_error);
    changes.goneItems += left.values();
    return isRead;
}

bool Rereading::readSidebar(QSet<qint64> keys)
{
    while (!keys.isEmpty()) { // fathers that are not known either
        for (const qint64 key : std::as_const(keys)) {
            changes.sidebar.insert(key, std::nullopt);
        }
        QSet<qint64> fathers;
        const auto take = [&](const ZQRowStream::Row &row) {
            const auto &entry = changes.sidebar.insert(row.key, IndexSidebar::entryOf(row)).value();
            fathers.insert(entry->father);
        };
        if (!m_stream.rows(ZQSidebarBaseItem::entityName(), IndexSidebar::properties(), keysOf(keys), take, m_error)) {
            return false;
        }
        keys.clear();
        for (const qint64 father : std::as_const(fathers)) {
            if (isMissing(father)) {
                keys.insert(father);
            }
        }
    }
    return true;
}

bool Rereading::readMemberships(const QSet<qint64> &keys)
{
    if (keys.isEmpty()) {
        return true;
    }
    QSet<qint64> left = keys;
    const auto take = [&](const ZQRowStream::Row &row) {
        changes.memberships.push_back(membershipOf(row));
        left.remove(row.key);
    };
    const bool isRead = m_stream.rows(ZQProjectItem::entityName(), membershipProperties(), keysOf(keys), take, m_error);
    changes.goneMemberships = left.values();
    return isRead;
}

QSet<qint64> Rereading::missingItems() const
{
    QSet<qint64> missing;
    for (const LibraryColumns::Changes::Membership &membership : changes.memberships) {
        const auto row = m_columns.items.keys.rowOf(membership.item);
        const bool isKnown = row && m_columns.items.present.contains(*row);
        if (membership.item && !isKnown && !changes.items.keys.rowOf(membership.item) &&
            !changes.goneItems.contains(membership.item)) {
            missing.insert(membership.item);
        }
    }
    return missing;
}

QSet<qint64> Rereading::missingSidebar() const
{
    QSet<qint64> missing;
    const auto look = [&](qint64 key) {
        if (isMissing(key)) {
            missing.insert(key);
        }
    };
    for (const LibraryColumns::Changes::Membership &membership : changes.memberships) {
        look(membership.project);
    }
    for (const std::vector<qint64> &tags : changes.tags) {
        std::for_each(tags.begin(), tags.end(), look);
    }
    std::for_each(changes.items.folderKeys.begin(), changes.items.folderKeys.end(), look);
    return missing;
}

} // namespace

void IndexReader::Asked::add(const ZQContextDidSave &saved)
{
    for (const QList<ZQObjectID> *ids : {&saved.inserted, &saved.updated, &saved.deleted}) {
        for (const ZQObjectID &id : *ids) {
            if (id.isNull() || id.isTemporary()) {
                continue;
            }
            const QString root = id.rootEntity()->name;
            if (root == ZQLibraryBaseItem::entityName()) {
                items.insert(id.key);
            } else if (root == ZQSidebarBaseItem::entityName()) {
                sidebar.insert(id.key);
            } else if (root == ZQProjectItem::entityName()) {
                memberships.insert(id.key);
            }
        }
    }
}

std::unique_ptr<LibraryColumns> IndexReader::readAll(const std::shared_ptr<ZQPersistentStoreCoordinator> &coordinator,
                                                     ZQError *error)
{
    auto columns = std::make_unique<LibraryColumns>();
    columns->itemEntity = coordinator->managedObjectModel()->entity(ZQLibraryBaseItem::entityName());
    columns->membershipEntity = coordinator->managedObjectModel()->entity(ZQProjectItem::entityName());
    Part parts[2];
    {
        ZQManagedObjectContext context(coordinator);
        ZQRowStream stream(context);
        const auto items = stream.highestKey(ZQLibraryBaseItem::entityName(), error);
        const auto memberships = stream.highestKey(ZQProjectItem::entityName(), error);
        if (!items || !memberships) {
            return nullptr;
        }
        parts[0].itemKeys.end = parts[1].itemKeys.first = *items / 2;
        parts[0].membershipKeys.end = parts[1].membershipKeys.first = *memberships / 2;
        const bool isSidebarRead = stream.rows(
            ZQSidebarBaseItem::entityName(), IndexSidebar::properties(), {},
            [&](const ZQRowStream::Row &row) { columns->sidebar.set(row.key, IndexSidebar::entryOf(row)); }, error);
        if (!isSidebarRead) {
            return nullptr;
        }
        parts[0].reserve(rowsUpTo(*items), rowsUpTo(*memberships / 2)); // its columns take those of the other, too
        parts[1].reserve(rowsUpTo(*items - *items / 2), rowsUpTo(*memberships - *memberships / 2));
        std::thread other([&coordinator, &part = parts[1], &sidebar = std::as_const(columns->sidebar),
                           cancellation = ZQCancellation::current()] {
            const ZQCancellation::Scope scope(cancellation);
            ZQManagedObjectContext own(coordinator);
            ZQRowStream ownStream(own);
            part.read(ownStream, sidebar);
        });
        parts[0].read(stream, columns->sidebar);
        other.join();
    }
    for (const Part &part : parts) {
        if (!part.isRead) {
            zqSetError(error, part.error);
            return nullptr;
        }
    }
    join(*columns, parts);
    return columns;
}

std::optional<LibraryColumns::Changes> IndexReader::read(ZQManagedObjectContext &context, const LibraryColumns &columns,
                                                         const Asked &asked, ZQError *error)
{
    Rereading rereading(context, columns, error);
    return rereading.read(asked) ? std::optional(std::move(rereading.changes)) : std::nullopt;
}
