#include "Classes/Editing/SidebarCommands.h"

#include "Classes/Editing/EditStep.h"
#include "Classes/Editing/ItemEdits.h"
#include "Classes/Editing/LibraryCommands.h"
#include "Classes/Editing/SidebarRemoval.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQFeatures.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <algorithm>
#include <memory>

namespace {

using Place = SidebarPlace;

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

constexpr Confirmation deleteProject = {zqKey("Are you sure you want to delete this project?"),
                                        zqKey("The project items will still remain inside your library."),
                                        zqKey("Delete")};
constexpr Confirmation removeLiveFolder = {zqKey("Are you sure you want to remove this Live Folder?"),
                                           zqKey("The original folders will still remain on your disk."),
                                           zqKey("Remove")};
constexpr Confirmation deleteSmartFolder = {zqKey("Are you sure you want to delete this smart folder?"),
                                            zqKey("The items it finds will still remain inside your library."),
                                            zqKey("Delete")};
constexpr Confirmation deleteFolder = {
    zqKey("Are you sure you want to delete this folder?"),
    zqKey("All the child projects will be also deleted, projects items will still remain inside your library."),
    zqKey("Delete")};
constexpr Confirmation deleteSeveral = {
    zqKey("Are you sure you want to delete these items?"),
    zqKey("All the child projects will be also deleted, projects items will still remain inside your library."),
    zqKey("Delete")};
constexpr Confirmation deleteProjectContent = {zqKey("Are you sure you want to delete this project and its content?"),
                                               zqKey("All the project items will be deleted from your library."),
                                               zqKey("Delete")};
constexpr Confirmation deleteFolderContent = {zqKey("Are you sure you want to delete this folder and its content?"),
                                              zqKey("All the child projects and their items will be also deleted."),
                                              zqKey("Delete")};
constexpr Confirmation deleteSeveralContent = {zqKey("Are you sure you want to delete these items and their content?"),
                                               zqKey("All the child projects and their items will be also deleted."),
                                               zqKey("Delete")};

const Confirmation &confirmationFor(const SidebarCommands::Items &items, bool withContent)
{
    if (items.size() > 1) {
        return withContent ? deleteSeveralContent : deleteSeveral;
    }
    if (withContent) {
        return items.first()->isFolder() ? deleteFolderContent : deleteProjectContent;
    }
    return items.first()->isWatchedFolder() ? removeLiveFolder
           : items.first()->isSmartFolder() ? deleteSmartFolder
           : items.first()->isFolder()      ? deleteFolder
                                            : deleteProject;
}

} // namespace

SidebarCommands::Spot SidebarCommands::spotFor(const Item &onItem) const
{
    Spot spot{ZQSidebarBaseItem::projectsLabelInManagedObjectContext(m_edits.context), ZQSidebarBaseItem::appendIndex};
    if (onItem && !onItem->isSpecial() && !onItem->isLabel() && !onItem->isTag() && !onItem->isWatchedFolder()) {
        if ((onItem->isProject() || onItem->isSmartFolder()) && onItem->father()) {
            spot = {onItem->father(), SidebarPlace::of(onItem).index + 1};
        } else if (onItem->isFolder()) {
            spot.father = onItem;
            onItem->setExpanded(true);
        }
    }
    return spot;
}

SidebarCommands::Item SidebarCommands::addNewListItem(NewItem kind, const Item &onItem)
{
    const auto [father, index] = spotFor(onItem);
    zqDidUseFeature(kind == NewItem::Folder ? ZQFeature::AddNewFolder : ZQFeature::AddNewProject);
    return addNewListItem(kind, father, index);
}

SidebarCommands::Item SidebarCommands::addNewListItem(NewItem kind, const Item &father, quint32 order)
{
    if (!father) {
        return {};
    }
    Item item;
    if (kind == NewItem::Folder) {
        item = m_edits.context.insertNewObject<ZQSidebarFolder>();
    } else {
        item = m_edits.context.insertNewObject<ZQSidebarProject>();
    }
    item->setTitle(kind == NewItem::Folder ? zqLocalized("New Folder") : zqLocalized("New Project"));
    item->setActive(true);
    item->setEnabled(true);
    if (kind == NewItem::Folder) {
        item->setSortKeys(qint16(ZQSortValue::None));
    }
    return addNewListItem(item, father, order);
}

SidebarCommands::Item SidebarCommands::addNewListItem(const Item &item, const Item &father, quint32 order)
{
    father->addChild(item.get(), order);
    m_edits.save();
    const Place place = SidebarPlace::of(item);
    EditContext &edits = m_edits;
    auto isFirst = std::make_shared<bool>(true);
    zqPushBlocks(
        m_edits, item->title(),
        [&edits, place, isFirst] {
            if (std::exchange(*isFirst, false)) {
                return;
            }
            const Item again = edits.sidebarItem(place.row);
            const Item above = edits.sidebarItem(place.father);
            if (again && above) {
                SidebarActivation activation(edits);
                activation.restore(again);
                above->addChild(again.get(), place.index);
                activation.save();
                zqTellOfRows(edits, {place.row});
            }
        },
        [&edits, place] {
            if (const Item gone = edits.sidebarItem(place.row)) {
                SidebarActivation activation(edits);
                gone->removeFromFather();
                activation.remove(gone);
                activation.save();
            }
        });
    return item;
}

QString SidebarCommands::nameOfSearch(const QString &text)
{
    constexpr qsizetype longestName = 80;
    return zqShortened(text.simplified(), longestName);
}

SidebarCommands::Item SidebarCommands::addSmartFolder(const QString &searchText, const QString &title,
                                                      const Item &onItem, const std::optional<Order> &order)
{
    const auto [father, index] = spotFor(onItem);
    if (!father || searchText.size() > ZQSidebarSmartFolder::longestSearchText) {
        return {};
    }
    const QString name = title.isEmpty() ? nameOfSearch(searchText) : title;
    const auto item = m_edits.context.insertNewObject<ZQSidebarSmartFolder>();
    item->setTitle(name.isEmpty() ? zqLocalized("New Smart Folder") : name);
    item->setSearchText(searchText);
    if (order && order->value != ZQSortValue::Manual && order->value != ZQSortValue::None) { // it holds nothing itself
        item->setSortKeys(qint16(order->value));
        item->setSortDirection(order->isAscending);
    }
    item->setActive(true);
    item->setEnabled(true);
    return addNewListItem(item, father, index);
}

SidebarCommands::Item SidebarCommands::duplicateSmartFolder(const Item &smartFolder)
{
    const auto item = zqCast<ZQSidebarSmartFolder>(smartFolder);
    if (!item) {
        return {};
    }
    return addSmartFolder(item->searchText(), zqFormat(zqLocalized("%@ copy"), {item->title()}), item,
                          Order{ZQSortValue(item->sortKeys()), item->sortDirection()});
}

void SidebarCommands::setSearchText(const Item &smartFolder, const QString &searchText)
{
    const auto item = zqCast<ZQSidebarSmartFolder>(smartFolder);
    if (!item || item->searchText() == searchText || searchText.size() > ZQSidebarSmartFolder::longestSearchText) {
        return;
    }
    const QString before = item->searchText();
    EditContext &edits = m_edits;
    const auto change = [&edits, id = item->objectID()](const QString &to) {
        if (const auto changed = zqCast<ZQSidebarSmartFolder>(edits.sidebarItem(id))) {
            changed->setSearchText(to);
            edits.save();
        }
    };
    zqPushBlocks(
        m_edits, zqFormat(zqLocalized("change search of '%@'"), {item->title()}),
        [change, searchText] { change(searchText); }, [change, before] { change(before); });
}

SidebarCommands::Item SidebarCommands::addNewTag()
{
    const QString base = zqLocalized("New Tag");
    QString name = base;
    for (int number = 2; ZQSidebarTag::tagWithTagName(name, m_edits.context); ++number) {
        name = base + u' ' + QString::number(number);
    }
    const ZQRef<ZQSidebarTag> tag = ZQSidebarTag::addNewTagWithName(name, m_edits.context);
    const Item father = tag ? tag->father() : Item();
    return father ? addNewListItem(tag, father, ZQSidebarBaseItem::appendIndex) : Item();
}

bool SidebarCommands::confirm(const Items &items, bool withContent)
{
    if (items.first()->isTag()) {
        UserQuestion question;
        question.message = zqCounted(
            {"Are you sure you want to delete this tag?", "Are you sure you want to delete these tags?"}, items.size());
        question.buttons = {zqLocalized("Delete"), zqLocalized("Cancel")};
        question.isDestructive = true;
        return m_edits.user.ask(question) == 0;
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
    return m_edits.user.ask(question) == 0;
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
        SidebarRemoval rows;
        std::shared_ptr<QList<ZQObjectID>> items; // of the content
    };
    const auto done = std::make_shared<Done>(Done{SidebarRemoval(m_edits, ids), {}});
    EditContext &edits = m_edits;
    const auto redo = [&edits, contentIDs, done] {
        done->items = std::make_shared<QList<ZQObjectID>>();
        LibraryCommands(edits).deleteItems(contentIDs, done->items);
        done->rows.remove();
    };
    const auto undo = [&edits, done] {
        done->rows.putBack();
        LibraryCommands(edits).restoreItems(done->items);
    };
    zqPushBlocks(m_edits, text, redo, undo);
}

bool SidebarCommands::validateNewTagTitle(const QString &text, const Item &forTag)
{
    const QString title = ZQSidebarTag::tagNameForText(text);
    const auto other = ZQSidebarTag::tagWithTagName(title, m_edits.context);
    const bool isTaken = other && other != forTag;
    if (title.isEmpty() || isTaken) {
        m_edits.user.showNotificationWithText(zqLocalized(isTaken ? "Tag already exist!" : "Tag needs a name!"),
                                              NotificationPlace::Sidebar, usualNotificationTime);
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
    if (title.trimmed().isEmpty()) {
        m_edits.user.showNotificationWithText(zqLocalized("Please pick a name!"), NotificationPlace::Sidebar,
                                              usualNotificationTime);
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
    EditContext &edits = m_edits;
    const auto rename = [&edits, id](const QString &to) {
        if (const Item renamed = edits.sidebarItem(id)) {
            renamed->setTitle(to);
            if (renamed->isTag()) { // the files carry the name
                ItemEdits(edits).saveAndRewriteFiles(renamed->relatedObjectIDs(QStringLiteral("taggedItems")));
            } else {
                edits.save();
            }
            ZQNotificationCenter::defaultCenter().postNotification(QStringLiteral("SidebarItemTitleDidChange"),
                                                                   renamed.get());
        }
    };
    zqPushBlocks(
        m_edits, zqFormat(zqLocalized("rename '%@' in '%@'"), {before, title}), [rename, title] { rename(title); },
        [rename, before] { rename(before); });
}

void SidebarCommands::moveListItems(const Items &items, const Items &onFathers, const QList<quint32> &atIndexes)
{
    QList<Place> targets;
    for (qsizetype i = 0; i < std::min({items.size(), onFathers.size(), atIndexes.size()}); ++i) {
        if (zqIsSubFolder(*items[i])) {
            m_edits.user.showNotificationWithText(
                zqFormat(zqLocalized("“%@” stays where it is on the disk. Move the folder there."),
                         {items[i]->title()}),
                NotificationPlace::Sidebar, usualNotificationTime);
        } else {
            targets.append({items[i]->objectID(), onFathers[i]->objectID(), atIndexes[i]});
        }
    }
    if (targets.isEmpty()) {
        return;
    }
    auto sources = std::make_shared<QList<Place>>();
    EditContext &edits = m_edits;
    const auto put = [&edits](const Place &place) {
        const Item item = edits.sidebarItem(place.row);
        const Item father = edits.sidebarItem(place.father);
        if (item && father) {
            item->removeFromFather();
            father->addChild(item.get(), place.index);
        }
    };
    zqPushBlocks(
        m_edits, zqLocalized("move sidebar items"),
        [&edits, targets, sources, put] {
            sources->clear();
            // All leave before the first arrives, so that the indexes mean what remains.
            for (const Place &target : targets) {
                if (const Item item = edits.sidebarItem(target.row)) {
                    sources->append(SidebarPlace::of(item));
                    item->removeFromFather();
                }
            }
            for (const Place &target : targets) {
                put(target);
            }
            edits.save();
        },
        [&edits, sources, put] {
            for (const Place &source : *sources) {
                if (const Item item = edits.sidebarItem(source.row)) {
                    item->removeFromFather();
                }
            }
            for (auto source = sources->rbegin(); source != sources->rend(); ++source) {
                put(*source);
            }
            edits.save();
        });
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
