#include "Classes/Browsing/Search/SearchNames.h"

#include "Classes/Browsing/Index/ItemCount.h"
#include "Classes/Browsing/Index/KindNames.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Kit/Persistence/ZQCollator.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <algorithm>
#include <map>

namespace {

struct Named
{
    QString name;
    qint64 count = 0;
};

struct Source
{
    SearchField field;
    IndexFacet facet;
    bool isOfSidebar; // its names are titles of sidebar items, those of no items too
};
constexpr Source sources[] = {
    {SearchField::Tag, IndexFacet::TagName, true},
    {SearchField::Project, IndexFacet::ProjectName, true},
    {SearchField::Folder, IndexFacet::LiveFolderName, true},
    {SearchField::Kind, IndexFacet::ExtensionName, false},
    {SearchField::Extension, IndexFacet::ExtensionName, false},
};

const Source *sourceOf(SearchField field)
{
    const auto found = std::find_if(std::begin(sources), std::end(sources),
                                    [field](const Source &source) { return source.field == field; });
    return found != std::end(sources) ? found : nullptr;
}

std::vector<IndexCount> countsOf(IndexFacet facet, LibraryIndex *index)
{
    if (!index || !index->isReady() || !index->waitUntilCurrent()) {
        return {};
    }
    const auto reading = index->read();
    return reading ? reading->counts(facet, reading->active(), {}) : std::vector<IndexCount>();
}

std::optional<QList<ZQRef<ZQSidebarBaseItem>>> sidebarItems(SearchField field, ZQManagedObjectContext &context)
{
    const QString entity = field == SearchField::Tag       ? ZQSidebarTag::entityName()
                           : field == SearchField::Project ? ZQSidebarProject::entityName()
                                                           : ZQSidebarWatchedFolder::entityName();
    return zqFetch<ZQSidebarBaseItem>(
        context, {.entityName = entity,
                  .predicate = ZQPredicate::predicateWithFormat(
                      QStringLiteral("active == YES AND is_Label == NO AND (is_Tag == NO OR kind == 0)"))});
}

// One for each name, however many items have it.
std::optional<std::map<QString, Named>> titles(const Source &source, ZQManagedObjectContext &context,
                                               LibraryIndex *index)
{
    const auto items = sidebarItems(source.field, context);
    if (!items) {
        return std::nullopt;
    }
    std::map<QString, Named> names;
    for (const auto &item : *items) {
        names[zqFold(item->title())].name = item->title();
    }
    for (const IndexCount &count : countsOf(source.facet, index)) { // what a search for the name finds
        const auto name = names.find(zqFold(count.value.toString()));
        if (name != names.end()) {
            name->second.count = count.count;
        }
    }
    return names;
}

std::map<QString, Named> words(const Source &source, LibraryIndex *index)
{
    std::map<QString, Named> names;
    for (const IndexCount &count : countsOf(source.facet, index)) {
        const QString extension = zqFold(count.value.toString());
        const QString word = source.field == SearchField::Kind ? KindNames::wordOfExtension(extension) : extension;
        Named &each = names[word];
        each.name = word;
        each.count += count.count;
    }
    return names;
}

} // namespace

bool SearchNames::has(SearchField field)
{
    return sourceOf(field) != nullptr;
}

std::optional<QList<SearchCompletion>> SearchNames::of(SearchField field, ZQManagedObjectContext &context,
                                                       LibraryIndex *index, const std::function<bool()> &isWanted)
{
    const Source *source = sourceOf(field);
    auto named = !source               ? std::map<QString, Named>()
                 : source->isOfSidebar ? titles(*source, context, index)
                                       : std::optional(words(*source, index));
    if (!named || !isWanted()) {
        return std::nullopt;
    }
    std::vector<Named> sorted;
    for (const auto &[key, each] : *named) {
        if (!each.name.isEmpty()) {
            sorted.push_back(each);
        }
    }
    const ZQCollator &collator = ZQCollator::forThisThread();
    std::sort(sorted.begin(), sorted.end(), [&collator](const Named &a, const Named &b) {
        return a.count != b.count ? a.count > b.count : collator.compare(a.name, b.name) < 0;
    });
    QList<SearchCompletion> result;
    for (const Named &each : sorted) {
        result.append({each.name, {}, {}, each.count == 0 ? QString() : zqItemCount(each.count)});
    }
    return result;
}

QList<SearchCompletion> SearchNames::matching(const QList<SearchCompletion> &names, const QString &typed,
                                              qsizetype most)
{
    const QString wanted = zqFold(typed);
    QList<SearchCompletion> beginning;
    QList<SearchCompletion> containing;
    for (const SearchCompletion &name : names) {
        const qsizetype place = zqFold(name.text).indexOf(wanted);
        if (place == 0) {
            beginning.append(name);
        } else if (place > 0) {
            containing.append(name);
        }
    }
    return (beginning + containing).first(std::min(most, beginning.size() + containing.size()));
}
