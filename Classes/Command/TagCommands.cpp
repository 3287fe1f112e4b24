#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Browsing/Content/SidebarContents.h"
#include "Classes/Command/CommandEdits.h"
#include "Classes/Command/Commands.h"
#include "Classes/Editing/ItemEdits.h"
#include "Classes/Tags/DesktopMirror.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Classes/Tags/WhereFroms.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace {

using Items = QList<ZQRef<ZQLibraryBaseItem>>;

// The items of the library; nothing, with a message, when one is unknown or deleted.
std::optional<Items> activeItems(const QStringList &references, CommandContext &context)
{
    auto items = zqItemsForReferences(references, context);
    for (const ZQRef<ZQLibraryBaseItem> &item : items.value_or(Items())) {
        if (!item->active()) {
            context.fail(zqFormat(zqLocalized("“%@” is deleted; bring it back with `zelto restore %@`, then try again"),
                                  {item->title(), item->bundleID()}));
            return std::nullopt;
        }
    }
    return items;
}

QList<ZQObjectID> idsOf(const Items &items)
{
    QList<ZQObjectID> ids;
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        ids.append(item->objectID());
    }
    return ids;
}

bool isTagName(const QString &text)
{
    const QString name = ZQSidebarTag::tagNameForText(text);
    return std::any_of(name.begin(), name.end(), [](QChar c) { return !c.isSpace(); });
}

// `items`, the last of them being something else.
std::optional<QString> takeLast(QStringList &arguments, const char *whatIsMissing, CommandContext &context)
{
    if (arguments.size() < 2) {
        context.fail(zqLocalized(whatIsMissing));
        return std::nullopt;
    }
    return arguments.takeLast();
}

QJsonObject attributesOf(const QString &path)
{
    const auto mirror = [&path](const QString &name) {
        return QString::fromUtf8(ZQExtendedAttributes::get(path, name).value_or(QByteArray()));
    };
    ZQError error;
    const QStringList tags = OpenMeta::getUserTagsNoRestore(path, &error).value_or(QStringList());
    const WhereFroms origin = WhereFroms::urlsOfFile(path);
    QJsonObject object{{QStringLiteral("path"), path},
                       {QStringLiteral("tags"), QJsonArray::fromStringList(tags)},
                       {QStringLiteral("rating"), OpenMeta::getXAttrMetaData(OpenMeta::starRatingKey, path).toDouble()},
                       {QStringLiteral("comment"), OpenMeta::getString(OpenMeta::finderCommentKey, path)},
                       {QStringLiteral("webURL"), origin.webURL},
                       {QStringLiteral("webPageURL"), origin.webPageURL},
                       {DesktopMirror::tagsName, mirror(DesktopMirror::tagsName)},
                       {DesktopMirror::commentName, mirror(DesktopMirror::commentName)},
                       {DesktopMirror::ratingName, mirror(DesktopMirror::ratingName)},
                       {QStringLiteral("names"), QJsonArray::fromStringList(ZQExtendedAttributes::list(path))}};
    if (!error.isNull()) {
        object.insert(QStringLiteral("error"), error.localizedDescription());
    }
    return object;
}

void printAttributes(const QJsonObject &attributes, CommandContext &context)
{
    context.print(attributes.value(QStringLiteral("path")).toString());
    for (const QString &key : {QStringLiteral("tags"), QStringLiteral("rating"), QStringLiteral("comment"),
                               QStringLiteral("webURL"), QStringLiteral("webPageURL"), DesktopMirror::tagsName,
                               DesktopMirror::commentName, DesktopMirror::ratingName, QStringLiteral("error")}) {
        const QJsonValue value = attributes.value(key);
        const QString text = value.isArray() ? value.toVariant().toStringList().join(QStringLiteral(", "))
                                             : value.toVariant().toString();
        if (!text.isEmpty() && !(value.isDouble() && value.toDouble() <= 0)) {
            context.print(QStringLiteral("  ") + key + u'\t' + text);
        }
    }
}

} // namespace

int zqRunTag(const TagRequest &request, CommandContext &context)
{
    if (request.add.isEmpty() && request.remove.isEmpty()) {
        return context.fail(zqLocalized("say which tags: --add TAG, --remove TAG, or both, each as often as needed"));
    }
    for (const QString &name : request.add) {
        if (!isTagName(name)) {
            return context.fail(zqLocalized("a tag needs a name"));
        }
    }
    const auto items = activeItems(request.items, context);
    if (!items) {
        return 2;
    }
    QList<ZQObjectID> removed;
    for (const QString &name : request.remove) {
        const auto tag = ZQSidebarTag::tagWithTagName(name, context.store());
        if (!tag) {
            return context.fail(zqFormat(zqLocalized("there is no tag “%@”; `zelto tags` lists them"), {name}));
        }
        removed.append(tag->objectID());
    }
    CommandEdits edits(context);
    ItemEdits(edits.context()).changeTags(idsOf(*items), {}, removed, request.add);
    return edits.finish(items->size(), ZQCountedKey{"1 item tagged", "%d items tagged"});
}

int zqRunNote(const QStringList &itemsAndText, CommandContext &context)
{
    QStringList references = itemsAndText;
    const auto text =
        takeLast(references, zqKey("name at least one item, and after the items the text of the note"), context);
    const auto items = text ? activeItems(references, context) : std::nullopt;
    if (!items) {
        return 2;
    }
    CommandEdits edits(context);
    ItemEdits(edits.context()).setNotes(idsOf(*items), text->isNull() ? QLatin1String("") : *text);
    return edits.finish(items->size(), ZQCountedKey{"1 item noted", "%d items noted"});
}

int zqRunRate(const QStringList &itemsAndRating, CommandContext &context)
{
    QStringList references = itemsAndRating;
    const auto text =
        takeLast(references, zqKey("name at least one item, and after the items a rating from 0 to 5"), context);
    bool isNumber = false;
    const double rating = text ? text->toDouble(&isNumber) : 0;
    if (text && !(isNumber && rating >= 0 && rating <= 5)) {
        return context.fail(
            zqFormat(zqLocalized("“%@” is no rating; the last argument is a number from 0 (none) to 5"), {*text}));
    }
    const auto items = text ? activeItems(references, context) : std::nullopt;
    if (!items) {
        return 2;
    }
    const int stars = OpenMeta::starsForRating(rating);
    CommandEdits edits(context);
    ItemEdits(edits.context()).setRating(idsOf(*items), stars);
    int status = edits.finish(items->size(), ZQCountedKey{"1 item rated", "%d items rated"});
    const bool hasFraction = stars > 0 && rating != stars && ZQLibraryEnvironment::current().writesTagsToFiles();
    for (const ZQRef<ZQLibraryBaseItem> &item : status == 0 && hasFraction ? *items : Items()) {
        const ZQError error = TagFileWriter::sharedTagFileWriter().writeRatingToFile(item->findItemURL(), rating);
        if (!error.isNull()) {
            status = context.fail(
                zqFormat(zqLocalized("“%@” was not rated: %@"), {item->title(), error.localizedDescription()}));
        }
    }
    return status;
}

int zqRunTags(CommandContext &context)
{
    const auto tags =
        zqFetch<ZQSidebarTag>(context.store(), QStringLiteral("active = YES AND is_Tag == YES AND is_Label == NO"), {},
                              {{QStringLiteral("title"), true, ZQSortDescriptor::Comparison::LocalizedStandard}});
    if (!tags) {
        return context.fail(zqLocalized("the tags can't be read; `zelto verify` says what is wrong with the library"));
    }
    QList<SidebarContents::Entry> entries;
    for (const ZQRef<ZQSidebarTag> &tag : *tags) {
        entries.append(SidebarContents::entryFor(*tag));
    }
    const auto counts = SidebarContents(context.store(), context.readyIndex()).counts(entries, [&context] {
        return context.isWanted();
    });
    if (!counts) {
        return context.fail(
            zqLocalized("the items can't be counted; `zelto verify` says what is wrong with the library"));
    }
    QJsonArray array;
    for (const ZQRef<ZQSidebarTag> &tag : *tags) {
        const qint64 count = counts->value(tag->objectID());
        array.append(QJsonObject{{QStringLiteral("title"), tag->title()},
                                 {QStringLiteral("numberOfItems"), count},
                                 {QStringLiteral("generated"), !tag->isUserTag()},
                                 {QStringLiteral("UUID"), tag->UUID()}});
        if (!context.json) {
            context.print(tag->title() + u'\t' + QString::number(count));
        }
    }
    if (context.json) {
        context.printJSON(array);
    }
    return 0;
}

int zqRunAttributes(const QStringList &paths, CommandContext &context)
{
    QStringList found;
    for (const QString &path : paths) {
        found.append(context.absolutePath(path));
        const QFileInfo info(found.last());
        if (!info.exists() && !info.isSymLink()) {
            return context.fail(zqFormat(zqLocalized("there is no file “%@”"), {path}));
        }
    }
    QJsonArray array;
    for (const QString &path : found) {
        const QJsonObject attributes = attributesOf(path);
        array.append(attributes);
        if (!context.json) {
            printAttributes(attributes, context);
        }
    }
    if (context.json) {
        context.printJSON(array);
    }
    return 0;
}
