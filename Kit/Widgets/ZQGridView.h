#pragma once

#include "Kit/Widgets/ZQGridLayout.h"
#include "Kit/Widgets/ZQThumbnailLoader.h"
#include "Kit/Widgets/ZQViewColumns.h"

#include <QAbstractScrollArea>
#include <QElapsedTimer>
#include <QMimeData>
#include <QSet>
#include <QTimer>

#include <memory>

struct ZQGridItem
{
    QString title;
    QString extension;
    QSize pixelSize; // the shape of the placeholder; not enlarged beyond it unless `isScalable`
    bool isScalable = false;
    ZQThumbnailRequest thumbnail;
};

// What a row of a list says in one of its columns.
struct ZQListValue
{
    QString text;
    int stars = -1;    // in place of a text
    QStringList chips; // the same
};

struct ZQGridGroup
{
    QString title;
    qint64 count = 0;
    friend bool operator==(const ZQGridGroup &, const ZQGridGroup &) = default;
};

// What a grid shows. Asked only for what is on screen. Main thread.
class ZQGridDataSource
{
public:
    virtual ~ZQGridDataSource() = default;
    virtual qint64 count() const = 0;
    virtual QList<ZQGridGroup> groups() const { return {}; }    // consecutive; empty: no groups
    virtual void willShow(qint64 /*first*/, qint64 /*last*/) {} // before the items of this range are asked for
    virtual ZQGridItem item(qint64 index) const = 0;
    // In the columns of these names, for a list.
    virtual QList<ZQListValue> listValues(qint64 /*index*/, const QStringList & /*columns*/) const { return {}; }
    // The first item from `from` on, going round, whose title begins with `text`; -1 when there is none, or when the
    // source finds it later and sets the current index itself.
    virtual qint64 indexForTyping(const QString &text, qint64 from) const;
    virtual QMimeData *mimeData(const ZQIndexSet & /*indexes*/) const { return nullptr; } // the caller owns it
    // `index` is the place the content would be inserted at.
    virtual Qt::DropAction dropAction(const QMimeData * /*data*/, qint64 /*index*/) const { return Qt::IgnoreAction; }
    virtual bool drop(const QMimeData * /*data*/, qint64 /*index*/, Qt::DropAction /*action*/) { return false; }
    virtual bool dropsAtIndex(const QMimeData * /*data*/) const { return false; } // shows an insertion mark
    virtual QString emptyText() const { return {}; }
};

class ZQListHead;

// A grid of pictures with titles, or a list of them with columns, that lays out and paints only what is visible.
class ZQGridView : public QAbstractScrollArea
{
    Q_OBJECT
public:
    explicit ZQGridView(QWidget *parent = nullptr);
    ~ZQGridView() override;

    void setDataSource(ZQGridDataSource *source); // not owned; null shows nothing
    ZQGridDataSource *dataSource() const { return m_source; }
    ZQThumbnailLoader &thumbnailLoader() { return *m_loader; }
    void reloadData();    // counts or groups changed; the selection keeps its indexes as far as they exist
    void updateVisible(); // only what the items show changed

    const ZQIndexSet &selection() const { return m_selection; }
    void setSelection(const ZQIndexSet &selection);
    void selectAll();
    void setSelected(qint64 index, bool isSelected); // besides the others
    qint64 currentIndex() const { return m_current; }
    void setCurrentIndex(qint64 index); // the only selected one, scrolled to
    void scrollToIndex(qint64 index);

    double zoom() const { return m_zoom; }
    void setZoom(double zoom);                       // keeps the middle of the view where it is
    void setZoom(double zoom, const QPoint &anchor); // keeps the item under the anchor under it
    void setShowsTitles(bool titles, bool extensions);
    // Pictures smaller than their cell are enlarged by the largest whole factor that fits; else they keep their size.
    void setFillsCells(bool fillsCells);
    bool fillsCells() const { return m_fillsCells; }

    bool showsList() const { return m_showsList; }
    void setShowsList(bool showsList); // keeps what is in view in view
    ZQListHead &listHead() { return *m_listHead; }
    QStringList listColumns() const; // names of those with room, after the title

    // Groups stay collapsed by their titles, also those that come later.
    void setGroupCollapsed(int group, bool collapsed);
    void setAllGroupsCollapsed(bool collapsed);
    const QSet<QString> &collapsedGroups() const { return m_collapsedTitles; }
    void setCollapsedGroups(const QSet<QString> &titles);
    int currentGroup() const;                 // of the current item, else the one on top; -1 for none
    QString groupTitleOf(qint64 index) const; // empty where there are no groups
    const ZQGridLayout &gridLayout() const { return m_layout; }
    // Where the item is in the viewport; may lie outside it.
    QRect visualRect(qint64 index) const;
    qint64 indexAt(const QPoint &viewportPoint) const;
    ZQIndexSet visibleIndexes() const;
    qint64 scrollOffset() const;
    void setScrollOffset(qint64 offset);
    // The group whose head sticks at the top; -1 for none.
    int stickyGroup() const;

Q_SIGNALS:
    void selectionChanged();
    void activated(qint64 index);          // Enter or a double click
    void quickLookRequested(qint64 index); // Space
    void zoomChanged(double zoom);
    void contextMenuRequested(const QPoint &globalPoint);
    void visibleChanged();
    void collapsedGroupsChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    bool event(QEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    int layoutX(int x) const; // of the layout, which knows no direction, for one of the viewport
    void relayout();
    void updateScrollBar();
    void moveCurrent(qint64 index, Qt::KeyboardModifiers modifiers);
    void setSelectionQuietly(const ZQIndexSet &selection);
    bool isTyping() const;
    void typeToJump(const QString &text);
    void updateRubberBand(const QPoint &viewportPoint);
    void showDropPlace(QDragMoveEvent *event);
    void startDrag();
    int headAt(const QPoint &viewportPoint) const;
    bool isBesideContent(const QPoint &viewportPoint) const;
    void collapseCurrentGroup(bool collapsed);
    bool isOnHead() const; // the current item is folded away
    void paintCell(QPainter &painter, qint64 index, const QRect &rect);
    void paintRow(QPainter &painter, qint64 index, const QRect &rect);
    void paintValue(QPainter &painter, const ZQListValue &value, const QRect &box, bool selected);
    void paintChips(QPainter &painter, const QStringList &chips, const QRect &box, bool selected);
    struct PicturePlace
    {
        QRectF target;
        bool isPixelForPixel = false; // a pixel of the picture is a whole number of those of the screen
        bool isEnlarged = false;
    };
    PicturePlace placeOfPicture(const ZQGridItem &item, const QImage &image, const QRectF &room) const;
    static constexpr int picturePadding = 6;
    void paintPicture(QPainter &painter, const ZQGridItem &item, const QRect &box, int padding = picturePadding);
    void paintTitle(QPainter &painter, const ZQGridItem &item, const QRect &box, bool selected);
    void paintHead(QPainter &painter, int group, int y);
    void paintOverlays(QPainter &painter);
    void announce(qint64 index);

    ZQGridDataSource *m_source = nullptr;
    std::unique_ptr<ZQThumbnailLoader> m_loader;
    ZQGridLayout m_layout;
    QList<ZQGridGroup> m_groups;
    QSet<QString> m_collapsedTitles;
    ZQIndexSet m_selection;
    qint64 m_current = -1;
    qint64 m_anchor = -1; // where a Shift selection begins
    double m_zoom = 0.5;
    bool m_showsList = false;
    ZQListHead *m_listHead;
    QList<ZQViewColumns::Place> m_listPlaces;
    bool m_fillsCells = false;
    bool m_showsTitles = true;
    bool m_showsExtensions = true;
    qint64 m_unit = 1; // content pixels a scroll bar step stands for

    // Pointer.
    enum class Press { None, Item, Band };
    Press m_press = Press::None;
    QPoint m_pressPoint;
    qint64 m_pressOffset = 0;
    QPoint m_lastPoint;
    ZQIndexSet m_bandBase;
    bool m_bandToggles = false;
    bool m_selectOnRelease = false;
    QTimer m_autoScroll;
    qint64 m_dropIndex = -1;
    bool m_isDropTarget = false;
    bool m_isReachedByKey = false; // by Tab
    QString m_typed;
    QElapsedTimer m_typedAt;
};
