#include "Classes/Interface/Sidebar/SidebarTreeModel.h"

#include "Classes/Browsing/SidebarContents.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QLocale>

#include <algorithm>
#include <vector>

struct SidebarTreeModel::Node
{
    ZQRef<ZQSidebarBaseItem> item;
    Node *parent = nullptr;
    int row = 0;
    std::vector<std::unique_ptr<Node>> children;
};

SidebarTreeModel::SidebarTreeModel(WindowContext &window, Side side, QObject *parent)
    : QAbstractItemModel(parent), m_window(window), m_side(side), m_root(std::make_unique<Node>()),
      m_countsTicket(window.fetcher, ContentFetcher::Priority::Counts)
{
}

SidebarTreeModel::~SidebarTreeModel() = default;

void SidebarTreeModel::setShowsCounts(bool shows)
{
    m_showsCounts = shows;
    reloadCounts();
}

void SidebarTreeModel::reload()
{
    const bool isTags = m_side == Side::Tags;
    ZQFetchRequest request{.entityName = ZQSidebarBaseItem::entityName()};
    request.predicate = isTags ? ZQPredicate::predicateWithFormat(QStringLiteral("father == nil &&  active == YES"))
                               : ZQPredicate::predicateWithFormat(
                                     QStringLiteral("father == nil && is_Tag == %@ && active == %@"), {false, true});
    request.sortDescriptors = {{QStringLiteral("order"), true, ZQSortDescriptor::Comparison::Standard},
                               {QStringLiteral("kind"), true, ZQSortDescriptor::Comparison::Standard}};
    m_error = {};
    const auto roots = zqFetch<ZQSidebarBaseItem>(m_window.context, request, &m_error);
    if (!roots) {
        Q_EMIT failed();
        return;
    }
    auto before = std::exchange(m_root, std::make_unique<Node>());
    auto nodesBefore = std::exchange(m_nodes, {});
    for (const auto &root : *roots) {
        // The other side's condition leaves the projects in; they have their own.
        if (root->is_Tag() == isTags && isSectionShown(*root)) {
            build(*m_root, root);
        }
    }
    // Most changes leave the shape as it is: the rows, and what the view knows of them, then stay.
    const bool isSame = haveSameShape(*before, *m_root);
    std::swap(before, m_root);
    std::swap(nodesBefore, m_nodes);
    if (!isSame) {
        beginResetModel();
        std::swap(before, m_root);
        std::swap(nodesBefore, m_nodes);
        endResetModel();
    } else {
        announceAll({});
    }
    reloadCounts();
}

QString SidebarTreeModel::emptyText() const
{
    return m_error.isNull() || rowCount() > 0 ? QString() : ContentFetcher::textForError(m_error);
}

bool SidebarTreeModel::haveSameShape(const Node &a, const Node &b)
{
    return a.item == b.item && std::equal(a.children.begin(), a.children.end(), b.children.begin(), b.children.end(),
                                          [](const auto &x, const auto &y) { return haveSameShape(*x, *y); });
}

void SidebarTreeModel::announceAll(const QModelIndex &above)
{
    const int rows = rowCount(above);
    if (rows == 0) {
        return;
    }
    Q_EMIT dataChanged(index(0, 0, above), index(rows - 1, 0, above));
    for (int row = 0; row < rows; ++row) {
        announceAll(index(row, 0, above));
    }
}

bool SidebarTreeModel::isSectionShown(const ZQSidebarBaseItem &label) const
{
    // An empty section that nothing can be put into only takes room.
    return label.is_Label() &&
           (ZQSidebarKind(label.kind()) != ZQSidebarKind::WatchedFoldersLabel || label.numberofChilds() > 0);
}

void SidebarTreeModel::build(Node &parentNode, const ZQRef<ZQSidebarBaseItem> &item)
{
    auto node = std::make_unique<Node>();
    node->item = item;
    node->parent = &parentNode;
    node->row = int(parentNode.children.size());
    m_nodes.insert(item->objectID(), node.get());
    Node &built = *node;
    parentNode.children.push_back(std::move(node));
    for (const auto &child : isSortedByTitle(*item) ? item->alphabeticOrderedChildren() : item->orderedChildren()) {
        build(built, child);
    }
}

bool SidebarTreeModel::isSortedByTitle(const ZQSidebarBaseItem &label)
{
    return ZQSidebarKind(label.kind()) == ZQSidebarKind::TagsLabel &&
           ZQSortValue(label.sortKeys()) == ZQSortValue::Title;
}

void SidebarTreeModel::reloadCounts()
{
    if (!m_showsCounts) {
        m_counts.clear();
        announceAll({});
        return;
    }
    QList<SidebarContents::Entry> entries;
    for (const auto &[id, node] : m_nodes.asKeyValueRange()) {
        const bool hasOwn = !node->item->isLabel() && !node->item->isFolder() && !node->item->isRecent();
        if (hasOwn) {
            entries.append(SidebarContents::entryFor(*node->item));
        }
    }
    m_countsTicket.run([this, entries, index = m_countsTicket.index()](
                           ZQManagedObjectContext &context, const auto &isWanted) -> ContentFetcher::Ticket::Answer {
        const auto counts = SidebarContents(context, index.get()).counts(entries, isWanted);
        if (!counts) {
            return {}; // what is shown stays
        }
        return [this, counts = *counts] {
            if (m_counts != counts) {
                m_counts = counts;
                announceAll({});
            }
        };
    });
}

const SidebarTreeModel::Node *SidebarTreeModel::node(const QModelIndex &index) const
{
    return index.isValid() ? static_cast<const Node *>(index.constInternalPointer()) : m_root.get();
}

ZQRef<ZQSidebarBaseItem> SidebarTreeModel::item(const QModelIndex &index) const
{
    return index.isValid() ? node(index)->item : ZQRef<ZQSidebarBaseItem>();
}

QModelIndex SidebarTreeModel::indexOf(const ZQObjectID &item) const
{
    const auto found = m_nodes.constFind(item);
    return found == m_nodes.constEnd() ? QModelIndex() : createIndex((*found)->row, 0, *found);
}

QModelIndex SidebarTreeModel::indexOfKind(ZQSidebarKind kind) const
{
    for (Node *const node : m_nodes) {
        const bool isFixed = node->item->isLabel() || node->item->isSpecial();
        if (isFixed && ZQSidebarKind(node->item->kind()) == kind) {
            return createIndex(node->row, 0, node);
        }
    }
    return {};
}

QModelIndex SidebarTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    const Node *above = node(parent);
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
    return int(node(parent)->children.size());
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
    const auto folder = zqCast<ZQSidebarWatchedFolder>(item);
    const bool isAway = folder && (folder->is_missing() || folder->is_trashed());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return item->title();
    case Qt::AccessibleTextRole: {
        const qint64 count = m_counts.value(item->objectID(), -1);
        return count < 0 ? item->title()
                         : zqFormat(zqLocalized("%@, %@ items"), {item->title(), QLocale().toString(count)});
    }
    case Qt::ToolTipRole:
        if (isAway) {
            return folder->is_trashed() ? zqLocalized("This folder is in the trash.")
                                        : zqLocalized("This folder cannot be found.");
        }
        if (const auto smart = zqCast<ZQSidebarSmartFolder>(item)) {
            return smart->searchText();
        }
        return folder ? folder->folderPath() : QString();
    case LabelRole:
        return item->isLabel();
    case MenuRole:
        return item->isLabel() && ZQSidebarKind(item->kind()) == ZQSidebarKind::TagsLabel;
    case IconRole:
        return item->icon();
    case SwatchRole:
        return item->isTag() && !ZQSidebarTag::colorNameForValue(item->kind()).isEmpty() ? int(item->kind()) : 0;
    case StateRole:
        return isAway;
    case CountRole: {
        if (isAway) {
            return zqLocalized("missing");
        }
        const qint64 count = m_counts.value(item->objectID(), 0);
        return count > 0 ? QLocale().toString(count) : QString();
    }
    default:
        return {};
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
    if (!isFixed) {
        flags |= Qt::ItemIsDragEnabled;
    }
    if (!isFixed && !item->isWatchedFolder()) {
        flags |= Qt::ItemIsEditable;
    }
    return flags;
}
