#include "Classes/Interface/Browser/BrowserViewController.h"

#include "Classes/Editing/LibraryCommands.h"
#include "Classes/Interface/Browser/BrowserHead.h"
#include "Classes/Interface/Browser/BrowserListStyle.h"
#include "Classes/Interface/Browser/CompareController.h"
#include "Classes/Interface/Browser/EmptyState.h"
#include "Classes/Interface/Browser/HiddenItems.h"
#include "Classes/Interface/Browser/NearnessSlider.h"
#include "Classes/Interface/Browser/RefineBar.h"
#include "Classes/Interface/Browser/SavedSearchButtons.h"
#include "Classes/Interface/Browser/SearchChips.h"
#include "Classes/Interface/Detail/DetailView.h"
#include "Classes/Interface/ItemPictures.h"
#include "Classes/Interface/TextFields.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSlider>
#include <QStackedWidget>

#include <algorithm>

namespace {

constexpr double sliderSteps = 1000;

// Whether any of them is not among the rows; of many, some stand for all.
bool areNewTo(const QList<ZQObjectID> &rows, const QList<ZQObjectID> &items)
{
    constexpr qsizetype enough = 32;
    QSet<ZQObjectID> missing(items.begin(), items.begin() + std::min(enough, items.size()));
    for (auto row = rows.begin(); row != rows.end() && !missing.isEmpty(); ++row) {
        missing.remove(*row);
    }
    return !missing.isEmpty();
}

} // namespace

BrowserViewController::BrowserViewController(WindowContext &window, QWidget *parent)
    : QWidget(parent), m_window(window), m_content(new BrowserContent(window, this)), m_stack(new QStackedWidget(this)),
      m_grid(new ZQGridView(this)), m_detail(new DetailView(this))
{
    setObjectName(QStringLiteral("Browser"));
    setAttribute(Qt::WA_StyledBackground);
    m_grid->setAccessibleName(zqLocalized("Items"));
    m_grid->thumbnailLoader().setDecoder(&ItemPictures::pictureFor);
    m_grid->setDataSource(m_content);
    auto *page = new QWidget(this);
    auto *column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    m_head = new BrowserHead(*m_content, page);
    column->addWidget(m_head);
    m_savedSearch = new SavedSearchButtons(m_head);
    m_head->addButton(m_savedSearch);
    m_nearness = new NearnessSlider(m_head);
    m_head->addButton(m_nearness);
    connect(m_nearness, &NearnessSlider::searchRequested, this, &BrowserViewController::searchRequested);
    m_style = new BrowserListStyle(*m_content, *m_head, *m_grid, this);
    makeSearchRows(page);
    column->addWidget(m_chips);
    column->addWidget(m_refine);
    auto *cell = new QGridLayout; // the button lies over the grid, below what it says instead of items
    cell->addWidget(m_grid, 0, 0);
    cell->addWidget(makeRecovery(), 0, 0, Qt::AlignCenter);
    m_empty = new EmptyState(this); // goes to the page after the grid, and so lies over it
    cell->addWidget(m_empty, 0, 0, Qt::AlignCenter);
    column->addLayout(cell, 1);
    column->addWidget(makeStatus());
    m_stack->addWidget(page);
    m_stack->addWidget(m_detail);
    m_compare = new CompareController(m_window, *m_content, *m_grid, *m_stack);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_stack);
    m_refine->setNextStop(m_grid);

    m_refetch.setSingleShot(true);
    m_refetch.setInterval(40); // several changes in a row are one fetch
    connect(&m_refetch, &QTimer::timeout, m_content, &BrowserContent::reload);
    connect(m_head, &BrowserHead::orderChanged, this, [this] {
        updateHead();
        Q_EMIT orderChanged();
        Q_EMIT viewChanged();
    });
    connect(m_style, &BrowserListStyle::changed, this, [this] {
        Q_EMIT orderChanged();
        Q_EMIT viewChanged();
    });
    connect(m_content, &BrowserContent::valuesArrived, m_grid, &ZQGridView::updateVisible);
    connect(&m_refetch, &QTimer::timeout, m_refine, &RefineBar::recount);
    connect(&m_refetch, &QTimer::timeout, m_hidden, &HiddenItems::recount);
    connect(m_content, &BrowserContent::aboutToChange, this, &BrowserViewController::contentWillChange);
    connect(m_content, &BrowserContent::changed, this, &BrowserViewController::contentDidChange);
    connect(m_content, &BrowserContent::waited, this, &BrowserViewController::contentDidWait);
    connect(m_content, &BrowserContent::answered, this, &BrowserViewController::endWaiting);
    connect(m_grid, &ZQGridView::selectionChanged, this, [this] {
        if (m_content->isOfPlaceBefore() && !m_grid->selection().isEmpty()) {
            m_grid->setSelection({}); // nothing is done with what is about to go
            return;
        }
        if (!m_isSelecting) {
            forgetWanted();
        }
        updateStatus();
        Q_EMIT selectionChanged();
    });
    connect(m_content, &BrowserContent::typingFound, m_grid, &ZQGridView::setCurrentIndex);
    connect(m_grid, &ZQGridView::activated, this, [this] { openDetail(false); });
    connect(m_grid, &ZQGridView::quickLookRequested, this, [this] { openDetail(true); });
    connect(m_grid, &ZQGridView::contextMenuRequested, this, &BrowserViewController::contextMenuRequested);
    connect(m_grid, &ZQGridView::zoomChanged, this, [this](double zoom) {
        if (!m_isShowingOther) {
            m_content->tab().setZoom(zoom);
        }
        const QSignalBlocker blocker(m_zoom);
        m_zoom->setValue(int(zoom * sliderSteps));
    });
    if (window.liveFolders) {
        connect(window.liveFolders, &LiveFolderStates::changed, this, &BrowserViewController::liveFoldersDidChange);
    }
    connect(m_detail, &DetailView::closed, this, &BrowserViewController::closeDetail);
    connect(m_detail, &DetailView::stepRequested, this,
            [this](int step) { showDetailAt(m_grid->currentIndex() + step); });
    connect(m_compare, &CompareController::openChanged, this, [this] {
        Q_EMIT selectionChanged();
        Q_EMIT viewChanged();
    });
    connect(this, &BrowserViewController::rated, m_compare, &CompareController::setRating);
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
    m_hidden = new HiddenItems(m_window, status);
    row->addWidget(m_hidden);
    connect(m_hidden, &HiddenItems::changed, this, [this] {
        updateHead();
        updateStatus();
    });
    connect(m_hidden, &HiddenItems::showAllRequested, this, [this] {
        m_grid->setFocus(); // the button goes
        Q_EMIT searchRequested(QString());
    });
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
    showOther([&] { m_content->setTab(tab); });
}

void BrowserViewController::showSidebarItems(const QList<ZQObjectID> &items)
{
    showOther([&] { m_content->setSidebarItems(items); });
}

// The rows may be there at once, or later.
void BrowserViewController::showOther(const std::function<void()> &change)
{
    const QScopedValueRollback selecting(m_isSelecting, true);
    forgetWanted();
    closeDetail();
    m_refetch.stop();
    m_isShowingOther = true;
    m_refine->expire();
    m_restoresView = true;
    m_keepsScroll = false;
    m_grid->setSelection({});
    change();
    m_style->showTab();
    m_grid->setZoom(m_content->tab().zoomValue());
    {
        const QSignalBlocker blocker(m_zoom);
        m_zoom->setValue(int(m_grid->zoom() * sliderSteps));
    }
    m_isShowingOther = false;
    restoreView();
    updateHead();
    Q_EMIT titleChanged();
    Q_EMIT orderChanged();
}

void BrowserViewController::contentWillChange()
{
    if (m_restoresView) {
        return; // what is selected is another tab's
    }
    m_anchor = ScrollAnchor(*m_grid, *m_content);
    const ZQIndexSet selection = m_grid->selection();
    if (selection.count() == m_content->count()) {
        m_rowsToSelect = m_content->rowIDs(); // what arrives does not join them
    } else {
        m_rowsToSelect = selection.count() > mostKeptRows ? QList<ZQObjectID>() : m_content->rowIDs(selection);
    }
}

void BrowserViewController::contentDidChange()
{
    const QScopedValueRollback selecting(m_isSelecting, true);
    m_grid->reloadData();
    const TabState &tab = m_content->tab();
    const Order order{tab.sortKeysValue(), tab.sortDirectionValue(), tab.browserDisplayStyleValue()};
    const bool isInOtherOrder = std::exchange(m_order, order) != order;
    if (m_restoresView) {
        restoreView();
    } else {
        const ZQIndexSet kept = m_content->indexesOfRows(std::exchange(m_rowsToSelect, {}));
        scrollAfterChange(selectWhatIsWanted(kept), isInOtherOrder, kept);
    }
    followInDetail();
    m_recovery->setVisible(ContentFetcher::isDamage(m_content->error()));
    m_empty->showFor(*m_content);
    updateHead();
    showChips();
    m_refine->setContent(m_content->tab().contentQuery());
    if (!m_content->isLoading() && m_content->error().isNull()) {
        m_hidden->setContent(m_content->tab().contentQuery(), m_content->count());
    }
    updateStatus();
    Q_EMIT selectionChanged();
}

void BrowserViewController::contentDidWait()
{
    const QScopedValueRollback selecting(m_isSelecting, true);
    m_grid->reloadData();
    m_grid->setScrollOffset(0);
    m_recovery->hide();
    m_empty->showFor(*m_content);
    updateStatus();
}

// What was selected is followed where it was in view, was chosen anew or stands in another order: what comes in by
// itself takes nobody away from what they look at.
void BrowserViewController::scrollAfterChange(bool selectsOther, bool isInOtherOrder, const ZQIndexSet &kept)
{
    const ZQIndexSet selection = m_grid->selection();
    const bool isOther = !std::exchange(m_keepsScroll, true) || isInOtherOrder; // what is first is not what was
    if (isOther) {
        m_grid->setScrollOffset(0);
    } else {
        m_anchor.restore(*m_grid, *m_content);
    }
    const bool followsOne = selection.count() == 1 && (isOther || selection != kept || m_anchor.hasSeenSelection());
    if (!selection.isEmpty() && (selectsOther || isInOtherOrder || followsOne)) {
        m_grid->scrollToIndex(selection.first());
    }
}

void BrowserViewController::liveFoldersDidChange(const QList<ZQObjectID> &folders)
{
    if (m_content->isOf(folders)) {
        m_empty->showFor(*m_content);
        if (m_content->count() == 0) {
            m_grid->updateVisible(); // it says how far that is
        }
    }
}

bool BrowserViewController::selectWhatIsWanted(ZQIndexSet selection)
{
    const ZQIndexSet wanted = m_content->indexesOfLibraryItems(m_itemsToSelect);
    if (!wanted.isEmpty()) {
        selection = wanted;
    }
    if (wanted.count() >= m_itemsToSelect.size()) {
        m_itemsToSelect.clear();
    }
    const qint64 place = std::exchange(m_indexToSelect, -1);
    if (selection.isEmpty() && place >= 0 && m_content->count() > 0) {
        const qint64 index = std::min(place, m_content->count() - 1);
        selection = ZQIndexSet(index, index);
    }
    m_grid->setSelection(selection);
    return !wanted.isEmpty();
}

void BrowserViewController::forgetWanted()
{
    ++m_moment;
    m_itemsToSelect.clear();
    m_indexToSelect = -1;
}

// What that fetch did not bring is not shown here: it was deleted, or a search hides it.
void BrowserViewController::endWaiting(quint64 fetch)
{
    const bool isMoreToCome = m_refetch.isActive() || m_window.isBusy();
    if (fetch > m_wantedSince && !isMoreToCome) {
        m_itemsToSelect.clear();
    }
}

void BrowserViewController::setFilter(const QString &text)
{
    m_keepsScroll = false;
    m_content->setFilter(text);
    showChips();
    Q_EMIT viewChanged();
}

void BrowserViewController::updateHead()
{
    m_head->showTab(countText());
    m_style->showTab();
}

void BrowserViewController::savePersistentState()
{
    keepViewState();
    m_content->tab().savePersistentStateInformations();
}

void BrowserViewController::changeZoom(double by)
{
    m_grid->setZoom(m_grid->zoom() + by);
}

qint64 BrowserViewController::selectionCount() const
{
    if (m_compare->isOpen()) {
        return m_compare->currentItem() ? 1 : 0;
    }
    return m_grid->selection().count();
}

QList<ZQObjectID> BrowserViewController::selectedItems() const
{
    if (m_compare->isOpen()) {
        const auto current = m_compare->currentItem();
        return current ? QList<ZQObjectID>{current->objectID()} : QList<ZQObjectID>();
    }
    return m_content->libraryItemIDs(m_grid->selection());
}

ZQRef<ZQLibraryBaseItem> BrowserViewController::firstSelected() const
{
    return m_compare->isOpen() ? m_compare->currentItem() : m_content->libraryItem(m_grid->selection().first());
}

void BrowserViewController::selectLibraryItems(const QList<ZQObjectID> &items)
{
    const ZQIndexSet indexes = m_restoresView ? ZQIndexSet() : m_content->indexesOfLibraryItems(items);
    const QScopedValueRollback selecting(m_isSelecting, true);
    m_itemsToSelect = indexes.count() < items.size() ? items : QList<ZQObjectID>();
    m_wantedSince = m_content->fetches();
    if (!indexes.isEmpty()) {
        m_grid->setSelection(indexes);
        m_grid->scrollToIndex(indexes.first());
    }
}

std::function<void(const QList<ZQObjectID> &)> BrowserViewController::selectionOfWhatComes()
{
    return [self = QPointer(this), moment = m_moment,
            before = m_content->libraryItemIDs()](const QList<ZQObjectID> &items) {
        const bool isWanted = self && self->m_moment == moment && self->showsItems() && items.size() < mostKeptRows;
        if (isWanted && (areNewTo(before, items) || areNewTo(self->m_content->libraryItemIDs(), items))) {
            self->selectLibraryItems(items);
        }
    };
}

void BrowserViewController::refetch()
{
    m_keepsScroll = true;
    m_content->dropObjects();
    m_grid->updateVisible();
    showChips(); // a saved one may be another
    m_compare->followSoon();
    m_refetch.start();
}

void BrowserViewController::redrawVisible()
{
    m_content->dropObjects();
    m_grid->updateVisible();
    m_compare->followSoon();
}

void BrowserViewController::openDetail(bool quickLook)
{
    const qint64 current = m_grid->currentIndex();
    if (!m_content->isOfPlaceBefore() && m_content->libraryItem(current)) {
        m_compare->close(); // it would keep its pictures in memory, unseen
        m_stack->setCurrentWidget(m_detail);
        m_detail->setQuickLook(quickLook);
        showDetailAt(current);
        m_detail->setFocus();
        Q_EMIT viewChanged();
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
    m_detail->showItem(item->title(),
                       {item->itemURL(), item->detailItemURL(), QSize(item->pixelWidth(), item->pixelHeight()),
                        m_grid->thumbnailLoader().image(thumbnail, 512)},
                       detailPosition(index));
    m_detailItem = item->objectID();
}

QString BrowserViewController::detailPosition(qint64 index) const
{
    return zqFormat(zqLocalized("%@ of %@"), {QLocale().toString(index + 1), QLocale().toString(m_content->count())});
}

// It stays with its item, wherever that is now, and ends with it.
void BrowserViewController::followInDetail()
{
    if (!isDetailOpen() || m_content->isLoading() || !m_content->error().isNull()) {
        return;
    }
    const qint64 current = m_grid->currentIndex();
    const auto item = m_content->libraryItem(current);
    const bool isCurrent = item && item->objectID() == m_detailItem; // an item may be in several groups
    const qint64 index = isCurrent ? current : m_content->indexOfLibraryItem(m_detailItem);
    if (index < 0) {
        closeDetail();
        return;
    }
    if (!isCurrent) {
        m_grid->setCurrentIndex(index);
    }
    m_detail->setPosition(detailPosition(index));
}

void BrowserViewController::closeDetail()
{
    m_compare->close();
    if (isDetailOpen()) {
        m_stack->setCurrentIndex(0);
        m_grid->setFocus();
        Q_EMIT viewChanged();
    }
}

bool BrowserViewController::isDetailOpen() const
{
    return m_stack->currentWidget() == m_detail;
}

bool BrowserViewController::showsItems() const
{
    return m_stack->currentIndex() == 0;
}

void BrowserViewController::deleteFromLibrary()
{
    const QList<ZQObjectID> items = selectedItems();
    if (!items.isEmpty()) {
        m_indexToSelect = m_grid->selection().first();
        if (isDetailOpen()) {
            closeDetail();
        }
        LibraryCommands(m_window).deleteItems(items);
    }
}

bool BrowserViewController::canRemove() const
{
    return selectionCount() > 0 && m_content->tab().canMoveItemToOtherProject();
}

void BrowserViewController::removeFromProject()
{
    const QList<ZQObjectID> items = selectedItems();
    if (!items.isEmpty() && canRemove()) {
        m_indexToSelect = m_grid->selection().first();
        if (isDetailOpen()) {
            closeDetail();
        }
        m_content->tab().removeItems(items, m_content->sidebarItems(), true);
    }
}
