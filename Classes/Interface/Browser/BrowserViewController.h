#pragma once

#include "Classes/Browsing/Content/Facets.h"
#include "Classes/Interface/Browser/BrowserContent.h"
#include "Classes/Interface/Browser/ScrollAnchor.h"
#include "Classes/Interface/WindowCommand.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class BrowserHead;
class BrowserListStyle;
class CompareController;
class DetailView;
class EmptyState;
class HiddenItems;
class NearnessSlider;
class QLabel;
class QSlider;
class QStackedWidget;
class RefineBar;
class SavedSearchButtons;
class SearchChips;
class ZQGridView;

// The browser: a head with title and order, the grid, a status row with the zoom; and the detail view in their place.
class BrowserViewController : public QWidget
{
    Q_OBJECT
public:
    explicit BrowserViewController(WindowContext &window, QWidget *parent = nullptr);

    void showTab(const std::shared_ptr<TabState> &tab);
    void showSidebarItems(const QList<ZQObjectID> &items); // in the tab that is shown
    const QList<ZQObjectID> &sidebarItems() const { return m_content->sidebarItems(); }
    void setFilter(const QString &text);
    void setTypedAt(qsizetype cursor);                 // of the search field; -1: it has no focus
    void refine(FacetKind kind, const QString &token); // chooses a value of a facet, or takes it away
    // For the token besides what is searched, or alone; for what is searched alone already, no more.
    void search(const QString &token, bool adds);
    void updateHead(); // title, count and order of what is shown
    BrowserHead &head() { return *m_head; }
    BrowserContent &content() { return *m_content; }
    ZQGridView &grid() { return *m_grid; }
    SavedSearchButtons &savedSearchButtons() { return *m_savedSearch; } // in the head
    EmptyState &emptyState() { return *m_empty; }

    // Library items; the one shown in the detail view, the current one of a comparison.
    QList<ZQObjectID> selectedItems() const;
    qint64 selectionCount() const;
    ZQRef<ZQLibraryBaseItem> firstSelected() const;
    // At once, or when the next fetch brings them, unless a person went on by then; scrolled to.
    void selectLibraryItem(const ZQObjectID &item) { selectLibraryItems({item}); }
    void selectLibraryItems(const QList<ZQObjectID> &items);
    // Selects those it is told of, unless a person went on, or all of them were shown, since it was asked for.
    std::function<void(const QList<ZQObjectID> &items)> selectionOfWhatComes();

    void refetch();       // what the store holds changed
    void redrawVisible(); // attributes of what is shown changed
    void openDetail(bool quickLook);
    void closeDetail(); // and the comparison
    bool isDetailOpen() const;
    bool showsItems() const; // and nothing in their place
    CompareController &comparison() { return *m_compare; }
    void deleteFromLibrary();
    bool canRemove() const; // what is selected, from what is shown
    void removeFromProject();
    void duplicate();
    void rate(int stars);
    void copyToClipboard();
    void changeZoom(double by);
    void keepViewState(); // selection, scroll and detail view, in the tab that is shown
    void savePersistentState();
    QList<WindowCommand> commands();

Q_SIGNALS:
    void selectionChanged();
    void contextMenuRequested(const QPoint &globalPoint);
    void titleChanged();
    void rated(int stars);    // the selected items, which may take a while
    void recoveryRequested(); // what is shown was read from a damaged store
    void orderChanged();      // or the groups
    void viewChanged();       // what the tab keeps of its view may be another
    void searchRequested(const QString &text);
    void searchPartRequested(qsizetype position, qsizetype length); // to be selected in the search field
    void refineBarToggled();

private:
    static constexpr qsizetype mostKeptRows = 20000; // a larger selection is kept by index

    QWidget *makeStatus();
    void showChips();
    void makeSearchRows(QWidget *page); // what stands above the grid of what is searched
    QWidget *makeRecovery();
    QString countText() const;
    void updateStatus();
    QList<WindowCommand> compareCommands();
    QList<WindowCommand> zoomCommands();                 // of the detail view and the comparison
    void showOther(const std::function<void()> &change); // `change` has the content be another
    void contentWillChange();
    void contentDidChange();
    void contentDidWait(); // and is none so far
    void scrollWhenLaidOut();
    void restoreView();                            // as the tab was left, once its rows are there
    bool selectWhatIsWanted(ZQIndexSet selection); // false: nothing of what was wanted is there
    void forgetWanted();                           // a person went on
    void endWaiting(quint64 fetch);
    void showDetailAt(qint64 index);
    QString detailPosition(qint64 index) const;
    void followInDetail(); // what the content became
    void scrollAfterChange(bool selectsOther, bool isInOtherOrder, const ZQIndexSet &kept);
    void liveFoldersDidChange(const QList<ZQObjectID> &folders);

protected:
    void showEvent(QShowEvent *event) override;

private:
    WindowContext &m_window;
    BrowserContent *m_content;
    QStackedWidget *m_stack;
    ZQGridView *m_grid;
    DetailView *m_detail;
    CompareController *m_compare;
    ZQObjectID m_detailItem; // shown in it
    BrowserHead *m_head;
    BrowserListStyle *m_style;
    QLabel *m_status;
    SavedSearchButtons *m_savedSearch;
    SearchChips *m_chips;
    NearnessSlider *m_nearness;
    RefineBar *m_refine;
    HiddenItems *m_hidden;
    QWidget *m_recovery;
    EmptyState *m_empty;
    QSlider *m_zoom;
    QTimer m_refetch;
    QList<ZQObjectID> m_rowsToSelect;  // across a refetch
    ScrollAnchor m_anchor;             // the same
    QList<ZQObjectID> m_itemsToSelect; // of what is shown, as soon as they are there
    quint64 m_wantedSince = 0;         // the last fetch that began before they were wanted
    quint64 m_moment = 0;              // goes up when a person selects, or goes elsewhere
    qint64 m_indexToSelect = -1;       // when what was selected is gone
    bool m_isSelecting = false;        // by itself, and no person
    bool m_keepsScroll = false;
    struct Order
    {
        ZQSortValue value = ZQSortValue::None;
        bool isAscending = true;
        BrowserDisplayStyle groups{};
        bool operator==(const Order &) const = default;
    };
    Order m_order;                     // of what was shown last
    bool m_restoresView = false;       // what the tab says of its view is not shown yet
    bool m_scrollsWhenLaidOut = false; // the grid has no size yet
    bool m_isShowingOther = false;     // the zoom is the tab's, and not chosen
};
