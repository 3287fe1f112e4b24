#include "Classes/Interface/Browser/BrowserContent.h"

#include "Classes/Browsing/Content/ContentBuilder.h"
#include "Classes/Browsing/Search/SearchExpression.h"
#include "Classes/Editing/LibraryCommands.h"
#include "Classes/Import/ImportDoor.h"
#include "Classes/Interface/Browser/BrowserListColumns.h"
#include "Classes/Interface/ItemPictures.h"
#include "Kit/Files/ZQVectorTypes.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QMimeData>
#include <QPointer>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype mostFiles = 20000; // that another program gets

QByteArray libraryName()
{
    return QFile::encodeName(QFileInfo(ZQLibraryEnvironment::current().libraryDirectory()).canonicalFilePath());
}

ZQIndexSet indexesOf(const QList<ZQObjectID> &rows, const QList<ZQObjectID> &wanted, qint64 first, qint64 end)
{
    ZQIndexSet result;
    const QSet<ZQObjectID> set(wanted.begin(), wanted.end());
    for (qint64 index = first; index < end && !set.isEmpty(); ++index) {
        if (set.contains(rows[index])) {
            result.insert(index);
        }
    }
    return result;
}

// The first row from `from` on, going round; -1 for none.
qint64 firstOf(const QSet<ZQObjectID> &wanted, const QList<ZQObjectID> &rows, qint64 from)
{
    for (qsizetype step = 0; step < rows.size() && !wanted.isEmpty(); ++step) {
        const qsizetype row = (from + step) % rows.size();
        if (wanted.contains(rows[row])) {
            return row;
        }
    }
    return -1;
}

} // namespace

BrowserContent::BrowserContent(WindowContext &window, QObject *parent)
    : QObject(parent), m_window(window), m_tab(std::make_shared<TabState>(window)), m_values(window),
      m_contentTicket(window.fetcher, ContentFetcher::Priority::Content),
      m_typingTicket(window.fetcher, ContentFetcher::Priority::Typing)
{
    connect(&m_values, &BrowserRowValues::arrived, this, &BrowserContent::valuesArrived);
    connect(&m_patience, &RowsPatience::rowsAreLate, this, [this] {
        show({}, {});
        m_folderKind.reset();
        Q_EMIT waited();
    });
    connect(&m_patience, &RowsPatience::becameLong, this, &BrowserContent::waited);
}

void BrowserContent::setTab(std::shared_ptr<TabState> tab)
{
    m_tab = std::move(tab);
    m_isLoaded = false;
    m_isAskedAnew = true;
    const auto single = singleItem();
    if (m_tab->content()) {
        take(Content(*m_tab->content()));
    }
    waitForRows();
    if (m_isLoaded && !(single && single->isRecent()) && !m_tab->showsSavedSearch()) {
        // What another tab asked for is not wanted any more.
        m_contentTicket.run([](auto &, const auto &) { return ContentFetcher::Ticket::Answer(); });
    } else {
        reload(); // what is recent goes by the clock, and so may a search
    }
}

// Whoever goes on before the rows came waits no longer for that.
void BrowserContent::waitForRows()
{
    m_isLoaded ? m_patience.end() : m_patience.begin();
}

void BrowserContent::setSidebarItems(const QList<ZQObjectID> &items)
{
    m_tab->goToSidebarItems(items);
    setTab(m_tab);
}

void BrowserContent::setSort(ZQSortValue value, bool isAscending)
{
    m_tab->setSort(value, isAscending);
    reload();
}

void BrowserContent::setDisplayStyle(BrowserDisplayStyle style)
{
    m_tab->setBrowserDisplayStyle(style);
    reload();
}

void BrowserContent::setFilter(const QString &text)
{
    const QString before = filter();
    m_tab->setSearchString(text);
    if (filter() != before) {
        m_isAskedAnew = true;
        reload();
    }
}

void BrowserContent::setEditsSearch(bool edits)
{
    if (edits != m_tab->editsSearch()) {
        m_tab->setEditsSearch(edits);
        m_isAskedAnew = true;
        reload();
    }
}

QString BrowserContent::shownSearch() const
{
    const auto smart = zqCast<ZQSidebarSmartFolder>(singleItem());
    return filter().isEmpty() && smart && !m_tab->editsSearch() ? smart->searchText() : filter();
}

void BrowserContent::reload()
{
    m_tab->buildCache(m_contentTicket, [this, fetch = ++m_fetches](const Content &content) {
        take(content);
        if (!content.isBeginning) {
            Q_EMIT answered(fetch);
        }
    });
}

// One group that is the sidebar item itself has its name in the head already.
QList<ZQGridGroup> BrowserContent::headsOf(const Content &content) const
{
    const auto single = singleItem();
    const bool isOne = content.groups.size() == 1 && single && !single->isRecent() &&
                       content.groups.first().sidebarItem == single->objectID();
    QList<ZQGridGroup> heads;
    for (const ContentGroup &group : content.groups) {
        heads.append({group.title, group.count});
    }
    return isOne ? QList<ZQGridGroup>() : heads;
}

void BrowserContent::take(const Content &content)
{
    const QList<ZQGridGroup> heads = headsOf(content);
    // Most changes are to what items say of themselves, and leave every row in its place.
    const ZQError &before = m_content.error;
    const bool isErrorAnew = content.error.code != before.code || content.error.domain != before.domain;
    const auto liveFolder = zqCast<ZQSidebarWatchedFolder>(singleItem());
    const auto kind = liveFolder ? std::optional(LiveFolderStates::kindOf(*liveFolder)) : std::nullopt;
    const bool isSame = content.rows == m_content.rows && heads == m_groups && kind == m_folderKind;
    if (!std::exchange(m_isAskedAnew, false) && !isErrorAnew && isSame) {
        return;
    }
    Q_EMIT aboutToChange();
    show(content, heads);
    m_folderKind = kind;
    m_isLoaded = true;
    waitForRows();
    Q_EMIT changed();
}

void BrowserContent::show(const Content &content, const QList<ZQGridGroup> &heads)
{
    m_content = content;
    m_groups = heads;
    m_shown.clear();
}

void BrowserContent::dropObjects()
{
    m_shown.clear();
    m_thumbnailsBefore = std::exchange(m_thumbnails, {});
    m_values.expire();
}

void BrowserContent::setShowsValues(bool showsValues)
{
    m_showsValues = showsValues;
}

void BrowserContent::willShow(qint64 first, qint64 last)
{
    constexpr qsizetype kept = 2000;
    if (m_shown.size() > kept) {
        m_shown.clear();
        m_thumbnails.clear();
    }
    const QList<ZQObjectID> &related = m_content.rows.related; // to change it would copy all rows
    QList<ZQObjectID> items;
    for (qint64 index = first; index <= last && index < count(); ++index) {
        if (!m_shown.contains(index)) {
            items.append(related[index]);
            m_shown.insert(index, m_window.libraryItem(items.last()));
        }
    }
    m_window.context.fillFaults(items);
    if (m_showsValues) {
        m_values.want(related.mid(first, last - first + 1));
    }
}

ZQRef<ZQLibraryBaseItem> BrowserContent::libraryItem(qint64 index) const
{
    if (index < 0 || index >= count()) {
        return {};
    }
    const auto found = m_shown.constFind(index);
    return found != m_shown.constEnd() ? *found : m_window.libraryItem(m_content.rows.related[index]);
}

template <class Use>
void BrowserContent::forEachRow(const ZQIndexSet &indexes, Use use) const
{
    if (isOfPlaceBefore()) {
        return;
    }
    for (const ZQIndexSet::Range &range : indexes.ranges()) {
        for (qint64 index = range.first; index <= range.last && index < count(); ++index) {
            use(index);
        }
    }
}

QList<ZQObjectID> BrowserContent::rowIDs(const ZQIndexSet &indexes) const
{
    QList<ZQObjectID> result;
    result.reserve(indexes.count());
    forEachRow(indexes, [&](qint64 index) { result.append(m_content.rows.ids[index]); });
    return result;
}

QList<ZQObjectID> BrowserContent::libraryItemIDs(const ZQIndexSet &indexes) const
{
    QList<ZQObjectID> result;
    result.reserve(indexes.count());
    forEachRow(indexes, [&](qint64 index) {
        if (const ZQObjectID &item = m_content.rows.related[index]; !item.isNull()) {
            result.append(item);
        }
    });
    return result;
}

ZQIndexSet BrowserContent::indexesOfRows(const QList<ZQObjectID> &rows) const
{
    // When all of many rows were wanted, most stay where they were.
    const QList<ZQObjectID> &ids = m_content.rows.ids;
    const qsizetype shorter = std::min(ids.size(), rows.size());
    qsizetype same = 0; // at the beginning
    while (same < shorter && ids[same] == rows[same]) {
        ++same;
    }
    qsizetype sameAtEnd = 0;
    while (sameAtEnd < shorter - same && ids[ids.size() - 1 - sameAtEnd] == rows[rows.size() - 1 - sameAtEnd]) {
        ++sameAtEnd;
    }
    ZQIndexSet result = indexesOf(ids, rows.sliced(same, rows.size() - same - sameAtEnd), same, ids.size() - sameAtEnd);
    if (same > 0) {
        result.unite(ZQIndexSet(0, same - 1));
    }
    if (sameAtEnd > 0) {
        result.unite(ZQIndexSet(ids.size() - sameAtEnd, ids.size() - 1));
    }
    return result;
}

ZQIndexSet BrowserContent::indexesOfLibraryItems(const QList<ZQObjectID> &items) const
{
    return isOfPlaceBefore() ? ZQIndexSet() : indexesOf(m_content.rows.related, items, 0, count());
}

qint64 BrowserContent::indexOfLibraryItem(const ZQObjectID &item) const
{
    return m_content.rows.related.indexOf(item);
}

ZQGridItem BrowserContent::item(qint64 index) const
{
    const auto object = libraryItem(index);
    if (!object) {
        return {};
    }
    const ZQObjectID id = object->objectID();
    auto thumbnail = m_thumbnails.constFind(id);
    if (thumbnail == m_thumbnails.constEnd() || thumbnail->version != object->thumbVersion()) {
        const ZQThumbnailRequest now = ItemPictures::thumbnailOf(*object);
        thumbnail = m_thumbnails.insert(id, now.path.isEmpty() ? m_thumbnailsBefore.value(id, now) : now);
    }
    return {object->title(), object->extension(), QSize(object->pixelWidth(), object->pixelHeight()),
            ZQVectorTypes::contains(object->extension()), *thumbnail};
}

QList<ZQListValue> BrowserContent::listValues(qint64 index, const QStringList &columns) const
{
    const auto object = libraryItem(index);
    QList<ZQListValue> result;
    for (const QString &column : columns) {
        result.append(object ? BrowserListColumns::value(column, *object, m_values.find(object->objectID()))
                             : ZQListValue());
    }
    return result;
}

// All of it in the background: among many items both looking for them and finding the next one take longer than a key
// may.
qint64 BrowserContent::indexForTyping(const QString &text, qint64 from) const
{
    const bool isRating = text.front() >= u'0' && text.front() <= u'5'; // though nothing is selected to take it
    if (isRating || isOfPlaceBefore()) {
        return -1;
    }
    auto *self = const_cast<BrowserContent *>(this);
    m_typingTicket.run([self, text, from, rows = m_content.rows.ids, query = m_tab->contentQuery(),
                        index = m_typingTicket.index()](ZQManagedObjectContext &context,
                                                        const auto &isWanted) -> ContentFetcher::Ticket::Answer {
        const auto found = ContentBuilder(query, context, index.get()).rowsWithTitleBeginning(text, isWanted);
        if (!found) {
            return {};
        }
        const qint64 row = firstOf(QSet<ZQObjectID>(found->begin(), found->end()), rows, from);
        return [self, text, from, rows, row] {
            if (rows.constData() != self->m_content.rows.ids.constData()) {
                if (self->count() > 0) { // they are others by now
                    self->indexForTyping(text, from % self->count());
                }
            } else if (row >= 0) {
                Q_EMIT self->typingFound(row);
            }
        };
    });
    return -1;
}

QMimeData *BrowserContent::mimeData(const ZQIndexSet &indexes) const
{
    return files(indexes);
}

// Our own places take the identifiers; the files are looked for when another program asks for them.
AssetFiles *BrowserContent::files(const ZQIndexSet &indexes) const
{
    QByteArray identifiers;
    const QList<ZQObjectID> ids = libraryItemIDs(indexes);
    const QUuid store = m_window.context.persistentStoreCoordinator()->storeUUID();
    for (const ZQObjectID &id : ids) {
        identifiers += id.URIRepresentation(store).toUtf8() + '\n';
    }
    auto *data = new AssetFiles([self = QPointer(this), ids] { return self ? self->assetsOf(ids) : QList<Asset>(); });
    data->setData(itemsMimeType, identifiers);
    data->setData(libraryMimeType, libraryName());
    return data;
}

QList<Asset> BrowserContent::assetsOf(const QList<ZQObjectID> &ids) const
{
    if (ids.size() > mostFiles) {
        m_window.user.showNotificationWithText(
            zqFormat(zqLocalized("Only the first %@ files can go to another program at once"),
                     {QLocale().toString(mostFiles)}),
            NotificationPlace::Browser, usualNotificationTime);
    }
    const auto items = ZQLibraryBaseItem::itemsWithIDs(ids.first(std::min(ids.size(), mostFiles)), m_window.context);
    ZQLibraryBaseItem::lookForFiles(items);
    QList<Asset> result;
    for (const auto &item : items) {
        if (const QString path = item->itemURL(); !path.isEmpty()) {
            result.append({path, item->title()});
        }
    }
    return result;
}

QList<ZQObjectID> BrowserContent::itemsOfMimeData(const QMimeData *data, WindowContext &window)
{
    ZQError error;
    const auto named = window.context.objectIDsWithURIRepresentations(
        QString::fromUtf8(data->data(itemsMimeType)).split(u'\n', Qt::SkipEmptyParts), &error);
    if (!named) {
        window.user.presentError(error);
        return {};
    }
    QList<ZQObjectID> result = *named;
    const ZQEntityDescription *items = window.context.model().entity(ZQLibraryBaseItem::entityName());
    result.removeIf([items](const ZQObjectID &id) { return !id.entity->isKindOf(items); });
    return result;
}

QList<ZQObjectID> BrowserContent::itemsToLink(const QMimeData *data, WindowContext &window)
{
    if (!data->hasFormat(itemsMimeType) || data->data(libraryMimeType) != libraryName()) {
        return {};
    }
    QList<ZQObjectID> result;
    for (const auto &item : ZQLibraryBaseItem::itemsWithIDs(itemsOfMimeData(data, window), window.context)) {
        if (item->active()) {
            result.append(item->objectID());
        }
    }
    return result;
}

bool BrowserContent::dropsAtIndex(const QMimeData * /*data*/) const
{
    const bool isInGroups = m_groups.size() > 1; // the rows are not in the order of the members then
    return !isOfPlaceBefore() && m_tab->browserCanManuallySort() && m_tab->sortKeysValue() == ZQSortValue::Manual &&
           filter().isEmpty() && !isInGroups;
}

Qt::DropAction BrowserContent::dropAction(const QMimeData *data, qint64 /*index*/) const
{
    const auto target = singleItem();
    if (!target) {
        return Qt::IgnoreAction;
    }
    if (data->hasFormat(itemsMimeType)) {
        return dropsAtIndex(data) && SidebarTargetRules::items(target.get()) ? Qt::MoveAction : Qt::IgnoreAction;
    }
    const QStringList paths = ImportDoor::localPaths(data);
    if (!paths.isEmpty()) {
        return SidebarTargetRules::files(ImportDoor::filesAtPaths(paths), target.get()) ? Qt::CopyAction
                                                                                        : Qt::IgnoreAction;
    }
    const bool isTarget = bool(SidebarTargetRules::content(target.get(), SidebarTargetRules::Place::Pane));
    return isTarget && ImportDoor::dragCarriesContent(data) ? Qt::CopyAction : Qt::IgnoreAction;
}

bool BrowserContent::drop(const QMimeData *data, qint64 index, Qt::DropAction /*action*/)
{
    const auto target = singleItem();
    if (!target) {
        return false;
    }
    const quint32 place = dropsAtIndex(data) ? quint32(index) : ZQSidebarBaseItem::appendIndex;
    if (data->hasFormat(itemsMimeType)) {
        const QList<ZQObjectID> items = itemsOfMimeData(data, m_window);
        if (indexesOfLibraryItems(items).isEmpty()) { // of what was shown when the drag began
            m_tab->addItems(items, {target->objectID()}, {place}, true);
        } else {
            LibraryCommands(m_window).moveItems(items, target->objectID(), place);
        }
        return true;
    }
    const QStringList paths = ImportDoor::localPaths(data);
    if (!paths.isEmpty()) {
        ImportDoor::importFiles(paths, target.get(), place);
    } else {
        ImportDoor::importDrop(data, target.get(), place);
    }
    return true;
}

LiveFolderStatus BrowserContent::folderStatus() const
{
    const auto single = singleItem();
    return single && single->isWatchedFolder() && m_window.liveFolders
               ? m_window.liveFolders->statusOf(single->objectID())
               : LiveFolderStatus();
}

bool BrowserContent::isFolderSyncing() const
{
    return folderStatus().isSyncing;
}

bool BrowserContent::isFolderOff() const
{
    const auto single = singleItem();
    return m_window.liveFolders && m_folderKind == LiveFolderStates::Kind::Off && single && !zqIsSubFolder(*single);
}

bool BrowserContent::isOf(const QList<ZQObjectID> &liveFolders) const
{
    const auto single = singleItem();
    return single && liveFolders.contains(single->objectID());
}

QString BrowserContent::emptyFolderText() const
{
    using Kind = LiveFolderStates::Kind;
    const auto folder = zqCast<ZQSidebarWatchedFolder>(singleItem());
    const LiveFolderStatus status = folderStatus();
    const QString path = folder->folderPath();
    switch (m_folderKind.value_or(Kind::Mirrored)) {
    case Kind::Missing:
        return zqFormat(zqLocalized("“%@” is out of reach."), {path}) + u'\n' +
               LiveFolderStates::explanation(Kind::Missing, status) + u'\n' +
               zqLocalized("Its items are kept, and come back with it.");
    case Kind::Trashed:
        return zqFormat(zqLocalized("The folder “%@” is in the trash. Put it back, and its items come back with it."),
                        {path});
    case Kind::Off:
        return zqFormat(zqLocalized("This live folder is off: what is in “%@” is neither looked at nor shown."),
                        {path});
    case Kind::Mirrored:
    case Kind::Swept:
        break;
    }
    if (status.isSyncing) {
        const QString text = !folder->lastSyncDate().isValid()
                                 ? zqLocalized("“%@” is looked through for the first time. What is found comes here.")
                                 : zqLocalized("“%@” is looked through.");
        return zqFormat(text, {folder->title()}) + u'\n' +
               LiveFolderStates::explanation(Kind::Mirrored, {.isSyncing = true,
                                                              .filesDone = status.filesDone,
                                                              .filesTotal = status.filesTotal,
                                                              .isSwept = false,
                                                              .reason = {}});
    }
    if (!folder->lastSyncDate().isValid() && !status.reason.isEmpty()) {
        return zqFormat(zqLocalized("“%@”: %@"), {folder->title(), status.reason});
    }
    if (!folder->lastSyncDate().isValid()) {
        return zqFormat(zqLocalized("“%@” waits for its turn to be looked through. What is found comes here."),
                        {folder->title()});
    }
    return zqFormat(zqLocalized("Nothing in “%@” can be shown yet.\nWhat is saved there comes here, or drop images."),
                    {path});
}

QString BrowserContent::emptySearchText() const
{
    const QString search = shownSearch().trimmed();
    const SearchExpression expression = SearchExpression::read(search, {});
    if (!expression.predicateString.isEmpty()) {
        return zqFormat(zqLocalized("Nothing in the library matches \"%@\"."), {search});
    }
    const QList<SearchPart> problems = expression.problems();
    const QString advice = zqLocalized("Edit Search… in its menu gives it another text.");
    return problems.isEmpty() ? zqLocalized("This smart folder has nothing to search for.") + u'\n' + advice
                              : zqLocalized("The search of this smart folder cannot be understood.") + u'\n' +
                                    zqFormat(zqLocalized("%@: %@"), {problems.first().text, problems.first().meaning}) +
                                    u'\n' + advice;
}

QString BrowserContent::emptyText() const
{
    if (!m_isLoaded || m_isAskedAnew) {
        return m_patience.isLong() ? zqLocalized("Reading…") : QString();
    }
    if (!error().isNull()) {
        return ContentFetcher::textForError(error());
    }
    if (sidebarItems().isEmpty()) {
        return zqLocalized("Select something in the sidebar.");
    }
    if (!filter().isEmpty()) {
        return zqFormat(zqLocalized("Nothing matches \"%@\". Press Esc in the search field to show everything."),
                        {filter()});
    }
    const auto single = singleItem();
    if (single && single->isWatchedFolder()) {
        return emptyFolderText();
    }
    if (m_tab->hasDisabledWatchedFolders()) {
        return zqLocalized("A live folder that is selected is off, or was not there. Its items come back with it.");
    }
    if (!single) {
        return zqLocalized("What is selected in the sidebar is empty.");
    }
    if (single->isSmartFolder()) {
        return emptySearchText();
    }
    if (single->isRecent()) {
        return zqLocalized("Nothing was added or changed in the last days.");
    }
    if (single->isFolder()) {
        return zqLocalized("The projects of this folder are empty.");
    }
    if (single->isScreenshot()) {
        return zqLocalized("What you capture of the screen comes here.");
    }
    if (single->isTag()) {
        return m_tab->canImportItems()
                   ? zqLocalized("Nothing has this tag. Drop images here, or drag items onto it in the sidebar.")
                   : zqLocalized("Images get this tag by themselves when they are imported.");
    }
    return zqLocalized("Drop images here, or press Ctrl+I");
}
