#include "Classes/Interface/SidebarCommands.h"

#include "Classes/Interface/ItemEdits.h"
#include "Classes/Interface/LibraryCommands.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <algorithm>
#include <memory>

namespace {

// Where an item hung before a step, to hang it there again.
struct Place
{
    ZQObjectID item;
    ZQObjectID father;
    quint32 index = 0;
};

Place placeOf(const SidebarCommands::Item &item)
{
    Place place{item->objectID(), {}, 0};
    if (const SidebarCommands::Item father = item->father()) {
        place.father = father->objectID();
        place.index = quint32(std::max<qsizetype>(0, father->orderedChildren().indexOf(item)));
    }
    return place;
}

void collectDescendants(const SidebarCommands::Item &item, QList<ZQObjectID> &into)
{
    into.append(item->objectID());
    for (const SidebarCommands::Item &child : item->childsItems()) {
        collectDescendants(child, into);
    }
}

QList<ZQObjectID> idsOf(const SidebarCommands::Items &items)
{
    QList<ZQObjectID> ids;
    for (const SidebarCommands::Item &item : items) {
        ids.append(item->objectID());
    }
    return ids;
}

// Without those below another one.
SidebarCommands::Items topmost(const SidebarCommands::Items &items)
{
    SidebarCommands::Items result;
    for (const SidebarCommands::Item &item : items) {
        const bool isBelow = std::any_of(items.begin(), items.end(),
                                         [&](const auto &other) { return item->isDescendantOfItem(other.get()); });
        if (!isBelow) {
            result.append(item);
        }
    }
    return result;
}

struct Confirmation
{
    const char *message;
    const char *informativeText;
    const char *button;
};

constexpr Confirmation deleteProject = {"Are you sure you want to delete this project?",
                                        "The project items will still remain inside your library.", "Delete"};
constexpr Confirmation removeLiveFolder = {"Are you sure you want to remove this Live Folder?",
                                           "The original folders will still remain on your disk.", "Remove"};
constexpr Confirmation deleteFolder = {
    "Are you sure you want to delete this folder?",
    "All the child projects will be also deleted, projects items will still remain inside your library.", "Delete"};
constexpr Confirmation deleteSeveral = {
    "Are you sure you want to delete these items?",
    "All the child projects will be also deleted, projects items will still remain inside your library.", "Delete"};
constexpr Confirmation deleteProjectContent = {"Are you sure you want to delete this project and its content?",
                                               "All the project items will be deleted from your library.", "Delete"};
constexpr Confirmation deleteFolderContent = {"Are you sure you want to delete this folder and its content?",
                                              "All the child projects and their items will be also deleted.", "Delete"};
constexpr Confirmation deleteSeveralContent = {"Are you sure you want to delete these items and their content?",
                                               "All the child projects and their items will be also deleted.",
                                               "Delete"};

const Confirmation &confirmationFor(const SidebarCommands::Items &items, bool withContent)
{
    if (items.size() > 1) {
        return withContent ? deleteSeveralContent : deleteSeveral;
    }
    if (withContent) {
        return items.first()->isFolder() ? deleteFolderContent : deleteProjectContent;
    }
    return items.first()->isWatchedFolder() ? removeLiveFolder
           : items.first()->isFolder()      ? deleteFolder
                                            : deleteProject;
}

} // namespace

SidebarCommands::Item SidebarCommands::addNewListItem(NewItem kind, const Item &onItem)
{
    Item father = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(m_window.context);
    quint32 index = ZQSidebarBaseItem::appendIndex;
    if (onItem && !onItem->isSpecial() && !onItem->isLabel() && !onItem->isTag() && !onItem->isWatchedFolder()) {
        if (onItem->isProject() && onItem->father()) {
            father = onItem->father();
            index = placeOf(onItem).index + 1;
        } else if (onItem->isFolder()) {
            father = onItem;
            father->setExpanded(true);
        }
    }
    if (!father) {
        return {};
    }
    Item item;
    if (kind == NewItem::Folder) {
        item = m_window.context.insertNewObject<ZQSidebarFolder>();
    } else {
        item = m_window.context.insertNewObject<ZQSidebarProject>();
    }
    item->setTitle(kind == NewItem::Folder ? zqLocalized("New Folder") : zqLocalized("New Project"));
    item->setActive(true);
    item->setEnabled(true);
    if (kind == NewItem::Folder) {
        item->setSortKeys(5);
    }
    return addNewListItem(item, father, index);
}

SidebarCommands::Item SidebarCommands::addNewListItem(const Item &item, const Item &father, quint32 order)
{
    father->addChild(item.get(), order);
    m_window.save();
    const Place place = placeOf(item);
    WindowContext &window = m_window;
    auto isFirst = std::make_shared<bool>(true);
    m_window.undoStack.push(new BlockUndoCommand(
        item->title(),
        [&window, place, isFirst] {
            if (std::exchange(*isFirst, false)) {
                return;
            }
            const Item again = window.sidebarItem(place.item);
            const Item above = window.sidebarItem(place.father);
            if (again && above) {
                again->restoreSelf();
                above->addChild(again.get(), place.index);
                window.save();
            }
        },
        [&window, place] {
            if (const Item gone = window.sidebarItem(place.item)) {
                gone->removeFromFather();
                gone->deleteSelf();
                window.save();
            }
        }));
    return item;
}

SidebarCommands::Item SidebarCommands::addNewTag()
{
    const QString base = zqLocalized("New Tag");
    QString name = base;
    for (int number = 2; ZQSidebarTag::tagWithTagName(name, m_window.context); ++number) {
        name = base + u' ' + QString::number(number);
    }
    const ZQRef<ZQSidebarTag> tag = ZQSidebarTag::addNewTagWithName(name, m_window.context);
    const Item father = tag ? tag->father() : Item();
    return father ? addNewListItem(tag, father, ZQSidebarBaseItem::appendIndex) : Item();
}

bool SidebarCommands::confirm(const Items &items, bool withContent)
{
    if (items.first()->isTag()) {
        UserQuestion question;
        question.message = zqLocalized(items.size() == 1 ? "Are you sure you want to delete this tag?"
                                                         : "Are you sure you want to delete these tags?");
        question.buttons = {zqLocalized("Delete"), zqLocalized("Cancel")};
        question.isDestructive = true;
        return m_window.user.ask(question) == 0;
    }
    const QString key = withContent ? QStringLiteral("removeFromSidebarAndContentAlertSuppress")
                                    : QStringLiteral("removeFromSidebarAlertSuppress");
    if (ZQUserDefaults::standardUserDefaults().boolForKey(key)) {
        return true;
    }
    const Confirmation &texts = confirmationFor(items, withContent);
    UserQuestion question;
    question.message = zqLocalized(texts.message);
    question.informativeText = zqLocalized(texts.informativeText);
    question.buttons = {zqLocalized(texts.button), zqLocalized("Cancel")};
    question.suppressionKey = key;
    question.isDestructive = true;
    return m_window.user.ask(question) == 0;
}

bool SidebarCommands::deleteSidebarItem(const Items &items)
{
    const Items chosen = topmost(items);
    if (chosen.isEmpty() || !confirm(chosen, false)) {
        return false;
    }
    deleteListItems(chosen);
    return true;
}

void SidebarCommands::deleteListItems(const Items &items)
{
    const QString text =
        items.size() == 1 ? zqFormat(zqLocalized("delete %@"), {items.first()->title()}) : zqLocalized("delete items");
    pushDeletion(text, items, {});
}

bool SidebarCommands::deleteSidebarItemAndRemoveContentFromLibrary(const Items &items)
{
    const Items chosen = topmost(items);
    if (chosen.isEmpty() || !confirm(chosen, true)) {
        return false;
    }
    pushDeletion(zqLocalized("delete items and content"), chosen, contentOfItems(chosen));
    return true;
}

void SidebarCommands::pushDeletion(const QString &text, const Items &items,
                                   const QList<ZQRef<ZQLibraryBaseItem>> &content)
{
    const QList<ZQObjectID> ids = idsOf(topmost(items));
    QList<ZQObjectID> contentIDs;
    for (const auto &item : content) {
        if (item->active()) {
            contentIDs.append(item->objectID());
        }
    }
    struct Done
    {
        QList<Place> places;
        QList<ZQObjectID> deleted;
    };
    auto done = std::make_shared<Done>();
    WindowContext &window = m_window;
    const auto redo = [&window, ids, contentIDs, done] {
        *done = {};
        LibraryCommands(window).setDeleted(contentIDs, true);
        for (auto id = ids.rbegin(); id != ids.rend(); ++id) {
            const Item item = window.sidebarItem(*id);
            if (!item || !item->active()) {
                continue;
            }
            QList<ZQObjectID> below;
            collectDescendants(item, below);
            done->places.append(placeOf(item));
            item->removeFromFather();
            for (const ZQObjectID &each : below) {
                if (const Item lower = window.sidebarItem(each); lower && lower->active()) {
                    lower->deleteSelf();
                    done->deleted.append(each);
                }
            }
        }
        window.save();
    };
    const auto undo = [&window, contentIDs, done] {
        for (auto id = done->deleted.rbegin(); id != done->deleted.rend(); ++id) {
            if (const Item item = window.sidebarItem(*id)) {
                item->restoreSelf();
            }
        }
        for (auto place = done->places.rbegin(); place != done->places.rend(); ++place) {
            const Item item = window.sidebarItem(place->item);
            const Item father = window.sidebarItem(place->father);
            if (item && father) {
                father->addChild(item.get(), place->index);
            }
        }
        window.save();
        LibraryCommands(window).setDeleted(contentIDs, false);
    };
    m_window.undoStack.push(new BlockUndoCommand(text, redo, undo));
}

bool SidebarCommands::validateNewTagTitle(const QString &text, const Item &forTag)
{
    const QString title = ZQSidebarTag::tagNameForText(text);
    const auto other = ZQSidebarTag::tagWithTagName(title, m_window.context);
    const bool isTaken = other && other != forTag;
    if (title.isEmpty() || isTaken) {
        m_window.user.showNotificationWithText(zqLocalized(isTaken ? "Tag already exist!" : "Tag needs a name!"), 2,
                                               2.5);
        return false;
    }
    if (title != forTag->title()) {
        renameListItem(forTag, title);
    }
    return true;
}

bool SidebarCommands::validateNewTitle(const QString &title, const Item &forSidebarItem)
{
    if (forSidebarItem && forSidebarItem->isTag()) {
        return validateNewTagTitle(title, forSidebarItem);
    }
    if (title.isEmpty()) {
        m_window.user.showNotificationWithText(zqLocalized("Please pick a name!"), 2, 2.5);
        return false;
    }
    if (forSidebarItem && title != forSidebarItem->title()) {
        renameListItem(forSidebarItem, title);
    }
    return true;
}

void SidebarCommands::renameListItem(const Item &item, const QString &title)
{
    const QString before = item->title();
    const ZQObjectID id = item->objectID();
    WindowContext &window = m_window;
    const auto rename = [&window, id](const QString &to) {
        if (const Item renamed = window.sidebarItem(id)) {
            renamed->setTitle(to);
            if (renamed->isTag()) { // the files carry the name
                ItemEdits(window).saveAndRewriteFiles(renamed->relatedObjectIDs(QStringLiteral("taggedItems")));
            } else {
                window.save();
            }
            ZQNotificationCenter::defaultCenter().postNotification(QStringLiteral("SidebarItemTitleDidChange"),
                                                                   renamed.get());
        }
    };
    m_window.undoStack.push(new BlockUndoCommand(
        zqFormat(zqLocalized("rename '%@' in '%@'"), {before, title}), [rename, title] { rename(title); },
        [rename, before] { rename(before); }));
}

void SidebarCommands::moveListItems(const Items &items, const Items &onFathers, const QList<quint32> &atIndexes)
{
    QList<Place> targets;
    for (qsizetype i = 0; i < std::min({items.size(), onFathers.size(), atIndexes.size()}); ++i) {
        targets.append({items[i]->objectID(), onFathers[i]->objectID(), atIndexes[i]});
    }
    auto sources = std::make_shared<QList<Place>>();
    WindowContext &window = m_window;
    const auto put = [&window](const Place &place) {
        const Item item = window.sidebarItem(place.item);
        const Item father = window.sidebarItem(place.father);
        if (item && father) {
            item->removeFromFather();
            father->addChild(item.get(), place.index);
        }
    };
    m_window.undoStack.push(new BlockUndoCommand(
        zqLocalized("move sidebar items"),
        [&window, targets, sources, put] {
            sources->clear();
            // All leave before the first arrives, so that the indexes mean what remains.
            for (const Place &target : targets) {
                if (const Item item = window.sidebarItem(target.item)) {
                    sources->append(placeOf(item));
                    item->removeFromFather();
                }
            }
            for (const Place &target : targets) {
                put(target);
            }
            window.save();
        },
        [&window, sources, put] {
            for (const Place &source : *sources) {
                if (const Item item = window.sidebarItem(source.item)) {
                    item->removeFromFather();
                }
            }
            for (auto source = sources->rbegin(); source != sources->rend(); ++source) {
                put(*source);
            }
            window.save();
        }));
}

bool SidebarCommands::validateItemDrop(const Items &dragged, const Item &target, int index)
{
    const auto any = [&dragged](const auto &test) { return std::any_of(dragged.begin(), dragged.end(), test); };
    if (!target || dragged.contains(target) || target->isSpecial() ||
        (target->isLabel() && !target->isDroppableLabel()) || (!target->isFolder() && index == -1) ||
        any([&target](const Item &item) { return target->isDescendantOfItem(item.get()); }) ||
        target->isWatchedFolder()) {
        return false;
    }
    if (ZQSidebarKind(target->kind()) != ZQSidebarKind::WatchedFoldersLabel) {
        return !any([](const Item &item) { return item->isWatchedFolder(); });
    }
    return !any([](const Item &item) { return item->isProject() || item->isFolder(); });
}

quint32 SidebarCommands::destinationIndex(const Items &dragged, const Item &target, int index)
{
    const int proposed = std::max(0, index);
    const Items children = target->orderedChildren();
    qsizetype before = 0;
    for (const Item &item : dragged) {
        const qsizetype position = children.indexOf(item);
        before += position >= 0 && position < proposed ? 1 : 0;
    }
    return quint32(proposed - before);
}

QList<ZQRef<ZQLibraryBaseItem>> SidebarCommands::contentOfItems(const Items &items) const
{
    QList<ZQRef<ZQLibraryBaseItem>> result;
    QSet<ZQObjectID> seen;
    for (const Item &project : ZQSidebarFolder::expandedProjects(items)) {
        for (const auto &item : project->items()) {
            if (!seen.contains(item->objectID())) {
                seen.insert(item->objectID());
                result.append(item);
            }
        }
    }
    return result;
}
