#pragma once

#include "Classes/Interface/Browser/BrowserContent.h"
#include "Classes/Interface/WindowCommand.h"

#include <QTimer>
#include <QWidget>

class DetailView;
class QLabel;
class QSlider;
class QStackedWidget;
class QToolButton;
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
    void updateHead(); // title, count and order of what is shown
    BrowserContent &content() { return *m_content; }
    ZQGridView &grid() { return *m_grid; }

    QList<ZQObjectID> selectedItems() const; // library items; the one shown in the detail view
    qint64 selectionCount() const;
    ZQRef<ZQLibraryBaseItem> firstSelected() const;
    void selectLibraryItem(const ZQObjectID &item);

    void refetch();       // what the store holds changed
    void redrawVisible(); // attributes of what is shown changed
    void openDetail(bool quickLook);
    void closeDetail();
    bool isDetailOpen() const;
    void deleteFromLibrary();
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

private:
    QWidget *makeHead();
    QWidget *makeStatus();
    QWidget *makeRecovery();
    QString countText() const;
    void updateStatus();
    void showSortMenu();
    void showGroupMenu();
    void setSort(ZQSortValue value, bool ascending);
    void setDisplayStyle(BrowserDisplayStyle style);
    bool canSortBy(ZQSortValue value) const;
    bool hasDirection() const;
    QList<WindowCommand> orderCommands();
    QList<WindowCommand> zoomCommands();                 // of the detail view
    void showOther(const std::function<void()> &change); // `change` has the content be another
    void contentWillChange();
    void contentDidChange();
    void scrollWhenLaidOut();
    void restoreView(); // as the tab was left, once its rows are there
    void selectWhatIsWanted(ZQIndexSet selection);
    void showDetailAt(qint64 index);

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    WindowContext &m_window;
    BrowserContent *m_content;
    QStackedWidget *m_stack;
    ZQGridView *m_grid;
    DetailView *m_detail;
    QLabel *m_title;
    QLabel *m_count;
    QList<QLabel *> m_captions; // of what is chosen in the head
    QToolButton *m_group;
    QToolButton *m_sort;
    QToolButton *m_direction;
    QLabel *m_status;
    SearchChips *m_chips;
    QWidget *m_recovery;
    QSlider *m_zoom;
    QTimer m_refetch;
    QList<ZQObjectID> m_rowsToSelect; // across a refetch
    bool m_selectsAll = false;
    ZQObjectID m_itemToSelect;
    qint64 m_indexToSelect = -1; // when what was selected is gone
    bool m_keepsScroll = false;
    bool m_restoresView = false;       // what the tab says of its view is not shown yet
    bool m_scrollsWhenLaidOut = false; // the grid has no size yet
    bool m_isShowingOther = false;     // the zoom is the tab's, and not chosen
};
