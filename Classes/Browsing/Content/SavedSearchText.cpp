#include "Classes/Browsing/Content/SavedSearchText.h"

#include "Classes/Browsing/Content/ContentBuilder.h"
#include "Classes/Browsing/Index/ItemCount.h"
#include "Classes/Browsing/Index/SizeClasses.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Browsing/Search/SearchTokenizer.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQSidebarRecent.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QLocale>

#include <algorithm>
#include <iterator>
#include <vector>

namespace {

using Item = ZQRef<ZQSidebarBaseItem>;
using Items = QList<Item>;
// Of one place: empty where it shows nothing anyway; nothing where it shows everything, or what no text says.
using PlaceText = std::optional<QString>;

QString tokenFor(SearchField field, const QString &argument)
{
    return SearchToken::ofField(field).name() + u' ' + SearchManager::quoted(argument);
}

// No quotes hold it, or what they hold of it is lost.
bool isUnquotable(QChar c)
{
    return c == u'"' || (c != u' ' && SearchTokenizer::isBlank(c));
}

// For a token that asks for a part of the name: what cannot be quoted stands between several.
PlaceText containing(SearchField field, const QString &name)
{
    QStringList tokens;
    QString piece;
    for (qsizetype i = 0; i <= name.size(); ++i) {
        if (i < name.size() && !isUnquotable(name[i])) {
            piece.append(name[i]);
        } else if (!piece.trimmed().isEmpty()) {
            tokens.append(tokenFor(field, piece));
            piece.clear();
        }
    }
    return tokens.isEmpty() ? std::nullopt : PlaceText(tokens.join(u' '));
}

// For a token that takes wildcards and asks for the whole name.
PlaceText matching(SearchField field, const QString &name)
{
    QString pattern;
    for (const QChar c : name) {
        if (QStringView(u"*?\\").contains(c)) {
            pattern.append(u'\\');
        }
        pattern.append(isUnquotable(c) ? QChar(u'?') : c);
    }
    return pattern.isEmpty() ? std::nullopt : PlaceText(tokenFor(field, pattern));
}

PlaceText textOfTag(const ZQSidebarBaseItem &tag)
{
    const int kind = tag.kind();
    if (kind == 0) {
        return matching(SearchField::Tag, tag.title());
    }
    if (kind >= int(ZQSidebarKind::FirstColor) && kind <= int(ZQSidebarKind::LastColor)) {
        return tokenFor(SearchField::Color, ZQSidebarTag::colorNameForValue(kind));
    }
    const int sizeClass = kind - int(ZQSidebarKind::FirstSize) + 1; // behind "none", which no tag stands for
    const QString key = SizeClasses::keys().value(sizeClass);
    return sizeClass > 0 && !key.isEmpty() ? PlaceText(tokenFor(SearchField::Size, key)) : std::nullopt;
}

QString textOfRecent()
{
    const QString since = u'>' + QString::number(ZQSidebarRecent::days) + u'd';
    return u'(' + SearchToken::ofField(SearchField::Imported).name() + since + QStringLiteral(" OR ") +
           SearchToken::ofField(SearchField::Modified).name() + since + u')';
}

PlaceText textOf(const ZQSidebarBaseItem &item)
{
    if (const auto *smart = dynamic_cast<const ZQSidebarSmartFolder *>(&item)) {
        const QString text = smart->searchText();
        return SearchExpression::read(text, {}).predicateString.isEmpty() ? QString() : SearchManager::asPart(text);
    }
    if (item.isLabel()) {
        return QString();
    }
    if (item.isTag()) {
        return textOfTag(item);
    }
    if (item.isRecent()) {
        return textOfRecent();
    }
    if (item.isWatchedFolder()) {
        return containing(SearchField::Folder, item.title());
    }
    return item.hasOrderedMembers() ? containing(SearchField::Project, item.title()) : std::nullopt;
}

// A text that finds what one of the places shows; empty for none.
QString textOfPlaces(const Items &places)
{
    QSet<ZQObjectID> all;
    for (const Item &place : places) {
        all.insert(place->objectID());
    }
    QStringList texts;
    for (const Item &place : places) {
        const auto above = place->isWatchedFolder() ? place->father() : Item();
        if (above && all.contains(above->objectID())) {
            continue; // the text of that one finds what is below it
        }
        const PlaceText text = textOf(*place);
        if (text && (text->isEmpty() || texts.contains(*text))) {
            continue;
        }
        if (!text || texts.size() == SavedSearchText::mostPlaces) {
            return {};
        }
        texts.append(*text);
    }
    const QString any = texts.join(QStringLiteral(" OR "));
    return texts.size() > 1 ? u'(' + any + u')' : any;
}

// Nothing after an error, which was logged, or when it was given up.
std::optional<QList<ZQObjectID>> itemsOf(ContentQuery query, ZQManagedObjectContext &context, LibraryIndex *index,
                                         const std::function<bool()> &isWanted)
{
    query.displayStyle = BrowserDisplayStyle::Plain;
    query.sortValue = ZQSortValue::ImportDate; // no order makes a difference; this one costs little
    query.firstRows = 0;
    const auto content = ContentBuilder(query, context, index).content(isWanted);
    if (content && !content->error.isNull()) {
        zqLogFetchError(content->error);
    }
    return content && content->error.isNull() ? std::optional(content->rows.related) : std::nullopt;
}

// Ascending, each once.
std::vector<qint64> keysOf(const QList<ZQObjectID> &items)
{
    std::vector<qint64> keys;
    keys.reserve(size_t(items.size()));
    for (const ZQObjectID &item : items) {
        keys.push_back(item.key);
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

} // namespace

QString SavedSearchText::forQuery(const ContentQuery &query, ZQManagedObjectContext &context)
{
    const QString filter = query.filter.trimmed();
    Items selection;
    for (const ZQObjectID &id : query.sidebarItems) {
        if (const auto item = zqCast<ZQSidebarBaseItem>(context.objectWithID(id)); item && item->active()) {
            selection.append(item);
        }
    }
    const bool isSingle = query.sidebarItems.size() == 1 && selection.size() == 1;
    if (const auto smart = isSingle ? zqCast<ZQSidebarSmartFolder>(selection.first()) : nullptr) {
        const QString saved = smart->searchText().trimmed();
        const bool isWhole = query.editsSearch || saved.isEmpty() || saved == filter;
        return isWhole ? filter : SearchManager::asPart(saved) + u' ' + SearchManager::asPart(filter);
    }
    const QString place = textOfPlaces(ContentBuilder::sourcesOf(selection, isSingle).items);
    const QString whole = place.isEmpty() ? filter : SearchManager::asPart(filter) + u' ' + place;
    return whole.size() <= SearchManager::longestText ? whole : filter;
}

QString SavedSearchText::Comparison::sentence() const
{
    const QLocale locale;
    const QString items = zqItemCount(found);
    if (shown == found) {
        return zqFormat(zqLocalized("The smart folder looks in the whole library: it finds %@, and shows %@ of those "
                                    "that are shown here."),
                        {items, locale.toString(common)});
    }
    return shown == 1
               ? zqFormat(zqLocalized("The smart folder looks in the whole library: it finds %@; 1 is shown here."),
                          {items})
               : zqFormat(zqLocalized("The smart folder looks in the whole library: it finds %@; %@ are shown here."),
                          {items, locale.toString(shown)});
}

std::optional<SavedSearchText::Comparison> SavedSearchText::compare(const Shown &shown, const QString &text,
                                                                    ZQManagedObjectContext &context,
                                                                    LibraryIndex *index,
                                                                    const std::function<bool()> &isWanted)
{
    const auto library = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(context);
    const auto there = library
                           ? itemsOf({.sidebarItems = {library->objectID()}, .filter = text}, context, index, isWanted)
                           : std::nullopt;
    const auto here = !there || shown.items ? shown.items : itemsOf(shown.query, context, index, isWanted);
    if (!there || !here) {
        return std::nullopt;
    }
    const std::vector<qint64> found = keysOf(*there);
    const std::vector<qint64> before = keysOf(*here);
    std::vector<qint64> common;
    std::set_intersection(before.begin(), before.end(), found.begin(), found.end(), std::back_inserter(common));
    return Comparison{qint64(before.size()), qint64(found.size()), qint64(common.size())};
}
