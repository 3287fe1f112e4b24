#include "Classes/Interface/Sidebar/SidebarDelegate.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQSwatch.h"

#include <QGuiApplication>
#include <QLineEdit>
#include <QPainter>
#include <QTreeView>

namespace {

constexpr int levelIndent = 16;
constexpr int labelHeight = 32;
constexpr int hintHeight = 22;

int depthOf(const QModelIndex &index)
{
    int depth = 0;
    for (QModelIndex above = index.parent(); above.isValid(); above = above.parent()) {
        ++depth;
    }
    return depth;
}

// Absolute, since a painter of a widget takes "left" for the leading side and one of a picture does not.
int leading()
{
    return int(QGuiApplication::isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft) | int(Qt::AlignAbsolute);
}

int trailing()
{
    return int(QGuiApplication::isRightToLeft() ? Qt::AlignLeft : Qt::AlignRight) | int(Qt::AlignAbsolute);
}

void paintTwisty(QPainter *painter, const QRect &box, bool isExpanded)
{
    painter->save();
    if (!isExpanded && QGuiApplication::isRightToLeft()) {
        painter->translate(2 * QRectF(box).center().x(), 0);
        painter->scale(-1, 1);
    }
    ZQIcon::paint(*painter, box, isExpanded ? QStringLiteral("chevron-down") : QStringLiteral("chevron-right"),
                  zqColor(ZQColorRole::TextFaint));
    painter->restore();
}

} // namespace

bool SidebarDelegate::isLabel(const QModelIndex &index)
{
    return index.data(SidebarTreeModel::LabelRole).toBool();
}

QRect SidebarDelegate::mirrored(const QRect &row, const QRect &rect)
{
    return QStyle::visualRect(QGuiApplication::layoutDirection(), row, rect);
}

int SidebarDelegate::titleLeft(const QRect &row, const QModelIndex &index)
{
    return row.left() + rowMargin + twistyRoom + levelIndent * std::max(0, depthOf(index) - 1) + ZQMeasure::iconSize +
           8;
}

QRect SidebarDelegate::twistyRect(const QRect &row, const QModelIndex &index)
{
    const int x = row.left() + rowMargin + 2 + levelIndent * std::max(0, depthOf(index) - 1);
    return mirrored(row, {x, row.top() + (row.height() - 10) / 2, 10, 10});
}

QRect SidebarDelegate::iconRect(const QRect &row, const QModelIndex &index)
{
    return mirrored(row,
                    {titleLeft(row, index) - ZQMeasure::iconSize - 8,
                     row.top() + (row.height() - ZQMeasure::iconSize) / 2, ZQMeasure::iconSize, ZQMeasure::iconSize});
}

QRect SidebarDelegate::labelButtonRect(const QRect &row)
{
    constexpr int size = 14;
    return mirrored(row, {row.right() - rowMargin - 8 - size, row.top() + labelHeight / 2 + 3 - size / 2, size, size});
}

QSize SidebarDelegate::sizeHint(const QStyleOptionViewItem & /*option*/, const QModelIndex &index) const
{
    const bool hasHint = !index.data(SidebarTreeModel::HintRole).toString().isEmpty();
    return {100, isLabel(index) ? labelHeight + (hasHint ? hintHeight : 0) : ZQMeasure::rowHeight};
}

void SidebarDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (isLabel(index)) {
        paintLabel(painter, option, index);
        painter->restore();
        return;
    }
    const QRect row = option.rect;
    const QString title = index.data().toString();
    const bool selected = option.state & QStyle::State_Selected;
    const QRectF box = QRectF(row).adjusted(rowMargin, 0.5, -rowMargin, -0.5);
    const bool focused = (option.state & QStyle::State_HasFocus) && option.widget && option.widget->hasFocus();
    // With high contrast the ground of what is selected is near that of the others, for the text's sake.
    const bool isOutlined = selected && ZQTheme::current().hasHighContrast();
    painter->setPen(focused      ? QPen(zqColor(ZQColorRole::Accent), 1)
                    : isOutlined ? QPen(zqColor(ZQColorRole::ControlBorder), 1)
                                 : QPen(Qt::NoPen));
    painter->setBrush(selected                                   ? QBrush(zqColor(ZQColorRole::Select))
                      : (option.state & QStyle::State_MouseOver) ? QBrush(zqColor(ZQColorRole::Hover))
                                                                 : QBrush(Qt::NoBrush));
    painter->drawRoundedRect(box, ZQMeasure::rowRadius, ZQMeasure::rowRadius);
    paintIcon(painter, option, index);
    if (index.model()->hasChildren(index)) {
        const auto *tree = qobject_cast<const QTreeView *>(option.widget);
        paintTwisty(painter, twistyRect(row, index), tree && tree->isExpanded(index));
    }
    const int badgeWidth = paintBadge(painter, option, index);
    const bool isAway = index.data(SidebarTreeModel::StateRole).toBool();
    painter->setFont(ZQTheme::fontForName(ZQTheme::current().font(), title));
    painter->setPen(zqColor(!isAway ? ZQColorRole::Text : selected ? ZQColorRole::TextMuted : ZQColorRole::TextFaint));
    const int left = titleLeft(row, index);
    const QRect text(left, row.top(), row.right() - rowMargin - 8 - badgeWidth - left, row.height());
    painter->drawText(mirrored(row, text), int(Qt::AlignVCenter) | leading(),
                      painter->fontMetrics().elidedText(title, Qt::ElideRight, text.width()));
    painter->restore();
}

QRect SidebarDelegate::signRect(const QRect &row, const QModelIndex &index)
{
    return isLabel(index)
               ? mirrored(row, mirrored(row, labelButtonRect(row)).translated(-labelButtonRect(row).width() - 8, 0))
               : iconRect(row, index);
}

void SidebarDelegate::paintTurning(QPainter *painter, const QRectF &box) const
{
    painter->save();
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->translate(box.center());
    painter->rotate(m_sign.degrees());
    painter->translate(-box.center());
    ZQIcon::paint(*painter, box, QStringLiteral("live"), zqColor(ZQColorRole::Accent));
    painter->restore();
}

void SidebarDelegate::paintLabel(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QRect row(option.rect.left(), option.rect.top(), option.rect.width(), labelHeight);
    QFont font = ZQTheme::current().font(ZQMeasure::tinyTextSize, QFont::DemiBold);
    font.setLetterSpacing(QFont::PercentageSpacing, 104);
    painter->setFont(font);
    if ((option.state & QStyle::State_HasFocus) && option.widget && option.widget->hasFocus()) {
        painter->setPen(QPen(zqColor(ZQColorRole::Accent), 1));
        painter->drawRoundedRect(QRectF(row).adjusted(rowMargin, 8.5, -rowMargin, -0.5), ZQMeasure::rowRadius,
                                 ZQMeasure::rowRadius);
    }
    painter->setPen(zqColor(ZQColorRole::TextFaint));
    painter->drawText(row.adjusted(16, 8, -16, 0), int(Qt::AlignVCenter) | leading(), index.data().toString());
    if (const QString button = index.data(SidebarTreeModel::ButtonRole).toString(); !button.isEmpty()) {
        ZQIcon::paint(*painter, labelButtonRect(row), button, zqColor(ZQColorRole::TextFaint));
    }
    if (index.data(SidebarTreeModel::SyncingRole).toBool()) {
        paintTurning(painter, signRect(row, index));
    } else if (const QString mark = index.data(SidebarTreeModel::MarkRole).toString(); !mark.isEmpty()) {
        ZQIcon::paint(*painter, signRect(row, index), mark, zqColor(ZQColorRole::TextFaint));
    }
    if (const QString hint = index.data(SidebarTreeModel::HintRole).toString(); !hint.isEmpty()) {
        const QRect below = option.rect.adjusted(16, labelHeight, -16, 0);
        painter->setFont(ZQTheme::current().font(ZQMeasure::smallTextSize));
        painter->setPen(zqColor(ZQColorRole::TextMuted));
        painter->drawText(below, int(Qt::AlignVCenter) | leading(),
                          painter->fontMetrics().elidedText(hint, Qt::ElideRight, below.width()));
    }
}

void SidebarDelegate::paintIcon(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const bool selected = option.state & QStyle::State_Selected;
    const bool isSyncing = index.data(SidebarTreeModel::SyncingRole).toBool();
    const QRectF icon = iconRect(option.rect, index);
    if (const int swatch = index.data(SidebarTreeModel::SwatchRole).toInt()) {
        painter->setPen(QPen(zqSwatchRing(swatch, zqColor(selected ? ZQColorRole::Select : ZQColorRole::Sunken)), 1));
        painter->setBrush(ZQTheme::swatch(swatch));
        painter->drawEllipse(icon.adjusted(2.5, 2.5, -2.5, -2.5));
        return;
    }
    if (isSyncing) {
        paintTurning(painter, icon);
        return;
    }
    const bool isAway = index.data(SidebarTreeModel::StateRole).toBool();
    ZQIcon::paint(*painter, icon, index.data(SidebarTreeModel::IconRole).toString(),
                  zqColor(isAway     ? ZQColorRole::TextFaint
                          : selected ? ZQColorRole::Accent
                                     : ZQColorRole::TextMuted));
}

int SidebarDelegate::paintBadge(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    constexpr int markSize = 12;
    const bool selected = option.state & QStyle::State_Selected;
    const QColor color = zqColor(selected ? ZQColorRole::TextMuted : ZQColorRole::TextFaint);
    painter->setFont(ZQTheme::current().font(ZQMeasure::tinyTextSize));
    const QString badge = index.data(SidebarTreeModel::CountRole).toString();
    int width = badge.isEmpty() ? 0 : painter->fontMetrics().horizontalAdvance(badge) + 8;
    painter->setPen(color);
    painter->drawText(mirrored(option.rect, option.rect.adjusted(0, 0, -rowMargin - 8, 0)),
                      int(Qt::AlignVCenter) | trailing(), badge);
    if (const QString mark = index.data(SidebarTreeModel::MarkRole).toString(); !mark.isEmpty()) {
        const int right = option.rect.right() - rowMargin - 8 - width;
        const QRect box(right - markSize, option.rect.top() + (option.rect.height() - markSize) / 2, markSize,
                        markSize);
        ZQIcon::paint(*painter, mirrored(option.rect, box), mark, color);
        width += markSize + 6;
    }
    return width;
}

QWidget *SidebarDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem & /*option*/,
                                       const QModelIndex & /*index*/) const
{
    auto *editor = new QLineEdit(parent);
    editor->setObjectName(QStringLiteral("InlineEditor"));
    editor->setAccessibleName(zqLocalized("Name"));
    return editor;
}

// The rows are refreshed while one is edited; what was typed stays.
void SidebarDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    constexpr const char *isFilled = "zqIsFilled";
    if (!editor->property(isFilled).toBool()) {
        editor->setProperty(isFilled, true);
        auto *line = static_cast<QLineEdit *>(editor);
        line->setText(index.data(Qt::EditRole).toString());
        line->selectAll();
    }
}

void SidebarDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                           const QModelIndex &index) const
{
    const QRect row = option.rect;
    const QRect title(titleLeft(row, index) - 5, row.top() + 2, row.right() - rowMargin - 2 - titleLeft(row, index) + 5,
                      row.height() - 4);
    editor->setGeometry(mirrored(row, title));
}
