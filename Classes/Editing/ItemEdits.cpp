#include "Classes/Editing/ItemEdits.h"

#include "Classes/Editing/EditStep.h"
#include "Classes/Tags/OpenMetaPrefs.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace {

// Files that were announced. When the writing is never come to, as quitting drops what waits, the announcement stays
// for as long as the process lives: so do its lines, and the next launch writes the files.
struct Announced
{
    std::vector<std::shared_ptr<void>> files;
    bool isDone = false;

    Announced() = default;
    Announced(const Announced &) = delete;
    Announced &operator=(const Announced &) = delete;
    ~Announced() // on whichever thread ends the edits
    {
        if (!isDone) {
            static auto *const kept = new Kept;
            const ZQLockGuard guard(kept->lock);
            kept->files.push_back(std::move(files));
        }
    }

private:
    struct Kept
    {
        ZQMutex lock;
        std::vector<std::vector<std::shared_ptr<void>>> files ZQ_GUARDED_BY(lock);
    };
};

constexpr int mostWaitingFiles = 10000; // that wait for their tags while more items are changed
constexpr qsizetype perAnnouncement = 1000;

std::shared_ptr<void> announce(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    QStringList bundleIDs;
    for (const auto &item : items) {
        bundleIDs.append(item->bundleID());
    }
    return ZQLibraryEnvironment::current().willWriteTagsOfItems(bundleIDs);
}

// What is known of one undo step. Touched by one thread at a time: the main one, or the edit queue's.
struct Edit
{
    using Undo = std::function<void(ZQLibraryBaseItem &)>;   // takes the change of one item back
    using Change = std::function<Undo(ZQLibraryBaseItem &)>; // null when the item is that way already

    QString progressText;
    std::function<bool(ZQManagedObjectContext &, ZQError *)> prepare; // saves what it makes; null for none
    std::function<void(ZQManagedObjectContext &)> takeBack; // what `prepare` made, once all is undone; null for none
    Change change;
    QList<ZQObjectID> items;
    QList<ZQObjectID> tags; // held in memory meanwhile
    bool rewritesFiles = false;
    bool rates = false;
    bool writesUnchangedFiles = false;
    std::vector<std::pair<ZQObjectID, Undo>> done;
};

// One way through an edit, a batch at a time.
class ItemPass
{
public:
    ItemPass(Edit &edit, bool isUndo, ZQManagedObjectContext &context)
        : m_edit(edit), m_isUndo(isUndo), m_context(context),
          m_undone(isUndo ? std::move(edit.done) : decltype(m_undone)())
    {
        if (isUndo) {
            m_edit.done.clear(); // a cancelled undo leaves some, which making the edit again does not come to
        }
        for (const ZQObjectID &tag : edit.tags) {
            m_tags.append(context.objectWithID(tag));
        }
    }
    qsizetype count() const { return m_isUndo ? qsizetype(m_undone.size()) : m_edit.items.size(); }

    void didSave() { m_savedChanges = m_edit.done.size(); }

    // Changes the items from `first` on; those it changed are written to their files once the store was saved.
    QList<ZQRef<ZQLibraryBaseItem>> changeBatch(qsizetype first, qsizetype size)
    {
        const qsizetype end = std::min(count(), first + size);
        QList<ZQObjectID> ids;
        for (qsizetype i = first; i < end; ++i) {
            ids.append(m_isUndo ? m_undone[size_t(i)].first : m_edit.items[i]);
        }
        const QList<ZQRef<ZQLibraryBaseItem>> read = ZQLibraryBaseItem::itemsWithIDs(ids, m_context);
        const auto kept = m_edit.rewritesFiles ? zqPrefetch(read, QStringLiteral("tags")) : decltype(m_tags)();
        QList<ZQRef<ZQLibraryBaseItem>> changed;
        for (qsizetype i = 0; i < ids.size(); ++i) {
            const auto item = zqCast<ZQLibraryBaseItem>(m_context.objectWithID(ids[i]));
            const bool isThere = item && !item->isFault(); // else somebody deleted it meanwhile
            if (isThere && (changeItem(*item, size_t(first + i)) || m_edit.writesUnchangedFiles)) {
                changed.append(item);
            }
        }
        return changed;
    }
    bool changesFiles() const { return m_edit.rates || m_edit.rewritesFiles; }
    // To be kept until `writeFiles`.
    std::shared_ptr<void> announceFiles(const QList<ZQRef<ZQLibraryBaseItem>> &changed) const
    {
        const bool isForFiles = changesFiles() && ZQLibraryEnvironment::current().writesTagsToFiles();
        return isForFiles ? announce(changed) : nullptr;
    }
    void writeFiles(const QList<ZQRef<ZQLibraryBaseItem>> &changed) const
    {
        if (!changesFiles()) {
            return;
        }
        const auto kept = zqPrefetch(changed, QStringLiteral("tags")); // a file gets them with whatever changed
        ZQLibraryBaseItem::lookForFiles(changed);
        for (const auto &item : changed) {
            m_edit.rates ? item->writeRatingToDisk() : item->writeOpenMetaToDisk();
        }
    }
    // What was not come to, or not saved, stays to be undone; what was not changed for good is nothing to undo.
    void stopAt(qsizetype position)
    {
        if (!m_isUndo) {
            m_edit.done.erase(m_edit.done.begin() + qsizetype(m_savedChanges), m_edit.done.end());
        } else {
            std::move(m_undone.begin() + position, m_undone.end(), std::back_inserter(m_edit.done));
        }
    }

private:
    bool changeItem(ZQLibraryBaseItem &item, size_t position)
    {
        if (m_isUndo) {
            m_undone[position].second(item);
            return true;
        }
        Edit::Undo undo = m_edit.change(item);
        if (!undo) {
            return false;
        }
        m_edit.done.emplace_back(item.objectID(), std::move(undo));
        return true;
    }

    Edit &m_edit;
    bool m_isUndo;
    ZQManagedObjectContext &m_context;
    size_t m_savedChanges = m_edit.done.size();
    std::vector<std::pair<ZQObjectID, Edit::Undo>> m_undone;
    QList<ZQRef<ZQManagedObject>> m_tags;
};

// Files are written more slowly than the store, and what waits to be written is held in memory.
void waitForFiles(const EditRun &running)
{
    if (running.isQueued()) {
        TagFileWriter::sharedTagFileWriter().waitUntilFewerWait(mostWaitingFiles, running.operation().get());
    }
}

void run(EditRun &running, Edit &edit, bool isUndo)
{
    ZQError error;
    if (!isUndo && edit.prepare && !edit.prepare(running.context(), &error)) {
        running.presentError(error);
        return;
    }
    ItemPass pass(edit, isUndo, running.context());
    const qsizetype position = running.inBatches(edit.progressText, pass.count(), [&](qsizetype first, qsizetype size) {
        const auto changed = pass.changeBatch(first, size);
        const auto announced = pass.announceFiles(changed);
        if (!running.save()) {
            return false;
        }
        pass.didSave();
        for (const auto &item : changed) {
            running.didBring({item->objectID()}); // what is shown may go by what was changed
        }
        pass.writeFiles(changed);
        waitForFiles(running);
        return true;
    });
    pass.stopAt(position);
    if (isUndo && edit.takeBack && position == pass.count()) {
        edit.takeBack(running.context());
        running.save();
    }
}

EditSize sizeOf(const QList<ZQObjectID> &items)
{
    return {items.size(), ItemEdits::mostAtOnce};
}

// A step that changes nothing is none.
void push(EditContext &edits, const QString &name, const std::shared_ptr<Edit> &edit)
{
    edit->writesUnchangedFiles = edits.writesUnchangedFiles;
    const auto pass = [&edit](bool isUndo) {
        return EditPass{[edit, isUndo](EditRun &running) {
                            run(running, *edit, isUndo);
                            return !edit->done.empty();
                        },
                        edit->progressText};
    };
    zqPushEdit(edits, name, sizeOf(edit->items), pass(false), pass(true));
}

// Not to be cancelled: the store has it, and so must all files.
void rewrite(EditRun &running, const QList<ZQObjectID> &items)
{
    for (qsizetype first = 0; first < items.size(); first += running.perBatch()) {
        const auto read = ZQLibraryBaseItem::itemsWithIDs(items.mid(first, running.perBatch()), running.context());
        const auto kept = zqPrefetch(read, QStringLiteral("tags"));
        ZQLibraryBaseItem::lookForFiles(read);
        for (const ZQRef<ZQLibraryBaseItem> &item : read) {
            item->writeOpenMetaToDisk();
        }
        waitForFiles(running);
    }
}

// A change of one text, taken back to what it was.
template <class Get, class Set>
Edit::Change textChange(const QString &value, Get get, Set set)
{
    return [value, get, set](ZQLibraryBaseItem &item) -> Edit::Undo {
        const QString before = get(item).isNull() ? QLatin1String("") : get(item); // null would leave the file as it is
        if (before == value) {
            return {};
        }
        set(item, value);
        return [before, value, get, set](ZQLibraryBaseItem &changed) {
            if (get(changed) == value) { // else somebody wrote another text since, which is not this step's to take
                set(changed, before);
            }
        };
    };
}

ZQRef<ZQSidebarTag> tagIn(const ZQLibraryBaseItem &item, const ZQObjectID &tag)
{
    return zqCast<ZQSidebarTag>(item.managedObjectContext()->objectWithID(tag));
}

// The tags that a step makes because it names them, by title. They go when it is taken back, unless somebody else uses
// them meanwhile, and come back with it.
class MadeTags
{
public:
    ZQRef<ZQSidebarTag> tag(const QString &title, ZQManagedObjectContext &context, bool *isNew) const
    {
        const auto known = m_tags.constFind(title);
        const auto made = known != m_tags.constEnd() ? tagIn(context, *known) : ZQRef<ZQSidebarTag>();
        if (made && !made->active() && !ZQSidebarTag::tagWithTagName(title, context)) {
            made->setActive(true);
            return made;
        }
        return ZQSidebarTag::getOrCreateTagWithName(title, context, isNew);
    }
    void insert(const QString &title, const ZQObjectID &saved) { m_tags.insert(title, saved); }
    void takeBack(ZQManagedObjectContext &context) const
    {
        for (const ZQObjectID &id : m_tags) {
            const auto tag = tagIn(context, id);
            if (tag && tag->active() && tag->relatedObjectIDs(QStringLiteral("taggedItems")).isEmpty()) {
                tag->setActive(false);
            }
        }
    }

private:
    static ZQRef<ZQSidebarTag> tagIn(ZQManagedObjectContext &context, const ZQObjectID &id)
    {
        return zqCast<ZQSidebarTag>(context.existingObjectWithID(id));
    }

    QHash<QString, ZQObjectID> m_tags;
};

void applyTags(ZQLibraryBaseItem &item, const QList<ZQObjectID> &add, const QList<ZQObjectID> &remove)
{
    for (const ZQObjectID &id : remove) {
        if (const auto tag = tagIn(item, id)) {
            item.removeTagsObject(tag.get());
        }
    }
    for (const ZQObjectID &id : add) {
        if (const auto tag = tagIn(item, id)) {
            item.addTagsObject(tag.get());
        }
    }
}

} // namespace

void ItemEdits::changeTags(const QList<ZQObjectID> &items, const QList<ZQObjectID> &add,
                           const QList<ZQObjectID> &remove, const QStringList &addByTitle)
{
    if (items.isEmpty() || (add.isEmpty() && remove.isEmpty() && addByTitle.isEmpty())) {
        return;
    }
    const auto edit = std::make_shared<Edit>();
    edit->progressText = zqLocalized("Tagging…");
    edit->items = items;
    edit->rewritesFiles = true;
    // A tag is made where the items are changed: a save waits for the disk, which is busy when many files are written.
    const auto all = std::make_shared<QList<ZQObjectID>>(add);
    const auto made = std::make_shared<MadeTags>();
    edit->takeBack = [made](ZQManagedObjectContext &context) { made->takeBack(context); };
    edit->prepare = [edit = edit.get(), add, remove, addByTitle, all, made](ZQManagedObjectContext &context,
                                                                            ZQError *error) {
        QList<ZQRef<ZQSidebarTag>> named;
        QList<ZQRef<ZQSidebarTag>> fresh;
        for (const QString &title : addByTitle) {
            bool isNew = false;
            if (const auto tag = made->tag(title, context, &isNew)) {
                (isNew ? fresh : named).append(tag);
            }
        }
        if (!context.save(error)) {
            return false;
        }
        for (const auto &tag : std::as_const(fresh)) {
            made->insert(tag->title(), tag->objectID());
        }
        named += fresh;
        *all = add;
        for (const auto &tag : named) {
            all->append(tag->objectID());
        }
        edit->tags = *all + remove;
        return true;
    };
    edit->change = [all, remove](ZQLibraryBaseItem &item) -> Edit::Undo {
        const QList<ZQObjectID> present = item.relatedObjectIDs(QStringLiteral("tags"));
        QList<ZQObjectID> added = *all;
        added.removeIf([&present](const ZQObjectID &tag) { return present.contains(tag); });
        QList<ZQObjectID> removed = remove;
        removed.removeIf([&](const ZQObjectID &tag) { return !present.contains(tag) || all->contains(tag); });
        if (added.isEmpty() && removed.isEmpty()) {
            return {};
        }
        applyTags(item, added, removed);
        return [added, removed](ZQLibraryBaseItem &changed) { applyTags(changed, removed, added); };
    };
    push(m_edits, zqLocalized("edit tags"), edit);
}

bool ItemEdits::tagItems(const QList<ZQObjectID> &items, const QStringList &shared, const QStringList &entered)
{
    QStringList wanted;
    for (const QString &text : entered) {
        const QString name = ZQSidebarTag::tagNameForText(text);
        if (!name.isEmpty() && text != zqLocalized("Multiple values") && !wanted.contains(name)) {
            wanted.append(name);
        }
    }
    QStringList present;
    for (const QString &title : shared) {
        present.append(ZQSidebarTag::tagNameForText(title));
    }
    QStringList added = wanted;
    added.removeIf([&present](const QString &name) { return present.contains(name); });
    QList<ZQObjectID> removed;
    for (const QString &name : present) {
        const auto tag =
            wanted.contains(name) ? ZQRef<ZQSidebarTag>() : ZQSidebarTag::tagWithTagName(name, m_edits.context);
        if (tag) {
            removed.append(tag->objectID());
        }
    }
    if (added.isEmpty() && removed.isEmpty()) {
        return false;
    }
    OpenMetaPrefs::updatePrefsRecentTags(present, wanted);
    changeTags(items, {}, removed, added);
    return true;
}

void ItemEdits::saveAndRewriteFiles(const QList<ZQObjectID> &items)
{
    const auto announced = std::make_shared<Announced>();
    if (ZQLibraryEnvironment::current().writesTagsToFiles()) {
        for (qsizetype first = 0; first < items.size(); first += perAnnouncement) {
            announced->files.push_back(
                announce(ZQLibraryBaseItem::itemsWithIDs(items.mid(first, perAnnouncement), m_edits.context)));
        }
    }
    if (!m_edits.save()) {
        announced->isDone = true; // there is nothing to write
        return;
    }
    if (m_edits.context.hasChanges()) {
        return; // kept for the next time: the files are written once the store says so, at the next launch
    }
    zqPerformEdit(m_edits, sizeOf(items),
                  {[items, announced](EditRun &running) {
                       rewrite(running, items);
                       announced->isDone = true;
                       return true;
                   },
                   {}});
}

void ItemEdits::setNotes(const QList<ZQObjectID> &items, const QString &notes)
{
    const auto edit = std::make_shared<Edit>();
    edit->progressText = zqLocalized("Writing notes…");
    edit->items = items;
    edit->rewritesFiles = true;
    edit->change = textChange(
        notes, [](const ZQLibraryBaseItem &item) { return item.notes(); },
        [](ZQLibraryBaseItem &item, const QString &value) { item.setNotes(value); });
    push(m_edits, zqLocalized("edit notes"), edit);
}

void ItemEdits::setLicense(const QList<ZQObjectID> &items, const QString &license)
{
    const auto edit = std::make_shared<Edit>();
    edit->progressText = zqLocalized("Writing the license…");
    edit->items = items;
    edit->change = textChange(
        license, [](const ZQLibraryBaseItem &item) { return item.license(); },
        [](ZQLibraryBaseItem &item, const QString &value) { item.setLicense(value); });
    push(m_edits, zqLocalized("edit license"), edit);
}

void ItemEdits::setSource(const QList<ZQObjectID> &items, const QString &address)
{
    const auto edit = std::make_shared<Edit>();
    edit->progressText = zqLocalized("Writing the source…");
    edit->items = items;
    edit->change = textChange(
        address, [](const ZQLibraryBaseItem &item) { return item.webPageURL(); },
        [](ZQLibraryBaseItem &item, const QString &value) { item.setWebPageURL(value); });
    push(m_edits, zqLocalized("edit source"), edit);
}

void ItemEdits::setRating(const QList<ZQObjectID> &items, int rating)
{
    const auto edit = std::make_shared<Edit>();
    edit->progressText = zqLocalized("Rating…");
    edit->items = items;
    edit->rates = true;
    const auto stars = qint16(std::clamp(rating, 0, 5));
    edit->change = [stars](ZQLibraryBaseItem &item) -> Edit::Undo {
        const qint16 before = item.rating();
        if (before == stars) {
            return {};
        }
        item.setRating(stars);
        return [before, stars](ZQLibraryBaseItem &changed) {
            if (changed.rating() == stars) { // else somebody rated it anew since
                changed.setRating(before);
            }
        };
    };
    push(m_edits, rating > 0 ? zqLocalized("rate") : zqLocalized("remove rating"), edit);
}
