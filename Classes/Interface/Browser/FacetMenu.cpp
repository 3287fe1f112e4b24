#include "Classes/Interface/Browser/FacetMenu.h"

#include "Classes/Interface/Browser/FacetButton.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQPredicate.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Kit/Widgets/ZQWindowPlace.h"

#include <QBoxLayout>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>

#include <algorithm>

namespace {

constexpr int tokenRole = Qt::UserRole;
constexpr int menuWidth = 280;
constexpr int mostLines = 12;
constexpr int lineHeight = 26;

} // namespace

FacetMenu::FacetMenu(const Facet &facet, QWidget *parent)
    : QFrame(parent, Qt::Popup), m_facet(facet), m_field(new QLineEdit(this)), m_list(new QListWidget(this))
{
    setObjectName(QStringLiteral("FacetMenu"));
    setAttribute(Qt::WA_DeleteOnClose);
    setAccessibleName(Facet::title(facet.kind));
    m_field->setPlaceholderText(zqLocalized("Find…"));
    m_field->setAccessibleName(zqFormat(zqLocalized("Find in %@"), {Facet::title(facet.kind)}));
    m_list->setAccessibleName(Facet::title(facet.kind));
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setUniformItemSizes(true);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    for (const FacetValue &value : std::as_const(m_facet.values)) {
        auto *item = new QListWidgetItem(value.title + QStringLiteral("  ") + QLocale().toString(value.count), m_list);
        item->setData(tokenRole, value.token);
        item->setData(Qt::AccessibleTextRole, FacetButton::spoken(value));
        item->setCheckState(value.isChosen ? Qt::Checked : Qt::Unchecked);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        item->setSizeHint({menuWidth - 40, lineHeight});
    }
    m_list->setCurrentRow(0);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(6, 6, 6, 6);
    column->setSpacing(6);
    column->addWidget(m_field);
    column->addWidget(m_list);
    const int lines = std::min(mostLines, int(m_facet.values.size()));
    m_list->setFixedHeight(lines * lineHeight + 4);
    setFixedWidth(menuWidth);
    m_field->installEventFilter(this);
    setFocusProxy(m_field);
    connect(m_field, &QLineEdit::textChanged, this, &FacetMenu::find);
    connect(m_list, &QListWidget::itemClicked, this, &FacetMenu::choose);
}

void FacetMenu::popUp(const QWidget &anchor)
{
    adjustSize();
    zqMoveBelow(*this, anchor);
    show();
    m_field->setFocus();
}

void FacetMenu::find(const QString &text)
{
    const QString wanted = zqFold(text.trimmed());
    QListWidgetItem *first = nullptr;
    for (int row = 0; row < m_list->count(); ++row) {
        const bool isFound = zqFold(m_facet.values.at(row).title).contains(wanted);
        m_list->item(row)->setHidden(!isFound);
        first = first || !isFound ? first : m_list->item(row);
    }
    m_list->setCurrentItem(first);
}

void FacetMenu::choose(const QListWidgetItem *item)
{
    if (item && !item->isHidden()) {
        const QString token = item->data(tokenRole).toString();
        const FacetKind kind = m_facet.kind;
        close();
        Q_EMIT chosen(kind, token);
    }
}

bool FacetMenu::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() != QEvent::KeyPress) {
        return QFrame::eventFilter(object, event);
    }
    auto *keys = static_cast<QKeyEvent *>(event);
    switch (keys->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        QCoreApplication::sendEvent(m_list, event);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        choose(m_list->currentItem());
        return true;
    case Qt::Key_Escape:
        close();
        return true;
    default:
        return QFrame::eventFilter(object, event);
    }
}
