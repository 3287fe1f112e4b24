#include "Classes/Interface/Browser/CompareController.h"

#include "Classes/Browsing/Search/LikeArgument.h"
#include "Classes/Editing/ItemEdits.h"
#include "Classes/Editing/KeepOne.h"
#include "Classes/Interface/Browser/BrowserContent.h"
#include "Classes/Interface/Compare/CompareView.h"
#include "Classes/Interface/ItemPictures.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQPictureHash.h"

#include <QSet>
#include <QStackedWidget>

#include <algorithm>

namespace {

constexpr int standInSide = 512;
constexpr qint64 mostPixels = 200'000'000; // of all of them together
constexpr int followDelay = 50;            // milliseconds; several changes in a row are one

// Of two; empty where what they look like is not known.
QString likenessOf(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    const auto first = items.size() == 2 ? ZQPictureHash::fromBytes(items.first()->pictureHash()) : std::nullopt;
    const auto second = first ? ZQPictureHash::fromBytes(items.last()->pictureHash()) : std::nullopt;
    return second ? zqFormat(zqLocalized("Likeness %d %%"), {LikeArgument::likeness(first->distance(*second))})
                  : QString();
}

} // namespace

CompareController::CompareController(WindowContext &window, BrowserContent &content, ZQGridView &grid,
                                     QStackedWidget &stack)
    : QObject(&stack), m_window(window), m_content(content), m_grid(grid), m_stack(stack),
      m_view(new CompareView(&stack))
{
    m_stack.addWidget(m_view);
    m_follow.setSingleShot(true);
    m_follow.setInterval(followDelay);
    connect(&m_follow, &QTimer::timeout, this, &CompareController::follow);
    connect(m_view, &CompareView::closed, this, &CompareController::close);
    connect(m_view, &CompareView::currentChanged, this,
            [this](const ZQObjectID &item) { m_grid.setSelection(m_content.indexesOfLibraryItems({item})); });
    connect(m_view, &CompareView::itemsChanged, this, &CompareController::follow);
    connect(m_view, &CompareView::keepRequested, this, &CompareController::keep);
    connect(m_view, &CompareView::rated, this,
            [this](const ZQObjectID &item, int stars) { ItemEdits(m_window).setRating({item}, stars); });
}

// An item may be in several groups of the grid.
QList<ZQObjectID> CompareController::selectedItems() const
{
    QList<ZQObjectID> items;
    if (m_grid.selection().count() <= CompareView::most * 2) {
        for (const ZQObjectID &item : m_content.libraryItemIDs(m_grid.selection())) {
            if (!items.contains(item)) {
                items.append(item);
            }
        }
    }
    return items;
}

bool CompareController::canOpen() const
{
    const qsizetype count = m_content.isOfPlaceBefore() ? 0 : selectedItems().size();
    return count >= CompareView::fewest && count <= CompareView::most;
}

bool CompareController::isOpen() const
{
    return m_stack.currentWidget() == m_view;
}

void CompareController::open()
{
    if (canOpen()) {
        open(selectedItems());
    }
}

void CompareController::open(const QList<ZQObjectID> &items)
{
    QList<ZQRef<ZQLibraryBaseItem>> shown;
    for (const ZQObjectID &id : items) {
        const auto item = m_window.libraryItem(id);
        if (item && item->active() && m_content.indexOfLibraryItem(id) >= 0) {
            shown.append(item);
        }
    }
    if (shown.size() < CompareView::fewest || shown.size() > CompareView::most) {
        return;
    }
    QList<CompareView::Picture> pictures;
    for (const auto &item : std::as_const(shown)) {
        const ZQThumbnailRequest thumbnail = ItemPictures::thumbnailOf(*item);
        pictures.append({item->objectID(),
                         item->title(),
                         {item->itemURL(), item->detailItemURL(), QSize(item->pixelWidth(), item->pixelHeight()),
                          m_grid.thumbnailLoader().image(thumbnail, standInSide), mostPixels / shown.size()},
                         item->rating()});
    }
    m_stack.setCurrentWidget(m_view);
    m_view->showPictures(pictures);
    follow();
    m_view->setFocus();
    Q_EMIT openChanged();
}

void CompareController::close()
{
    if (!isOpen()) {
        return;
    }
    const QList<ZQObjectID> compared = m_view->items();
    m_stack.setCurrentIndex(0);
    m_view->clear();
    m_grid.setSelection(m_content.indexesOfLibraryItems(compared));
    m_grid.setFocus();
    Q_EMIT openChanged();
}

QList<ZQObjectID> CompareController::items() const
{
    return isOpen() ? m_view->items() : QList<ZQObjectID>();
}

ZQRef<ZQLibraryBaseItem> CompareController::currentItem() const
{
    const ZQObjectID id = isOpen() ? m_view->currentItem() : ZQObjectID();
    return id.isNull() ? ZQRef<ZQLibraryBaseItem>() : m_window.libraryItem(id);
}

void CompareController::setRating(int stars)
{
    if (isOpen()) {
        m_view->setRating(m_view->currentItem(), stars);
    }
}

void CompareController::followSoon()
{
    if (isOpen()) {
        m_follow.start();
    }
}

// What was deleted meanwhile leaves; with the last of them the comparison ends.
void CompareController::follow()
{
    if (!isOpen()) {
        return;
    }
    QList<ZQRef<ZQLibraryBaseItem>> items;
    for (const ZQObjectID &id : m_view->items()) {
        const auto item = zqCast<ZQLibraryBaseItem>(m_window.context.existingObjectWithID(id));
        if (!item || !item->active()) {
            m_view->take(id);
            continue;
        }
        items.append(item);
        m_view->setTitle(id, item->title());
        m_view->setRating(id, item->rating());
    }
    if (items.isEmpty()) {
        close();
        return;
    }
    m_view->setFacts(zqCompareFacts(items));
    m_view->setNote(likenessOf(items));
}

void CompareController::keep(const ZQObjectID &item)
{
    QList<ZQObjectID> others = m_view->items();
    others.removeAll(item);
    if (item.isNull() || others.isEmpty()) {
        return;
    }
    close();
    m_grid.setSelection(m_content.indexesOfLibraryItems({item}));
    KeepOne(m_window).keep({{item, others}});
}
