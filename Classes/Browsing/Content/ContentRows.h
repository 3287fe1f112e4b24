#pragma once

#include "Classes/Browsing/Content/Content.h"

#include <QHash>

#include <functional>
#include <optional>

class LibraryIndex;

// One sidebar item of those whose items a tab shows, and how it holds them.
struct ContentPart
{
    enum class Holding { Memberships, Tag, WatchedFolder, Other };
    ZQObjectID sidebarItem;
    QString title;
    Holding holding = Holding::Other;
    bool hasOwnGroups = false; // Recent
    ZQFetchRequest request;    // as the sidebar item says it
};

struct ContentParts
{
    QList<ContentPart> parts;
    bool showsItems = false; // rows are library items, also of those that hold memberships
};

// Which rows, in which order, in which groups: what the store answers to that. On the thread of the context.
class ContentRows
{
public:
    using IsWanted = std::function<bool()>;
    // Gives a request the order and the filter of the tab.
    using Prepare = std::function<void(ZQFetchRequest &)>;

    // The query's order is settled.
    ContentRows(ContentParts parts, BrowserDisplayStyle style, ZQManagedObjectContext &context, Prepare prepare,
                LibraryIndex *index);
    // Reads no more than `count` rows if the store has the first ones at once, in the order of `sortValue`.
    void stopAfter(int count, ZQSortValue sortValue);

    // Nothing when it was given up meanwhile.
    std::optional<Content> content(const IsWanted &isWanted);
    // Rows as they are in the content, in no order, for requests that `restrict` narrowed.
    std::optional<QList<ZQObjectID>> identifiers(const Prepare &restrict, const IsWanted &isWanted);

private:
    using Rows = std::optional<ZQRelatedIDs>;                 // nothing after an error, or when it was given up
    using Condition = std::function<ZQPredicate(ZQListRows)>; // on rows of a kind; null for none

    bool showsItems() const { return m_parts.showsItems || m_style == BrowserDisplayStyle::Plain; }
    void addSidebarGroups(const IsWanted &isWanted);
    using FolderItems = QHash<ZQObjectID, QList<ZQObjectID>>;
    std::optional<FolderItems> itemsOfLiveFolders(); // at once; nothing where each folder is to be asked for by itself
    void addRecentGroups(const ContentPart &recent);
    void addPart(const ContentPart &part, const ZQFetchRequest &request, const QString &title);
    void addKeyGroups();
    void addSizeGroups(const IsWanted &isWanted);
    void addGroup(ContentGroup group, const ZQRelatedIDs &rows, qsizetype first, qsizetype count);
    void joinPieces();

    // Of all parts together, each row once, ordered by `leadingKey` of the items first where one is named.
    Rows all(const QString &leadingKey = {}, const Condition &condition = nullptr);
    Rows answer(const ZQFetchRequest &request); // of the index, else of the store
    Rows rows(ZQFetchRequest request, const QString &leadingKey, const Condition &condition);
    Rows inOneOrder(const ZQRelatedIDs &memberships, const ZQRelatedIDs &items, const QString &leadingKey);
    std::optional<ZQFetchRequest> membershipRequest() const;
    std::optional<ZQFetchRequest> itemRequest() const;
    QVariantList identifiersOf(ContentPart::Holding holding) const;
    QVariant keyOf(const ZQObjectID &item) const;

    ContentParts m_parts;
    BrowserDisplayStyle m_style;
    ZQManagedObjectContext &m_context;
    Prepare m_prepare;
    LibraryIndex *m_index; // null, or not ready: the store answers
    int m_mostRows = 0;    // 0: all
    struct Piece           // the rows of a group, among others
    {
        ZQRelatedIDs rows;
        qsizetype first;
        qsizetype count;
    };
    Content m_content;
    QList<Piece> m_pieces;
};
