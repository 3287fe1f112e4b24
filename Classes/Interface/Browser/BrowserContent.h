#pragma once

#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Browsing/Tabs/TabState.h"
#include "Classes/Interface/Browser/AssetFiles.h"
#include "Classes/Interface/Browser/BrowserRowValues.h"
#include "Classes/Interface/Browser/RowsPatience.h"
#include "Classes/Interface/LiveFolderStates.h"
#include "Classes/Interface/WindowContext.h"
#include "Kit/Widgets/ZQGridView.h"

// What a browser shows of a tab: identifiers of all rows in order, objects only for those on screen.
class BrowserContent : public QObject, public ZQGridDataSource
{
    Q_OBJECT
public:
    static inline const QString itemsMimeType = QStringLiteral("application/x-zelto-items");
    // The library they are of, by its folder: copies of a library have its store's identity, too.
    static inline const QString libraryMimeType = QStringLiteral("application/x-zelto-library");

    explicit BrowserContent(WindowContext &window, QObject *parent = nullptr);

    void setTab(std::shared_ptr<TabState> tab); // fetches, unless the tab knows its rows
    TabState &tab() { return *m_tab; }
    const TabState &tab() const { return *m_tab; }
    // Change the tab and fetch.
    void setSidebarItems(const QList<ZQObjectID> &items);
    void setFilter(const QString &text); // a search text
    QString filter() const { return m_tab->filter(); }
    // While true the filter stands in the place of the text of the smart folder that is shown.
    void setEditsSearch(bool edits);
    QString shownSearch() const; // the filter, else the text of the smart folder that is shown
    const QList<ZQObjectID> &sidebarItems() const { return m_tab->sidebarSelectedItems(); }
    ZQRef<ZQSidebarBaseItem> singleItem() const { return m_tab->singleSidebarElement(); }
    void setSort(ZQSortValue value, bool isAscending);
    void setSortByNearness() // of what is found by likeness
    {
        m_tab->setSortKeys(std::nullopt);
        reload();
    }
    void setDisplayStyle(BrowserDisplayStyle style);
    void setShowsValues(bool showsValues);        // of a list, which are read for the rows that are shown
    void reload();                                // fetches again
    quint64 fetches() const { return m_fetches; } // so many have begun
    void dropObjects();                           // what is shown changed: reads it again when painted
    // Null unless the rows could not be read; then there are none, and `emptyText` says why.
    const ZQError &error() const { return m_content.error; }
    // Whether what is shown is not yet that of the sidebar items and the filter.
    bool isLoading() const { return m_isAskedAnew || m_content.isBeginning; }
    // Whether the rows are still those of the place before, which nothing may be done with any more.
    bool isOfPlaceBefore() const { return !m_isLoaded && count() > 0; }
    // Of a live folder that is shown alone.
    bool isFolderAway() const { return m_folderKind && LiveFolderStates::isAway(*m_folderKind); }
    bool isFolderOff() const;      // by itself, so that it can be turned on
    bool isFolderOfAnother() const // what lies in its place could be taken for it
    {
        return m_folderKind == LiveFolderStates::Kind::Missing && folderStatus().holdsAnother;
    }
    bool isFolderSyncing() const;
    bool isOf(const QList<ZQObjectID> &liveFolders) const; // one of them is it

    ZQRef<ZQLibraryBaseItem> libraryItem(qint64 index) const;
    QList<ZQObjectID> libraryItemIDs(const ZQIndexSet &indexes) const;
    QList<ZQObjectID> rowIDs(const ZQIndexSet &indexes) const;
    const QList<ZQObjectID> &rowIDs() const { return m_content.rows.ids; }             // all
    const QList<ZQObjectID> &libraryItemIDs() const { return m_content.rows.related; } // of all rows
    ZQIndexSet indexesOfRows(const QList<ZQObjectID> &rows) const;
    ZQIndexSet indexesOfLibraryItems(const QList<ZQObjectID> &items) const;
    qint64 indexOfLibraryItem(const ZQObjectID &item) const; // linear; -1 for none

    qint64 count() const override { return m_content.rows.ids.size(); }
    QList<ZQGridGroup> groups() const override { return m_groups; }
    void willShow(qint64 first, qint64 last) override;
    ZQGridItem item(qint64 index) const override;
    QList<ZQListValue> listValues(qint64 index, const QStringList &columns) const override;
    qint64 indexForTyping(const QString &text, qint64 from) const override;
    QMimeData *mimeData(const ZQIndexSet &indexes) const override;
    AssetFiles *files(const ZQIndexSet &indexes) const; // the same
    Qt::DropAction dropAction(const QMimeData *data, qint64 index) const override;
    bool drop(const QMimeData *data, qint64 index, Qt::DropAction action) override;
    bool dropsAtIndex(const QMimeData *data) const override;
    QString emptyText() const override;

    static QList<ZQObjectID> itemsOfMimeData(const QMimeData *data, WindowContext &window);
    // Those of them that this library has and did not delete; none of what another library's window copied.
    static QList<ZQObjectID> itemsToLink(const QMimeData *data, WindowContext &window);

Q_SIGNALS:
    // What was fetched differs from what is shown. At the first the rows are still the old ones.
    void aboutToChange();
    void changed();
    void waited();                  // long enough for what was shown of another place to go, or for a word instead
    void answered(quint64 fetch);   // the one of this number is wholly there, changed or not
    void typingFound(qint64 index); // what `indexForTyping` was asked for
    void valuesArrived();

private:
    template <class Use>
    void forEachRow(const ZQIndexSet &indexes, Use use) const; // use(index)
    QList<Asset> assetsOf(const QList<ZQObjectID> &ids) const;
    QString emptySearchText() const;
    QString emptyFolderText() const;
    LiveFolderStatus folderStatus() const;
    QList<ZQGridGroup> headsOf(const Content &content) const;

    void take(const Content &content);
    void show(const Content &content, const QList<ZQGridGroup> &heads);
    void waitForRows();

    WindowContext &m_window;
    std::shared_ptr<TabState> m_tab;
    Content m_content; // what is shown
    QList<ZQGridGroup> m_groups;
    std::optional<LiveFolderStates::Kind> m_folderKind; // of a live folder that is shown alone
    BrowserRowValues m_values;
    bool m_showsValues = false;
    quint64 m_fetches = 0;
    RowsPatience m_patience; // with another place
    bool m_isLoaded = false;
    bool m_isAskedAnew = false; // what comes is announced even if it is the same
    mutable QHash<qint64, ZQRef<ZQLibraryBaseItem>> m_shown;
    mutable QHash<ZQObjectID, ZQThumbnailRequest> m_thumbnails;
    QHash<ZQObjectID, ZQThumbnailRequest> m_thumbnailsBefore; // of files that a program takes away to replace them
    ContentFetcher::Ticket m_contentTicket;
    mutable ContentFetcher::Ticket m_typingTicket;
};
