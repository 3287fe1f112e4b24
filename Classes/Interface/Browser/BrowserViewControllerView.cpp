// How a tab was left, and is shown again.

#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Browser/CompareController.h"
#include "Classes/Interface/Detail/DetailView.h"

#include <QScopedValueRollback>

#include <utility>

void BrowserViewController::restoreView()
{
    if (!m_restoresView || m_isShowingOther || m_content->isLoading()) {
        return;
    }
    const QScopedValueRollback selecting(m_isSelecting, true);
    m_restoresView = false;
    m_keepsScroll = true;
    const TabViewState view = m_content->tab().view;
    ZQIndexSet selection = m_content->indexesOfRows(view.selectedRows);
    if (selection.isEmpty()) {
        selection = view.selectionIndexes;
    }
    const bool selectsOther = selectWhatIsWanted(selection);
    if (selectsOther) {
        m_grid->scrollToIndex(m_grid->selection().first());
    } else {
        m_grid->setScrollOffset(view.scroll ? qint64(view.scroll->y()) : 0);
        m_scrollsWhenLaidOut = true;
        QTimer::singleShot(0, this, &BrowserViewController::scrollWhenLaidOut);
    }
    const qint64 detail =
        view.detailItem.isNull() || selectsOther ? -1 : m_content->indexOfLibraryItem(view.detailItem);
    if (detail >= 0) {
        m_grid->setCurrentIndex(detail);
        openDetail(false);
        m_detail->setView(view.detailZoom.value_or(0), view.detailScroll.value_or(QPointF()));
    } else if (!selectsOther) {
        m_compare->open(view.comparedItems);
    }
}

// The grid gets its size with the window, and another one when its scroll bar comes or goes.
void BrowserViewController::scrollWhenLaidOut()
{
    if (!m_grid->isVisible() && !isDetailOpen()) {
        return; // when it is shown
    }
    if (const auto scroll = m_content->tab().view.scroll; std::exchange(m_scrollsWhenLaidOut, false) && scroll) {
        m_grid->setScrollOffset(qint64(scroll->y()));
    }
}

void BrowserViewController::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    QTimer::singleShot(0, this, &BrowserViewController::scrollWhenLaidOut);
}

void BrowserViewController::keepViewState()
{
    if (m_restoresView || m_content->isLoading()) {
        return; // what was kept has yet to be shown
    }
    TabViewState &view = m_content->tab().view;
    if (!m_scrollsWhenLaidOut) {
        view.scroll = QPointF(0, double(m_grid->scrollOffset()));
    }
    view.selectionIndexes = m_grid->selection();
    view.selectedRows =
        m_grid->selection().count() > mostKeptRows ? QList<ZQObjectID>() : m_content->rowIDs(m_grid->selection());
    const bool isOpen = isDetailOpen() && !m_detail->isQuickLook();
    const auto item = isOpen ? m_content->libraryItem(m_grid->currentIndex()) : ZQRef<ZQLibraryBaseItem>();
    view.detailItem = item ? item->objectID() : ZQObjectID();
    view.comparedItems = m_compare->items();
    view.detailZoom.reset();
    view.detailScroll.reset();
    if (item && m_detail->isZoomed()) {
        view.detailZoom = m_detail->scale();
        view.detailScroll = m_detail->center();
    }
}
