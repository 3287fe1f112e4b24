#include "Classes/Interface/Browser/BrowserRowValues.h"

#include "Classes/Browsing/SelectionSummary.h"
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
    m_asked.clear(); // what is on its way may be older than the change
}

void BrowserRowValues::want(const QList<ZQObjectID> &items)
{
    QList<ZQObjectID> missing;
    bool isNew = false;
    for (const ZQObjectID &item : items) {
        if (!item.isNull() && !item.isTemporary() && (!m_values.contains(item) || m_expired.contains(item))) {
            missing.append(item);
            isNew = isNew || !m_asked.contains(item);
        }
    }
    if (!isNew) {
        return;
    }
    m_asked = QSet<ZQObjectID>(missing.begin(), missing.end());
    m_ticket.run(
        [this, missing](ZQManagedObjectContext &context, const auto &isWanted) -> ContentFetcher::Ticket::Answer {
            QHash<ZQObjectID, Values> read;
            const QList<ZQRef<ZQLibraryBaseItem>> objects = ZQLibraryBaseItem::itemsWithIDs(missing, context);
            const auto kept = zqPrefetch(objects, QStringLiteral("tags"));
            for (const ZQRef<ZQLibraryBaseItem> &item : objects) {
                if (!isWanted()) {
                    return {};
                }
                read.insert(item->objectID(), {SelectionSummary::userTagsOf(*item), item->byteSize()});
            }
            for (const ZQObjectID &item : missing) { // what is gone is not asked for again and again
                if (!read.contains(item)) {
                    read.insert(item, {});
                }
            }
            return [this, read] { take(read); };
        });
}

void BrowserRowValues::take(const QHash<ZQObjectID, Values> &read)
{
    if (m_values.size() > mostKept) {
        m_values.clear();
        m_expired.clear();
    }
    for (auto it = read.begin(); it != read.end(); ++it) {
        m_values.insert(it.key(), it.value());
        m_expired.remove(it.key());
    }
    m_asked.clear();
    Q_EMIT arrived();
}
