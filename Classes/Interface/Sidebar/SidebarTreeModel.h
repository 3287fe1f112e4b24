#pragma once

#include "Classes/Browsing/ContentFetcher.h"
#include "Classes/Interface/WindowContext.h"

#include <QAbstractItemModel>

#include <memory>

// One side of the sidebar as a tree of its active items in their order, with counts beside them.
class SidebarTreeModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum class Side { Projects, Tags };
    enum Role {
        CountRole = Qt::UserRole,
        IconRole,
        LabelRole,
        StateRole,
        SwatchRole, // the code of a tag's colour, or 0
        MenuRole    // whether a section head has a menu of its own
    };

    SidebarTreeModel(WindowContext &window, Side side, QObject *parent = nullptr);
    ~SidebarTreeModel() override;

    // The tree again from the store; identifiers keep their meaning, indexes do not. One that cannot be read leaves the
    // tree as it is.
    void reload();
    void reloadCounts(); // asked in the background
    Side side() const { return m_side; }
    void setShowsCounts(bool shows);
    QString emptyText() const; // why there is no tree; empty when there is one, or none to be shown

    ZQRef<ZQSidebarBaseItem> item(const QModelIndex &index) const;
    QModelIndex indexOf(const ZQObjectID &item) const;
    QModelIndex indexOfKind(ZQSidebarKind kind) const;
    static bool isSortedByTitle(const ZQSidebarBaseItem &label); // TAGS, as the person chose it

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

Q_SIGNALS:
    void failed();                                                // the tree could not be read
    void renamed(const QModelIndex &index, const QString &title); // an edit ended with this text

private:
    struct Node;
    void build(Node &node, const ZQRef<ZQSidebarBaseItem> &item);
    const Node *node(const QModelIndex &index) const;
    static bool haveSameShape(const Node &a, const Node &b);
    void announceAll(const QModelIndex &above); // everything below may look different
    bool isSectionShown(const ZQSidebarBaseItem &label) const;

    WindowContext &m_window;
    Side m_side;
    bool m_showsCounts = true;
    ZQError m_error;
    std::unique_ptr<Node> m_root;
    QHash<ZQObjectID, Node *> m_nodes;
    QHash<ZQObjectID, qint64> m_counts;
    ContentFetcher::Ticket m_countsTicket;
};
