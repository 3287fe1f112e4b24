#include "Classes/Interface/BrowserContent.h"

#include "Classes/Interface/ImportDoor.h"
#include "Classes/Interface/LibraryCommands.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQPreviewService.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarRecent.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QMimeData>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype mostFiles = 5000; // of a drag that another program gets

bool holdsMemberships(const ZQFetchRequest &request)
{
    return request.entityName == ZQProjectItem::entityName();
}

bool isVector(const QString &extension)
{
    static const QStringList vectors = {QStringLiteral("svg"), QStringLiteral("pdf"), QStringLiteral("eps"),
                                        QStringLiteral("ai"), QStringLiteral("sketch")};
    return vectors.contains(extension, Qt::CaseInsensitive);
}

} // namespace

BrowserContent::BrowserContent(WindowContext &window, QObject *parent) : QObject(parent), m_window(window) {}

void BrowserContent::setSidebarItems(const QList<ZQObjectID> &items)
{
    m_sidebarItems = items;
    m_isLoaded = false;
    m_isAskedAnew = true;
    reload();
}

ZQRef<ZQSidebarBaseItem> BrowserContent::singleItem() const
{
    return m_sidebarItems.size() == 1 ? m_window.sidebarItem(m_sidebarItems.first()) : ZQRef<ZQSidebarBaseItem>();
}

void BrowserContent::setFilter(const QString &text)
{
    if (text != m_filter) {
        m_filter = text;
        m_isAskedAnew = true;
        reload();
    }
}

int BrowserContent::sortValue() const
{
    const auto single = singleItem();
    return single ? single->sortKeys() : m_sidebarItems.size() > 1 ? 5 : 0;
}

bool BrowserContent::sortAscending() const
{
    const auto single = singleItem();
    return single && single->sortDirection();
}

bool BrowserContent::canSortManually() const
{
    const auto single = singleItem();
    return single && (single->isProject() || single->isScreenshot());
}

ZQFetchRequest BrowserContent::prepared(ZQFetchRequest request) const
{
    const bool isMembership = holdsMemberships(request);
    int value = sortValue();
    if (value == 0 && !isMembership) {
        value = 1;
    }
    const QList<ZQSortDescriptor> descriptors =
        ZQSidebarBaseItem::sortDescriptorsForSortValue(value, sortAscending(), isMembership ? 0 : 1);
    if (!descriptors.isEmpty()) {
        request.sortDescriptors = descriptors;
    }
    if (!m_filter.isEmpty()) {
        const QString format =
            isMembership ? QStringLiteral("item.title contains[cd] %@") : QStringLiteral("title contains[cd] %@");
        request.predicate =
            ZQPredicate::andPredicate({request.predicate, ZQPredicate::predicateWithFormat(format, {m_filter})});
    }
    return request;
}

void BrowserContent::addSections(const ZQRef<ZQSidebarBaseItem> &item, QList<Section> &into) const
{
    if (item->isRecent()) {
        ZQPredicate earlier;
        for (const ZQSidebarRecent::Group &group : ZQSidebarRecent::groups()) {
            ZQFetchRequest request = item->contentRequest();
            const ZQPredicate notEarlier = earlier.isNull() ? ZQPredicate() : ZQPredicate::notPredicate(earlier);
            request.predicate = ZQPredicate::andPredicate({request.predicate, group.predicate, notEarlier});
            earlier = earlier.isNull() ? group.predicate : ZQPredicate::orPredicate({earlier, group.predicate});
            into.append({group.title, request});
        }
    } else if (item->isWatchedFolder()) {
        into.append({item->title(), item->contentRequest()});
        const auto folder = zqCast<ZQSidebarWatchedFolder>(item);
        for (const auto &child : folder->orderedChildrenAndSubChildren()) {
            if (child != item) {
                into.append({child->title(), child->contentRequest()});
            }
        }
    } else if (item->isFolder()) {
        for (const auto &project : ZQSidebarFolder::expandedProjects({item})) {
            into.append({project->title(), project->contentRequest()});
        }
    } else {
        into.append({item->title(), item->contentRequest()});
    }
}

QList<BrowserContent::Section> BrowserContent::sections() const
{
    QList<Section> result;
    for (const ZQObjectID &id : m_sidebarItems) {
        if (const auto item = m_window.sidebarItem(id); item && item->active()) {
            addSections(item, result);
        }
    }
    const auto single = singleItem();
    if (single && !result.isEmpty() && !single->isRecent() && !single->isFolder() && !single->isWatchedFolder()) {
        result.first().title.clear();
    }
    for (Section &section : result) {
        section.request = prepared(section.request);
    }
    return result;
}

void BrowserContent::reload()
{
    QStringList titles;
    QList<ZQFetchRequest> requests;
    if (!singleItem() || singleItem()->active()) {
        for (const Section &section : sections()) {
            titles.append(section.title);
            requests.append(section.request);
        }
    }
    m_window.fetcher.fetchRows(
        ContentFetcher::Purpose::Content, requests,
        [this, titles](const ContentFetcher::Rows &fetched, const ZQError &error) { take(titles, fetched, error); });
}

void BrowserContent::take(const QStringList &titles, const ContentFetcher::Rows &fetched, const ZQError &error)
{
    ContentFetcher::Rows rows;
    QList<qint64> starts;
    QList<ZQGridGroup> groups;
    qint64 count = 0;
    for (qsizetype i = 0; i < fetched.size(); ++i) {
        const qsizetype size = fetched[i].ids.size();
        if (size == 0) {
            continue;
        }
        starts.append(count);
        rows.append(fetched[i]);
        if (!titles[i].isEmpty()) {
            groups.append({titles[i], size});
        }
        count += size;
    }
    // Most changes are to what items say of themselves, and leave every row in its place.
    const bool isErrorAnew = error.code != m_error.code || error.domain != m_error.domain;
    if (!std::exchange(m_isAskedAnew, false) && !isErrorAnew && rows == m_rows && groups == m_groups) {
        return;
    }
    Q_EMIT aboutToChange();
    m_error = error;
    m_rows = rows;
    m_starts = starts;
    m_groups = groups;
    m_count = count;
    m_shown.clear();
    if (m_filter.isEmpty() && error.isNull()) {
        m_unfilteredCount = m_count;
    }
    m_isLoaded = true;
    Q_EMIT changed();
}

void BrowserContent::dropObjects()
{
    m_shown.clear();
    m_thumbnails.clear();
}

std::pair<qsizetype, qsizetype> BrowserContent::placeOfRow(qint64 index) const
{
    const auto section = std::upper_bound(m_starts.begin(), m_starts.end(), index) - m_starts.begin() - 1;
    return {section, index - m_starts[section]};
}

const ZQObjectID &BrowserContent::rowID(qint64 index) const
{
    const auto [section, position] = placeOfRow(index);
    return m_rows[section].ids[position];
}

const ZQObjectID &BrowserContent::itemID(qint64 index) const
{
    const auto [section, position] = placeOfRow(index);
    return m_rows[section].related[position];
}

void BrowserContent::willShow(qint64 first, qint64 last)
{
    constexpr qsizetype kept = 2000;
    if (m_shown.size() > kept) {
        m_shown.clear();
        m_thumbnails.clear();
    }
    QList<ZQObjectID> items;
    for (qint64 index = first; index <= last && index < m_count; ++index) {
        if (!m_shown.contains(index)) {
            items.append(itemID(index));
            m_shown.insert(index, m_window.libraryItem(items.last()));
        }
    }
    m_window.context.fillFaults(items);
}

ZQRef<ZQLibraryBaseItem> BrowserContent::libraryItem(qint64 index) const
{
    if (index < 0 || index >= m_count) {
        return {};
    }
    const auto found = m_shown.constFind(index);
    return found != m_shown.constEnd() ? *found : m_window.libraryItem(itemID(index));
}

template <class Use>
void BrowserContent::forEachPlace(const ZQIndexSet &indexes, Use use) const
{
    for (const ZQIndexSet::Range &range : indexes.ranges()) {
        for (qint64 index = range.first; index <= range.last && index < m_count;) {
            auto [section, position] = placeOfRow(index);
            for (; position < m_rows[section].ids.size() && index <= range.last; ++position, ++index) {
                use(m_rows[section], position);
            }
        }
    }
}

QList<ZQObjectID> BrowserContent::rowIDs(const ZQIndexSet &indexes) const
{
    QList<ZQObjectID> result;
    result.reserve(indexes.count());
    forEachPlace(indexes, [&](const ZQRelatedIDs &rows, qsizetype position) { result.append(rows.ids[position]); });
    return result;
}

QList<ZQObjectID> BrowserContent::libraryItemIDs(const ZQIndexSet &indexes) const
{
    QList<ZQObjectID> result;
    result.reserve(indexes.count());
    forEachPlace(indexes, [&](const ZQRelatedIDs &rows, qsizetype position) {
        if (const ZQObjectID &item = rows.related[position]; !item.isNull()) {
            result.append(item);
        }
    });
    return result;
}

ZQIndexSet BrowserContent::indexesOfRows(const QList<ZQObjectID> &rows) const
{
    const QSet<ZQObjectID> wanted(rows.begin(), rows.end());
    ZQIndexSet result;
    for (qint64 index = 0; index < m_count && !wanted.isEmpty(); ++index) {
        if (wanted.contains(rowID(index))) {
            result.insert(index);
        }
    }
    return result;
}

qint64 BrowserContent::indexOfLibraryItem(const ZQObjectID &item) const
{
    for (qsizetype section = 0; section < m_rows.size(); ++section) {
        if (const qsizetype position = m_rows[section].related.indexOf(item); position >= 0) {
            return m_starts[section] + position;
        }
    }
    return -1;
}

ZQThumbnailRequest BrowserContent::thumbnailOf(const ZQLibraryBaseItem &item)
{
    const QString thumb = item.thumbURL();
    if (!thumb.isEmpty()) {
        return {thumb, item.thumbVersion(), false};
    }
    const QString file = item.detailItemURL();
    return {file, item.thumbVersion(), true};
}

QImage BrowserContent::pictureFor(const ZQThumbnailRequest &request, int pixels)
{
    const ZQBitmap made = request.isForeign ? ZQBitmap() : ZQImageSource::thumbnailOfFile(request.path, pixels);
    return made.isNull() ? ZQPreviewService::previewOfFile(request.path, QSize(pixels, pixels)).image() : made.image();
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
        thumbnail = m_thumbnails.insert(id, thumbnailOf(*object));
    }
    return {object->title(), object->extension(), QSize(object->pixelWidth(), object->pixelHeight()),
            isVector(object->extension()), *thumbnail};
}

// The store looks in the background; among many items that takes longer than a key may.
qint64 BrowserContent::indexForTyping(const QString &text, qint64 from) const
{
    QList<ZQFetchRequest> requests;
    for (const Section &section : sections()) {
        ZQFetchRequest request = section.request;
        const QString format = holdsMemberships(request) ? QStringLiteral("item.title BEGINSWITH[cd] %@")
                                                         : QStringLiteral("title BEGINSWITH[cd] %@");
        request.predicate =
            ZQPredicate::andPredicate({request.predicate, ZQPredicate::predicateWithFormat(format, {text})});
        request.sortDescriptors.clear();
        requests.append(request);
    }
    auto *self = const_cast<BrowserContent *>(this);
    m_window.fetcher.fetchObjectIDs(ContentFetcher::Purpose::Typing, requests,
                                    [self, from](const ContentFetcher::IDs &found) {
                                        QSet<ZQObjectID> matches;
                                        for (const QList<ZQObjectID> &ids : found) {
                                            matches.unite(QSet<ZQObjectID>(ids.begin(), ids.end()));
                                        }
                                        for (qint64 step = 0; step < self->m_count && !matches.isEmpty(); ++step) {
                                            const qint64 index = (from + step) % self->m_count;
                                            if (matches.contains(self->rowID(index))) {
                                                Q_EMIT self->typingFound(index);
                                                return;
                                            }
                                        }
                                    });
    return -1;
}

QMimeData *BrowserContent::mimeData(const ZQIndexSet &indexes) const
{
    QList<QUrl> urls;
    QByteArray identifiers;
    const QList<ZQObjectID> ids = libraryItemIDs(indexes);
    const QUuid store = m_window.context.persistentStoreCoordinator()->storeUUID();
    for (const ZQObjectID &id : ids) {
        identifiers += id.URIRepresentation(store).toUtf8() + '\n';
    }
    const auto items = ZQLibraryBaseItem::itemsWithIDs(ids.first(std::min(ids.size(), mostFiles)), m_window.context);
    ZQLibraryBaseItem::lookForFiles(items);
    for (const auto &item : items) {
        if (const QString path = item->itemURL(); !path.isEmpty()) {
            urls.append(QUrl::fromLocalFile(path));
        }
    }
    auto *data = new QMimeData;
    data->setUrls(urls);
    data->setData(itemsMimeType, identifiers);
    return data;
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

bool BrowserContent::dropsAtIndex(const QMimeData * /*data*/) const
{
    return canSortManually() && sortValue() == 0 && m_filter.isEmpty();
}

Qt::DropAction BrowserContent::dropAction(const QMimeData *data, qint64 /*index*/) const
{
    const auto target = singleItem();
    if (!target) {
        return Qt::IgnoreAction;
    }
    if (data->hasFormat(itemsMimeType)) {
        return dropsAtIndex(data) ? Qt::MoveAction : Qt::IgnoreAction;
    }
    const QStringList paths = ImportDoor::localPaths(data);
    if (!paths.isEmpty()) {
        return ImportDoor::areFilesValid(paths, target.get()) ? Qt::CopyAction : Qt::IgnoreAction;
    }
    return ImportDoor::carriesContent(data) && !target->isRecent() && !target->isFolder() ? Qt::CopyAction
                                                                                          : Qt::IgnoreAction;
}

bool BrowserContent::drop(const QMimeData *data, qint64 index, Qt::DropAction /*action*/)
{
    const auto target = singleItem();
    if (!target) {
        return false;
    }
    const quint32 place = dropsAtIndex(data) ? quint32(index) : ZQSidebarBaseItem::appendIndex;
    if (data->hasFormat(itemsMimeType)) {
        LibraryCommands(m_window).moveItems(itemsOfMimeData(data, m_window), target->objectID(), place);
        return true;
    }
    const QStringList paths = ImportDoor::localPaths(data);
    if (!paths.isEmpty()) {
        ImportDoor::importFiles(paths, target.get(), place);
    } else {
        ImportDoor::importPasteboard(data, target.get(), place);
    }
    return true;
}

QString BrowserContent::emptyText() const
{
    if (!m_isLoaded || m_isAskedAnew) {
        return {};
    }
    if (!m_error.isNull()) {
        return ContentFetcher::textForError(m_error);
    }
    if (m_sidebarItems.isEmpty()) {
        return zqLocalized("Select something in the sidebar.");
    }
    if (!m_filter.isEmpty()) {
        return zqFormat(zqLocalized("No title contains \"%@\". Press Esc in the search field to show everything."),
                        {m_filter});
    }
    const auto single = singleItem();
    if (single && single->isRecent()) {
        return zqLocalized("Nothing was added or changed in the last days.");
    }
    if (single && single->isFolder()) {
        return zqLocalized("The projects of this folder are empty.");
    }
    return zqLocalized("Drop images here, or press Ctrl+I");
}
