#include "Classes/Interface/Browser/BrowserViewController.h"

#include "Classes/Editing/ItemEdits.h"
#include "Classes/Editing/LibraryCommands.h"
#include "Classes/Editing/SidebarTargetRules.h"
#include "Classes/Interface/Detail/DetailView.h"
#include "Classes/Interface/ItemPictures.h"
#include "Classes/Interface/TextFields.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QSlider>
#include <QStackedWidget>
#include <QToolButton>

namespace {

struct SortChoice
{
    ZQSortValue value;
    const char *title;
};
constexpr SortChoice sortChoices[] = {
    {ZQSortValue::Manual, "Manual order"},
    {ZQSortValue::ImportDate, "Import date"},
    {ZQSortValue::Title, "Title"},
    {ZQSortValue::Size, "Size"},
    {ZQSortValue::Color, "Color"},
    {ZQSortValue::ModificationDate, "Modification date"},
    {ZQSortValue::CreationDate, "Creation date"},
};

QString sortTitle(ZQSortValue value)
{
    for (const SortChoice &choice : sortChoices) {
        if (choice.value == value) {
            return zqLocalized(choice.title);
        }
    }
    return zqLocalized("None");
}

constexpr double sliderSteps = 1000;
constexpr double zoomStep = 0.08;
constexpr qsizetype mostKeptRows = 20000; // a larger selection is kept by index

} // namespace

BrowserViewController::BrowserViewController(WindowContext &window, QWidget *parent)
    : QWidget(parent), m_window(window), m_content(new BrowserContent(window, this)), m_stack(new QStackedWidget(this)),
      m_grid(new ZQGridView(this)), m_detail(new DetailView(this))
{
    setObjectName(QStringLiteral("Browser"));
    setAttribute(Qt::WA_StyledBackground);
    m_grid->setAccessibleName(zqLocalized("Items"));
    m_grid->thumbnailLoader().setDecoder(&ItemPictures::pictureFor);
    const ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    m_grid->setShowsTitles(defaults.boolForKey(QStringLiteral("ShowLibraryItemsTitles")),
                           defaults.boolForKey(QStringLiteral("ShowLibraryItemsExtensions")));
    m_grid->setDataSource(m_content);
    auto *page = new QWidget(this);
    auto *column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeHead());
    auto *cell = new QGridLayout; // the button lies over the grid, below what it says instead of items
    cell->addWidget(m_grid, 0, 0);
    cell->addWidget(makeRecovery(), 0, 0, Qt::AlignCenter);
    column->addLayout(cell, 1);
    column->addWidget(makeStatus());
    m_stack->addWidget(page);
    m_stack->addWidget(m_detail);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_stack);

    m_refetch.setSingleShot(true);
    m_refetch.setInterval(40); // several changes in a row are one fetch
    connect(&m_refetch, &QTimer::timeout, m_content, &BrowserContent::reload);
    connect(m_content, &BrowserContent::aboutToChange, this, [this] {
        const ZQIndexSet selection = m_grid->selection();
        m_selectsAll = selection.count() > 1 && selection.count() == m_content->count();
        m_rowsToSelect = selection.count() > mostKeptRows ? QList<ZQObjectID>() : m_content->rowIDs(selection);
    });
    connect(m_content, &BrowserContent::changed, this, [this] {
        m_grid->reloadData();
        if (!std::exchange(m_keepsScroll, true)) {
            m_grid->setScrollOffset(0);
        }
        ZQIndexSet selection =
            m_selectsAll ? ZQIndexSet(0, m_content->count() - 1) : m_content->indexesOfRows(m_rowsToSelect);
        if (!m_itemToSelect.isNull()) {
            const qint64 index = m_content->indexOfLibraryItem(m_itemToSelect);
            selection = index < 0 ? selection : ZQIndexSet(index, index);
            m_itemToSelect = {};
        }
        const qint64 place = std::exchange(m_indexToSelect, -1);
        if (selection.isEmpty() && place >= 0 && m_content->count() > 0) {
            const qint64 index = std::min(place, m_content->count() - 1);
            selection = ZQIndexSet(index, index);
        }
        m_grid->setSelection(selection);
        if (selection.count() == 1) {
            m_grid->scrollToIndex(selection.first());
        }
        m_recovery->setVisible(ContentFetcher::isDamage(m_content->error()));
        updateHead();
        updateStatus();
        Q_EMIT selectionChanged();
    });
    connect(m_grid, &ZQGridView::selectionChanged, this, [this] {
        updateStatus();
        Q_EMIT selectionChanged();
    });
    connect(m_content, &BrowserContent::typingFound, m_grid, &ZQGridView::setCurrentIndex);
    connect(m_grid, &ZQGridView::activated, this, [this] { openDetail(false); });
    connect(m_grid, &ZQGridView::quickLookRequested, this, [this] { openDetail(true); });
    connect(m_grid, &ZQGridView::contextMenuRequested, this, &BrowserViewController::contextMenuRequested);
    connect(m_grid, &ZQGridView::zoomChanged, this, [this](double zoom) {
        const QSignalBlocker blocker(m_zoom);
        m_zoom->setValue(int(zoom * sliderSteps));
    });
    connect(m_detail, &DetailView::closed, this, &BrowserViewController::closeDetail);
    connect(m_detail, &DetailView::stepRequested, this,
            [this](int step) { showDetailAt(m_grid->currentIndex() + step); });
}

QWidget *BrowserViewController::makeHead()
{
    auto *head = new QWidget(this);
    head->setFixedHeight(ZQMeasure::headHeight);
    m_title = new QLabel(head);
    m_title->setObjectName(QStringLiteral("Title"));
    m_count = new QLabel(head);
    m_count->setObjectName(QStringLiteral("Muted"));
    m_sortCaption = new QLabel(zqLocalized("Sort"), head);
    m_sortCaption->setObjectName(QStringLiteral("Muted"));
    m_sort = new QToolButton(head);
    m_sort->setObjectName(QStringLiteral("Pop"));
    m_sort->setAccessibleName(zqLocalized("Sort by"));
    m_sort->setToolTip(zqLocalized("Sort by"));
    connect(m_sort, &QToolButton::clicked, this, &BrowserViewController::showSortMenu);
    m_direction = new QToolButton(head);
    m_direction->setFixedSize(26, 26);
    m_direction->setIconSize({14, 14});
    connect(m_direction, &QToolButton::clicked, this,
            [this] { setSort(m_content->tab().sortKeysValue(), !m_content->tab().sortDirectionValue()); });
    auto *row = new QHBoxLayout(head);
    row->setContentsMargins(20, 0, 14, 0);
    row->setSpacing(10);
    row->addWidget(m_title);
    row->addSpacing(8);
    row->addWidget(m_count);
    row->addStretch(1);
    row->addWidget(m_sortCaption);
    row->addWidget(m_sort);
    row->setSpacing(2);
    row->addWidget(m_direction);
    return head;
}

QWidget *BrowserViewController::makeStatus()
{
    auto *status = new QWidget(this);
    status->setFixedHeight(ZQMeasure::statusHeight + 1);
    auto *line = new QFrame(status);
    line->setObjectName(QStringLiteral("Hairline"));
    line->setFixedHeight(1);
    m_status = new QLabel(status);
    m_status->setObjectName(QStringLiteral("SmallMuted"));
    m_zoom = new QSlider(Qt::Horizontal, status);
    m_zoom->setRange(0, int(sliderSteps));
    m_zoom->setSingleStep(40);
    m_zoom->setPageStep(100);
    m_zoom->setFixedWidth(130);
    m_zoom->setAccessibleName(zqLocalized("Thumbnail size"));
    m_zoom->setToolTip(zqLocalized("Thumbnail size"));
    connect(m_zoom, &QSlider::valueChanged, this, [this](int value) { m_grid->setZoom(value / sliderSteps); });
    const auto picture = [status](int size) {
        auto *label = new QLabel(status);
        label->setPixmap(
            ZQIcon::icon(QStringLiteral("project")).pixmap(QSize(size, size), status->devicePixelRatioF()));
        QObject::connect(&ZQTheme::current(), &ZQTheme::changed, label, [label, size] {
            label->setPixmap(
                ZQIcon::icon(QStringLiteral("project")).pixmap(QSize(size, size), label->devicePixelRatioF()));
        });
        return label;
    };
    auto *row = new QHBoxLayout;
    row->setContentsMargins(16, 0, 16, 0);
    row->setSpacing(10);
    row->addWidget(m_status);
    row->addStretch(1);
    row->addWidget(picture(12));
    row->addWidget(m_zoom);
    row->addWidget(picture(16));
    auto *column = new QVBoxLayout(status);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(line);
    column->addLayout(row, 1);
    return status;
}

QWidget *BrowserViewController::makeRecovery()
{
    m_recovery = new QWidget(this);
    auto *recover = new QPushButton(zqLocalized("Recover…"), m_recovery);
    recover->setObjectName(QStringLiteral("Recover"));
    recover->setAccessibleName(zqLocalized("Recover the damaged library"));
    recover->setAutoDefault(true); // Return presses it, as in a sheet
    connect(recover, &QPushButton::clicked, this, &BrowserViewController::recoveryRequested);
    auto *row = new QHBoxLayout(m_recovery);
    row->setContentsMargins(16, 136, 16, 0);
    row->addStretch(1);
    row->addWidget(recover);
    row->addStretch(1);
    m_recovery->hide();
    return m_recovery;
}

void BrowserViewController::showTab(const std::shared_ptr<TabState> &tab)
{
    keepZoom();
    m_content->setTab(tab);
    didShowOther();
}

void BrowserViewController::showSidebarItems(const QList<ZQObjectID> &items)
{
    keepZoom();
    m_content->setSidebarItems(items);
    didShowOther();
}

void BrowserViewController::didShowOther()
{
    closeDetail();
    m_keepsScroll = false;
    m_grid->setSelection({});
    m_grid->setZoom(m_content->tab().zoomValue());
    {
        const QSignalBlocker blocker(m_zoom);
        m_zoom->setValue(int(m_grid->zoom() * sliderSteps));
    }
    updateHead();
    Q_EMIT titleChanged();
}

void BrowserViewController::setFilter(const QString &text)
{
    m_keepsScroll = false;
    m_content->setFilter(text);
}

QString BrowserViewController::countText() const
{
    if (!m_content->error().isNull()) {
        return {}; // how many there are is not known
    }
    if (m_content->isLoading()) {
        return {}; // yet
    }
    const qint64 count = m_content->count();
    return count == 1 ? zqLocalized("1 item") : zqFormat(zqLocalized("%@ items"), {QLocale().toString(count)});
}

void BrowserViewController::updateHead()
{
    const TabState &tab = m_content->tab();
    m_title->setText(tab.tabName());
    m_count->setText(countText());
    const ZQSortValue value = tab.sortKeysValue();
    const bool isByDate = value == ZQSortValue::Manual && !tab.browserCanManuallySort();
    const ZQSortValue shown = isByDate ? ZQSortValue::ImportDate : value;
    m_sort->setText(sortTitle(shown));
    m_sort->setAccessibleName(zqFormat(zqLocalized("Sort: %@"), {sortTitle(shown)}));
    m_sortCaption->setVisible(bool(m_content->singleItem()));
    m_sort->setVisible(bool(m_content->singleItem()));
    const bool ascending = tab.sortDirectionValue();
    m_direction->setVisible(bool(m_content->singleItem()) && shown != ZQSortValue::Manual &&
                            shown != ZQSortValue::None);
    m_direction->setIcon(ZQIcon::icon(ascending ? QStringLiteral("arrow-up") : QStringLiteral("arrow-down")));
    m_direction->setAccessibleName(ascending ? zqLocalized("Ascending") : zqLocalized("Descending"));
    m_direction->setToolTip(m_direction->accessibleName());
}

void BrowserViewController::updateStatus()
{
    const QLocale locale;
    const qint64 selected = m_grid->selection().count();
    m_status->setText(selected == 0 ? countText()
                                    : zqFormat(zqLocalized("%@ of %@ selected"),
                                               {locale.toString(selected), locale.toString(m_content->count())}));
}

void BrowserViewController::showSortMenu()
{
    QMenu menu(this);
    const TabState &tab = m_content->tab();
    for (const SortChoice &choice : sortChoices) {
        if (choice.value == ZQSortValue::Manual && !tab.browserCanManuallySort()) {
            continue;
        }
        QAction *action = menu.addAction(zqLocalized(choice.title), this, [this, choice] {
            setSort(choice.value, m_content->tab().sortDirectionValue());
        });
        action->setCheckable(true);
        action->setChecked(choice.value == tab.sortKeysValue());
    }
    menu.exec(m_sort->mapToGlobal(QPoint(0, m_sort->height() + 2)));
}

void BrowserViewController::setSort(ZQSortValue value, bool ascending)
{
    m_content->tab().setSort(value, ascending);
    m_content->reload();
    updateHead();
}

void BrowserViewController::keepZoom()
{
    if (m_grid->isVisible()) {
        m_content->tab().keepZoom(m_grid->zoom());
    }
}

void BrowserViewController::savePersistentState()
{
    keepZoom();
}

void BrowserViewController::changeZoom(double by)
{
    m_grid->setZoom(m_grid->zoom() + by);
}

qint64 BrowserViewController::selectionCount() const
{
    return m_grid->selection().count();
}

QList<ZQObjectID> BrowserViewController::selectedItems() const
{
    return m_content->libraryItemIDs(m_grid->selection());
}

ZQRef<ZQLibraryBaseItem> BrowserViewController::firstSelected() const
{
    return m_content->libraryItem(m_grid->selection().first());
}

void BrowserViewController::selectLibraryItem(const ZQObjectID &item)
{
    const qint64 index = m_content->indexOfLibraryItem(item);
    if (index >= 0) {
        m_grid->setCurrentIndex(index);
    } else {
        m_itemToSelect = item;
    }
}

void BrowserViewController::refetch()
{
    m_keepsScroll = true;
    m_content->dropObjects();
    m_grid->updateVisible();
    m_refetch.start();
}

void BrowserViewController::redrawVisible()
{
    m_content->dropObjects();
    m_grid->updateVisible();
}

void BrowserViewController::openDetail(bool quickLook)
{
    if (m_content->libraryItem(m_grid->currentIndex())) {
        m_stack->setCurrentWidget(m_detail);
        m_detail->setQuickLook(quickLook);
        showDetailAt(m_grid->currentIndex());
        m_detail->setFocus();
    }
}

void BrowserViewController::showDetailAt(qint64 index)
{
    const auto item = m_content->libraryItem(index);
    if (!item) {
        return;
    }
    m_grid->setCurrentIndex(index);
    const ZQThumbnailRequest thumbnail = ItemPictures::thumbnailOf(*item);
    m_detail->showItem(
        item->title(),
        {item->itemURL(), item->detailItemURL(), QSize(item->pixelWidth(), item->pixelHeight()),
         m_grid->thumbnailLoader().image(thumbnail, 512)},
        zqFormat(zqLocalized("%@ of %@"), {QLocale().toString(index + 1), QLocale().toString(m_content->count())}));
}

void BrowserViewController::closeDetail()
{
    if (isDetailOpen()) {
        m_stack->setCurrentIndex(0);
        m_grid->setFocus();
    }
}

bool BrowserViewController::isDetailOpen() const
{
    return m_stack->currentWidget() == m_detail;
}

void BrowserViewController::deleteFromLibrary()
{
    const QList<ZQObjectID> items = selectedItems();
    if (!items.isEmpty()) {
        m_indexToSelect = m_grid->selection().first();
        closeDetail();
        LibraryCommands(m_window).deleteItems(items);
    }
}

void BrowserViewController::removeFromProject()
{
    const auto single = m_content->singleItem();
    const QList<ZQObjectID> items = selectedItems();
    if (!items.isEmpty() && SidebarTargetRules::canRemoveItems(single.get())) {
        m_indexToSelect = m_grid->selection().first();
        closeDetail();
        LibraryCommands(m_window).removeItems(items, single->objectID());
    }
}

void BrowserViewController::duplicate()
{
    if (const QList<ZQObjectID> items = selectedItems(); !items.isEmpty()) {
        LibraryCommands(m_window).duplicateItems(items);
    }
}

void BrowserViewController::rate(int stars)
{
    if (const QList<ZQObjectID> items = selectedItems(); !items.isEmpty()) {
        ItemEdits(m_window).setRating(items, stars);
        Q_EMIT rated(stars);
    }
}

QList<WindowCommand> BrowserViewController::commands()
{
    const auto hasSelection = [this] { return selectionCount() > 0; };
    QList<WindowCommand> result = {
        {CommandID::Copy,
         zqLocalized("Copy"),
         {Qt::CTRL | Qt::Key_C},
         [this] {
             if (!TextFields::forward("copy")) {
                 copyToClipboard();
             }
         },
         [hasSelection] { return TextFields::haveFocus() || hasSelection(); }},
        {CommandID::SelectAll,
         zqLocalized("Select All"),
         {Qt::CTRL | Qt::Key_A},
         [this] {
             if (!TextFields::forward("selectAll")) {
                 m_grid->selectAll();
             }
         }},
        {CommandID::Duplicate,
         zqLocalized("Duplicate"),
         {Qt::CTRL | Qt::Key_D},
         [this] { duplicate(); },
         [hasSelection] { return !TextFields::haveFocus() && hasSelection(); }},
        {CommandID::DeleteFromLibrary,
         zqLocalized("Delete from Library"),
         {Qt::CTRL | Qt::Key_Delete},
         [this] { deleteFromLibrary(); },
         [hasSelection] { return !TextFields::haveFocus() && hasSelection(); }},
        {CommandID::LargerThumbnails,
         zqLocalized("Larger Thumbnails"),
         {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal},
         [this] { changeZoom(zoomStep); }},
        {CommandID::SmallerThumbnails,
         zqLocalized("Smaller Thumbnails"),
         {Qt::CTRL | Qt::Key_Minus},
         [this] { changeZoom(-zoomStep); }},
        {CommandID::QuickLook, zqLocalized("Quick Look"), {}, [this] { openDetail(true); }, hasSelection},
        {CommandID::Open, zqLocalized("Open"), {}, [this] { openDetail(false); }, hasSelection},
    };
    // Only the grid takes their keys: in a field a digit is a digit.
    for (int stars = 0; stars <= 5; ++stars) {
        result.append({.id = CommandID(int(CommandID::Rate0) + stars),
                       .title = stars == 0   ? zqLocalized("None")
                                : stars == 1 ? zqLocalized("1 Star")
                                             : zqFormat(zqLocalized("%d Stars"), {stars}),
                       .keys = {Qt::Key(Qt::Key_0 + stars)},
                       .run = [this, stars] { rate(stars); },
                       .isEnabled = hasSelection,
                       .keysIn = m_grid});
    }
    return result;
}

void BrowserViewController::copyToClipboard()
{
    if (m_grid->selection().isEmpty()) {
        return;
    }
    QMimeData *mime = m_content->mimeData(m_grid->selection());
    if (const auto item = selectionCount() == 1 ? firstSelected() : ZQRef<ZQLibraryBaseItem>()) {
        const QImage image = m_grid->thumbnailLoader().image(ItemPictures::thumbnailOf(*item), 1024);
        if (!image.isNull()) {
            mime->setImageData(image);
        }
    }
    QGuiApplication::clipboard()->setMimeData(mime);
}
