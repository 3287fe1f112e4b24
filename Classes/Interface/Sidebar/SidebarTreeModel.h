#pragma once

#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Interface/Sidebar/LiveFolderSigns.h"
#include "Classes/Interface/WindowContext.h"

#include <QAbstractItemModel>

#include <memory>

class ZQSidebarWatchedFolder;

// One side of the sidebar as a tree of its active items in their order, with counts beside them. What stands below a
// row is read when it is first asked for, and whoever asks gets all of it: a closed folder costs a row. A read that
// fails answers nothing and is tried again at the next question, so that commands, which may not take that for an empty
// folder, go by the store.
class SidebarTreeModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum class Side { Projects, Tags };
    enum Role {
        CountRole = Qt::UserRole,
        IconRole,
        LabelRole,
        StateRole,   // whether it is out of reach, or off
        SwatchRole,  // the code of a tag's colour, or 0
        ButtonRole,  // the icon of the button that a section head has; empty: none
        HintRole,    // what to do about a section that is empty; empty: nothing
        SyncingRole, // whether a live folder is being brought in step with the disk
        MarkRole     // the icon of what else is to be known of it; empty: nothing
    };

    SidebarTreeModel(WindowContext &window, Side side, QObject *parent = nullptr);
    ~SidebarTreeModel() override;

    // What was read, again from the store; identifiers keep their meaning, indexes do not. One that cannot be read
    // leaves the tree as it is. Its counts are asked for afterwards.
    void reload();
    void reloadCounts();                                // of the rows that were read; asked in the background
    bool hasUncounted() const { return m_isUncounted; } // rows were read since
    Side side() const { return m_side; }
    void setShowsCounts(bool shows);
    QString emptyText() const; // why there is no tree; empty when there is one, or none to be shown

    ZQRef<ZQSidebarBaseItem> item(const QModelIndex &index) const;
    QModelIndex indexOf(const ZQObjectID &item) const; // reads the way to it
    QModelIndex indexOfKind(ZQSidebarKind kind) const;
    static bool isSortedByTitle(const ZQSidebarBaseItem &label); // TAGS, as the person chose it
    QModelIndexList syncingRows() const; // of those that were read, with closed ones that hold such

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    bool hasChildren(const QModelIndex &parent = {}) const override; // reads nothing
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

Q_SIGNALS:
    void failed();                                                // the tree could not be read
    void renamed(const QModelIndex &index, const QString &title); // an edit ended with this text

private:
    struct Node;
    using Nodes = QHash<ZQObjectID, Node *>;
    struct Rows;
    ZQFetchRequest requestBelow(const Node &node) const;
    bool addRows(ZQFetchRequest request, Rows &rows, ZQError *error) const;
    void fill(Node &node, const Rows &rows, Nodes &nodes) const;
    bool read(Node &node, Nodes &nodes, ZQError *error) const;
    bool readAgain(Node &root, Nodes &nodes, ZQError *error) const;
    bool fillAgain(Node &node, const QSet<ZQObjectID> &open, const Rows &rows, Nodes &nodes, ZQError *error) const;
    Node *node(const QModelIndex &index) const;
    Node *opened(Node *node) const;
    Node *nodeOf(const ZQObjectID &item) const;
    static bool haveSameShape(const Node &a, const Node &b);
    void announceAll(const QModelIndex &above); // everything below may look different
    bool isSectionShown(const ZQSidebarBaseItem &label, bool hasChildren) const;
    void liveFoldersDidChange(const QList<ZQObjectID> &folders);
    static bool isClosed(const Node &node);                             // though there is something below it
    QList<Node *> rowsThatShow(const QList<ZQObjectID> &folders) const; // what they are, or hold
    QVariant liveFolderData(const Node &node, const ZQSidebarWatchedFolder &folder,
                            int role) const; // invalid: as of any other row
    QVariant labelData(const Node &node, int role) const;
    const LiveFolderSigns::Below &hiddenBelow(const Node &node) const; // nothing where it is open
    qint64 countOf(const Node &node) const;                            // as its row says it; -1: not known

    WindowContext &m_window;
    Side m_side;
    bool m_showsCounts = false;
    ZQError m_error;
    std::unique_ptr<Node> m_root;
    mutable Nodes m_nodes;
    mutable bool m_isUncounted = false;
    QHash<ZQObjectID, qint64> m_counts;
    QHash<ZQObjectID, qint64> m_countsWithBelow; // of live folders with others below them, shown while they are closed
    LiveFolderSigns m_signs;
    ContentFetcher::Ticket m_countsTicket;
};
