#include "Classes/Browsing/Tabs/TabStateArchive.h"

#include "Classes/Browsing/Index/ListOrder.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

const QString sidebarKey = QStringLiteral("sidebarSelectedItemIDStrings");
const QString detailKey = QStringLiteral("detailObjectIDString");
const QString nameKey = QStringLiteral("tabName");
const QString scrollKey = QStringLiteral("scroll");
const QString sortKey = QStringLiteral("sortKeys");
const QString directionKey = QStringLiteral("sortDirection");
const QString zoomKey = QStringLiteral("zoom");
const QString predicateKey = QStringLiteral("filterPredicate");
const QString searchKey = QStringLiteral("searchString");
const QString editsKey = QStringLiteral("editsSearch");
const QString editedItemsKey = QStringLiteral("unsavedSearchItemIDStrings");
const QString editedTextsKey = QStringLiteral("unsavedSearchStrings");
const QString selectionKey = QStringLiteral("selectionIndexes");
const QString styleKey = QStringLiteral("browserDisplayStyle");
const QString listKey = QStringLiteral("browserShowsList");
const QString infoOpenKey = QStringLiteral("infoPanelOpen");
const QString infoHeightKey = QStringLiteral("infoPanelHeight");
const QString exportOpenKey = QStringLiteral("exportPanelOpen");
const QString detailZoomKey = QStringLiteral("detailZoom");
const QString detailScrollKey = QStringLiteral("detailScroll");

constexpr qsizetype mostItems = 1000; // of one tab; each is looked for
constexpr double furthest = 1e15;     // a place on a screen
constexpr qsizetype longestText = SearchManager::longestText;
constexpr qsizetype mostUnsaved = 20;   // texts of smart folders
constexpr qsizetype mostRanges = 20000; // of a selection; in more pieces it is not kept

template <class T>
QVariant valueOf(const std::optional<T> &value)
{
    return value ? QVariant::fromValue(*value) : QVariant();
}

template <class T>
QVariant numberOf(const std::optional<T> &value)
{
    return value ? QVariant(int(*value)) : QVariant();
}

// Takes fields one by one and remembers whether one of them made no sense.
class Fields
{
public:
    explicit Fields(const QVariantMap &fields) : m_fields(fields) {}
    bool areFine() const { return m_areFine; }

    QString text(const QString &key)
    {
        const QVariant value = take(key, QMetaType::fromType<QString>());
        m_areFine = m_areFine && value.toString().size() <= longestText;
        return value.toString();
    }
    void ignoredText(const QString &key) { take(key, QMetaType::fromType<QString>()); }
    QStringList texts(const QString &key)
    {
        QStringList result;
        const QVariantList list = take(key, QMetaType::fromType<QVariantList>()).toList();
        m_areFine = m_areFine && list.size() <= mostItems;
        for (const QVariant &value : list) {
            m_areFine = m_areFine && value.typeId() == QMetaType::QString;
            result.append(value.toString());
        }
        return m_areFine ? result : QStringList();
    }
    std::optional<QPointF> point(const QString &key)
    {
        const QVariant value = take(key, QMetaType::fromType<QPointF>());
        const QPointF point = value.toPointF();
        m_areFine = m_areFine && std::abs(point.x()) < furthest && std::abs(point.y()) < furthest;
        return value.isValid() ? std::optional(point) : std::nullopt;
    }
    std::optional<double> number(const QString &key, double least, double most)
    {
        const QVariant value = m_fields.value(key);
        if (!value.isValid()) {
            return std::nullopt;
        }
        const int type = value.typeId();
        const double number = value.toDouble();
        m_areFine = m_areFine &&
                    (type == QMetaType::Double || type == QMetaType::LongLong || type == QMetaType::Bool) &&
                    number >= least && number <= most;
        return number;
    }
    std::optional<int> whole(const QString &key, int most)
    {
        const auto found = number(key, 0, most);
        m_areFine = m_areFine && (!found || *found == std::floor(*found));
        return found && m_areFine ? std::optional(int(*found)) : std::nullopt;
    }
    std::optional<int> sortValue(const QString &key)
    {
        // An order that this version has not, of an older or newer one, is no damage: the tab has the usual one then.
        const auto found = whole(key, std::numeric_limits<qint16>::max());
        return found && ListOrder::isKnown(*found) ? found : std::nullopt;
    }
    std::optional<bool> flag(const QString &key)
    {
        const auto found = whole(key, 1);
        return found ? std::optional(*found != 0) : std::nullopt;
    }
    ZQIndexSet indexes(const QString &key)
    {
        const auto indexes = take(key, QMetaType::fromType<ZQIndexSet>()).value<ZQIndexSet>();
        m_areFine = m_areFine && indexes.ranges().size() <= mostRanges;
        return indexes;
    }

private:
    QVariant take(const QString &key, QMetaType type)
    {
        const QVariant value = m_fields.value(key);
        const bool isFine = !value.isValid() || value.metaType() == type;
        m_areFine = m_areFine && isFine;
        return isFine ? value : QVariant();
    }

    const QVariantMap &m_fields;
    bool m_areFine = true;
};

// The lasting identifier of what `id` names; null for what is not saved even so.
template <class T>
ZQObjectID lasting(const ZQObjectID &id, const ZQRef<T> &object)
{
    const ZQObjectID now = object ? object->objectID() : id;
    return now.isTemporary() ? ZQObjectID() : now;
}

// Of what `ZQObjectID::URIRepresentation` gave; null while temporary and for other texts.
QUuid storeOfURI(const QString &uri)
{
    return uri.startsWith(QStringLiteral("x-zelto://")) ? QUuid::fromString(uri.section(u'/', 2, 2)) : QUuid();
}

void saveWhatIsTemporary(TabState &tab, EditContext &edits)
{
    const QList<ZQObjectID> &items = tab.sidebarSelectedItems();
    const bool isTemporary = tab.view.detailItem.isTemporary() ||
                             std::any_of(items.begin(), items.end(), [](const auto &id) { return id.isTemporary(); });
    if (!isTemporary) {
        return;
    }
    QList<ZQRef<ZQSidebarBaseItem>> objects;
    for (const ZQObjectID &id : items) {
        objects.append(edits.sidebarItem(id));
    }
    const auto detail = edits.libraryItem(tab.view.detailItem);
    edits.save();
    QList<ZQObjectID> now;
    for (qsizetype i = 0; i < items.size(); ++i) {
        now.append(lasting(items[i], objects[i]));
    }
    now.removeIf([](const ZQObjectID &id) { return id.isNull(); });
    tab.setSidebarSelectedItems(now);
    tab.view.detailItem = lasting(tab.view.detailItem, detail);
}

// Of smart folders that are still there.
void restoreUnsaved(TabState &tab, const QStringList &uris, const QStringList &texts, EditContext &edits)
{
    for (qsizetype i = 0; i < std::min({uris.size(), texts.size(), mostUnsaved}); ++i) {
        const auto item = zqCast<ZQSidebarSmartFolder>(edits.context.objectWithURIRepresentation(uris[i]));
        if (item && item->active() && texts[i].size() <= longestText) {
            tab.setUnsavedSearch(item->objectID(), texts[i]);
        }
    }
}

} // namespace

ZQKeyedArchive::Object TabStateArchive::archived(TabState &tab, EditContext &edits, Kept kept)
{
    saveWhatIsTemporary(tab, edits);
    const QUuid store = edits.context.persistentStoreCoordinator()->storeUUID();
    QStringList items;
    for (const ZQObjectID &id :
         tab.sidebarSelectedItems().first(std::min(mostItems, tab.sidebarSelectedItems().size()))) {
        items.append(id.URIRepresentation(store));
    }
    const TabViewState &view = tab.view;
    const QString &predicate = tab.filterFormat();
    QStringList editedItems;
    QStringList editedTexts;
    for (auto each = tab.unsavedSearches().begin(); each != tab.unsavedSearches().end(); ++each) {
        if (!each.key().isTemporary() && editedItems.size() < mostUnsaved) {
            editedItems.append(each.key().URIRepresentation(store));
            editedTexts.append(each.value());
        }
    }
    const auto textOrNothing = [](const QString &text) { return text.isEmpty() ? QVariant() : QVariant(text); };
    const bool keepsSelection = kept == Kept::Everything && !view.selectionIndexes.isEmpty() &&
                                view.selectionIndexes.ranges().size() <= mostRanges;
    return {className,
            {{sidebarKey, items},
             {detailKey, view.detailItem.isNull() ? QVariant() : view.detailItem.URIRepresentation(store)},
             {nameKey, tab.tabName()},
             {scrollKey, valueOf(view.scroll)},
             {sortKey, numberOf(tab.sortKeys())},
             {directionKey, numberOf(tab.sortDirection())},
             {zoomKey, valueOf(tab.zoom())},
             {predicateKey, predicate.size() > longestText ? QVariant() : textOrNothing(predicate)},
             {searchKey, textOrNothing(tab.searchString())},
             {editsKey, tab.editsSearch() ? QVariant(1) : QVariant()},
             {editedItemsKey, editedItems.isEmpty() ? QVariant() : QVariant(editedItems)},
             {editedTextsKey, editedTexts.isEmpty() ? QVariant() : QVariant(editedTexts)},
             {selectionKey, keepsSelection ? QVariant::fromValue(view.selectionIndexes) : QVariant()},
             {styleKey, numberOf(tab.browserDisplayStyle())},
             {listKey, numberOf(view.showsList)},
             {infoOpenKey, numberOf(view.infoPanelOpen)},
             {infoHeightKey, valueOf(view.infoPanelHeight)},
             {exportOpenKey, numberOf(view.exportPanelOpen)},
             {detailZoomKey, valueOf(view.detailZoom)},
             {detailScrollKey, valueOf(view.detailScroll)}}};
}

QSet<QUuid> TabStateArchive::storesNamedBy(const QVariant &archive)
{
    const QVariantMap fields = archive.value<ZQKeyedArchive::Object>().fields;
    QVariantList uris = fields.value(sidebarKey).toList();
    uris.append(fields.value(detailKey));
    QSet<QUuid> stores;
    for (const QVariant &uri : std::as_const(uris)) {
        if (const QUuid store = storeOfURI(uri.toString()); !store.isNull()) {
            stores.insert(store);
        }
    }
    return stores;
}

std::shared_ptr<TabState> TabStateArchive::restored(const QVariant &archive, EditContext &edits)
{
    const auto object = archive.value<ZQKeyedArchive::Object>();
    if (object.className != className) {
        return nullptr;
    }
    Fields fields(object.fields);
    QList<ZQObjectID> items;
    const QStringList uris = fields.texts(sidebarKey);
    for (const QString &uri : uris) {
        const auto item = zqCast<ZQSidebarBaseItem>(edits.context.objectWithURIRepresentation(uri));
        if (item && item->active()) {
            items.append(item->objectID());
        }
    }
    auto tab = std::make_shared<TabState>(edits, items);
    tab->setSearchString(fields.text(searchKey));
    if (fields.flag(editsKey).value_or(false) && zqCast<ZQSidebarSmartFolder>(tab->singleSidebarElement())) {
        tab->setEditsSearch(true);
    }
    restoreUnsaved(*tab, fields.texts(editedItemsKey), fields.texts(editedTextsKey), edits);
    if (const auto value = fields.sortValue(sortKey)) {
        tab->setSortKeys(ZQSortValue(*value));
    }
    tab->setSortDirection(fields.flag(directionKey));
    tab->setZoom(fields.number(zoomKey, 0, 1));
    if (const auto value = fields.whole(styleKey, int(BrowserDisplayStyle::BySize))) {
        tab->setBrowserDisplayStyle(BrowserDisplayStyle(*value));
    }
    // The text says it anew: what it asked for when it was written was that day's.
    if (const QString format = fields.text(predicateKey); !format.isEmpty() && tab->filter().isEmpty()) {
        tab->setFilterPredicate(ZQPredicate::predicateWithFormat(format)); // null when it is none any more
    }
    fields.ignoredText(nameKey); // the sidebar items may have other titles now
    TabViewState &view = tab->view;
    const QString detailURI = fields.text(detailKey);
    const auto detail = detailURI.isEmpty()
                            ? ZQRef<ZQLibraryBaseItem>()
                            : zqCast<ZQLibraryBaseItem>(edits.context.objectWithURIRepresentation(detailURI));
    view.detailItem = detail && detail->active() ? detail->objectID() : ZQObjectID();
    view.scroll = fields.point(scrollKey);
    view.selectionIndexes = fields.indexes(selectionKey);
    view.detailZoom = fields.number(detailZoomKey, 0, furthest);
    view.detailScroll = fields.point(detailScrollKey);
    view.showsList = fields.flag(listKey);
    view.infoPanelOpen = fields.flag(infoOpenKey);
    view.infoPanelHeight = fields.number(infoHeightKey, 0, furthest);
    view.exportPanelOpen = fields.flag(exportOpenKey);
    return fields.areFine() ? tab : nullptr;
}
