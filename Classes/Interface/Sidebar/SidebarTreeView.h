#pragma once

#include "Classes/Interface/Sidebar/SidebarDelegate.h"
#include "Classes/Interface/Sidebar/SidebarTreeModel.h"
#include "Kit/Widgets/ZQTurningSign.h"

#include <QTreeView>

// A place in the tree where a drag may end.
struct SidebarDropPlace
{
    ZQRef<ZQSidebarBaseItem> target; // null: the empty area
    int index = -1;                  // among the target's children; -1: onto it
};

// The tree of the sidebar with its own twisties, inline editing and drop marks. What may be dropped where, its owner
// says.
class SidebarTreeView : public QTreeView
{
    Q_OBJECT
public:
    static inline const QString elementMimeType = QStringLiteral("SIDEBAR_ELEMENT");

    explicit SidebarTreeView(QWidget *parent = nullptr);
    void setTree(SidebarTreeModel *model);
    bool isEditing() const { return state() == EditingState; }
    // The rows that can be selected beside those that are: below the last of them, then above the first; the nearest
    // first, of each side a few.
    QList<ZQObjectID> neighboursOfSelection() const;
    // What is on top, so that it can be there again after the rows were read anew.
    struct TopRow
    {
        ZQObjectID item; // null: the first row is, and stays
        int top = 0;     // in the viewport
    };
    TopRow topRow() const;
    void keepOnTop(const TopRow &row);
    SidebarTreeModel *tree() const { return static_cast<SidebarTreeModel *>(model()); }
    const ZQTurningSign &turningSign() const { return m_turningSign; } // of rows that are being synchronised

    std::function<Qt::DropAction(const QMimeData *, const SidebarDropPlace &)> validateDrop;
    std::function<bool(const QMimeData *, const SidebarDropPlace &)> acceptDrop;
    // Said while something would be dropped there; null or an empty text: nothing.
    std::function<QString(const QMimeData *, const SidebarDropPlace &)> dropHint;
    std::function<QMimeData *(const QModelIndexList &)> makeDrag;

Q_SIGNALS:
    void labelButtonPressed(const QModelIndex &label, const QPoint &globalPoint); // below the button

protected:
    void drawBranches(QPainter *painter, const QRect &rect, const QModelIndex &index) const override;
    void drawRow(QPainter *painter, const QStyleOptionViewItem &options, const QModelIndex &index) const override;
    void paintEvent(QPaintEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index, const QEvent *event) const override;
    bool isSection(const QModelIndex &index) const; // a label with rows below it
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void startDrag(Qt::DropActions actions) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    // The places under the pointer, the likeliest first.
    QList<SidebarDropPlace> placesAt(const QPoint &point) const;
    bool choosePlace(const QMimeData *data, const QPoint &point, SidebarDropPlace &place, Qt::DropAction &action) const;
    void showPlace(const SidebarDropPlace *place);
    void paintDropHint(QPainter &painter) const;
    QRegion signsInView() const;
    void turnSigns();
    void renewToolTip();
    QPixmap dragPicture(const QModelIndexList &dragged) const;

    QPersistentModelIndex m_pressedSelected; // a click on it edits its title
    QPersistentModelIndex m_renamed;         // soon, unless a key says otherwise
    QPersistentModelIndex m_tipped;          // whose tool tip was shown last
    QString m_tip;
    QPoint m_tipPlace; // on the screen
    QRect m_dropRow;   // lit up
    QRect m_dropLine;  // insertion mark
    QString m_dropHint;
    ZQTurningSign m_turningSign;
};
