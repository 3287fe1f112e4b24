#pragma once

#include "Classes/Interface/Sidebar/SidebarTreeModel.h"
#include "Kit/Widgets/ZQTurningSign.h"

#include <QStyledItemDelegate>

// Draws the rows of the sidebar: section heads, icons, titles and badges.
class SidebarDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    // `sign`: of rows that are being synchronised. Outlives the delegate.
    explicit SidebarDelegate(const ZQTurningSign &sign, QObject *parent = nullptr)
        : QStyledItemDelegate(parent), m_sign(sign)
    {
    }
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;

    static constexpr int rowMargin = 8;
    static constexpr int twistyRoom = 14;
    static bool isLabel(const QModelIndex &index);
    // Where a language is written from right to left, `rect` of a row is on its other side; the rectangles below are.
    static QRect mirrored(const QRect &row, const QRect &rect);
    static int titleLeft(const QRect &row, const QModelIndex &index); // not mirrored
    static QRect twistyRect(const QRect &row, const QModelIndex &index);
    static QRect iconRect(const QRect &row, const QModelIndex &index);
    static QRect labelButtonRect(const QRect &row);                    // of a section head with a button
    static QRect signRect(const QRect &row, const QModelIndex &index); // where it turns

private:
    void paintLabel(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const;
    void paintTurning(QPainter *painter, const QRectF &box) const;
    void paintIcon(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const;
    static int paintBadge(QPainter *painter, const QStyleOptionViewItem &option,
                          const QModelIndex &index); // the width it took

    const ZQTurningSign &m_sign;
};
