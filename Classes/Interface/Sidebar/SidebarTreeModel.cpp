#include "Classes/Interface/Sidebar/SidebarTreeModel.h"

#include "Classes/Browsing/Content/SidebarContents.h"
#include "Classes/Interface/LiveFolderStates.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <vector>

struct SidebarTreeModel::Node
{
    ZQRef<ZQSidebarBaseItem> item; // null: above the labels
    Node *parent = nullptr;
    int row = 0;
    bool hasChildren = false; // known before they are
    bool isRead = false;
    std::vector<std::unique_ptr<Node>> children;
};

struct SidebarTreeModel::Rows
{
    QHash<ZQObjectID, QList<ZQRef<ZQSidebarBaseItem>>> below; // in order; of none, those that stand below nothing
    QSet<ZQObjectID> fathers;                                 // those of them that have rows below them
};

SidebarTreeModel::SidebarTreeModel(WindowContext &window, Side side, QObject *parent)
    : QAbstractItemModel(parent), m_window(window), m_side(side), m_root(std::make_unique<Node>()), m_signs(window),
      m_countsTicket(window.fetcher, ContentFetcher::Priority::Counts)
{
    if (window.liveFolders && side == Side::Projects) {
        connect(window.liveFolders, &LiveFolderStates::changed, this, &SidebarTreeModel::liveFoldersDidChange);
    }
}

SidebarTreeModel::~SidebarTreeModel() = default;

void SidebarTreeModel::setShowsCounts(bool shows)
{
    m_showsCounts = shows;
    reloadCounts();
}

ZQFetchRequest SidebarTreeModel::requestBelow(const Node &node) const
{
    const ZQSortDescriptor byOrder{QStringLiteral("order"), true, ZQSortDescriptor::Comparison::Standard};
    ZQFetchRequest request{.entityName = ZQSidebarBaseItem::entityName()};
    if (!node.item) {
        request.predicate = ZQPredicate::predicateWithFormat(
            QStringLiteral("father == nil && is_Tag == %@ && active == YES"), {m_side == Side::Tags});
        request.sortDescriptors = {byOrder, {QStringLiteral("kind"), true, ZQSortDescriptor::Comparison::Standard}};
        return request;
    }
    request.predicate = ZQPredicate::predicateWithFormat(QStringLiteral("father == %@ && active == YES"),
                                                         {QVariant::fromValue(node.item->objectID())});
    request.sortDescriptors = {byOrder};
    if (isSortedByTitle(*node.item)) {
        request.sortDescriptors.prepend(
            {QStringLiteral("title"), true, ZQSortDescriptor::Comparison::LocalizedStandard});
    }
    return request;
}

// Two questions, however many rows there are.
bool SidebarTreeModel::addRows(ZQFetchRequest request, Rows &rows, ZQError *error) const
{
    const auto items = zqFetch<ZQSidebarBaseItem>(m_window.context, request, error);
    request.predicate = ZQPredicate::andPredicate(
        {request.predicate, ZQPredicate::predicateWithFormat(QStringLiteral("ANY childs.active == YES"))});
    request.sortDescriptors.clear();
    const auto fathers = items && !items->isEmpty() ? m_window.context.fetchObjectIDs(request, error)
                                                    : std::optional(QList<ZQObjectID>());
    if (!items || !fathers) {
        return false;
    }
    for (const auto &item : *items) {
        const auto father = item->father();
        rows.below[father ? father->objectID() : ZQObjectID()].append(item);
    }
    rows.fathers.unite(QSet<ZQObjectID>(fathers->begin(), fathers->end()));
    return true;
}

void SidebarTreeModel::fill(Node &node, const Rows &rows, Nodes &nodes) const
{
    for (const auto &item : rows.below.value(node.item ? node.item->objectID() : ZQObjectID())) {
        const bool hasChildren = rows.fathers.contains(item->objectID());
        // What is nobody's child and no section has lost its place.
        if (node.item || isSectionShown(*item, hasChildren)) {
            const auto row = int(node.children.size());
            node.children.push_back(std::make_unique<Node>(Node{item, &node, row, hasChildren, !hasChildren, {}}));
            nodes.insert(item->objectID(), node.children.back().get());
        }
    }
    node.isRead = true;
    node.hasChildren = !node.children.empty();
}

bool SidebarTreeModel::read(Node &node, Nodes &nodes, ZQError *error) const
{
    Rows rows;
    if (!addRows(requestBelow(node), rows, error)) {
        return false;
    }
    fill(node, rows, nodes);
    return true;
}

// As far down as the tree was read before. What stands in one order is read in one go, whatever it stands below.
bool SidebarTreeModel::readAgain(Node &root, Nodes &nodes, ZQError *error) const
{
    constexpr qsizetype batchSize = 500;
    if (!read(root, nodes, error)) {
        return false;
    }
    QSet<ZQObjectID> open;
    QVariantList inOrder;
    for (const Node *before : m_nodes) {
        if (before->isRead && before->hasChildren) {
            open.insert(before->item->objectID());
            if (!isSortedByTitle(*before->item)) {
                inOrder.append(QVariant::fromValue(before->item->objectID()));
            }
        }
    }
    Rows rows;
    for (qsizetype first = 0; first < inOrder.size(); first += batchSize) {
        const ZQFetchRequest request{
            .entityName = ZQSidebarBaseItem::entityName(),
            .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("father IN %@ && active == YES"),
                                                          {QVariant(inOrder.mid(first, batchSize))}),
            .sortDescriptors = {{QStringLiteral("order"), true, ZQSortDescriptor::Comparison::Standard}}};
        if (!addRows(request, rows, error)) {
            return false;
        }
    }
    return fillAgain(root, open, rows, nodes, error);
}

bool SidebarTreeModel::fillAgain(Node &node, const QSet<ZQObjectID> &open, const Rows &rows, Nodes &nodes,
                                 ZQError *error) const
{
    return std::all_of(node.children.begin(), node.children.end(), [&](const std::unique_ptr<Node> &child) {
        if (child->isRead || !open.contains(child->item->objectID())) {
            return true;
        }
        if (isSortedByTitle(*child->item)) {
            if (!read(*child, nodes, error)) {
                return false;
            }
        } else {
            fill(*child, rows, nodes);
        }
        return fillAgain(*child, open, rows, nodes, error);
    });
}

void SidebarTreeModel::reload()
{
    auto root = std::make_unique<Node>();
    Nodes nodes;
    m_error = {};
    if (!readAgain(*root, nodes, &m_error)) {
        Q_EMIT failed();
        return;
    }
    m_isUncounted = true;
    if (m_window.liveFolders) {
        m_window.liveFolders->forgetStatuses();
    }
    m_signs.forget();
    // Most changes leave the shape as it is: the rows, and what the view knows of them, then stay.
    if (haveSameShape(*m_root, *root)) {
        announceAll({});
        return;
    }
    beginResetModel();
    std::swap(m_root, root);
    std::swap(m_nodes, nodes);
    endResetModel();
}

SidebarTreeModel::Node *SidebarTreeModel::opened(Node *node) const
{
    if (node->item && !node->isRead && read(*node, m_nodes, nullptr)) {
        m_isUncounted = true;
    }
    return node;
}

QString SidebarTreeModel::emptyText() const
{
    return m_error.isNull() || rowCount() > 0 ? QString() : ContentFetcher::textForError(m_error);
}

bool SidebarTreeModel::haveSameShape(const Node &a, const Node &b)
{
    return a.item == b.item && a.hasChildren == b.hasChildren && a.isRead == b.isRead &&
           std::equal(a.children.begin(), a.children.end(), b.children.begin(), b.children.end(),
                      [](const auto &x, const auto &y) { return haveSameShape(*x, *y); });
}

void SidebarTreeModel::announceAll(const QModelIndex &above)
{
    const Node *const shown = node(above);
    if (shown->children.empty()) {
        return;
    }
    const int rows = int(shown->children.size());
    Q_EMIT dataChanged(index(0, 0, above), index(rows - 1, 0, above));
    for (int row = 0; row < rows; ++row) {
        announceAll(index(row, 0, above));
    }
}

bool SidebarTreeModel::isSectionShown(const ZQSidebarBaseItem &label, bool hasChildren) const
{
    // An empty section that nothing can be put into only takes room.
    const bool isLive = ZQSidebarKind(label.kind()) == ZQSidebarKind::WatchedFoldersLabel;
    return label.is_Label() && (!isLive || hasChildren || m_window.liveFolders);
}

bool SidebarTreeModel::isClosed(const Node &node)
{
    const ZQSidebarBaseItem &item = *node.item;
    return node.hasChildren && !item.expanded() && !(item.isLabel() && item.expandedIsNull());
}

const LiveFolderSigns::Below &SidebarTreeModel::hiddenBelow(const Node &node) const
{
    static const LiveFolderSigns::Below nothing;
    return isClosed(node) ? m_signs.below(node.item->objectID()) : nothing;
}

qint64 SidebarTreeModel::countOf(const Node &node) const
{
    const ZQObjectID id = node.item->objectID();
    const qint64 own = m_counts.value(id, -1);
    return isClosed(node) ? m_countsWithBelow.value(id, own) : own;
}

QList<SidebarTreeModel::Node *> SidebarTreeModel::rowsThatShow(const QList<ZQObjectID> &folders) const
{
    constexpr int deepest = 1000; // of a damaged tree
    QList<Node *> rows;
    for (const ZQObjectID &folder : folders) {
        if (Node *const found = m_nodes.value(folder); found && !rows.contains(found)) { // others are not shown
            rows.append(found);
        }
        const auto item = m_window.sidebarItem(folder);
        auto above = item ? item->father() : ZQRef<ZQSidebarBaseItem>();
        for (int depth = 0; above && depth < deepest; ++depth, above = above->father()) {
            Node *const found = m_nodes.value(above->objectID());
            if (found && isClosed(*found) && !rows.contains(found)) {
                rows.append(found);
            }
        }
    }
    return rows;
}

void SidebarTreeModel::liveFoldersDidChange(const QList<ZQObjectID> &folders)
{
    m_signs.forgetStatuses();
    for (Node *const row : rowsThatShow(folders)) {
        const QModelIndex changed = createIndex(row->row, 0, row);
        Q_EMIT dataChanged(changed, changed);
    }
}

QModelIndexList SidebarTreeModel::syncingRows() const
{
    QModelIndexList rows;
    for (Node *const row : rowsThatShow(m_window.liveFolders ? m_window.liveFolders->syncing() : QList<ZQObjectID>())) {
        rows.append(createIndex(row->row, 0, row));
    }
    return rows;
}

bool SidebarTreeModel::isSortedByTitle(const ZQSidebarBaseItem &label)
{
    return ZQSidebarKind(label.kind()) == ZQSidebarKind::TagsLabel &&
           ZQSortValue(label.sortKeys()) == ZQSortValue::Title;
}

void SidebarTreeModel::reloadCounts()
{
    m_isUncounted = false;
    if (!m_showsCounts) {
        if (!m_counts.isEmpty()) {
            m_counts.clear();
            m_countsWithBelow.clear();
            announceAll({});
        }
        return;
    }
    QList<ZQObjectID> ids;
    QList<ZQObjectID> withBelow;
    for (const auto &[id, node] : m_nodes.asKeyValueRange()) {
        const bool hasOwn = !node->item->isLabel() && !node->item->isFolder() && !node->item->isRecent();
        if (hasOwn) {
            ids.append(id);
        }
        if (hasOwn && node->hasChildren && node->item->isWatchedFolder()) {
            withBelow.append(id);
        }
    }
    m_countsTicket.run([this, ids, withBelow, index = m_countsTicket.index()](
                           ZQManagedObjectContext &context, const auto &isWanted) -> ContentFetcher::Ticket::Answer {
        QList<SidebarContents::Entry> entries;
        for (const ZQObjectID &id : ids) {
            if (const auto item = zqCast<ZQSidebarBaseItem>(context.objectWithID(id))) {
                entries.append(SidebarContents::entryFor(*item));
            }
        }
        const SidebarContents contents(context, index.get());
        const auto counts = contents.counts(entries, isWanted);
        const auto below = counts && !withBelow.isEmpty() ? contents.countsWithBelow(withBelow, isWanted)
                                                          : std::optional(SidebarContents::Counts());
        if (!counts || !below) {
            return {}; // what is shown stays
        }
        return [this, counts = *counts, below = *below] {
            if (m_counts != counts || m_countsWithBelow != below) {
                m_counts = counts;
                m_countsWithBelow = below;
                announceAll({});
            }
        };
    });
}

SidebarTreeModel::Node *SidebarTreeModel::node(const QModelIndex &index) const
{
    return index.isValid() ? static_cast<Node *>(index.internalPointer()) : m_root.get();
}

ZQRef<ZQSidebarBaseItem> SidebarTreeModel::item(const QModelIndex &index) const
{
    return index.isValid() ? node(index)->item : ZQRef<ZQSidebarBaseItem>();
}

// Folders that nobody opened yet lie on the way to it.
SidebarTreeModel::Node *SidebarTreeModel::nodeOf(const ZQObjectID &id) const
{
    constexpr qsizetype deepest = 1000; // of a damaged tree
    QList<ZQObjectID> way = {id};
    while (!m_nodes.contains(way.last())) {
        const auto item = m_window.sidebarItem(way.last());
        const auto father = item ? item->father() : ZQRef<ZQSidebarBaseItem>();
        if (!father || way.size() > deepest) {
            return nullptr;
        }
        way.append(father->objectID());
    }
    Node *node = m_nodes.value(way.takeLast());
    while (node && !way.isEmpty()) {
        opened(node);
        node = m_nodes.value(way.takeLast()); // none: it is not active
    }
    return node;
}

QModelIndex SidebarTreeModel::indexOf(const ZQObjectID &item) const
{
    Node *const found = nodeOf(item);
    return found ? createIndex(found->row, 0, found) : QModelIndex();
}

QModelIndex SidebarTreeModel::indexOfKind(ZQSidebarKind kind) const
{
    const auto item = ZQSidebarBaseItem::specialItemOfKind(kind, m_window.context);
    return item ? indexOf(item->objectID()) : QModelIndex();
}

QModelIndex SidebarTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    const Node *above = opened(node(parent));
    if (column != 0 || row < 0 || row >= int(above->children.size())) {
        return {};
    }
    return createIndex(row, 0, above->children[size_t(row)].get());
}

QModelIndex SidebarTreeModel::parent(const QModelIndex &child) const
{
    if (!child.isValid()) {
        return {};
    }
    Node *above = node(child)->parent;
    return above == m_root.get() ? QModelIndex() : createIndex(above->row, 0, above);
}

int SidebarTreeModel::rowCount(const QModelIndex &parent) const
{
    return int(opened(node(parent))->children.size());
}

bool SidebarTreeModel::hasChildren(const QModelIndex &parent) const
{
    return node(parent)->hasChildren;
}

int SidebarTreeModel::columnCount(const QModelIndex & /*parent*/) const
{
    return 1;
}

QVariant SidebarTreeModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    const ZQRef<ZQSidebarBaseItem> &item = node(index)->item;
    if (item->isLabel()) {
        if (const QVariant value = labelData(*node(index), role); value.isValid()) {
            return value;
        }
    }
    if (const auto folder = zqCast<ZQSidebarWatchedFolder>(item)) {
        if (const QVariant value = liveFolderData(*node(index), *folder, role); value.isValid()) {
            return value;
        }
    }
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return item->title();
    case Qt::AccessibleTextRole: {
        const qint64 count = countOf(*node(index));
        return count < 0 ? item->title()
                         : zqFormat(zqLocalized("%@, %@ items"), {item->title(), QLocale().toString(count)});
    }
    case Qt::ToolTipRole: {
        const auto smart = zqCast<ZQSidebarSmartFolder>(item);
        return smart ? smart->searchText() : QString();
    }
    case LabelRole:
        return item->isLabel();
    case IconRole:
        return item->icon();
    case SwatchRole:
        return item->isTag() && !ZQSidebarTag::colorNameForValue(item->kind()).isEmpty() ? int(item->kind()) : 0;
    case StateRole:
    case SyncingRole:
        return false;
    case CountRole: {
        const qint64 count = countOf(*node(index));
        return count > 0 ? QLocale().toString(count) : QString();
    }
    default:
        return {};
    }
}

QVariant SidebarTreeModel::labelData(const Node &node, int role) const
{
    const ZQSidebarKind kind{node.item->kind()};
    if (kind != ZQSidebarKind::WatchedFoldersLabel || !m_window.liveFolders) {
        return role != ButtonRole ? QVariant() : kind == ZQSidebarKind::TagsLabel ? QStringLiteral("menu") : QString();
    }
    const LiveFolderSigns::Below &hidden = hiddenBelow(node);
    switch (role) {
    case ButtonRole:
        return QStringLiteral("plus");
    case HintRole:
        return node.hasChildren ? QString() : zqLocalized("Drop folders here, or press +");
    case MarkRole:
        return hidden.mark;
    case SyncingRole:
        return hidden.isSyncing;
    case Qt::ToolTipRole: {
        QStringList lines = {zqLocalized("Folders of the disk whose files are shown here and stay where they are"),
                             LiveFolderSigns::textOf(hidden)};
        lines.removeAll(QString());
        return lines.join(u'\n');
    }
    case Qt::AccessibleDescriptionRole:
        return LiveFolderSigns::textOf(hidden);
    default:
        return {};
    }
}

QVariant SidebarTreeModel::liveFolderData(const Node &node, const ZQSidebarWatchedFolder &folder, int role) const
{
    using Kind = LiveFolderStates::Kind;
    constexpr std::array own = {int(Qt::ToolTipRole), int(Qt::AccessibleDescriptionRole),
                                int(StateRole),       int(SyncingRole),
                                int(IconRole),        int(MarkRole),
                                int(CountRole)};
    if (std::find(own.begin(), own.end(), role) == own.end()) {
        return {};
    }
    const LiveFolderStates *const states = m_window.liveFolders;
    const LiveFolderStatus status = states ? states->statusOf(folder.objectID()) : LiveFolderStatus();
    const Kind kind = LiveFolderStates::kindOf(folder, status);
    const LiveFolderSigns::Below &hidden = hiddenBelow(node);
    QStringList lines = {LiveFolderStates::explanation(kind, status), LiveFolderSigns::textOf(hidden)};
    lines.removeAll(QString());
    switch (role) {
    case Qt::ToolTipRole:
        lines.prepend(folder.folderPath());
        lines.removeAll(QString()); // a folder that was never found has no path
        return lines.join(u'\n');
    case Qt::AccessibleDescriptionRole:
        return (QStringList{folder.typeString()} + lines).join(QStringLiteral(". "));
    case StateRole:
        return LiveFolderStates::isAway(kind);
    case SyncingRole:
        return status.isSyncing || hidden.isSyncing;
    case IconRole:
        return kind == Kind::Off ? QStringLiteral("pause") : folder.icon();
    case MarkRole: {
        // What holds for the whole stands beside its root. A reason where the folder is neither away nor swept: not all
        // of it is watched.
        const QString mark = zqIsSubFolder(folder)                                ? QString()
                             : kind == Kind::Swept                                ? QStringLiteral("recent")
                             : kind == Kind::Mirrored && !status.reason.isEmpty() ? QStringLiteral("warning")
                                                                                  : QString();
        return mark.isEmpty() || hidden.mark == QStringLiteral("warning") ? hidden.mark : mark;
    }
    default: {
        const auto father = zqCast<ZQSidebarWatchedFolder>(folder.father());
        const bool isSaidAbove = father && LiveFolderStates::kindOf(*father) == kind;
        return !LiveFolderStates::isAway(kind) ? QVariant() : isSaidAbove ? QString() : LiveFolderStates::badge(kind);
    }
    }
}

bool SidebarTreeModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role == Qt::EditRole && index.isValid()) {
        Q_EMIT renamed(index, value.toString());
        return true;
    }
    return false;
}

Qt::ItemFlags SidebarTreeModel::flags(const QModelIndex &index) const
{
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    const ZQRef<ZQSidebarBaseItem> &item = node(index)->item;
    if (item->isLabel()) {
        return Qt::ItemIsEnabled;
    }
    const bool isFixed = item->isSpecial() || item->kind() != 0;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (!isFixed && !zqIsSubFolder(*item)) { // the disk says where that is
        flags |= Qt::ItemIsDragEnabled;
    }
    if (!isFixed && !item->isWatchedFolder()) {
        flags |= Qt::ItemIsEditable;
    }
    return flags;
}
