#include "Models/DataModel/ZQSidebarTag.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQText.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <algorithm>
#include <array>

namespace {

constexpr int firstColor = int(ZQSidebarKind::FirstColor);
constexpr int firstSize = int(ZQSidebarKind::FirstSize);
constexpr std::array colorNames = {"white",  "black", "gray", "red",    "orange",
                                   "yellow", "green", "blue", "purple", "pink"};
constexpr std::array sizeNames = {"icon", "small", "medium", "large", "vector"};

// The sort value of new tags' items: by title.
constexpr auto tagSortValue = qint16(ZQSortValue::Title);

ZQRef<ZQSidebarTag> generatedTag(int code, int position, const char *name, const ZQRef<ZQSidebarBaseItem> &label,
                                 ZQManagedObjectContext &context)
{
    if (auto existing = zqCast<ZQSidebarTag>(ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind(code), context))) {
        return existing;
    }
    auto tag = context.insertNewObject<ZQSidebarTag>();
    tag->setTitle(zqLocalized(name));
    tag->setKind(qint16(code));
    tag->setIs_Tag(true);
    tag->setIs_Special(true);
    tag->setSortKeys(tagSortValue);
    tag->setFather(label.get());
    tag->setOrder(position);
    return tag;
}

} // namespace

QString ZQSidebarTag::tagNameForText(const QString &text)
{
    return zqPlainLine(text);
}

ZQRef<ZQSidebarTag> ZQSidebarTag::tagWithTagName(const QString &name, ZQManagedObjectContext &context)
{
    return lookUp(tagNameForText(name), context).value_or(ZQRef<ZQSidebarTag>());
}

std::optional<ZQRef<ZQSidebarTag>> ZQSidebarTag::lookUp(const QString &title, ZQManagedObjectContext &context)
{
    if (title.isEmpty()) {
        return ZQRef<ZQSidebarTag>();
    }
    ZQError failure;
    auto tag = zqFetchFirst<ZQSidebarTag>(context, QStringLiteral("title = %@ AND active = YES"), {title}, &failure);
    if (tag) {
        return tag;
    }
    const auto tags = failure.isNull() ? tagsByNameInManagedObjectContext(context) : std::nullopt;
    if (!tags) {
        return std::nullopt;
    }
    const QList<ZQRef<ZQSidebarTag>> found = tags->value(title);
    return found.isEmpty() ? ZQRef<ZQSidebarTag>() : found.first();
}

ZQRef<ZQSidebarTag> ZQSidebarTag::addNewTagWithName(const QString &name, ZQManagedObjectContext &context)
{
    const QString title = tagNameForText(name);
    if (title.isEmpty()) {
        return {};
    }
    auto tag = context.insertNewObject<ZQSidebarTag>();
    tag->setTitle(title);
    tag->setIs_Tag(true);
    tag->setSortKeys(tagSortValue);
    if (const auto label = tagsLabelInManagedObjectContext(context)) {
        label->appendChild(tag.get());
    }
    return tag;
}

ZQRef<ZQSidebarTag> ZQSidebarTag::getOrCreateTagWithName(const QString &name, ZQManagedObjectContext &context,
                                                         bool *isNew)
{
    const auto found = lookUp(tagNameForText(name), context);
    const bool isMade = found && !*found;
    if (isNew) {
        *isNew = isMade;
    }
    return isMade ? addNewTagWithName(name, context) : found.value_or(ZQRef<ZQSidebarTag>());
}

ZQRef<ZQSidebarTag> ZQSidebarTag::tagForSize(int size, ZQManagedObjectContext &context)
{
    const int position = size - firstSize;
    if (position < 0 || position >= int(sizeNames.size())) {
        return {};
    }
    return generatedTag(size, position, sizeNames[size_t(position)], sizeLabelInManagedObjectContext(context), context);
}

ZQRef<ZQSidebarTag> ZQSidebarTag::tagForColor(int color, ZQManagedObjectContext &context)
{
    const int position = color - firstColor;
    if (position < 0 || position >= int(colorNames.size())) {
        return {};
    }
    return generatedTag(color, position, colorNames[size_t(position)], colorsLabelInManagedObjectContext(context),
                        context);
}

int ZQSidebarTag::colorValueForName(const QString &name)
{
    const auto found = std::find_if(colorNames.begin(), colorNames.end(), [&name](const char *color) {
        return name == QLatin1String(color) || name == zqLocalized(color);
    });
    return found == colorNames.end() ? -1 : firstColor + int(found - colorNames.begin());
}

QString ZQSidebarTag::colorNameForValue(int value)
{
    const int position = value - firstColor;
    return position >= 0 && position < int(colorNames.size()) ? zqLocalized(colorNames[size_t(position)]) : QString();
}

void ZQSidebarTag::reorderAllUserTagsInManagedObjectContext(ZQManagedObjectContext &context)
{
    const auto label = tagsLabelInManagedObjectContext(context);
    if (!label) {
        return;
    }
    QList<ZQRef<ZQSidebarBaseItem>> tags = label->childsItems();
    std::stable_sort(tags.begin(), tags.end(), [](const auto &a, const auto &b) {
        return a->order() != b->order()
                   ? a->order() < b->order()
                   : zqCompareValues(a->title(), b->title(), ZQSortDescriptor::Comparison::LocalizedStandard) < 0;
    });
    qint32 position = 0;
    for (const ZQRef<ZQSidebarBaseItem> &tag : tags) {
        tag->setOrder(position++);
    }
}

std::optional<QHash<QString, QList<ZQRef<ZQSidebarTag>>>>
ZQSidebarTag::tagsByNameInManagedObjectContext(ZQManagedObjectContext &context)
{
    const auto tags =
        zqFetch<ZQSidebarTag>(context, QStringLiteral("active = YES AND is_Tag == YES AND is_Label == NO"));
    if (!tags) {
        return std::nullopt;
    }
    QHash<QString, QList<ZQRef<ZQSidebarTag>>> byName;
    for (const ZQRef<ZQSidebarTag> &tag : *tags) {
        byName[tagNameForText(tag->title())].append(tag);
    }
    return byName;
}

QStringList ZQSidebarTag::contextContainsDuplicatedTags(ZQManagedObjectContext &context)
{
    const auto byName = tagsByNameInManagedObjectContext(context);
    QStringList duplicated;
    for (auto entry = byName ? byName->cbegin() : decltype(byName->cbegin())(); byName && entry != byName->cend();
         ++entry) {
        if (entry->size() > 1) {
            duplicated.append(entry.key());
        }
    }
    duplicated.sort();
    return duplicated;
}

void ZQSidebarTag::mergeTagsNamed(const QStringList &names, ZQManagedObjectContext &context)
{
    const auto byName = names.isEmpty() ? std::nullopt : tagsByNameInManagedObjectContext(context);
    for (const QString &name : byName ? names : QStringList()) {
        const QString title = tagNameForText(name);
        const QList<ZQRef<ZQSidebarTag>> twins = byName->value(title);
        for (qsizetype i = 1; i < twins.size(); ++i) {
            twins.first()->addTaggedItems(twins.at(i)->taggedItems());
            twins.at(i)->deletePermanently();
        }
        if (twins.size() > 1 && twins.first()->title() != title) {
            twins.first()->setTitle(title);
        }
    }
}

QString ZQSidebarTag::typeString() const
{
    return is_Label() ? ZQSidebarBaseItem::typeString() : zqLocalized("Tag");
}

QString ZQSidebarTag::icon() const
{
    const int code = kind();
    if (code >= firstColor && code <= int(ZQSidebarKind::LastColor)) {
        return QStringLiteral("color");
    }
    return code >= firstSize && code <= int(ZQSidebarKind::LastSize) ? QStringLiteral("size") : QStringLiteral("tag");
}

ZQFetchRequest ZQSidebarTag::contentRequest() const
{
    return {.entityName = ZQLibraryBaseItem::entityName(),
            .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("ANY tags == %@ AND active == YES"),
                                                          {QVariant::fromValue(objectID())}),
            .sortDescriptors = {{QStringLiteral("title"), true, ZQSortDescriptor::Comparison::LocalizedStandard}}};
}

void ZQSidebarTag::rewriteFileTags()
{
    const QList<ZQRef<ZQLibraryBaseItem>> items = taggedItems();
    const auto kept = zqPrefetch(items, QStringLiteral("tags"));
    ZQLibraryBaseItem::lookForFiles(items);
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        item->writeOpenMetaToDisk();
    }
}

void ZQSidebarTag::deleteSelf()
{
    ZQSidebarBaseItem::deleteSelf();
    rewriteFileTags();
}

void ZQSidebarTag::restoreSelf()
{
    ZQSidebarBaseItem::restoreSelf();
    rewriteFileTags();
}

bool ZQSidebarTag::containsItem(const ZQLibraryBaseItem *item) const
{
    return item && item->tagsIDs().contains(objectID());
}

bool ZQSidebarTag::addItem(ZQLibraryBaseItem *item, quint32, bool, bool)
{
    if (!prepareToAddItem(item)) {
        return false;
    }
    item->addTagsObject(this);
    item->writeOpenMetaToDisk();
    return true;
}

bool ZQSidebarTag::addItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &, ZQError *)
{
    const auto kept = zqPrefetch(items, QStringLiteral("tags"));
    ZQLibraryBaseItem::lookForFiles(items);
    addEachItem(items);
    return true;
}

void ZQSidebarTag::removeItems(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    const auto kept = zqPrefetch(items, QStringLiteral("tags"));
    ZQLibraryBaseItem::lookForFiles(items);
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        if (item && containsItem(item.get())) {
            item->removeTagsObject(this);
            item->writeOpenMetaToDisk();
        }
    }
}

void ZQSidebarTag::addTaggedItems(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    const auto kept = zqPrefetch(items, QStringLiteral("tags"));
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        if (item && !containsItem(item.get())) {
            item->addTagsObject(this);
        }
    }
}
