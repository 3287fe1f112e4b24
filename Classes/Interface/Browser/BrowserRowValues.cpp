#include "Classes/Interface/Browser/BrowserRowValues.h"

#include "Models/DataModel/ZQLibraryBaseItem.h"

namespace {
constexpr qsizetype mostKept = 4000;
}

BrowserRowValues::BrowserRowValues(WindowContext &window, QObject *parent)
    : QObject(parent), m_ticket(window.fetcher, ContentFetcher::Priority::Counts)
{
}

const BrowserRowValues::Values *BrowserRowValues::find(const ZQObjectID &item) const
{
    const auto found = m_values.constFind(item);
    return found == m_values.constEnd() ? nullptr : &*found;
}

void BrowserRowValues::expire()
{
    for (auto it = m_values.keyBegin(); it != m_values.keyEnd(); ++it) {
        m_expired.insert(*it);
    }
    m_asked.clear();
    m_unread.clear();
    ++m_generation;
}

void BrowserRowValues::want(const QList<ZQObjectID> &items)
{
    QList<ZQObjectID> missing;
    bool isNew = false;
    for (const ZQObjectID &item : items) {
        const bool isKnown = m_unread.contains(item) || (m_values.contains(item) && !m_expired.contains(item));
        if (!item.isNull() && !item.isTemporary() && !isKnown) {
            missing.append(item);
            isNew = isNew || !m_asked.contains(item);
        }
    }
    if (!isNew) {
        return;
    }
    m_asked = QSet<ZQObjectID>(missing.begin(), missing.end());
    m_ticket.run([this, missing, generation = m_generation](ZQManagedObjectContext &context,
                                                            const auto &isWanted) -> ContentFetcher::Ticket::Answer {
        QHash<ZQObjectID, Values> read;
        const QList<ZQRef<ZQLibraryBaseItem>> objects = ZQLibraryBaseItem::itemsWithIDs(missing, context);
        const auto kept = zqPrefetch(objects, QStringLiteral("tags"));
        for (const ZQRef<ZQLibraryBaseItem> &item : objects) {
            if (!isWanted()) {
                return {};
            }
            read.insert(item->objectID(), {item->userTagTitles(), item->byteSize()});
        }
        return [this, read, missing, generation] { take(read, missing, generation); };
    });
}

// What was read before the last change is better than nothing, and asked for again.
void BrowserRowValues::take(const QHash<ZQObjectID, Values> &read, const QList<ZQObjectID> &asked, quint64 generation)
{
    const bool isCurrent = generation == m_generation;
    if (m_values.size() > mostKept) {
        m_values.clear();
        m_expired.clear();
    }
    for (auto it = read.begin(); it != read.end(); ++it) {
        m_values.insert(it.key(), it.value());
        if (isCurrent) {
            m_expired.remove(it.key());
        } else {
            m_expired.insert(it.key());
        }
    }
    for (const ZQObjectID &item : asked) {
        if (isCurrent && !read.contains(item)) {
            m_unread.insert(item);
        }
    }
    m_asked.clear();
    Q_EMIT arrived();
}
