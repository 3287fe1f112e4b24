#pragma once

#include "Classes/Browsing/Index/IndexItems.h"
#include "Classes/Browsing/Index/IndexMemberships.h"
#include "Classes/Browsing/Index/IndexSidebar.h"
#include "Classes/Browsing/Index/IndexTags.h"
#include "Classes/Browsing/Index/IndexTitles.h"

// All columns of a library, as one state: a source of columns for predicates over library items.
class LibraryColumns : public ZQColumnSource
{
public:
    // Rows of the store that are to be taken over. What is in `read…` and not among what was read is gone.
    struct Changes
    {
        QHash<qint64, std::optional<IndexSidebar::Entry>> sidebar; // nothing: gone
        IndexItems items;
        QHash<qint64, std::vector<qint64>> tags; // of these items, by key
        QList<qint64> goneItems;
        struct Membership
        {
            qint64 key = 0;
            qint64 item = 0;
            qint64 project = 0;
            std::optional<qint64> order;
        };
        std::vector<Membership> memberships;
        QList<qint64> goneMemberships;
    };

    size_t rowCount() const override { return items.size(); }
    std::optional<ZQColumn> column(const QStringList &keys) const override;
    bool hasResemblances(const QStringList &keys) const override;
    std::optional<ZQRowSet> resembling(const QStringList &keys, const QString &text,
                                       const ZQRowSet &among) const override;

    // The places of titles after `changes`, which are not in yet; nothing when they stay. Long, and only reads.
    std::optional<IndexTitles> titlesAfter(const Changes &changes) const;
    void apply(Changes changes, std::optional<IndexTitles> newTitles);
    size_t bytes() const;

    IndexItems items;
    IndexSidebar sidebar;
    IndexTags tags;
    IndexMemberships memberships;
    IndexTitles titles;
    const ZQEntityDescription *itemEntity = nullptr;       // the root of items
    const ZQEntityDescription *membershipEntity = nullptr; // of memberships

private:
    std::optional<ZQColumn> attribute(const QString &key) const;
    void applySidebar(const Changes &changes);
    void applyTags(const Changes &changes, const std::vector<quint32> &rows);
    void applyMemberships(const Changes &changes, std::vector<quint32> gone);
};
